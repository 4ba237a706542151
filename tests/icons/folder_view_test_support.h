#pragma once
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

// The shell's folder view of the desktop, as a double. The test platform has the chain of
// interfaces that leads to one, but the view at its end is not that of the test's windows,
// positions nothing (SelectAndPositionItems gives E_NOTIMPL) and cannot be made to fail; and the
// system's build number is an old one. What the real folder view does with what it is told is seen
// on Windows only (docs/windows-checks.md).

/// A Windows of that build for the length of a block, by what RtlGetVersion says; 0: one without
/// that function. One at a time, and only while no other look-up is in force.
class FakeBuild {
  public:
    explicit FakeBuild(DWORD dwBuild, LONG nStatus = 0);
    ~FakeBuild() { SetRuntimeLookup(nullptr); }
    FakeBuild(const FakeBuild&) = delete;
    FakeBuild& operator=(const FakeBuild&) = delete;
};
constexpr DWORD kBuildBefore = 17134, kFirstBuildInCharge = 17763;

/// The calls on the way to the folder view and on it, in their order.
enum class Step {
    Create,      // CoCreateInstance
    FindWindow,  // IShellWindows::FindWindowSW
    Services,    // QueryInterface for IServiceProvider
    Browser,     // IServiceProvider::QueryService
    View,        // IShellBrowser::QueryActiveShellView
    Window,      // IShellView::GetWindow
    FolderView,  // QueryInterface for IFolderView
    FolderView2, // QueryInterface for IFolderView2
    GetFlags,
    SetFlags,
    Folder, // IFolderView::GetFolder
    Count,  // IFolderView::ItemCount
    Item,   // IFolderView::Item
    Name,   // IShellFolder::GetDisplayNameOf
    Position,
    None
};
std::string StepName(Step step);

struct FakeItem {
    std::wstring strName;
    bool bGone = false;     // counted, but Item knows no more of it
    bool bNameless = false; // GetDisplayNameOf fails
};

struct PlacedItem {
    std::wstring strName;
    POINT pt;
};
bool operator==(const PlacedItem& a, const PlacedItem& b);
std::ostream& operator<<(std::ostream& out, const PlacedItem& item);

/// The double: objects whose method tables are filled by the numbers that the documented interfaces
/// give to their methods, so that a wrong order in our own declarations leads to a wrong method. It
/// takes the place of CoCreateInstance while it lives, and fails the test at its end if references,
/// item ids or texts that it gave away have not been given back.
class FakeFolderView {
  public:
    explicit FakeFolderView(HWND hwndOfView);
    ~FakeFolderView();
    FakeFolderView(const FakeFolderView&) = delete;
    FakeFolderView& operator=(const FakeFolderView&) = delete;

    std::vector<FakeItem> items;
    DWORD dwFlags = 0; // FWF_...
    HWND hwndView;
    /// The step that does not succeed, and how it ends: with success it has nothing to give.
    Step failing = Step::None;
    HRESULT hrFailing = E_FAIL;
    /// Called when a step is taken, before anything comes of it.
    std::map<Step, std::function<void()>> onStep;

    // What was seen.
    int CountOf(Step step) const { return nTaken[static_cast<int>(step)]; }
    std::vector<std::vector<PlacedItem>> placements; // of each SelectAndPositionItems
    std::vector<DWORD> placementFlags;
    std::vector<std::pair<DWORD, DWORD>> flagChanges; // mask and flags of SetCurrentFolderFlags
    bool bHadCom = false;                             // COM was there on the thread of the creation
    /// So many references, item ids and texts are out.
    long CountOfLoans() const;

  private:
    struct Object;
    struct Methods; // has all functions of the tables, and the replaced imports
    HRESULT Take(Step step);
    HRESULT Give(Step step, Object& object, void** ppv);

    std::map<std::string, std::unique_ptr<Object>> objects;
    std::set<void*> itemIds, texts;
    std::atomic<int> nTaken[static_cast<int>(Step::None) + 1] = {};
    ReplaceImport create, freeMemory, toText;
};
