#pragma once
#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "e2e/support/test_desktop.h"
#include "support/message_box_driver.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What the user is asked before a restore on a desktop that arranges its icons by itself.
constexpr wchar_t kAutoArrangeText[] =
    L"Your Desktop is currently set to auto arrange the icons. In order to restore the icons, the "
    L"auto arrange option needs to be cleared.\n\nOK to clear this option? (If you select No, the "
    L"icons will NOT be restored.)";

/// The product's library, mapped into the test for as long as the object lives. A process that maps
/// it shares the words by which the monitor and the agent know each other.
class ProductLibrary {
  public:
    struct SharedWords {
        uint64_t nCompanyMsg;
        HWND hwndList;
        HANDLE hhook;
        HWND hwndView;
        HWND hwndMonitor;
    };
    ProductLibrary();
    ~ProductLibrary() { ::FreeLibrary(hmod); }
    ProductLibrary(const ProductLibrary&) = delete;
    ProductLibrary& operator=(const ProductLibrary&) = delete;

    volatile SharedWords& Words() const { return *pWords; }
    /// As the menu does it in the monitor, for the snapshot of that name. Sits in the call.
    void Restore(const std::wstring& strName) const;

  private:
    HMODULE hmod = nullptr;
    volatile SharedWords* pWords = nullptr;
};

/// The whole engine on a test desktop. Begins without snapshots; leaves neither these nor a desktop
/// nor a monitor.
class EngineTest : public testing::Test {
  protected:
    void SetUp() override { store.Clear(); }
    void TearDown() override;

    void StartDesktop(DesktopMode mode) { desktop = std::make_unique<TestDesktop>(mode); }
    /// A plain desktop with items in columns.
    void StartPlain(int nIcons);
    /// Starts the monitor and returns when its first capture has been dealt with.
    void StartMonitor();

    /// The shell has dealt with all that was posted to it before.
    void FlushShell();
    /// Has the monitor ask for a capture; returns when it has been dealt with. False if something
    /// does not answer.
    bool Capture();
    /// Moves one icon to a place where no test put it before, so that the next capture differs.
    void MoveSomething();
    /// A capture of a changed desktop comes to be stored.
    testing::AssertionResult StillCaptures();

    /// What a capture of the desktop as it is now must consist of.
    std::vector<StoredIcon> ExpectedIcons();
    std::map<std::wstring, POINT> Places();

    SnapshotReader store;
    std::unique_ptr<TestDesktop> desktop;
    MonitorProcess monitor;

  private:
    int nMoves = 0;
};

/// Every value of the key as it is now, also the default one: for what must not change.
std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> AllValues(const SnapshotReader& store);

/// The text of the list view's item as its messages give it into 260 characters.
std::wstring AsCaptured(const std::wstring& strName);
StoredIcon Record(unsigned nIndex, POINT pt, const std::wstring& strName);
/// Records of that many icons that no desktop has; other numbers give other places.
std::vector<StoredIcon> SomeIcons(int nIcons, int nVariant = 0);

/// The name of a snapshot taken so long before now.
std::wstring NameBeforeNow(uint64_t nSeconds);
uint64_t TimeOfName(const std::wstring& strName);
uint64_t Now();
std::string ModeName(const testing::TestParamInfo<DesktopMode>& row);
