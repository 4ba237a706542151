#include "app/identity/product_info.h"
#include "icons/agent/agent.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/icons_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "runtime/base/current_product.h"
#include "runtime/base/digest.h"
#include "runtime/system/wts_api32.h"
#include "support/runtime_lookup.h"
#include "wnd/core/cswnd.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <shlobj.h>
#include <wtsapi32.h>
#include <cstring>

namespace {

constexpr UINT kWtsSessionChange = 689;

/// Stands at the base handler's front: what it counts has come through the monitor window.
class BaseCounter : public WMHook {
  public:
    int OnWndMessage(CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
        ++counts[uMsg];
        return 0;
    }
    std::map<UINT, int> counts;
};

// The platform's notification functions, watched

struct NotifyFuncs : ShellNotify {
    using ShellNotify::pfnDeregister;
    using ShellNotify::pfnLock;
    using ShellNotify::pfnRegister;
    using ShellNotify::pfnUnlock;
};

struct NotifyCalls {
    HWND hwnd = nullptr;
    int nSources = 0, nEntries = 0, bRecursive = 0, cbFirstItem = -1;
    LONG nEvents = 0;
    UINT uMsg = 0;
    std::vector<ULONG> ended;
    std::vector<std::string> locks;
    HANDLE hLocked = nullptr;
    DWORD dwLockedProcess = 0;
    std::function<void()> fnAtLock, fnAtUnlock;
} calls;

decltype(NotifyFuncs::pfnRegister) pfnRealRegister;
decltype(NotifyFuncs::pfnDeregister) pfnRealDeregister;

// Asks for the whole tree: the platform of the tests reports nothing otherwise.
ULONG WINAPI WatchedRegister(HWND hwnd, int nSources, LONG nEvents, UINT uMsg, int nEntries,
                             const SHChangeNotifyEntry* pEntries) {
    calls.hwnd = hwnd;
    calls.nSources = nSources;
    calls.nEvents = nEvents;
    calls.uMsg = uMsg;
    calls.nEntries = nEntries;
    calls.bRecursive = pEntries[0].fRecursive;
    calls.cbFirstItem = pEntries[0].pidl ? pEntries[0].pidl->mkid.cb : -1;
    SHChangeNotifyEntry entry{pEntries[0].pidl, TRUE};
    return pfnRealRegister(hwnd, nSources, nEvents, uMsg, 1, &entry);
}

ULONG WINAPI RefusedRegister(HWND, int, LONG, UINT, int, const SHChangeNotifyEntry*) { return 0; }

BOOL WINAPI WatchedDeregister(ULONG nId) {
    calls.ended.push_back(nId);
    return pfnRealDeregister(nId);
}

HANDLE WINAPI WatchedLock(HANDLE hChange, DWORD dwProcess, ITEMIDLIST*** pppidl, LONG* pnEvent) {
    static ITEMIDLIST* noLists[2] = {};
    calls.locks.push_back("lock");
    calls.hLocked = hChange;
    calls.dwLockedProcess = dwProcess;
    if (calls.fnAtLock) calls.fnAtLock();
    if (pppidl) *pppidl = noLists;
    if (pnEvent) *pnEvent = SHCNE_RENAMEITEM;
    return reinterpret_cast<HANDLE>(0x77);
}

BOOL WINAPI WatchedUnlock(HANDLE hLock) {
    calls.locks.push_back(hLock == reinterpret_cast<HANDLE>(0x77) ? "unlock" : "bad unlock");
    if (calls.fnAtUnlock) calls.fnAtUnlock();
    return TRUE;
}

class MonitorWnd : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        ShellNotify first; // finds the functions
        saved = {NotifyFuncs::pfnRegister, NotifyFuncs::pfnDeregister, NotifyFuncs::pfnLock,
                 NotifyFuncs::pfnUnlock};
        pfnRealRegister = saved.pfnRegister;
        pfnRealDeregister = saved.pfnDeregister;
        calls = {};
        monitor = std::make_unique<MyMonitor_Wnd>(frontEnd);
        ASSERT_TRUE(monitor->CreateHidden(nullptr));
        Share(view, *monitor);
        monitor->AddWndHook(&base);
    }
    void TearDown() override {
        if (monitor) {
            monitor->SetHook(0);
            monitor->Destroy();
            monitor.reset();
        }
        NotifyFuncs::pfnRegister = saved.pfnRegister;
        NotifyFuncs::pfnDeregister = saved.pfnDeregister;
        NotifyFuncs::pfnLock = saved.pfnLock;
        NotifyFuncs::pfnUnlock = saved.pfnUnlock;
        EngineTest::TearDown();
    }
    HWND Wnd() { return *monitor; }
    LRESULT Send(UINT uMsg, WPARAM wParam, LPARAM lParam) {
        return ::SendMessageW(Wnd(), uMsg, wParam, lParam);
    }
    LRESULT SendCode(WPARAM wCode, LPARAM lParam) {
        return Send(GetTestCompanyMsg(), wCode, lParam);
    }
    /// Takes the waiting WM_CLOSE messages out of the queue.
    int TakeCloses() {
        int nCloses = 0;
        MSG msg;
        while (::PeekMessageW(&msg, Wnd(), WM_CLOSE, WM_CLOSE, PM_REMOVE)) ++nCloses;
        return nCloses;
    }
    int CapturesAskedFor() {
        PumpAll();
        return view.spyListView.CountOfCode(kCodeCapture);
    }
    LRESULT SendCopy(ULONG_PTR dwData, DWORD cbData, const void* pData) {
        COPYDATASTRUCT data{dwData, cbData, const_cast<void*>(pData)};
        // Straight to the handler: the platform would look at the sizes first.
        return monitor->OnWndMessage(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }

    struct {
        decltype(NotifyFuncs::pfnRegister) pfnRegister;
        decltype(NotifyFuncs::pfnDeregister) pfnDeregister;
        decltype(NotifyFuncs::pfnLock) pfnLock;
        decltype(NotifyFuncs::pfnUnlock) pfnUnlock;
    } saved{};
    TestView view;
    BaseCounter base;
    FakeFrontEnd frontEnd;
    std::unique_ptr<MyMonitor_Wnd> monitor;
};

// The class and the window

TEST_F(MonitorWnd, ClassIsAsPlainAsCanBe) { ExpectPlainClass(L"TessalyWnd"); }

TEST_F(MonitorWnd, ClassGoesWithTheObject) {
    monitor->Destroy();
    monitor.reset();
    EXPECT_FALSE(IsClassThere(kMonitorClass));
    MyMonitor_Wnd next(frontEnd);
    EXPECT_TRUE(IsClassThere(kMonitorClass));
}

TEST_F(MonitorWnd, WindowIsHiddenOnePixelAndNamedLikeItsClass) {
    wchar_t szClass[32] = {}, szTitle[32] = {};
    ::GetClassNameW(Wnd(), szClass, 32);
    ::GetWindowTextW(Wnd(), szTitle, 32);
    EXPECT_STREQ(L"TessalyWnd", szClass);
    EXPECT_STREQ(L"TessalyWnd", szTitle);
    EXPECT_FALSE(::IsWindowVisible(Wnd()));
    EXPECT_EQ(nullptr, ::GetMenu(Wnd()));
    EXPECT_EQ(static_cast<CSWnd*>(monitor.get()), ::GetPropW(Wnd(), L"CSWND"));
}

TEST_F(MonitorWnd, WindowHasTheGivenParent) {
    monitor->Destroy();
    TestWindow wndParent;
    ASSERT_TRUE(monitor->CreateHidden(wndParent));
    EXPECT_EQ(static_cast<HWND>(wndParent), ::GetWindow(Wnd(), GW_OWNER));
    monitor->Destroy();
}

TEST_F(MonitorWnd, WindowOfABadParentIsNotCreated) {
    monitor->Destroy();
    EXPECT_FALSE(monitor->CreateHidden(reinterpret_cast<HWND>(0xDEAD)));
    EXPECT_EQ(nullptr, Wnd());
}

TEST_F(MonitorWnd, IsKnownToTheProcessWhileItLives) {
    EXPECT_EQ(monitor.get(), MyMonitor_Wnd::GetCurrent());
    monitor->Destroy();
    monitor.reset();
    EXPECT_EQ(nullptr, MyMonitor_Wnd::GetCurrent());
}

// The company message

TEST_F(MonitorWnd, ClosesOnThisProductsNumber) {
    SendCode(1, GetMyProductInfo().GetID());
    EXPECT_TRUE(::IsWindow(Wnd())); // posted, not done at once
    EXPECT_EQ(1, TakeCloses());
    EXPECT_EQ(1, base.counts[GetTestCompanyMsg()]);
}

TEST_F(MonitorWnd, LooksOnlyAtTheLow16BitsOfTheNumber) {
    for (LPARAM lParam : {0x00014162ll, 0x7FFF4162ll, 0x100004162ll, ~0xFFFFll | 0x4162ll}) {
        SendCode(1, lParam);
        EXPECT_EQ(1, TakeCloses());
    }
}

TEST_F(MonitorWnd, IgnoresAnotherProductsNumber) {
    for (LPARAM lParam : {0ll, 1ll, 0x4161ll, 0x4163ll, 0x416200000000ll, 0x41620000ll, -1ll})
        SendCode(1, lParam);
    EXPECT_EQ(0, TakeCloses());
    EXPECT_EQ(7, base.counts[GetTestCompanyMsg()]);
}

TEST_F(MonitorWnd, AsksTheFrontEndForTheMenu) {
    MyMonitor_Wnd* pGiven = nullptr;
    frontEnd.fnMenu = [&](MyMonitor_Wnd& given) { pGiven = &given; };
    SendCode(371, 1);
    EXPECT_EQ(std::vector<std::string>{"menu"}, frontEnd.calls);
    EXPECT_EQ(monitor.get(), pGiven);
    EXPECT_EQ(1, base.counts[GetTestCompanyMsg()]);
}

TEST_F(MonitorWnd, SchedulesACaptureWhenIconsMayHaveMoved) {
    SendCode(374, 0);
    EXPECT_TRUE(IsCapturePending(Wnd()));
    EXPECT_EQ(0, CapturesAskedFor()); // never in the handler of the event
    EXPECT_EQ(1, base.counts[GetTestCompanyMsg()]);
}

TEST_F(MonitorWnd, IgnoresOtherCodes) {
    for (WPARAM wCode : {0ull, 2ull, 3ull, 16ull, 370ull, 372ull, 373ull, 375ull, 374ull << 32,
                         (1ull << 32) | 371})
        SendCode(wCode, 1);
    EXPECT_TRUE(frontEnd.calls.empty());
    EXPECT_FALSE(IsCapturePending(Wnd()));
    EXPECT_EQ(0, TakeCloses());
    EXPECT_EQ(0, CapturesAskedFor());
    EXPECT_EQ(10, base.counts[GetTestCompanyMsg()]);
}

TEST_F(MonitorWnd, TakesNoNullMessageForARegisteredOne) {
    SetRestartFlag(false);
    for (WPARAM wCode : {1ull, 371ull, 374ull}) Send(WM_NULL, wCode, 0x4162);
    EXPECT_TRUE(frontEnd.calls.empty());
    EXPECT_FALSE(IsCapturePending(Wnd())); // no notification is registered
    EXPECT_FALSE(GetRestartFlag());
    EXPECT_EQ(0, TakeCloses());
    EXPECT_EQ(3, base.counts[WM_NULL]);
}

// The shell's notifications

UINT NotificationMsg() { return ::RegisterWindowMessageW(L"WM_TESSALY_SHLN"); }

TEST_F(MonitorWnd, AsksForTheDesktopsEvents) {
    NotifyFuncs::pfnRegister = &WatchedRegister;
    monitor->RegisterNotification();
    EXPECT_EQ(Wnd(), calls.hwnd);
    EXPECT_EQ(0x8003, calls.nSources);
    EXPECT_EQ(0x2619F, calls.nEvents);
    EXPECT_EQ(NotificationMsg(), calls.uMsg);
    EXPECT_EQ(1, calls.nEntries);
    EXPECT_FALSE(calls.bRecursive);
    EXPECT_EQ(0, calls.cbFirstItem); // the desktop
}

TEST_F(MonitorWnd, SchedulesACaptureOnARealEvent) {
    NotifyFuncs::pfnRegister = &WatchedRegister;
    monitor->RegisterNotification();
    wchar_t szFolder[MAX_PATH];
    ASSERT_TRUE(::SHGetSpecialFolderPathW(nullptr, szFolder, CSIDL_DESKTOPDIRECTORY, FALSE));
    std::wstring strFile = std::wstring(szFolder) + L"\\engine test.txt";
    ::CloseHandle(
        ::CreateFileW(strFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW | SHCNF_FLUSH, strFile.c_str(), nullptr);
    EXPECT_TRUE(PumpUntil([&] { return IsCapturePending(Wnd()); }));
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeCapture));
    ::DeleteFileW(strFile.c_str());
}

TEST_F(MonitorWnd, LocksANotificationWhileItSchedules) {
    monitor->RegisterNotification();
    NotifyFuncs::pfnLock = &WatchedLock;
    NotifyFuncs::pfnUnlock = &WatchedUnlock;
    int bPendingAtLock = -1, bPendingAtUnlock = -1;
    calls.fnAtLock = [&] { bPendingAtLock = IsCapturePending(Wnd()); };
    calls.fnAtUnlock = [&] { bPendingAtUnlock = IsCapturePending(Wnd()); };
    Send(NotificationMsg(), 0x123456789ABC, 0x7777777712345678);
    EXPECT_EQ((std::vector<std::string>{"lock", "unlock"}), calls.locks);
    EXPECT_EQ(reinterpret_cast<HANDLE>(0x123456789ABC), calls.hLocked);
    EXPECT_EQ(0x12345678u, calls.dwLockedProcess);
    EXPECT_EQ(0, bPendingAtLock);
    EXPECT_EQ(1, bPendingAtUnlock);
    EXPECT_EQ(1, base.counts[NotificationMsg()]);
}

TEST_F(MonitorWnd, CountsANotificationWithBogusHandlesAsAnyOther) {
    monitor->RegisterNotification();
    Send(NotificationMsg(), 0, 0);
    EXPECT_TRUE(IsCapturePending(Wnd()));
    Send(NotificationMsg(), 0xDEADBEEF, static_cast<LPARAM>(::GetCurrentProcessId()));
    EXPECT_TRUE(IsCapturePending(Wnd()));
    EXPECT_EQ(2, base.counts[NotificationMsg()]);
}

TEST_F(MonitorWnd, GoesOnWithoutNotificationsWhenTheShellRefuses) {
    NotifyFuncs::pfnRegister = &RefusedRegister;
    monitor->RegisterNotification();
    NotifyFuncs::pfnRegister = nullptr;
    monitor->RegisterNotification();
    NotifyFuncs::pfnDeregister = &WatchedDeregister;
    monitor->EndNotification();
    EXPECT_TRUE(calls.ended.empty());
    SendCode(374, 0);
    EXPECT_TRUE(IsCapturePending(Wnd()));
}

TEST_F(MonitorWnd, EndsTheNotificationOnce) {
    monitor->RegisterNotification();
    NotifyFuncs::pfnDeregister = &WatchedDeregister;
    monitor->EndNotification();
    ASSERT_EQ(1u, calls.ended.size());
    EXPECT_NE(0u, calls.ended[0]);
    monitor->EndNotification();
    monitor->Destroy();
    monitor.reset();
    EXPECT_EQ(1u, calls.ended.size());
}

// A shell that has started, the window's life

TEST_F(MonitorWnd, GoesRoundAgainWhenAShellHasStarted) {
    RegisterTaskbarCreated();
    SetRestartFlag(false);
    Send(GetTestTaskbarCreated(), 0, 0);
    EXPECT_TRUE(GetRestartFlag());
    EXPECT_TRUE(::IsWindow(Wnd()));
    EXPECT_EQ(1, TakeCloses());
    EXPECT_EQ(1, base.counts[GetTestTaskbarCreated()]);
}

TEST_F(MonitorWnd, ClosesIconThenWindowThenLoop) {
    HWND hwnd = Wnd();
    int bAliveAtClose = -1;
    frontEnd.fnMonitorClose = [&] { bAliveAtClose = ::IsWindow(hwnd); };
    Send(WM_CLOSE, 0, 0);
    EXPECT_EQ(std::vector<std::string>{"monitor close"}, frontEnd.calls);
    EXPECT_EQ(1, bAliveAtClose);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, base.counts[WM_DESTROY]);
    MSG msg{};
    ASSERT_TRUE(::PeekMessageW(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(0u, msg.wParam);
}

struct SessionCalls {
    int nRegistered = 0, nUnregistered = 0;
    HWND hwnd = nullptr;
    DWORD dwFlags = 99;
} sessions;

BOOL WINAPI RegisterSession(HWND hwnd, DWORD dwFlags) {
    ++sessions.nRegistered;
    sessions.hwnd = hwnd;
    sessions.dwFlags = dwFlags;
    return TRUE;
}

BOOL WINAPI UnregisterSession(HWND hwnd) {
    ++sessions.nUnregistered;
    sessions.hwnd = hwnd;
    return TRUE;
}

TEST_F(MonitorWnd, HearsOfItsSessionWhileItsWindowLives) {
    monitor->Destroy();
    sessions = {};
    WtsApi32 wts;
    ReplaceFunctions replaced{{{"WTSRegisterSessionNotification", AsProc(&RegisterSession)},
                               {"WTSUnRegisterSessionNotification", AsProc(&UnregisterSession)}}};
    ASSERT_TRUE(monitor->CreateHidden(nullptr));
    HWND hwnd = Wnd();
    EXPECT_EQ(1, sessions.nRegistered);
    EXPECT_EQ(hwnd, sessions.hwnd);
    EXPECT_EQ(static_cast<DWORD>(NOTIFY_FOR_THIS_SESSION), sessions.dwFlags);
    EXPECT_EQ(0, sessions.nUnregistered);
    sessions.hwnd = nullptr;
    monitor->Destroy();
    EXPECT_EQ(1, sessions.nUnregistered);
    EXPECT_EQ(hwnd, sessions.hwnd);
    EXPECT_EQ(1, sessions.nRegistered);
}

BOOL WINAPI RegisterSessionAtTheSecondTime(HWND hwnd, DWORD dwFlags) {
    RegisterSession(hwnd, dwFlags);
    return sessions.nRegistered > 1;
}

TEST_F(MonitorWnd, AsksAgainToHearOfItsSessionWhenThatWasRefused) {
    monitor->Destroy();
    sessions = {};
    WtsApi32 wts;
    ReplaceFunctions replaced{
        {{"WTSRegisterSessionNotification", AsProc(&RegisterSessionAtTheSecondTime)},
         {"WTSUnRegisterSessionNotification", AsProc(&UnregisterSession)}}};
    ASSERT_TRUE(monitor->CreateHidden(nullptr));
    EXPECT_EQ(1, sessions.nRegistered);
    monitor->RequestCapture();
    EXPECT_EQ(2, sessions.nRegistered);
    EXPECT_EQ(Wnd(), sessions.hwnd);
    monitor->RequestCapture();
    EXPECT_EQ(2, sessions.nRegistered);
    monitor->Destroy();
    EXPECT_EQ(1, sessions.nUnregistered);
    ASSERT_TRUE(monitor->CreateHidden(nullptr)); // another window has to ask for itself
    EXPECT_EQ(3, sessions.nRegistered);
}

TEST_F(MonitorWnd, LivesWithoutSessionNotifications) {
    monitor->Destroy();
    WtsApi32 wts;
    HideFunctions hidden{"WTSRegisterSessionNotification", "WTSUnRegisterSessionNotification"};
    EXPECT_TRUE(monitor->CreateHidden(nullptr));
    monitor->Destroy();
}

// The session's end

TEST_F(MonitorWnd, LeavesTheShellCleanBeforeTheSessionMayEnd) {
    monitor->SetHook(1);
    PumpAll();
    ASSERT_TRUE(AgentListView().IsAttached());
    HHOOK hhook = GetDesktopSharedData().hhook;
    EXPECT_NE(0, Send(WM_QUERYENDSESSION, 0, 0)); // the base agrees
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
    EXPECT_FALSE(::UnhookWindowsHookEx(hhook));
    EXPECT_TRUE(::IsWindow(Wnd()));
    EXPECT_EQ(0, TakeCloses());
    EXPECT_EQ(1, base.counts[WM_QUERYENDSESSION]);
}

TEST_F(MonitorWnd, HasNothingToCleanWithoutAHook) {
    Send(WM_QUERYENDSESSION, 0, 0);
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeAttach));
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach));
    EXPECT_EQ(1, base.counts[WM_QUERYENDSESSION]);
}

TEST_F(MonitorWnd, HooksAgainWhenTheSessionsEndIsCancelled) {
    monitor->SetHook(1);
    PumpAll();
    Send(WM_QUERYENDSESSION, 0, 0);
    Send(WM_ENDSESSION, 0, 0);
    PumpAll();
    EXPECT_NE(nullptr, GetDesktopSharedData().hhook);
    EXPECT_TRUE(AgentListView().IsAttached());
    EXPECT_TRUE(AgentView().IsAttached());
    EXPECT_EQ(0, TakeCloses());
    EXPECT_EQ(1, base.counts[WM_ENDSESSION]);
}

TEST_F(MonitorWnd, ClosesWhenTheSessionEnds) {
    Send(WM_ENDSESSION, TRUE, 0);
    EXPECT_TRUE(::IsWindow(Wnd()));
    EXPECT_EQ(1, TakeCloses());
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_EQ(1, base.counts[WM_ENDSESSION]);
}

TEST_F(MonitorWnd, SetsAndRemovesTheHook) {
    monitor->SetHook(0);
    EXPECT_EQ(0, view.spyView.CountOfCode(kCodeAttach));
    monitor->SetHook(7);
    HHOOK hhook = GetDesktopSharedData().hhook;
    EXPECT_NE(nullptr, hhook);
    PumpAll();
    EXPECT_TRUE(AgentListView().IsAttached());
    monitor->SetHook(1);
    EXPECT_EQ(hhook, GetDesktopSharedData().hhook);
    monitor->SetHook(0);
    EXPECT_EQ(nullptr, GetDesktopSharedData().hhook);
    EXPECT_FALSE(AgentListView().IsAttached());
    EXPECT_FALSE(AgentView().IsAttached());
}

// Captures

TEST_F(MonitorWnd, GivesACaptureToTheStore) {
    IconRecord records[2] = {RecordOf(0, L"a", {1, 2}), RecordOf(1, L"b", {3, 4})};
    COPYDATASTRUCT data{2, sizeof(records), records};
    Send(WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    auto stored = ReadStoredSnapshots();
    ASSERT_EQ(1u, stored.size());
    const std::vector<BYTE>& bytes = stored.begin()->second;
    ASSERT_EQ(kMd5Size + sizeof(records), bytes.size());
    EXPECT_EQ(0, std::memcmp(&bytes[kMd5Size], records, sizeof(records)));
    EXPECT_EQ(1, base.counts[WM_COPYDATA]);
}

TEST_F(MonitorWnd, TakesTheLargestCaptureThereIs) {
    std::vector<IconRecord> records(kMaxCapturedIcons, RecordOf(0, L"a", {1, 2}));
    DWORD cb = static_cast<DWORD>(records.size() * sizeof(IconRecord));
    SendCopy(records.size(), cb, records.data());
    auto stored = ReadStoredSnapshots();
    ASSERT_EQ(1u, stored.size());
    EXPECT_EQ(23992u, stored.begin()->second.size());
}

TEST_F(MonitorWnd, TellsTheOutcomeOfACaptureThatTheUserAskedFor) {
    IconRecord record = RecordOf(0, L"a", {1, 2});
    SendCopy(1, 24, &record);
    EXPECT_TRUE(frontEnd.outcomes.empty());
    monitor->SetSnapshotAnnounce(1);
    SendCopy(1, 24, &record);
    EXPECT_EQ(0, monitor->GetSnapshotAnnounce());
    record.pt.x = 2;
    monitor->SetSnapshotAnnounce(1);
    SendCopy(1, 24, &record);
    SendCopy(1, 24, &record);
    EXPECT_EQ((std::vector<std::wstring>{L"No changes to the icons have been detected.",
                                         L"Icons stored"}),
              frontEnd.outcomes);
}

TEST_F(MonitorWnd, StoresNothingOfACaptureWithoutData) {
    monitor->SetSnapshotAnnounce(1);
    monitor->OnWndMessage(WM_COPYDATA, 0, 0);
    SendCopy(0, 0, nullptr);
    EXPECT_TRUE(ReadStoredSnapshots().empty());
    EXPECT_TRUE(frontEnd.outcomes.empty());
    EXPECT_EQ(1, monitor->GetSnapshotAnnounce()); // the next capture is the one to tell of
    EXPECT_EQ(2, base.counts[WM_COPYDATA]);
}

TEST_F(MonitorWnd, DropsACaptureWhoseCountItsDataDoNotHold) {
    monitor->SetSnapshotAnnounce(1);
    IconRecord record = RecordOf(0, L"a", {1, 2});
    SendCopy(1, 24, nullptr);
    SendCopy(1, 0, &record);
    SendCopy(1, 23, &record);
    SendCopy(2, 47, &record);
    SendCopy(1000000, 24, &record);
    SendCopy(0xFFFFFFFF, 24, &record);
    SendCopy(1ull << 32, 24, &record);
    SendCopy((1ull << 32) + 1, 24, &record);
    SendCopy((1ull << 61) + 1, 24, &record);
    SendCopy(~0ull, 0xFFFFFFFF, nullptr);
    EXPECT_TRUE(ReadStoredSnapshots().empty());
    EXPECT_TRUE(frontEnd.outcomes.empty());
    EXPECT_EQ(1, monitor->GetSnapshotAnnounce());
    EXPECT_EQ(10, base.counts[WM_COPYDATA]);
}

// Timers and session changes

TEST_F(MonitorWnd, DebounceTimerGoesOnAfterItFired) {
    monitor->ScheduleCapture();
    Send(WM_TIMER, kDebounceTimer, 0);
    EXPECT_EQ(1, CapturesAskedFor());
    EXPECT_TRUE(IsCapturePending(Wnd())); // it goes on
    Send(WM_TIMER, kDebounceTimer, 0);
    EXPECT_EQ(2, CapturesAskedFor());
    EXPECT_EQ(0, view.spyListView.GetCode(kCodeCapture)[0].lParam);
    EXPECT_EQ(2, base.counts[WM_TIMER]);
}

TEST_F(MonitorWnd, PostsTheCodesThatTheHookIsToSee) {
    Send(WM_TIMER, kDebounceTimer, 0);
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeCapture));
    EXPECT_EQ(1, CapturesAskedFor());
}

TEST_F(MonitorWnd, EndsTheSuppressTimerWithItsFirstTick) {
    monitor->SuppressCaptures();
    EXPECT_TRUE(IsSuppressing(Wnd()));
    Send(WM_TIMER, kSuppressTimer, 0);
    EXPECT_FALSE(IsSuppressing(Wnd()));
    EXPECT_EQ(0, CapturesAskedFor());
    EXPECT_FALSE(::KillTimer(Wnd(), kSuppressTimer));
    EXPECT_EQ(1, base.counts[WM_TIMER]);
}

TEST_F(MonitorWnd, IgnoresOtherTimers) {
    monitor->SuppressCaptures();
    for (WPARAM wId : {0ull, 1ull, 9ull, 12ull, (1ull << 32) | 10, (1ull << 32) | 11})
        Send(WM_TIMER, wId, 0);
    EXPECT_EQ(0, CapturesAskedFor());
    EXPECT_TRUE(IsSuppressing(Wnd()));
    EXPECT_EQ(6, base.counts[WM_TIMER]);
}

TEST_F(MonitorWnd, SchedulesWithTimer10OnItsWindow) {
    EXPECT_FALSE(IsCapturePending(Wnd()));
    monitor->ScheduleCapture();
    monitor->ScheduleCapture();
    EXPECT_TRUE(IsCapturePending(Wnd()));
    EXPECT_TRUE(::KillTimer(Wnd(), kDebounceTimer)); // there is one, and only one
    EXPECT_FALSE(::KillTimer(Wnd(), kDebounceTimer));
}

TEST_F(MonitorWnd, SuppressesScheduledCaptures) {
    monitor->ScheduleCapture();
    monitor->SuppressCaptures();
    EXPECT_FALSE(IsCapturePending(Wnd()));
    EXPECT_FALSE(::KillTimer(Wnd(), kDebounceTimer));
    SendCode(374, 0);
    monitor->ScheduleCapture();
    EXPECT_FALSE(IsCapturePending(Wnd()));
    EXPECT_TRUE(IsSuppressing(Wnd()));
}

TEST_F(MonitorWnd, SuppressesForASecondAndSchedulesAfterIt) {
    DWORD dwStart = ::GetTickCount();
    monitor->SuppressCaptures();
    ASSERT_TRUE(PumpUntil([&] { return !IsSuppressing(Wnd()); }));
    EXPECT_GE(::GetTickCount() - dwStart, 900u);
    EXPECT_FALSE(IsCapturePending(Wnd())); // waits for the next event
    SendCode(374, 0);
    EXPECT_TRUE(IsCapturePending(Wnd()));
}

TEST_F(MonitorWnd, SuppressingAgainStartsTheSecondAnew) {
    monitor->SuppressCaptures();
    monitor->SuppressCaptures();
    EXPECT_TRUE(::KillTimer(Wnd(), kSuppressTimer));
    EXPECT_FALSE(::KillTimer(Wnd(), kSuppressTimer));
}

class MonitorSession : public MonitorWnd, public testing::WithParamInterface<int> {};

TEST_P(MonitorSession, ChangeAsksForACaptureWhereTheScreenMayHaveChanged) {
    Send(kWtsSessionChange, static_cast<WPARAM>(GetParam()), 1);
    int nCode = GetParam();
    EXPECT_EQ(nCode == 1 || nCode == 3 || nCode == 7 || nCode == 8, CapturesAskedFor());
    EXPECT_FALSE(IsCapturePending(Wnd())); // no debounce
    EXPECT_EQ(1, base.counts[kWtsSessionChange]);
}

INSTANTIATE_TEST_SUITE_P(Codes, MonitorSession, testing::Range(0, 11));

TEST_F(MonitorWnd, AsksForTwoCapturesWhenTheSessionIsLockedAndUnlocked) {
    Send(kWtsSessionChange, WTS_SESSION_LOCK, 1);
    Send(kWtsSessionChange, WTS_SESSION_UNLOCK, 1);
    EXPECT_EQ(2, CapturesAskedFor());
}

TEST_F(MonitorWnd, HandsEverythingElseToTheBase) {
    constexpr UINT kOther = WM_APP + 9;
    Send(kOther, 371, 1);
    EXPECT_EQ(1, base.counts[kOther]);
    EXPECT_EQ(0, Send(WM_GETICON, 0, 0));
}

// The object's end

TEST_F(MonitorWnd, TakesTimersAndNotificationWithIt) {
    monitor->RegisterNotification();
    NotifyFuncs::pfnDeregister = &WatchedDeregister;
    monitor->SuppressCaptures();
    Send(WM_TIMER, kSuppressTimer, 0);
    monitor->ScheduleCapture();
    monitor->RemoveWndHook(&base);
    HWND hwnd = Wnd();
    monitor.reset(); // its window stays, without an object
    EXPECT_EQ(1u, calls.ended.size());
    EXPECT_FALSE(::KillTimer(hwnd, kDebounceTimer));
    EXPECT_FALSE(::KillTimer(hwnd, kSuppressTimer));
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"CSWND"));
    ::DestroyWindow(hwnd);
    ::UnregisterClassW(kMonitorClass, GetLibraryInstance());
}

TEST_F(MonitorWnd, TakesTheSuppressTimerWithIt) {
    monitor->SuppressCaptures();
    monitor->RemoveWndHook(&base);
    HWND hwnd = Wnd();
    monitor.reset();
    EXPECT_FALSE(::KillTimer(hwnd, kSuppressTimer));
    ::DestroyWindow(hwnd);
    ::UnregisterClassW(kMonitorClass, GetLibraryInstance());
}

} // namespace
