#include "icons/icons_test_support.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshot_test_support.h"
#include "runtime/base/current_product.h"
#include "runtime/base/ownership.h"
#include "shell/subclass/shell_subclass.h"

#include <windows.h>
#include <wincrypt.h>
#include <atomic>
#include <cstring>
#include <new>
#include <set>
#include <utility>

extern "C" FARPROC __imp_SetTimer, __imp_KillTimer;

namespace {
constexpr const wchar_t* kSpyProp = L"TestSpy";
constexpr const wchar_t* kSpiedProcProp = L"TestSpiedProc";
constexpr UINT kRunMsg = WM_APP + 77; // lParam: a std::function<void()>*

std::atomic<int> nSpyOrder{0};
} // namespace

UINT GetTestCompanyMsg() { return ::RegisterWindowMessageW(L"OrvantaMessage"); }

UINT GetTestTaskbarCreated() { return ::RegisterWindowMessageW(L"TaskbarCreated"); }

void PumpAll(int* pbQuit) {
    if (pbQuit) *pbQuit = 0;
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            if (pbQuit) *pbQuit = 1;
            continue;
        }
        ::DispatchMessageW(&msg);
    }
}

ProcSpy::ProcSpy(HWND hwndTarget, Handler fnNew) : handler(std::move(fnNew)), hwnd(hwndTarget) {
    ::SetPropW(hwnd, kSpyProp, this);
    LONG_PTR nOld = ::GetWindowLongPtrW(hwnd, GWLP_WNDPROC);
    ::SetPropW(hwnd, kSpiedProcProp, reinterpret_cast<HANDLE>(nOld));
    ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ProcSpy::Proc));
}

ProcSpy::~ProcSpy() {
    // The procedure stays: somebody may stand above it. Without the property it only forwards.
    if (::GetPropW(hwnd, kSpyProp) == this) ::RemovePropW(hwnd, kSpyProp);
}

LRESULT CALLBACK ProcSpy::Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto pfnOld = reinterpret_cast<WNDPROC>(::GetPropW(hwnd, kSpiedProcProp));
    if (auto* pSpy = static_cast<ProcSpy*>(::GetPropW(hwnd, kSpyProp))) {
        {
            std::lock_guard lock(pSpy->mutex);
            pSpy->messages.push_back({uMsg, wParam, lParam, ::GetCurrentThreadId(), ++nSpyOrder});
        }
        LRESULT lResult = 0;
        if (pSpy->handler && pSpy->handler(uMsg, wParam, lParam, &lResult)) return lResult;
    }
    if (uMsg == WM_NCDESTROY) {
        ::RemovePropW(hwnd, kSpyProp);
        ::RemovePropW(hwnd, kSpiedProcProp);
    }
    return ::CallWindowProcW(pfnOld, hwnd, uMsg, wParam, lParam);
}

std::vector<SeenMessage> ProcSpy::Get(UINT uMsg) const {
    std::lock_guard lock(mutex);
    std::vector<SeenMessage> found;
    for (const SeenMessage& message : messages)
        if (message.uMsg == uMsg) found.push_back(message);
    return found;
}

std::vector<SeenMessage> ProcSpy::GetCode(WPARAM wCode) const {
    std::vector<SeenMessage> found;
    for (const SeenMessage& message : Get(GetTestCompanyMsg()))
        if (message.wParam == wCode) found.push_back(message);
    return found;
}

int ProcSpy::CountOfAll() const {
    std::lock_guard lock(mutex);
    return static_cast<int>(messages.size());
}

void ProcSpy::Clear() {
    std::lock_guard lock(mutex);
    messages.clear();
}

ClassWindow::ClassWindow(const wchar_t* pszClass, HWND hwndParent, DWORD dwStyle)
    : hwnd(::CreateWindowExW(0, pszClass, L"", dwStyle, 0, 0, 400, 400, hwndParent, nullptr,
                             ::GetModuleHandleW(nullptr), nullptr)) {}

bool IsClassThere(const wchar_t* pszName) {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    return ::GetClassInfoExW(GetLibraryInstance(), pszName, &wc) != 0;
}

void ExpectPlainClass(const wchar_t* pszName) {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    ASSERT_TRUE(::GetClassInfoExW(GetLibraryInstance(), pszName, &wc));
    EXPECT_EQ(0u, wc.style);
    EXPECT_EQ(&CSWnd::WndProc, wc.lpfnWndProc);
    EXPECT_EQ(0, wc.cbClsExtra);
    EXPECT_EQ(0, wc.cbWndExtra);
    EXPECT_EQ(nullptr, wc.hIcon);
    EXPECT_EQ(nullptr, wc.hCursor);
    EXPECT_EQ(nullptr, wc.hbrBackground);
    EXPECT_EQ(nullptr, wc.lpszMenuName);
    EXPECT_EQ(nullptr, wc.hIconSm);
}

bool operator==(const TestIcon& a, const TestIcon& b) {
    return a.strText == b.strText && a.pt.x == b.pt.x && a.pt.y == b.pt.y;
}

HWND CreateTestListView(HWND hwndParent, DWORD dwExtraStyle) {
    INITCOMMONCONTROLSEX icc{sizeof(icc), ICC_LISTVIEW_CLASSES};
    ::InitCommonControlsEx(&icc);
    return ::CreateWindowExW(
        0, WC_LISTVIEWW, L"",
        WS_CHILD | LVS_ICON | LVS_EDITLABELS | LVS_SHOWSELALWAYS | dwExtraStyle, 0, 0, 400, 400,
        hwndParent, nullptr, ::GetModuleHandleW(nullptr), nullptr);
}

void AddIcon(HWND hwndListView, std::wstring_view strText, POINT pt) {
    std::wstring strCopy(strText);
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = static_cast<int>(::SendMessageW(hwndListView, LVM_GETITEMCOUNT, 0, 0));
    item.pszText = strCopy.data();
    LRESULT nItem =
        ::SendMessageW(hwndListView, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    ::SendMessageW(hwndListView, LVM_SETITEMPOSITION32, static_cast<WPARAM>(nItem),
                   reinterpret_cast<LPARAM>(&pt));
}

void SetIcons(HWND hwndListView, const std::vector<TestIcon>& icons) {
    ::SendMessageW(hwndListView, LVM_DELETEALLITEMS, 0, 0);
    for (const TestIcon& icon : icons) AddIcon(hwndListView, icon.strText, icon.pt);
}

POINT PosOfIcon(HWND hwndListView, int nIcon) {
    POINT pt{-1, -1};
    ::SendMessageW(hwndListView, LVM_GETITEMPOSITION, static_cast<WPARAM>(nIcon),
                   reinterpret_cast<LPARAM>(&pt));
    return pt;
}

unsigned long long KeyOf(std::wstring_view strText) {
    static std::map<std::wstring, unsigned long long, std::less<>> known;
    if (auto it = known.find(strText); it != known.end()) return it->second;
    static HCRYPTPROV hProv = 0; // slow to get
    if (!hProv)
        ::CryptAcquireContextW(&hProv, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT);
    HCRYPTHASH hHash = 0;
    BYTE digest[kMd5Size] = {};
    DWORD cb = sizeof(digest);
    ::CryptCreateHash(hProv, CALG_MD5, 0, 0, &hHash);
    ::CryptHashData(hHash, reinterpret_cast<const BYTE*>(strText.data()),
                    static_cast<DWORD>(strText.size() * sizeof(wchar_t)), 0);
    EXPECT_TRUE(::CryptGetHashParam(hHash, HP_HASHVAL, digest, &cb, 0));
    ::CryptDestroyHash(hHash);
    unsigned long long qwKey = 0;
    for (int i = 7; i >= 0; --i) qwKey = qwKey << 8 | digest[i];
    return known[std::wstring(strText)] = qwKey;
}

IconRecord RecordOf(unsigned nIndex, std::wstring_view strText, POINT pt) {
    return {nIndex, pt, static_cast<unsigned>(strText.size()), KeyOf(strText)};
}

bool SameRecord(const IconRecord& a, const IconRecord& b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

CaptureReceiver::CaptureReceiver()
    : spy(wnd, [this](UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT*) {
          if (uMsg != WM_COPYDATA) return 0;
          auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
          auto* pFirst = static_cast<const IconRecord*>(pData->lpData);
          captures.push_back({wParam,
                              pData->dwData,
                              pData->cbData,
                              {pFirst, pFirst + pData->cbData / sizeof(IconRecord)}});
          return 0;
      }) {}

std::map<std::wstring, std::vector<BYTE>> ReadStoredSnapshots() {
    std::map<std::wstring, std::vector<BYTE>> found;
    HKEY hkey = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, kStoreKey, 0, KEY_READ, &hkey) != ERROR_SUCCESS)
        return found;
    ScopeExit close([&] { ::RegCloseKey(hkey); });
    for (DWORD i = 0;; ++i) {
        wchar_t szName[300];
        DWORD cchName = 300, cb = 0, dwType = 0;
        if (::RegEnumValueW(hkey, i, szName, &cchName, nullptr, &dwType, nullptr, &cb)) break;
        if (cchName != 16) continue;
        std::vector<BYTE> bytes(cb);
        ::RegQueryValueExW(hkey, szName, nullptr, &dwType, bytes.data(), &cb);
        found[szName] = bytes;
    }
    return found;
}

void DeleteStoredSnapshots() { ::RegDeleteKeyW(HKEY_CURRENT_USER, kStoreKey); }

DesktopThread::DesktopThread(std::vector<TestIcon> initialIcons)
    : icons(std::move(initialIcons)), hReady(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      thread([this] { Main(); }) {
    ::WaitForSingleObject(hReady, kTestDeadlineMs);
    ::CloseHandle(hReady);
}

void DesktopThread::Main() {
    dwThread = ::GetCurrentThreadId();
    TestClass classProgman(L"Progman"), classView(L"SHELLDLL_DefView");
    hwndProgman = ::CreateWindowExW(0, L"Progman", L"", WS_POPUP, 0, 0, 400, 400, nullptr, nullptr,
                                    ::GetModuleHandleW(nullptr), nullptr);
    hwndView = ::CreateWindowExW(0, L"SHELLDLL_DefView", L"", WS_CHILD, 0, 0, 400, 400, hwndProgman,
                                 nullptr, ::GetModuleHandleW(nullptr), nullptr);
    hwndListView = CreateTestListView(hwndView);
    SetIcons(hwndListView, icons);
    pspyListView = std::make_unique<ProcSpy>(hwndListView);
    pspyView = std::make_unique<ProcSpy>(hwndView, [](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg == kRunMsg) (*reinterpret_cast<std::function<void()>*>(lParam))();
        return 0;
    });
    ::SetEvent(hReady);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    ::DestroyWindow(hwndProgman);
}

void DesktopThread::End() {
    if (!thread.joinable()) return;
    ::PostThreadMessageW(dwThread, WM_QUIT, 0, 0);
    thread.join();
}

void DesktopThread::Run(std::function<void()> fn) {
    ::SendMessageW(hwndView, kRunMsg, 0, reinterpret_cast<LPARAM>(&fn));
}

void FakeFrontEnd::OnMonitorStart() {
    calls.push_back("monitor start");
    if (fnMonitorStart) fnMonitorStart();
}

void FakeFrontEnd::OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) {
    calls.push_back(bAnnounce ? "round start, announced" : "round start");
    if (fnRoundStart) fnRoundStart(monitor);
}

void FakeFrontEnd::OnMenuRequest(MyMonitor_Wnd& monitor) {
    calls.push_back("menu");
    if (fnMenu) fnMenu(monitor);
}

void FakeFrontEnd::OnCaptureOutcome(const wchar_t* pszText) {
    calls.push_back("outcome");
    outcomes.push_back(pszText);
    if (fnOutcome) fnOutcome();
}

void FakeFrontEnd::OnMonitorClose() {
    calls.push_back("monitor close");
    if (fnMonitorClose) fnMonitorClose();
}

void FakeFrontEnd::OnRoundEnd() {
    calls.push_back("round end");
    if (fnRoundEnd) fnRoundEnd();
}

void FakeFrontEnd::OnIconsPutBack(const wchar_t* pszText) {
    calls.push_back("put back");
    putBacks.push_back(pszText);
}

// Timers of windows

namespace {
using SetTimerFunc = UINT_PTR WINAPI(HWND, UINT_PTR, UINT, TIMERPROC);
using KillTimerFunc = BOOL WINAPI(HWND, UINT_PTR);
SetTimerFunc* pfnSetTimer = nullptr;
KillTimerFunc* pfnKillTimer = nullptr;
std::mutex timersMutex; // tests ask from other threads, too
std::set<std::pair<HWND, UINT_PTR>> runningTimers;

UINT_PTR WINAPI NoteStart(HWND hwnd, UINT_PTR uId, UINT uPeriodMs, TIMERPROC pfn) {
    UINT_PTR uTimer = pfnSetTimer(hwnd, uId, uPeriodMs, pfn);
    std::lock_guard lock(timersMutex);
    if (uTimer && hwnd) runningTimers.insert({hwnd, uId});
    return uTimer;
}

BOOL WINAPI NoteEnd(HWND hwnd, UINT_PTR uId) {
    std::lock_guard lock(timersMutex);
    runningTimers.erase({hwnd, uId});
    return pfnKillTimer(hwnd, uId);
}
} // namespace

RunningTimers::RunningTimers()
    : setTimer(__imp_SetTimer, &NoteStart), killTimer(__imp_KillTimer, &NoteEnd) {
    pfnSetTimer = setTimer.Original<SetTimerFunc>();
    pfnKillTimer = killTimer.Original<KillTimerFunc>();
    runningTimers.clear();
}

bool RunningTimers::IsRunning(HWND hwnd, UINT_PTR uId) {
    std::lock_guard lock(timersMutex);
    return runningTimers.contains({hwnd, uId});
}

// The state that the engine keeps for the process

void PassThroughHook(WPARAM wCode, LPARAM lParam) {
    MSG msg{};
    msg.message = GetTestCompanyMsg();
    msg.wParam = wCode;
    msg.lParam = lParam;
    DesktopHookProc(HC_ACTION, PM_REMOVE, reinterpret_cast<LPARAM>(&msg));
}

namespace {
struct AgentObjects {
    MySysLVWnd* pListView;
    MyShellWnd* pView;
};

/// Has the agent attach itself to two windows, and reads the objects off them.
AgentObjects FindAgentObjects() {
    DesktopSharedData saved = GetDesktopSharedData();
    TestView view;
    GetDesktopSharedData() = {GetTestCompanyMsg(), view.hwndListView, nullptr, view.wndView,
                              nullptr};
    PassThroughHook(kCodeAttach, 1);
    auto objectOf = [](HWND hwnd) { return static_cast<CSWnd*>(::GetPropW(hwnd, L"CSWND")); };
    AgentObjects found{static_cast<MySysLVWnd*>(objectOf(view.hwndListView)),
                       static_cast<MyShellWnd*>(objectOf(view.wndView))};
    PassThroughHook(kCodeAttach, 0);
    GetDesktopSharedData() = saved;
    return found;
}

const AgentObjects& GetAgentObjects() {
    static const AgentObjects objects = FindAgentObjects();
    return objects;
}

// The agent's objects remember from test to test by which route they were attached.
template <class Wnd>
void MakeNew(Wnd& wnd) {
    wnd.~Wnd();
    new (&wnd) Wnd;
}

void ResetEngine() {
    ShellSubclass::ReInitialize();
    MakeNew(AgentListView());
    MakeNew(AgentView());
    ClaimDesktopSharedData();
    GetDesktopSharedData() = {};
    SetRestartFlag(true);
    DeleteStoredSnapshots();
    PumpAll();
}
} // namespace

MySysLVWnd& AgentListView() { return *GetAgentObjects().pListView; }

MyShellWnd& AgentView() { return *GetAgentObjects().pView; }

void EngineTest::SetUp() { ResetEngine(); }

void EngineTest::TearDown() {
    if (GetDesktopSharedData().hhook) ::UnhookWindowsHookEx(GetDesktopSharedData().hhook);
    ResetEngine();
}

void EngineTest::Share(const TestView& view, HWND hwndMonitor) {
    GetDesktopSharedData().nCompanyMsg = GetTestCompanyMsg();
    GetDesktopSharedData().hwndListView = view.hwndListView;
    GetDesktopSharedData().hwndView = view.wndView;
    GetDesktopSharedData().hwndMonitor = hwndMonitor;
}
