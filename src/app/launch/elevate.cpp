#include "app/launch/elevate.h"
#include "app/launch/run_file.h"
#include "files/disk/path_home.h"
#include "runtime/base/current_product.h"
#include "runtime/base/digest.h"
#include "runtime/base/ownership.h"
#include "runtime/system/elevation.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"

#include <sddl.h>
#include <atomic>
#include <cstring>
#include <cwchar>
#include <utility>

// The initialiser keeps it out of .bss, which would not be shared; a section name of the image has
// at most eight characters.
__attribute__((section("ve_share"), shared)) HandOverData handOverData = {};

namespace {
constexpr const wchar_t* kAsAdministrator = L"runas";
constexpr const wchar_t* kMessageName = L"VistaElevatorMsg";
// The section is the same in all sessions, and so is its lock.
constexpr const wchar_t* kLockName = L"Global\\Orvanta_Tessaly_HandOver";
// Every user may wait for the lock and release it, and nothing else.
constexpr DWORD kLockAccess = SYNCHRONIZE | MUTEX_MODIFY_STATE;
constexpr const wchar_t* kLockRights = L"D:(A;;0x100001;;;AU)";
// A user may take longer to answer the question of the call before. But anybody can have made the
// lock and keep it, and no caller is to stand still for that.
constexpr DWORD kLockTimeoutMs = 5000;

std::atomic<DWORD> dwHolder{0};        // the thread of this process that has the lock
constinit HANDLE hOwnAnswer = nullptr; // for a call from the shell's own thread

/// The section for one call at a time. A thread that has it already does not get it twice: while
/// it waits for the shell, messages to its windows go on.
class HandOverLock {
  public:
    HandOverLock() {
        if (dwHolder == ::GetCurrentThreadId()) return;
        OwnedHandle opened = Open(dwError);
        if (!opened) return;
        DWORD dwWait = ::WaitForSingleObject(opened.Get(), kLockTimeoutMs);
        // Abandoned: whoever had it ended during a call, and left a request to be cleared.
        if (dwWait != WAIT_OBJECT_0 && dwWait != WAIT_ABANDONED) return;
        dwHolder = ::GetCurrentThreadId();
        mutex = std::move(opened);
    }
    ~HandOverLock() {
        if (!mutex) return;
        dwHolder = 0;
        ::ReleaseMutex(mutex.Get());
    }
    HandOverLock(const HandOverLock&) = delete;
    HandOverLock& operator=(const HandOverLock&) = delete;
    explicit operator bool() const { return static_cast<bool>(mutex); }
    /// Why it is not held: ERROR_BUSY if somebody else has it, or the platform's word if it cannot
    /// be opened.
    DWORD GetError() const { return dwError; }

  private:
    static OwnedHandle Open(DWORD& dwWhyNot) {
        PSECURITY_DESCRIPTOR pRights = nullptr;
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(kLockRights, SDDL_REVISION_1,
                                                               &pRights, nullptr);
        OwnedLocal rights(pRights);
        SECURITY_ATTRIBUTES security{sizeof(security), pRights, FALSE};
        OwnedHandle created(::CreateMutexW(&security, FALSE, kLockName));
        // It asks for all rights to one that exists already, which are its maker's alone.
        if (!created) created.Reset(::OpenMutexW(kLockAccess, FALSE, kLockName));
        if (!created) dwWhyNot = ::GetLastError();
        return created;
    }
    OwnedHandle mutex; // empty unless it is held
    DWORD dwError = ERROR_BUSY;
};

void Clear() { handOverData = HandOverData{}; }

/// False if the text does not fit; null is the empty text.
bool Put(wchar_t (&szField)[MAX_PATH], const wchar_t* psz) {
    if (!psz) psz = L"";
    if (std::wcslen(psz) >= MAX_PATH) return false;
    std::wcscpy(szField, psz);
    return true;
}

bool IsTerminated(const wchar_t (&szField)[MAX_PATH]) {
    return std::wmemchr(szField, 0, MAX_PATH) != nullptr;
}

/// What a request asks for, as the two parameters of the message. That way comes to the shell past
/// the section: who can write there but not send to the shell cannot change a request.
struct Seal {
    WPARAM wParam;
    LPARAM lParam;
};

Seal SealOf(const HandOverData& request) {
    HandOverData sealed = request;
    sealed.hhook = nullptr; // what is no part of the request
    sealed.uMsg = 0;
    sealed.nResult = 0;
    sealed.dwError = 0;
    sealed.hProcess = nullptr;
    unsigned char digest[kMd5Size];
    CalcMD5(digest, &sealed, sizeof(sealed));
    Seal seal{};
    static_assert(sizeof(seal) == sizeof(digest));
    std::memcpy(&seal, digest, sizeof(seal));
    return seal;
}

/// A handle to the process that the shell has started, out of a handle of the shell's, which is
/// closed. What is not the handle of a process gives null.
HANDLE TakeProcessHandle(HWND hwndShell, HANDLE hOfShell) {
    // One below 0 stands for the shell itself, whichever process it is looked up in.
    if (reinterpret_cast<INT_PTR>(hOfShell) <= 0) return nullptr;
    DWORD dwShell = 0;
    ::GetWindowThreadProcessId(hwndShell, &dwShell);
    OwnedHandle shell(::OpenProcess(PROCESS_DUP_HANDLE, FALSE, dwShell));
    if (!shell) return nullptr;
    OwnedHandle process;
    if (!::DuplicateHandle(shell.Get(), hOfShell, ::GetCurrentProcess(), process.Put(), 0, FALSE,
                           DUPLICATE_SAME_ACCESS) ||
        !::GetProcessId(process.Get())) {
        return nullptr;
    }
    ::DuplicateHandle(shell.Get(), hOfShell, nullptr, nullptr, 0, FALSE, DUPLICATE_CLOSE_SOURCE);
    return process.Release();
}

/// The handle's way back, in the shell's process: it is the answer to the message, which nobody
/// gives but the thread that was asked.
void AnswerWith(HANDLE hProcess) {
    // False if the message came from the very thread, whose call gets the window's answer.
    if (!::ReplyMessage(reinterpret_cast<LRESULT>(hProcess))) hOwnAnswer = hProcess;
}

/// In the shell's process. The request is taken up once, and what was looked at is what is used:
/// the section may change at any time. What is asked for is no longer to be read there then.
void Serve(const CWPSTRUCT& msg) {
    UINT uMsg = handOverData.uMsg;
    if (!uMsg || msg.message != uMsg) return;
    HandOverData request = handOverData;
    std::atomic_signal_fence(std::memory_order_seq_cst); // no second look at the section
    HandOverData taken{};
    taken.hhook = request.hhook;
    handOverData = taken;
    Seal seal = SealOf(request);
    if (seal.wParam != msg.wParam || seal.lParam != msg.lParam) return;
    if (!IsTerminated(request.szVerb) || !IsTerminated(request.szFile) ||
        !IsTerminated(request.szParameters) || !IsTerminated(request.szDirectory)) {
        return;
    }
    HANDLE hProcess = nullptr;
    DWORD dwError = ERROR_SUCCESS;
    int nResult = MyShellExec(request.hwndOwner ? request.hwndOwner : msg.hwnd,
                              request.szVerb[0] ? request.szVerb : nullptr, request.szFile,
                              request.szParameters, request.szDirectory,
                              request.bWantHandle ? &hProcess : nullptr, &dwError);
    handOverData.hProcess = hProcess;
    handOverData.dwError = dwError;
    handOverData.nResult = nResult;
    AnswerWith(hProcess);
}

/// Sends the request and gives the handle that the shell answers with; null for none. What the
/// section has for one may be anybody's, and is not looked at: it would be looked up, and closed,
/// among the handles of the shell.
HANDLE Ask(HWND hwndShell, DWORD dwThread, UINT uMsg, const Seal& seal) {
    hOwnAnswer = nullptr;
    LRESULT nAnswer = ::SendMessageW(hwndShell, uMsg, seal.wParam, seal.lParam);
    if (dwThread == ::GetCurrentThreadId()) return std::exchange(hOwnAnswer, nullptr);
    return reinterpret_cast<HANDLE>(nAnswer);
}

bool Fail(DWORD* pdwError, DWORD dwError) {
    if (pdwError) *pdwError = dwError;
    return false;
}

/// Starts the file of that name, in the folder that pfnFind knows, by pfnRun.
int RunFound(decltype(RunElevated)* pfnRun, decltype(GetLocalPath)* pfnFind, HWND hwnd,
             const wchar_t* pszName, const wchar_t* pszParameters, const wchar_t* pszDirectory,
             HANDLE* phProcess, DWORD* pdwError, int bForce) {
    wchar_t szPath[MAX_PATH];
    if (pszName && pfnFind(szPath, pszName, nullptr))
        return pfnRun(hwnd, szPath, pszParameters, pszDirectory, phProcess, pdwError, bForce);
    if (phProcess) *phProcess = nullptr;
    if (pdwError) *pdwError = ERROR_FILE_NOT_FOUND;
    return 0;
}
} // namespace

// The hand-over

LRESULT CALLBACK HandOverHookProc(int nCode, WPARAM wParam, LPARAM lParam) {
    HHOOK hhook = handOverData.hhook;
    if (nCode >= 0) Serve(*reinterpret_cast<const CWPSTRUCT*>(lParam));
    return ::CallNextHookEx(hhook, nCode, wParam, lParam);
}

bool HandOver(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
              const wchar_t* pszParameters, const wchar_t* pszDirectory, HANDLE* phProcess,
              DWORD* pdwError) {
    if (phProcess) *phProcess = nullptr;
    HandOverLock lock;
    if (!lock) return Fail(pdwError, lock.GetError());
    UINT uMsg = ::RegisterWindowMessageW(kMessageName);
    HWND hwndShell = FindProgman();
    // Thread 0, of a window that has just gone, would be a hook on all of them.
    DWORD dwThread = ::GetWindowThreadProcessId(hwndShell, nullptr);
    if (!uMsg || !dwThread) return Fail(pdwError, ERROR_INVALID_WINDOW_HANDLE);
    Clear();
    ScopeExit clear([] { Clear(); });
    // Kept here too: others can write to the section.
    HHOOK hhook =
        ::SetWindowsHookExW(WH_CALLWNDPROC, &HandOverHookProc, GetLibraryInstance(), dwThread);
    if (!hhook) return Fail(pdwError, ::GetLastError());
    ScopeExit unhook([hhook] { ::UnhookWindowsHookEx(hhook); });
    HandOverData request{};
    if (!Put(request.szVerb, pszVerb) || !Put(request.szFile, pszFile) ||
        !Put(request.szParameters, pszParameters) || !Put(request.szDirectory, pszDirectory)) {
        return Fail(pdwError, ERROR_INVALID_PARAMETER);
    }
    request.hhook = hhook;
    request.uMsg = uMsg;
    request.hwndOwner = hwnd ? hwnd : hwndShell;
    request.bWantHandle = phProcess != nullptr;
    handOverData = request;
    Seal seal = SealOf(request);
    HANDLE hOfShell = Ask(hwndShell, dwThread, uMsg, seal);
    if (phProcess) *phProcess = TakeProcessHandle(hwndShell, hOfShell);
    if (pdwError) *pdwError = handOverData.dwError;
    return handOverData.nResult != 0;
}

// More and fewer rights

int MyShellExec(HWND hwnd, const wchar_t* pszVerb, const wchar_t* pszFile,
                const wchar_t* pszParameters, const wchar_t* pszDirectory, HANDLE* phProcess,
                DWORD* pdwError) {
    bool bStarted = StartByShell({.hwnd = hwnd,
                                  .pszVerb = pszVerb,
                                  .pszFile = pszFile,
                                  .pszParameters = pszParameters,
                                  .pszDirectory = pszDirectory,
                                  .phProcess = phProcess});
    if (pdwError) *pdwError = bStarted ? ERROR_SUCCESS : ::GetLastError();
    return bStarted;
}

int RunNonElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                   const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError, int bForce) {
    if (!bForce && (!WinVista() || !IsElevated()))
        return MyShellExec(hwnd, nullptr, pszFile, pszParameters, pszDirectory, phProcess,
                           pdwError);
    return HandOver(hwnd, nullptr, pszFile, pszParameters, pszDirectory, phProcess, pdwError);
}

int RunLocalFileNonElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                            const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                            int bForce) {
    return RunFound(&RunNonElevated, &GetLocalPath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int RunSatelliteFileNonElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                                const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                                int bForce) {
    return RunFound(&RunNonElevated, &GetSatellitePath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int CanRunNonElevated(int) { return FindProgman() != nullptr; }

int RunElevated(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters,
                const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError, int bForce) {
    if (!hwnd) hwnd = FindProgman();
    // Before Vista a user who is no administrator is asked for another one's name and password,
    // whichever process asks.
    if (!WinVista() && !IsAdminXP())
        return MyShellExec(hwnd, kAsAdministrator, pszFile, pszParameters, pszDirectory, phProcess,
                           pdwError);
    if (bForce)
        return HandOver(hwnd, kAsAdministrator, pszFile, pszParameters, pszDirectory, phProcess,
                        pdwError);
    return MyShellExec(hwnd, WinVista() ? kAsAdministrator : nullptr, pszFile, pszParameters,
                       pszDirectory, phProcess, pdwError);
}

int RunLocalFileElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                         const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                         int bForce) {
    return RunFound(&RunElevated, &GetLocalPath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int RunSatelliteFileElevated(HWND hwnd, const wchar_t* pszName, const wchar_t* pszParameters,
                             const wchar_t* pszDirectory, HANDLE* phProcess, DWORD* pdwError,
                             int bForce) {
    return RunFound(&RunElevated, &GetSatellitePath, hwnd, pszName, pszParameters, pszDirectory,
                    phProcess, pdwError, bForce);
}

int MyChangeWindowMessageFilter(UINT uMsg, DWORD dwFlag) {
    static constinit RuntimeFunc<BOOL WINAPI(UINT, DWORD)> func(L"user32.dll",
                                                                "ChangeWindowMessageFilter");
    auto* pfn = func.Get();
    return pfn && pfn(uMsg, dwFlag);
}
