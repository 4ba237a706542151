#include "app/fake_windows.h"
#include "app/launch/elevate.h"
#include "app/shell_start_recorder.h"
#include "app/stored_home.h"
#include "runtime/base/digest.h"
#include "support/launch_reports.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/this_windows.h"
#include "support/window_thread.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_FindWindowW;
extern "C" FARPROC __imp_GetTokenInformation;
extern "C" FARPROC __imp_SendMessageW;
extern "C" FARPROC __imp_SetWindowsHookExW;
extern "C" FARPROC __imp_UnhookWindowsHookEx;

namespace {
using std::wstring;

HANDLE SomeHandle() { return reinterpret_cast<HANDLE>(static_cast<INT_PTR>(0x1234)); }

/// The shell's window, on a thread of its own in this process.
class FakeShell {
  public:
    FakeShell() {
        thread.Run([this] {
            WNDCLASSW wc{};
            wc.lpfnWndProc = ::DefWindowProcW;
            wc.hInstance = ::GetModuleHandleW(nullptr);
            wc.lpszClassName = L"Progman";
            ::RegisterClassW(&wc);
            hwnd = ::CreateWindowExW(WS_EX_TOPMOST, wc.lpszClassName, L"", WS_POPUP, 0, 0, 9, 9,
                                     nullptr, nullptr, wc.hInstance, nullptr);
        });
        EXPECT_EQ(hwnd, ::FindWindowW(L"Progman", nullptr));
    }
    ~FakeShell() {
        thread.Run([this] { ::DestroyWindow(hwnd); });
    }
    HWND Get() const { return hwnd; }
    DWORD Thread() const { return thread.GetId(); }

  private:
    WindowThread thread;
    HWND hwnd = nullptr;
};

int IsSectionClear() {
    const auto* p = reinterpret_cast<const unsigned char*>(&handOverData);
    return std::all_of(p, p + sizeof(handOverData), [](unsigned char b) { return b == 0; });
}

BOOL bTokenElevated = FALSE;
BOOL WINAPI TellElevation(HANDLE, TOKEN_INFORMATION_CLASS, void* p, DWORD, DWORD* pcb) {
    *static_cast<DWORD*>(p) = bTokenElevated;
    *pcb = sizeof(DWORD);
    return TRUE;
}
class FakeElevation {
  public:
    explicit FakeElevation(BOOL bElevated) : replaced(__imp_GetTokenInformation, &TellElevation) {
        bTokenElevated = bElevated;
    }

  private:
    ReplaceImport replaced;
};

class Elevate : public testing::Test {
  protected:
    ~Elevate() override { EXPECT_TRUE(IsSectionClear()); }
    FakeShell fake;
    ShellStartRecorder shell;
    DWORD dwError = 99;
    HANDLE hProcess = &dwError;
};

TEST_F(Elevate, MyShellExecAsksTheShellAsItIs) {
    shell.hProcess = SomeHandle();
    EXPECT_EQ(1, MyShellExec(fake.Get(), L"v", L"f", L"p", L"", &hProcess, &dwError));
    EXPECT_EQ(SomeHandle(), hProcess);
    EXPECT_EQ(0u, dwError);
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(64u, call.nMask);
    EXPECT_EQ(fake.Get(), call.hwnd);
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(L"f", call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
    EXPECT_EQ(::GetCurrentThreadId(), call.dwThread);
    EXPECT_EQ(1, MyShellExec(nullptr, nullptr, L"f", nullptr, nullptr, nullptr, nullptr));
    call = shell.TakeOne();
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(nullptr, call.hwnd);
    EXPECT_EQ(nullptr, call.verb);
}

TEST_F(Elevate, MyShellExecTellsTheError) {
    shell.bSucceed = FALSE;
    shell.dwError = ERROR_CANCELLED;
    shell.hProcess = SomeHandle();
    EXPECT_EQ(0, MyShellExec(nullptr, nullptr, L"f", nullptr, nullptr, &hProcess, &dwError));
    EXPECT_EQ(static_cast<DWORD>(ERROR_CANCELLED), dwError);
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_EQ(0, MyShellExec(nullptr, nullptr, L"f", nullptr, nullptr, nullptr, nullptr));
}

struct WayCase {
    const char* pszName;
    DWORD dwMajor; // of Windows
    BOOL bAdmin, bElevated;
    int bForce;
    const wchar_t* pszNonElevatedVerb;
    bool bNonElevatedHandedOver;
    const wchar_t* pszElevatedVerb;
    bool bElevatedHandedOver;
};
class ElevateWay : public Elevate, public testing::WithParamInterface<WayCase> {};

TEST_P(ElevateWay, DependsOnSystemUserAndForce) {
    const WayCase& row = GetParam();
    FakeWindows windows(row.dwMajor, 1);
    FakeAdmin admin(row.bAdmin);
    FakeElevation elevation(row.bElevated);
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", L"p", L"d", nullptr, &dwError, row.bForce));
    EXPECT_EQ(0u, dwError);
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(row.pszNonElevatedVerb, call.verb);
    EXPECT_EQ(row.bNonElevatedHandedOver ? fake.Thread() : ::GetCurrentThreadId(), call.dwThread);
    EXPECT_EQ(row.bNonElevatedHandedOver ? fake.Get() : nullptr, call.hwnd);
    EXPECT_EQ(1, RunElevated(nullptr, L"f", L"p", L"d", nullptr, &dwError, row.bForce));
    EXPECT_EQ(0u, dwError);
    call = shell.TakeOne();
    EXPECT_EQ(row.pszElevatedVerb, call.verb);
    EXPECT_EQ(row.bElevatedHandedOver ? fake.Thread() : ::GetCurrentThreadId(), call.dwThread);
    EXPECT_EQ(fake.Get(), call.hwnd); // no window: Progman, in every way
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"d", call.directory);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ElevateWay,
    testing::Values(
        WayCase{"XpUser", 5, FALSE, FALSE, 0, nullptr, false, L"runas", false},
        WayCase{"XpUserForced", 5, FALSE, FALSE, 1, nullptr, true, L"runas", false},
        WayCase{"XpAdmin", 5, TRUE, FALSE, 0, nullptr, false, nullptr, false},
        WayCase{"XpAdminForced", 5, TRUE, FALSE, 1, nullptr, true, L"runas", true},
        WayCase{"XpTokenThatSaysElevated", 5, TRUE, TRUE, 0, nullptr, false, nullptr, false},
        WayCase{"Vista", 6, FALSE, FALSE, 0, nullptr, false, L"runas", false},
        WayCase{"VistaForced", 6, FALSE, FALSE, 1, nullptr, true, L"runas", true},
        WayCase{"VistaElevated", 6, TRUE, TRUE, 0, nullptr, true, L"runas", false},
        WayCase{"VistaElevatedForced", 6, TRUE, TRUE, 1, nullptr, true, L"runas", true}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(Elevate, XpThatCannotTellCountsAsAdministrator) {
    FakeWindows windows(5, 1);
    HideFunctions hidden({"IsUserAnAdmin"});
    RunElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(nullptr, shell.TakeOne().verb);
}

TEST_F(Elevate, OwnerThatIsGivenGoesAlong) {
    TestWindow window;
    for (int bForce : {0, 1}) {
        RunElevated(window, L"f", nullptr, nullptr, nullptr, nullptr, bForce);
        EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
    }
    RunNonElevated(window, L"f", nullptr, nullptr, nullptr, nullptr, 1);
    EXPECT_EQ(window.Get(), shell.TakeOne().hwnd);
}

TEST_F(Elevate, SatellitesOnlyHaveTheirPathFound) {
    StoredHome home; // is not where they lie
    wstring strPath = ProgramFolder() + L"x.exe";
    EXPECT_EQ(1, RunSatelliteFileNonElevated(nullptr, L"x.exe", L"p", L"d", nullptr, &dwError, 1));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(strPath.c_str(), call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(L"d", call.directory);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(fake.Thread(), call.dwThread);
    EXPECT_EQ(1, RunSatelliteFileElevated(nullptr, L"x.exe", L"p", L"d", nullptr, &dwError, 0));
    call = shell.TakeOne();
    EXPECT_EQ(strPath.c_str(), call.file);
    EXPECT_EQ(ElevatingVerb(), call.verb);
    wstring strLong(MAX_PATH, L'x');
    EXPECT_EQ(
        0, RunSatelliteFileElevated(nullptr, strLong.c_str(), L"p", L"d", &hProcess, &dwError, 0));
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_NE(0u, dwError);
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(Elevate, LocalFilesOnlyHaveTheirPathFound) {
    StoredHome home;
    wstring strPath = home.File(L"x.exe");
    EXPECT_EQ(1, RunLocalFileNonElevated(nullptr, L"x.exe", L"p", L"d", nullptr, &dwError, 1));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(strPath.c_str(), call.file);
    EXPECT_EQ(L"p", call.parameters);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(fake.Thread(), call.dwThread);
    EXPECT_EQ(1, RunLocalFileElevated(nullptr, L"x.exe", L"p", L"d", nullptr, &dwError, 0));
    call = shell.TakeOne();
    EXPECT_EQ(strPath.c_str(), call.file);
    EXPECT_EQ(ElevatingVerb(), call.verb);
    wstring strLong(MAX_PATH, L'x');
    for (auto* pfn : {&RunLocalFileNonElevated, &RunLocalFileElevated}) {
        for (const wchar_t* psz : {strLong.c_str(), static_cast<const wchar_t*>(nullptr)}) {
            hProcess = &dwError;
            EXPECT_EQ(0, pfn(nullptr, psz, L"p", L"d", &hProcess, &dwError, 0));
            EXPECT_EQ(nullptr, hProcess);
        }
    }
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(Elevate, HandOverGivesWhatTheOtherSideGot) {
    shell.bSucceed = FALSE;
    shell.dwError = ERROR_CANCELLED;
    EXPECT_EQ(0, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_CANCELLED), dwError);
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_EQ(64u, shell.TakeOne().nMask);
    shell.bSucceed = TRUE;
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_EQ(0u, shell.TakeOne().nMask);
    // A handle of this process, as this process is the shell here.
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentProcess(), ::GetCurrentProcess(),
                      &shell.hProcess, 0, FALSE, DUPLICATE_SAME_ACCESS);
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_EQ(0u, dwError);
    EXPECT_EQ(::GetCurrentProcessId(), ::GetProcessId(hProcess));
    EXPECT_NE(shell.hProcess, hProcess);
    EXPECT_EQ(0u, ::GetProcessId(shell.hProcess)); // it was closed
    ::CloseHandle(hProcess);
}

TEST_F(Elevate, HandleThatIsNoProcessIsNotTaken) {
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    // The last two stand for the shell's process and thread, in whichever process they are looked
    // up.
    for (HANDLE h : {hEvent, SomeHandle(), ::GetCurrentProcess(), ::GetCurrentThread()}) {
        shell.hProcess = h;
        EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
        EXPECT_EQ(nullptr, hProcess);
    }
    EXPECT_TRUE(::SetEvent(hEvent)); // nor closed
    ::CloseHandle(hEvent);
}

TEST_F(Elevate, TextsOfAHandOverHaveTheirLimit) {
    wstring strFits(MAX_PATH - 1, L'x'), strLong(MAX_PATH, L'x');
    const wchar_t *pszFits = strFits.c_str(), *pszLong = strLong.c_str();
    EXPECT_EQ(1, RunNonElevated(nullptr, pszFits, pszFits, pszFits, nullptr, nullptr, 1));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(pszFits, call.file);
    EXPECT_EQ(pszFits, call.parameters);
    EXPECT_EQ(pszFits, call.directory);
    for (int n = 0; n < 3; ++n) {
        dwError = 0;
        EXPECT_EQ(0, RunNonElevated(nullptr, n == 0 ? pszLong : L"f", n == 1 ? pszLong : L"p",
                                    n == 2 ? pszLong : L"d", &hProcess, &dwError, 1));
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), dwError) << n;
        EXPECT_EQ(nullptr, hProcess);
        EXPECT_TRUE(IsSectionClear());
    }
    EXPECT_EQ(0, HandOver(nullptr, pszLong, L"f", L"p", L"d", nullptr, nullptr));
    EXPECT_TRUE(shell.calls.empty());
    EXPECT_EQ(1, HandOver(nullptr, pszFits, L"f", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(pszFits, shell.TakeOne().verb);
}

HWND WINAPI FindNothing(LPCWSTR, LPCWSTR) {
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}
HWND WINAPI FindGone(LPCWSTR, LPCWSTR) { return reinterpret_cast<HWND>(INT_PTR{0x7FFE}); }

TEST_F(Elevate, NobodyToHandOverToGivesZero) {
    EXPECT_EQ(1, CanRunNonElevated(0));
    EXPECT_EQ(1, CanRunNonElevated(1));
    {
        ReplaceImport replaced(__imp_FindWindowW, &FindNothing);
        EXPECT_EQ(0, CanRunNonElevated(0));
        EXPECT_EQ(0, CanRunNonElevated(1));
        EXPECT_EQ(0, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
        EXPECT_NE(0u, dwError);
        EXPECT_EQ(nullptr, hProcess);
    }
    ReplaceImport replaced(__imp_FindWindowW, &FindGone);
    EXPECT_EQ(0, RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_TRUE(shell.calls.empty());
}

HHOOK WINAPI NoHook(int, HOOKPROC, HINSTANCE, DWORD) {
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}
int nUnhooked = 0;
HHOOK hhookSeen = nullptr;
BOOL WINAPI CountUnhook(HHOOK hhook) {
    ++nUnhooked;
    hhookSeen = hhook;
    return TRUE;
}

TEST_F(Elevate, NoHookGivesZero) {
    ReplaceImport replaced(__imp_SetWindowsHookExW, &NoHook);
    EXPECT_EQ(0, RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, &dwError, 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY), dwError);
}

TEST_F(Elevate, HookGoesAfterEveryCall) {
    ReplaceImport replaced(__imp_UnhookWindowsHookEx, &CountUnhook);
    nUnhooked = 0;
    RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 1);
    EXPECT_EQ(1, nUnhooked);
    EXPECT_TRUE(replaced.Original<decltype(CountUnhook)>()(hhookSeen));
    RunNonElevated(nullptr, wstring(MAX_PATH, L'x').c_str(), nullptr, nullptr, nullptr, nullptr, 1);
    EXPECT_EQ(2, nUnhooked);
    EXPECT_TRUE(replaced.Original<decltype(CountUnhook)>()(hhookSeen));
}

TEST_F(Elevate, HookIsNotLookedUpInTheSection) {
    ReplaceImport replaced(__imp_UnhookWindowsHookEx, &CountUnhook);
    HHOOK hhookSet = nullptr;
    shell.fnDuring = [&](SHELLEXECUTEINFOW&) {
        hhookSet = std::exchange(handOverData.hhook, reinterpret_cast<HHOOK>(INT_PTR{0x77}));
    };
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 1));
    EXPECT_NE(nullptr, hhookSet);
    EXPECT_EQ(hhookSet, hhookSeen);
    EXPECT_TRUE(replaced.Original<decltype(CountUnhook)>()(hhookSeen));
}

// The other side, which may find anything in the section.

ReplaceImport* pReplacedSend = nullptr;
unsigned char* pChanged = nullptr; // by somebody else who maps the library
LRESULT WINAPI SendAfterAChange(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (pChanged) *pChanged ^= 1;
    return pReplacedSend->Original<decltype(SendAfterAChange)>()(hwnd, uMsg, wParam, lParam);
}

const HandOverData kNothing{};

class HandOverHook : public Elevate {
  protected:
    ~HandOverHook() override { handOverData = HandOverData{}; }
    void Fill() {
        handOverData = HandOverData{};
        handOverData.uMsg = WM_APP;
        wcscpy(handOverData.szFile, L"f");
    }
    void Call(int nCode = HC_ACTION, UINT uMsg = WM_APP) { CallWith(SealedMsg(uMsg), nCode); }
    /// With the digest of what is in the section now.
    CWPSTRUCT SealedMsg(UINT uMsg) {
        HandOverData request = handOverData;
        request.hhook = nullptr;
        request.uMsg = 0;
        request.nResult = 0;
        request.dwError = 0;
        request.hProcess = nullptr;
        unsigned char digest[16];
        CalcMD5(digest, &request, sizeof(request));
        CWPSTRUCT msg{0, 0, uMsg, window};
        memcpy(&msg.wParam, digest, 8);
        memcpy(&msg.lParam, digest + 8, 8);
        return msg;
    }
    void CallWith(CWPSTRUCT msg, int nCode = HC_ACTION) {
        HandOverHookProc(nCode, 0, reinterpret_cast<LPARAM>(&msg));
    }
    TestWindow window;
};

TEST_F(HandOverHook, ServesTheMessageOnce) {
    Fill();
    Call();
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(L"f", call.file);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(window.Get(), call.hwnd); // no owner: the window of the message
    EXPECT_EQ(1, handOverData.nResult);
    Call();
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(HandOverHook, LeavesAllOtherMessagesAlone) {
    Fill();
    Call(-1);
    Call(HC_ACTION, WM_APP + 1);
    Call(HC_ACTION, WM_NULL);
    EXPECT_TRUE(shell.calls.empty());
    handOverData.uMsg = 0;
    Call(HC_ACTION, 0);
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(HandOverHook, TextWithoutAnEndIsNotBelieved) {
    for (wchar_t* psz : {handOverData.szVerb, handOverData.szFile, handOverData.szParameters,
                         handOverData.szDirectory}) {
        Fill();
        std::fill(psz, psz + MAX_PATH, L'x');
        Call();
        EXPECT_TRUE(shell.calls.empty());
        EXPECT_EQ(0, handOverData.nResult);
        EXPECT_EQ(0u, handOverData.uMsg);
    }
}

struct ChangeCase {
    const char* pszName;
    void* p; // of what is asked for
};
struct RequestChangedUnderWay : HandOverHook, testing::WithParamInterface<ChangeCase> {};
TEST_P(RequestChangedUnderWay, IsNotServed) {
    // A byte, between the message's way and the look at the section.
    ReplaceImport replaced(__imp_SendMessageW, &SendAfterAChange);
    pReplacedSend = &replaced;
    pChanged = static_cast<unsigned char*>(GetParam().p);
    dwError = 99;
    EXPECT_EQ(0, HandOver(nullptr, L"v", L"f", L"p", L"d", &hProcess, &dwError));
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_TRUE(shell.calls.empty());
    pChanged = nullptr;
    EXPECT_EQ(1, HandOver(nullptr, L"v", L"f", L"p", L"d", nullptr, &dwError));
    EXPECT_EQ(L"f", shell.TakeOne().file);
}
INSTANTIATE_TEST_SUITE_P(Cases, RequestChangedUnderWay,
                         testing::Values(ChangeCase{"Owner", &handOverData.hwndOwner},
                                         ChangeCase{"HandleWanted", &handOverData.bWantHandle},
                                         ChangeCase{"Verb", handOverData.szVerb},
                                         ChangeCase{"File", handOverData.szFile},
                                         ChangeCase{"Parameters", handOverData.szParameters},
                                         ChangeCase{"EndOfTheParameters",
                                                    &handOverData.szParameters[MAX_PATH - 2]},
                                         ChangeCase{"Directory", &handOverData.szDirectory[10]}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(HandOverHook, RequestIsWipedWhenItIsTakenUp) {
    bool bWiped = false;
    shell.fnDuring = [&](SHELLEXECUTEINFOW&) {
        HandOverData rest = handOverData;
        rest.hhook = nullptr;
        bWiped = !memcmp(&rest, &kNothing, sizeof(rest));
    };
    EXPECT_EQ(1, HandOver(nullptr, L"v", L"f", L"p", L"d", &hProcess, &dwError));
    EXPECT_TRUE(bWiped);
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(L"v", call.verb);
    EXPECT_EQ(L"d", call.directory);
    Fill();
    CallWith({0, 0, WM_APP, window}); // one that is not served
    EXPECT_TRUE(IsSectionClear());
}

// A handle of the shell's that stands in the section when the answer comes back.

HANDLE hPlanted = nullptr;
LRESULT WINAPI SendAndPlant(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    LRESULT nResult = pReplacedSend->Original<decltype(SendAndPlant)>()(hwnd, uMsg, wParam, lParam);
    handOverData.hProcess = hPlanted;
    handOverData.nResult = 1;
    return nResult;
}
HANDLE OwnProcess() {
    HANDLE h = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentProcess(), ::GetCurrentProcess(), &h, 0,
                      FALSE, DUPLICATE_SAME_ACCESS);
    return h;
}
bool IsOwnProcess(HANDLE h) { return ::GetProcessId(h) == ::GetCurrentProcessId(); }

TEST_F(Elevate, HandleThatAnotherPutIntoTheSectionIsNotTouched) {
    ReplaceImport replaced(__imp_SendMessageW, &SendAndPlant);
    pReplacedSend = &replaced;
    hPlanted = OwnProcess();
    ASSERT_TRUE(IsOwnProcess(hPlanted));
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_EQ(nullptr, hProcess); // the shell had none
    EXPECT_TRUE(IsOwnProcess(hPlanted));
    shell.hProcess = OwnProcess();
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_TRUE(IsOwnProcess(hProcess));
    EXPECT_FALSE(IsOwnProcess(shell.hProcess)); // that was the one
    EXPECT_TRUE(IsOwnProcess(hPlanted));
    ::CloseHandle(hProcess);
    ::CloseHandle(hPlanted);
}

TEST_F(Elevate, CallFromTheShellsOwnThreadGetsTheHandle) {
    HWND hwnd = ::CreateWindowExW(WS_EX_TOPMOST, L"Progman", L"", WS_POPUP, 0, 0, 9, 9, nullptr,
                                  nullptr, ::GetModuleHandleW(nullptr), nullptr);
    ASSERT_EQ(hwnd, ::FindWindowW(L"Progman", nullptr));
    shell.hProcess = OwnProcess();
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_EQ(::GetCurrentThreadId(), shell.TakeOne().dwThread);
    EXPECT_TRUE(IsOwnProcess(hProcess));
    EXPECT_FALSE(IsOwnProcess(shell.hProcess));
    ::CloseHandle(hProcess);
    ::DestroyWindow(hwnd);
}

TEST_F(HandOverHook, MessageWithoutTheDigestIsNotServed) {
    for (int n = -1; n < 128; ++n) { // nothing, or one bit that differs
        Fill();
        CWPSTRUCT msg = SealedMsg(WM_APP);
        if (n < 0)
            msg.wParam = msg.lParam = 0;
        else if (n < 64)
            msg.wParam ^= WPARAM{1} << n;
        else
            msg.lParam ^= static_cast<LPARAM>(WPARAM{1} << (n - 64));
        CallWith(msg);
        EXPECT_TRUE(shell.calls.empty()) << n;
        EXPECT_EQ(0, handOverData.nResult);
    }
}

TEST_F(HandOverHook, ChangesDuringTheCallDoNotReachIt) {
    Fill();
    wstring strSeen;
    shell.fnDuring = [&](SHELLEXECUTEINFOW& sei) {
        std::fill(std::begin(handOverData.szFile), std::end(handOverData.szFile), L'x');
        strSeen = sei.lpFile;
    };
    Call();
    EXPECT_EQ(L"f", strSeen);
}

// Several at a time.

TEST_F(Elevate, ConcurrentCallsDoNotMix) {
    constexpr int kThreads = 6, kCalls = 20;
    std::atomic<int> nGood{0};
    // Each call's result tells whose request it was that the shell saw.
    shell.fnDuring = [&](SHELLEXECUTEINFOW& sei) {
        shell.dwError = static_cast<DWORD>(_wtoi(sei.lpFile));
        shell.bSucceed = FALSE;
        if (wcscmp(sei.lpFile, sei.lpParameters) != 0) shell.dwError = 1;
        ::SwitchToThread();
    };
    std::vector<std::thread> threads;
    for (int n = 0; n < kThreads; ++n) {
        threads.emplace_back([&, n] {
            for (int i = 0; i < kCalls; ++i) {
                wstring str = std::to_wstring(1000 + n * kCalls + i);
                DWORD dw = 0;
                RunNonElevated(nullptr, str.c_str(), str.c_str(), nullptr, nullptr, &dw, 1);
                if (std::to_wstring(dw) == str) ++nGood;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(kThreads * kCalls, nGood);
    std::set<wstring> files;
    for (const ShellCall& call : shell.calls) files.insert(call.file.str);
    EXPECT_EQ(static_cast<std::size_t>(kThreads * kCalls), files.size());
}

TEST_F(Elevate, CallWithinACallGivesZero) {
    int nInner = -1;
    DWORD dwInner = 0;
    TestWindow window([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg != WM_APP) return {};
        nInner = RunNonElevated(nullptr, L"inner", nullptr, nullptr, nullptr, &dwInner, 1);
        return 0;
    });
    shell.fnDuring = [&](SHELLEXECUTEINFOW&) { ::SendMessageW(window, WM_APP, 0, 0); };
    EXPECT_EQ(1, RunNonElevated(nullptr, L"outer", nullptr, nullptr, nullptr, &dwError, 1));
    EXPECT_EQ(0, nInner);
    EXPECT_EQ(static_cast<DWORD>(ERROR_BUSY), dwInner);
    EXPECT_EQ(L"outer", shell.TakeOne().file);
    EXPECT_EQ(1, RunNonElevated(nullptr, L"next", nullptr, nullptr, nullptr, &dwError, 1));
}

TEST_F(Elevate, CallWaitsForTheLockOfAnother) {
    HANDLE hMutex = ::CreateMutexW(nullptr, TRUE, L"Global\\Orvanta_Tessaly_HandOver");
    ASSERT_NE(nullptr, hMutex);
    std::atomic<int> nResult{-1};
    std::thread other(
        [&] { nResult = RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, nullptr, 1); });
    EXPECT_FALSE(WaitUntil([&] { return nResult != -1; }, 200));
    EXPECT_TRUE(shell.calls.empty());
    ::ReleaseMutex(hMutex);
    other.join();
    EXPECT_EQ(1, nResult);
    EXPECT_EQ(L"f", shell.TakeOne().file);
    ::CloseHandle(hMutex);
}

TEST_F(Elevate, LockThatSomebodyKeepsIsNotWaitedForLong) {
    HANDLE hMutex = ::CreateMutexW(nullptr, TRUE, L"Global\\Orvanta_Tessaly_HandOver");
    ASSERT_NE(nullptr, hMutex);
    int nResult = -1;
    DWORD dwStart = ::GetTickCount();
    std::thread([&] {
        nResult = RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1);
    }).join();
    EXPECT_LT(::GetTickCount() - dwStart, 15000u); // what a loaded machine may add
    EXPECT_EQ(0, nResult);
    EXPECT_EQ(static_cast<DWORD>(ERROR_BUSY), dwError);
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_TRUE(shell.calls.empty());
    ::ReleaseMutex(hMutex);
    ::CloseHandle(hMutex);
}

TEST_F(Elevate, LockThatIsNoneIsTold) {
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, FALSE, L"Global\\Orvanta_Tessaly_HandOver");
    ASSERT_NE(nullptr, hEvent);
    EXPECT_EQ(0, RunNonElevated(nullptr, L"f", nullptr, nullptr, &hProcess, &dwError, 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_HANDLE), dwError);
    EXPECT_EQ(nullptr, hProcess);
    EXPECT_TRUE(shell.calls.empty());
    ::CloseHandle(hEvent);
}

TEST_F(Elevate, LockOfACallThatDiedIsTakenOver) {
    HANDLE hMutex = ::CreateMutexW(nullptr, FALSE, L"Global\\Orvanta_Tessaly_HandOver");
    ASSERT_NE(nullptr, hMutex);
    std::thread([&] { ::WaitForSingleObject(hMutex, INFINITE); }).join();
    wcscpy(handOverData.szVerb, L"left behind");
    EXPECT_EQ(1, RunNonElevated(nullptr, L"f", nullptr, nullptr, nullptr, &dwError, 1));
    EXPECT_EQ(nullptr, shell.TakeOne().verb);
    ::CloseHandle(hMutex);
}

TEST(ElevateReal, ShellStartsTheProgramAndTheHandleIsGood) {
    FakeShell fake;
    LaunchReports reports;
    TempFolder folder;
    for (auto* pfn : {&RunNonElevated, &RunElevated}) {
        HANDLE hProcess = nullptr;
        DWORD dwError = 99;
        ASSERT_EQ(1, pfn(nullptr, ProbePath().c_str(), L"/a \"b c\"", folder.Get().c_str(),
                         &hProcess, &dwError, 1));
        EXPECT_EQ(0u, dwError);
        auto report = reports.Take();
        ASSERT_TRUE(report);
        EXPECT_EQ(L"\"" + ProbePath() + L"\" /a \"b c\"", report->strLine);
        EXPECT_EQ(folder.Get(), report->strFolder);
        EXPECT_EQ(report->dwProcess, ::GetProcessId(hProcess));
        ::CloseHandle(hProcess);
    }
}

BOOL bFilterResult = FALSE;
UINT uFiltered = 0;
DWORD dwFiltered = 0;
BOOL WINAPI Filter(UINT uMsg, DWORD dwFlag) {
    uFiltered = uMsg;
    dwFiltered = dwFlag;
    return bFilterResult;
}
FARPROC LookUpFilter(const wchar_t* pszModule, const char* pszName) {
    if (!strcmp(pszName, "ChangeWindowMessageFilter") && !wcscmp(pszModule, L"user32.dll"))
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Filter));
    return FindSystemFunc(pszModule, pszName);
}

TEST(MyChangeWindowMessageFilter, IsThePlatformsWhereThereIsOne) {
    SetRuntimeLookup(&LookUpFilter);
    bFilterResult = TRUE;
    EXPECT_EQ(1, MyChangeWindowMessageFilter(WM_APP, 1));
    EXPECT_EQ(static_cast<UINT>(WM_APP), uFiltered);
    EXPECT_EQ(1u, dwFiltered);
    bFilterResult = FALSE;
    EXPECT_EQ(0, MyChangeWindowMessageFilter(WM_APP, 2));
    EXPECT_EQ(2u, dwFiltered);
    SetRuntimeLookup(nullptr);
    EXPECT_EQ(1, MyChangeWindowMessageFilter(WM_APP, 1));
    HideFunctions hidden({"ChangeWindowMessageFilter"});
    EXPECT_EQ(0, MyChangeWindowMessageFilter(WM_APP, 1));
}
} // namespace
