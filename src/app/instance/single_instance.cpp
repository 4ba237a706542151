#include "app/instance/single_instance.h"
#include "runtime/base/ownership.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_format.h"
#include "runtime/threads/synch.h"
#include "wnd/core/company_msg.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {
/// A window that goes while the search stands on it ends the search too early; it then begins anew.
constexpr int kMaxWalks = 5;
/// Windows that change places while the search is on could send it in circles.
constexpr int kMaxWindows = 100000;

// The class of all dialogs, by its atom.
const wchar_t* DialogClass() { return MAKEINTRESOURCEW(32770); }

constinit HWND hwndFound = nullptr; // by the last ActivatePreviousInstance

/// Sends with the time-out. False if the window did not answer; nAnswer is then 0.
bool Ask(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& nAnswer) {
    DWORD_PTR dwAnswer = 0;
    bool bAnswered = ::SendMessageTimeoutW(hwnd, uMsg, wParam, lParam, SMTO_ABORTIFHUNG,
                                           kAskTimeoutMs, &dwAnswer) != 0;
    nAnswer = bAnswered ? static_cast<LRESULT>(dwAnswer) : 0;
    return bAnswered;
}

/// One search's questions. A thread that once let the time pass is not asked for its other windows:
/// each thread with windows has at least one more, that of its input method, and each would cost
/// the time-out again.
class Questions {
  public:
    /// The window's answer to the company message; 0 if it gave none.
    LRESULT Ask(HWND hwnd, WPARAM nCode, LPARAM lValue) {
        UINT nId = GetMyCompanyMsgId();
        DWORD nThread = ::GetWindowThreadProcessId(hwnd, nullptr);
        if (!nId || IsSilent(nThread)) return 0;
        LRESULT nAnswer = 0;
        DWORD nStart = ::GetTickCount();
        bool bAnswered = ::Ask(hwnd, nId, nCode, lValue, nAnswer);
        // One that is gone, or may not be asked, fails at once and says nothing about the thread.
        if (!bAnswered && ::GetTickCount() - nStart >= kAskTimeoutMs / 2) Remember(nThread);
        return nAnswer;
    }

  private:
    bool IsSilent(DWORD nThread) const {
        return std::find(silent.begin(), silent.end(), nThread) != silent.end();
    }
    void Remember(DWORD nThread) { silent[nNext++ % silent.size()] = nThread; }

    std::array<DWORD, 16> silent{}; // the last ones; no thread has the id 0
    unsigned nNext = 0;
};

struct InstanceSearch {
    unsigned nId = 0;
    Questions questions;
};

BOOL CALLBACK AskInstance(HWND hwnd, LPARAM lSearch) {
    auto& search = *reinterpret_cast<InstanceSearch*>(lSearch);
    LRESULT nAnswer =
        search.questions.Ask(hwnd, kCompanyCodeActivate, static_cast<LPARAM>(search.nId));
    if (nAnswer != kActivateDone) return TRUE;
    hwndFound = hwnd;
    return FALSE;
}

void BringForward(HWND hwnd) {
    HWND hwndPopup = ::GetLastActivePopup(hwnd);
    ::SetForegroundWindow(hwndPopup ? hwndPopup : hwnd);
}

/// One walk through the top-level windows of that class and title. bCutShort: the window went on
/// which the walk stood.
HWND WalkToWnd(const wchar_t* pszClass, const wchar_t* pszTitle, unsigned short nDialog,
               Questions& questions, bool& bCutShort) {
    HWND hwnd = ::FindWindowExW(nullptr, nullptr, pszClass, pszTitle);
    for (int n = 0; hwnd && n < kMaxWindows; ++n) {
        if (!nDialog || questions.Ask(hwnd, kCompanyCodeIsDialog, nDialog)) return hwnd;
        HWND hwndNext = ::FindWindowExW(nullptr, hwnd, pszClass, pszTitle);
        bCutShort = !hwndNext && !::IsWindow(hwnd);
        hwnd = hwndNext;
    }
    return nullptr;
}

HWND FindPrevWnd(const wchar_t* pszClass, const wchar_t* pszTitle, unsigned short nDialog) {
    if (!pszClass && !pszTitle && !nDialog) return nullptr; // any window at all would do
    Questions questions;
    for (int n = 0; n < kMaxWalks; ++n) {
        bool bCutShort = false;
        HWND hwnd = WalkToWnd(pszClass, pszTitle, nDialog, questions, bCutShort);
        if (hwnd || !bCutShort) return hwnd;
    }
    return nullptr;
}

void ActivateWnd(HWND hwnd, unsigned short nDialog) {
    LRESULT nAnswer = 0;
    UINT nId = GetMyCompanyMsgId();
    bool bAnswered = nId && Ask(hwnd, nId, kCompanyCodeActivate, nDialog, nAnswer);
    if (nAnswer) return; // it has seen to it
    if (::IsIconic(hwnd)) {
        // ShowWindow waits for the window; one that hangs is restored when it is back.
        if (bAnswered) {
            ::ShowWindow(hwnd, SW_RESTORE);
        } else {
            ::ShowWindowAsync(hwnd, SW_RESTORE);
        }
    }
    BringForward(hwnd);
}
} // namespace

HWND ActivatePreviousInstance(unsigned nId) {
    hwndFound = nullptr;
    InstanceSearch search{nId, {}};
    ::EnumWindows(&AskInstance, reinterpret_cast<LPARAM>(&search));
    return hwndFound;
}

LRESULT OnActivatePreviousInstance(unsigned nId, HWND hwnd, UINT uMsg, WPARAM wParam,
                                   LPARAM lParam) {
    UINT nCompanyMsg = GetMyCompanyMsgId();
    if (!hwnd || !nCompanyMsg || uMsg != nCompanyMsg) return 0;
    if (wParam != kCompanyCodeActivate || lParam != static_cast<LPARAM>(nId)) return 0;
    // An owner counts as a parent: what it owns is hidden while it is minimised.
    HWND hwndTop = ::GetAncestor(hwnd, GA_ROOTOWNER);
    if (hwndTop && hwndTop != hwnd && ::IsIconic(hwndTop)) ::ShowWindow(hwndTop, SW_RESTORE);
    if (::IsIconic(hwnd)) ::ShowWindow(hwnd, SW_RESTORE);
    BringForward(hwnd);
    return kActivateDone;
}

int ActivatePrevWnd(const wchar_t* pszClass, const wchar_t* pszTitle, unsigned short nDialog) {
    HWND hwnd = FindPrevWnd(pszClass, pszTitle, nDialog);
    if (!hwnd) return 0;
    ActivateWnd(hwnd, nDialog);
    return 1;
}

int ActivatePrevDlg(unsigned short nDialog) {
    return ActivatePrevWnd(DialogClass(), nullptr, nDialog);
}

int ClosePrevWnd(const wchar_t* pszClass, const wchar_t* pszTitle, unsigned short nDialog) {
    HWND hwnd = FindPrevWnd(pszClass, pszTitle, nDialog);
    if (!hwnd) return 0;
    LRESULT nAnswer = 0;
    Ask(hwnd, WM_CLOSE, 0, 0, nAnswer); // that there was one is all that counts
    return 1;
}

void DoAttachThreadInputActivateWindow(HWND hwnd) {
    if (!hwnd) return;
    HWND hwndFront = ::GetForegroundWindow();
    DWORD nOwn = ::GetCurrentThreadId();
    DWORD nFront = hwndFront ? ::GetWindowThreadProcessId(hwndFront, nullptr) : 0;
    LRESULT nAnswer = 0;
    bool bJoined = nFront && nFront != nOwn && Ask(hwndFront, WM_NULL, 0, 0, nAnswer) &&
                   ::AttachThreadInput(nOwn, nFront, TRUE);
    ScopeExit part([&] {
        if (bJoined) ::AttachThreadInput(nOwn, nFront, FALSE);
    });
    ::SetForegroundWindow(hwnd);
}

// The mark of the first instance

namespace {
/// The name of the mark's object.
void FormatMark(wchar_t (&szMark)[kMaxObjectName], int bGlobal, const wchar_t* pszName) {
    FormatText(szMark, L"%s\\Orvanta_App_%s", bGlobal ? L"Global" : L"Local",
               pszName ? pszName : L"");
}
} // namespace

bool HasInstanceMark(int bGlobal, const wchar_t* pszName) {
    if (!Win2K()) return false;
    wchar_t szMark[kMaxObjectName];
    FormatMark(szMark, bGlobal, pszName);
    OwnedHandle mark(::OpenEventW(SYNCHRONIZE, FALSE, szMark));
    return mark || ::GetLastError() != ERROR_FILE_NOT_FOUND;
}

int SingleInstanceXP::IsFirstInstance(int bGlobal, const wchar_t* pszName) {
    if (!Win2K()) return 1; // its names have no name spaces
    wchar_t szMark[kMaxObjectName];
    FormatMark(szMark, bGlobal, pszName);
    ::SetLastError(ERROR_SUCCESS);
    OwnedHandle created(::CreateEventW(nullptr, FALSE, FALSE, szMark));
    if (!created || ::GetLastError() == ERROR_ALREADY_EXISTS) return 0;
    hMark = std::move(created);
    return 1;
}
