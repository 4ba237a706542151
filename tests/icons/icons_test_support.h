#pragma once
#include "icons/agent/agent.h"
#include "icons/agent/icon_record.h"
#include "icons/monitor/front_end.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <commctrl.h>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

// What the tests of the icon engine share: windows that stand in for the desktop's, with a record
// of what reaches them, and the state that the engine keeps for the whole process.

UINT GetTestCompanyMsg();     // "OrvantaMessage"
UINT GetTestTaskbarCreated(); // "TaskbarCreated"

/// Dispatches what waits in the calling thread's queue, WM_QUIT left out of it: *pbQuit, if asked
/// for, tells whether there was one.
void PumpAll(int* pbQuit = nullptr);

struct SeenMessage {
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    DWORD dwThread; // that handled it
    int nOrder;     // among all spied windows
};

/// Replaces a window's procedure by one that keeps a record and goes on to the former one. What is
/// attached to the window later stands above it: a message that is in the record has come through.
class ProcSpy {
  public:
    /// Non-zero: the message ends here, with *plResult.
    using Handler = std::function<int(UINT, WPARAM, LPARAM, LRESULT*)>;

    explicit ProcSpy(HWND hwndTarget, Handler fnNew = nullptr);
    ~ProcSpy();
    ProcSpy(const ProcSpy&) = delete;
    ProcSpy& operator=(const ProcSpy&) = delete;

    std::vector<SeenMessage> Get(UINT uMsg) const;
    int CountOf(UINT uMsg) const { return static_cast<int>(Get(uMsg).size()); }
    /// Of the company message with that code.
    std::vector<SeenMessage> GetCode(WPARAM wCode) const;
    int CountOfCode(WPARAM wCode) const { return static_cast<int>(GetCode(wCode).size()); }
    int CountOfAll() const;
    void Clear();

    Handler handler;

  private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

    HWND hwnd;
    mutable std::mutex mutex;
    std::vector<SeenMessage> messages;
};

/// A hidden window of a class that is there, for tests of what goes by classes; of the calling
/// thread, destroyed with the object.
class ClassWindow {
  public:
    ClassWindow(const wchar_t* pszClass, HWND hwndParent, DWORD dwStyle);
    ~ClassWindow() { ::DestroyWindow(hwnd); }
    ClassWindow(const ClassWindow&) = delete;
    ClassWindow& operator=(const ClassWindow&) = delete;
    operator HWND() const { return hwnd; }

  private:
    HWND hwnd;
};

/// Whether the library has registered the class.
bool IsClassThere(const wchar_t* pszName);
/// The class of a hidden window: CSWnd's procedure, the library's instance and nothing else.
void ExpectPlainClass(const wchar_t* pszName);

struct TestIcon {
    std::wstring strText;
    POINT pt;
};

bool operator==(const TestIcon& a, const TestIcon& b);

HWND CreateTestListView(HWND hwndParent, DWORD dwExtraStyle = 0);
void AddIcon(HWND hwndListView, std::wstring_view strText, POINT pt);
void SetIcons(HWND hwndListView, const std::vector<TestIcon>& icons);
POINT PosOfIcon(HWND hwndListView, int nIcon);

/// A view with a list view in it, both of the calling thread, both spied upon.
class TestView {
  public:
    explicit TestView(DWORD dwListViewStyle = 0)
        : hwndListView(CreateTestListView(wndView, dwListViewStyle)), spyView(wndView),
          spyListView(hwndListView) {}

    TestWindow wndView;
    HWND hwndListView;
    ProcSpy spyView;
    ProcSpy spyListView;
};

/// MD5 of the platform, the first eight bytes as a number, the first byte lowest.
unsigned long long KeyOf(std::wstring_view strText);
IconRecord RecordOf(unsigned nIndex, std::wstring_view strText, POINT pt);
bool SameRecord(const IconRecord& a, const IconRecord& b);

/// Copies out the records of a WM_COPYDATA that a monitor window would get.
struct ReceivedCapture {
    WPARAM wParam;
    ULONG_PTR dwData;
    DWORD cbData;
    std::vector<IconRecord> records;
};

/// Stands in for the monitor window, whose class it has: keeps the captures that come.
class CaptureReceiver {
  public:
    CaptureReceiver();
    operator HWND() const { return wnd; }

    TestClass monitorClass{L"TessalyWnd"};
    TestWindow wnd{L"TessalyWnd"};
    std::vector<ReceivedCapture> captures;
    ProcSpy spy;
};

/// The values of the store's key that are named like snapshots, by name, read past the store's own
/// code.
std::map<std::wstring, std::vector<BYTE>> ReadStoredSnapshots();
void DeleteStoredSnapshots();

/// A desktop in a thread of its own: "Progman" > "SHELLDLL_DefView" > "SysListView32". It lies
/// above every other "Progman" of the desktop.
class DesktopThread {
  public:
    explicit DesktopThread(std::vector<TestIcon> initialIcons);
    ~DesktopThread() { End(); }
    DesktopThread(const DesktopThread&) = delete;
    DesktopThread& operator=(const DesktopThread&) = delete;
    /// The windows and the thread go.
    void End();
    /// Runs fn on the desktop's thread and waits for it.
    void Run(std::function<void()> fn);
    DWORD GetThreadId() const { return dwThread; }
    HWND GetView() const { return hwndView; }
    HWND GetListView() const { return hwndListView; }
    ProcSpy& SpyView() { return *pspyView; }
    ProcSpy& SpyListView() { return *pspyListView; }

  private:
    void Main();

    std::vector<TestIcon> icons;
    HANDLE hReady;
    DWORD dwThread = 0;
    HWND hwndProgman = nullptr, hwndView = nullptr, hwndListView = nullptr;
    std::unique_ptr<ProcSpy> pspyView, pspyListView;
    std::thread thread;
};

/// Keeps what the engine tells, in one line per call, and does what the test hangs onto it.
class FakeFrontEnd : public MonitorFrontEnd {
  public:
    void OnMonitorStart() override;
    void OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) override;
    void OnMenuRequest(MyMonitor_Wnd& monitor) override;
    void OnCaptureOutcome(const wchar_t* pszText) override;
    void OnMonitorClose() override;
    void OnRoundEnd() override;
    void OnIconsPutBack(const wchar_t* pszText) override;

    std::vector<std::string> calls;
    std::vector<std::wstring> outcomes, putBacks;
    std::function<void()> fnMonitorStart, fnOutcome, fnMonitorClose, fnRoundEnd;
    std::function<void(MyMonitor_Wnd&)> fnRoundStart, fnMenu;
};

/// The timers of windows that run while the object lives, by what the platform is asked for.
class RunningTimers {
  public:
    RunningTimers();
    RunningTimers(const RunningTimers&) = delete;
    RunningTimers& operator=(const RunningTimers&) = delete;
    static bool IsRunning(HWND hwnd, UINT_PTR uId);

  private:
    ReplaceImport setTimer, killTimer;
};

// The monitor window's timers.
constexpr UINT_PTR kDebounceTimer = 10, kSuppressTimer = 11;
inline bool IsCapturePending(HWND hwndMonitor) {
    return RunningTimers::IsRunning(hwndMonitor, kDebounceTimer);
}
inline bool IsSuppressing(HWND hwndMonitor) {
    return RunningTimers::IsRunning(hwndMonitor, kSuppressTimer);
}

/// The company message with that code, as the hook of the list view's thread sees it.
void PassThroughHook(WPARAM wCode, LPARAM lParam);

/// The agent's two objects of this process, as windows name them that the agent was attached to.
MySysLVWnd& AgentListView();
MyShellWnd& AgentView();

/// Brings the state that the engine keeps for the process back to that of its start.
class EngineTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    /// The shared words as the monitor would fill them, for windows of the test's.
    void Share(const TestView& view, HWND hwndMonitor);

    RunningTimers timers;
};
