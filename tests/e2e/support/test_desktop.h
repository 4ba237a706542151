#pragma once
#include "desktop/protocol.h"
#include "e2e/support/child_process.h"
#include <windows.h>
#include <map>
#include <string>
#include <vector>

struct DesktopItem {
    int nIndex;
    POINT pt; // list-view coordinates
    std::wstring strName;
};

enum class DesktopMode { Real, Plain, WorkerW, WorkerWInside };
enum class Announce { Yes, No }; // "TaskbarCreated" at the start

/// The test desktop, running in a process of its own. Every operation throws std::runtime_error
/// when the desktop refuses or does not answer in time.
class TestDesktop {
  public:
    explicit TestDesktop(DesktopMode modeWanted, Announce announce = Announce::Yes);
    ~TestDesktop();
    TestDesktop(const TestDesktop&) = delete;
    TestDesktop& operator=(const TestDesktop&) = delete;

    /// Starts it again after an end, in the same mode; returns when it answers.
    void Start(Announce announce = Announce::Yes);
    /// An orderly end; returns when the process has gone. Returns its exit code.
    DWORD End();
    /// The process ends itself from inside, as in a crash.
    void Crash();
    /// The process is ended from outside.
    void Kill();
    bool IsRunning() const { return process.IsRunning(); }
    DWORD ProcessId() const { return process.Id(); }
    /// Leaves the desktop up when the object goes.
    void LetGo() { process.LetGo(); }

    HWND Progman() const { return hwndProgman; }
    HWND View() const { return hwndView; }
    HWND List() const { return hwndList; }

    int Count();
    std::vector<DesktopItem> Items();
    /// The first item of that name.
    DesktopItem ItemNamed(const std::wstring& strName);
    /// The middle of the item's icon on the screen, for the mouse.
    POINT OnScreen(int nIndex);
    void Move(int nIndex, POINT pt);
    void MoveNamed(const std::wstring& strName, POINT pt);
    bool IsAutoArranged();
    void SetAutoArrange(bool bOn);
    /// nOrder[n] is the present index of the item that shall be the n-th. Places stay.
    void Reorder(const std::vector<int>& nOrder);

    // The plain desktops' items.
    void Add(const std::wstring& strName);
    void Add(const std::wstring& strName, POINT pt);
    /// Replaces all items by nCount new ones named "Icon 0001" and on.
    void Fill(int nCount);
    void Remove(int nIndex);
    void Rename(int nIndex, const std::wstring& strName);
    void Clear();

    // Files on the real desktop; the view has been told when these return.
    void CreateDesktopFile(const std::wstring& strName);
    void DeleteDesktopFile(const std::wstring& strName);
    void RenameDesktopFile(const std::wstring& strFrom, const std::wstring& strTo);

    /// The view gets WM_NOTIFY with that code, from the list view or from another window.
    void Notify(UINT nCode, bool bForeign = false);
    /// The shell's thread does nothing for that long, beginning now.
    void Hang(DWORD nMs);

    /// All that the shell says of itself; names as in the reply of `state`.
    std::map<std::wstring, std::wstring> State();
    /// Somebody has subclassed the view or the list view, or left the property "CSWND" on one.
    bool HasGuest();
    /// Both windows are subclassed, with the property.
    bool IsFullyAttached();
    /// The product's library is mapped in the shell.
    bool HasLibrary();

    /// A command as it stands in the protocol; the reply's rows.
    std::vector<Row> Call(const Row& command, DWORD nMs = kTestDeadlineMs);

  private:
    std::wstring ReadReply() const;
    HWND FindCommandWindow() const;
    DesktopMode mode;
    ChildProcess process;
    HWND hwndCommands = nullptr;
    HWND hwndProgman = nullptr;
    HWND hwndView = nullptr;
    HWND hwndList = nullptr;
    std::wstring strMapping;
    HANDLE hMapping = nullptr;
    const void* pReply = nullptr;
};
