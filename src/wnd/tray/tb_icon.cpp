#include "wnd/tray/tb_icon.h"
#include "runtime/base/current_product.h"
#include "runtime/system/dll_loader.h"
#include "runtime/text/str_format.h"
#include "wnd/core/company_msg.h"

#include <cstdarg>
#include <iterator>
#include <new>

namespace {
constexpr UINT kIconId = 1;
constexpr UINT kCallbackMsg = WM_USER + 1;
constexpr UINT kFirstEventMsg = kCallbackMsg + 1; // and one for each row of kEvents
constexpr unsigned kBalloonTimerId = 1, kBlinkTimerId = 2;
constexpr unsigned kMsPerSecond = 1000;

/// What the shell reports, and who hears of it.
struct Event {
    LPARAM lReported;
    void (TBIcon::*pfnHandler)();
};
constexpr Event kEvents[] = {
    {WM_LBUTTONUP, &TBIcon::OnLeftClick},           {WM_LBUTTONDBLCLK, &TBIcon::OnDoubleClick},
    {WM_RBUTTONUP, &TBIcon::OnRightClick},          {NIN_BALLOONSHOW, &TBIcon::OnBaloonShow},
    {NIN_BALLOONHIDE, &TBIcon::OnBaloonHide},       {NIN_BALLOONTIMEOUT, &TBIcon::OnBaloonTimeout},
    {NIN_BALLOONUSERCLICK, &TBIcon::OnBaloonClick}, {WM_MOUSEMOVE, &TBIcon::OnMouseMove},
};

constinit UINT uTaskbarCreated = 0;
constinit bool bHandlerRuns = false;
} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): nid is a view of nidBytes, which are 0
TBIcon::TBIcon() {
    nid.cbSize = GetDataSize(GetVerDll(L"SHELL32"));
    nid.uID = kIconId;
    nid.uFlags = NIF_MESSAGE;
    nid.uCallbackMessage = kCallbackMsg;
    uTaskbarCreated = ::RegisterWindowMessageW(L"TaskbarCreated");
}

TBIcon::~TBIcon() { delete pIconAlternate; }

DWORD TBIcon::GetDataSize(unsigned short nShellVersion) {
    // The structure as it was before its next fields came: an older shell refuses a longer one.
    if (nShellVersion < 0x500) return 168;
    if (nShellVersion <= 0x600) return 952;
    return nShellVersion == 0x601 ? 968 : kWholeDataSize;
}

// What a derived class may react to

int TBIcon::ShouldShowIcon() { return 1; }

int TBIcon::OnMyCompanyMessage(WPARAM, LPARAM, LRESULT*) { return 0; }

void TBIcon::OnLeftClick() {}

void TBIcon::OnDoubleClick() {}

void TBIcon::OnRightClick() {}

void TBIcon::OnBaloonShow() {}

void TBIcon::OnBaloonHide() {}

void TBIcon::OnBaloonTimeout() {}

void TBIcon::OnBaloonClick() {}

void TBIcon::OnMouseMove() {}

void TBIcon::OnCreateWnd() {}

void TBIcon::OnDestroyWnd() {
    if (shown) Show(0);
}

// The window

int TBIcon::CreateWnd(LPCWSTR pszClass) {
    int bCreated = Create(pszClass, L"", WS_POPUP, ::GetSystemMetrics(SM_CXFULLSCREEN) / 2,
                          ::GetSystemMetrics(SM_CYFULLSCREEN) / 2, 1, 1, nullptr, nullptr, nullptr);
    nid.hWnd = hWnd;
    return bCreated;
}

void TBIcon::DestroyWnd(LPCWSTR pszClass) {
    HWND hwnd = hWnd;
    if (!hwnd && pszClass) hwnd = ::FindWindowW(pszClass, nullptr);
    if (hwnd) ::PostMessageW(hwnd, WM_CLOSE, 0, 0);
}

// What is shown

void TBIcon::SetIcon(int iconId, int alternateId, unsigned blinkPeriodMs) {
    icon.Load(iconId, 1, 1);
    delete pIconAlternate;
    pIconAlternate = alternateId ? new (std::nothrow) CSIcon : nullptr;
    if (pIconAlternate) {
        pIconAlternate->Load(alternateId, 1, 1);
        blinkPeriod = blinkPeriodMs;
    } else {
        // Without a second icon there is no blinking.
        timerBlink.Stop();
        blinkPhase = 0;
    }
    SetIcon(icon);
}

void TBIcon::SetIcon(HICON hicon) {
    nid.hIcon = hicon;
    nid.uFlags |= NIF_ICON;
}

void TBIcon::SetTip(LPCWSTR pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(nid.szTip, std::size(nid.szTip), pszFormat, args);
    va_end(args);
    nid.uFlags |= NIF_TIP;
}

void TBIcon::SetBalloon(LPCWSTR pszTitle, DWORD dwFlags, unsigned nSeconds, LPCWSTR pszFormat,
                        ...) {
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(nid.szInfo, std::size(nid.szInfo), pszFormat, args);
    va_end(args);
    FormatText(nid.szInfoTitle, L"%s", pszTitle ? pszTitle : L"");
    nid.dwInfoFlags = dwFlags;
    nid.uTimeout = nSeconds * kMsPerSecond;
    nid.uFlags |= NIF_INFO;
}

void TBIcon::HideBalloon(int bUpdate) {
    timerBalloon.Stop();
    SetBalloon(L"", 0, 0, L"");
    if (bUpdate) UpdateIcon();
}

void TBIcon::EnableBaloon(int bEnabled) {
    if (bEnabled) {
        nid.uFlags |= NIF_INFO;
    } else {
        nid.uFlags &= ~static_cast<UINT>(NIF_INFO);
    }
}

void TBIcon::UpdateIcon() {
    if (shown) ::Shell_NotifyIconW(NIM_MODIFY, &nid);
}

int TBIcon::SetFocus() { return ::Shell_NotifyIconW(NIM_SETFOCUS, &nid) != FALSE; }

void TBIcon::ShowIcon(int show) {
    if (show == shown) return;
    if (show && !ShouldShowIcon()) return;
    Show(show);
}

void TBIcon::Show(int show) {
    if (!nid.hWnd) nid.hWnd = hWnd;
    if (::Shell_NotifyIconW(show ? NIM_ADD : NIM_DELETE, &nid)) shown = show;
    if (pIconAlternate) {
        Blink(1);
    } else if (nid.uFlags & NIF_INFO) {
        timerBalloon.Stop();
        timerBalloon.Start(hWnd, nid.uTimeout, nullptr, kBalloonTimerId);
    }
}

void TBIcon::Blink(int bOn) {
    if (bOn) {
        DoBlink();
        timerBlink.Start(hWnd, blinkPeriod, nullptr, kBlinkTimerId);
    } else {
        timerBlink.Stop();
        if (blinkPhase) DoBlink();
    }
}

void TBIcon::DoBlink() {
    blinkPhase = !blinkPhase;
    SetIcon(blinkPhase && pIconAlternate ? *pIconAlternate : icon);
    UpdateIcon();
}

// Messages

LRESULT TBIcon::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    // The ids of registered messages are 0 if none could be had, and 0 is WM_NULL.
    if (uMsg != WM_NULL && uMsg == GetMyCompanyMsgId()) {
        LRESULT lResult = 0;
        if (OnCompanyMessage(wParam, lParam, &lResult)) return lResult;
    } else if (uMsg != WM_NULL && uMsg == uTaskbarCreated) {
        ShowIcon(0);
        shown = 0; // a shell that has just started refuses to delete what it never had
        ShowIcon(1);
    } else if (uMsg >= kFirstEventMsg && uMsg < kFirstEventMsg + std::size(kEvents)) {
        OnEvent(uMsg);
    }
    switch (uMsg) {
    case WM_TIMER: OnTimer(); break;
    case WM_CREATE: OnCreateWnd(); break;
    case WM_DESTROY: OnDestroyWnd(); break;
    case WM_CLOSE: CSWnd::Destroy(); return 0;
    case kCallbackMsg: PostEvent(wParam, lParam); break;
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

bool TBIcon::OnCompanyMessage(WPARAM wParam, LPARAM lParam, LRESULT* plResult) {
    if (OnMyCompanyMessage(wParam, lParam, plResult)) return true;
    bool bForUs = lParam && LOWORD(lParam) == GetCurrentProduct().pfnGetId();
    if (wParam == kCompanyCodeClose && bForUs) DestroyWnd(nullptr);
    return false;
}

void TBIcon::OnTimer() {
    // QUIRK: whichever timer it is of, it is a step of the blinking as long as that goes on: a
    // balloon stays then. Test: TBIconTest.TimerIsABlinkStepWhileBothTimersRun
    if (timerBlink.IsTicking()) {
        DoBlink();
    } else if (timerBalloon.IsTicking()) {
        HideBalloon(1);
    }
}

/// Out of the shell's call into a message of the window's own: a handler may take its time.
void TBIcon::PostEvent(WPARAM wParam, LPARAM lParam) {
    UINT uMsg = kFirstEventMsg;
    for (const Event& event : kEvents) {
        if (event.lReported == lParam) ::PostMessageW(hWnd, uMsg, wParam, 0);
        ++uMsg;
    }
}

void TBIcon::OnEvent(UINT uMsg) {
    if (bHandlerRuns) {
        ::SetForegroundWindow(::GetLastActivePopup(hWnd));
        return;
    }
    bHandlerRuns = true;
    UINT uEventMsg = kFirstEventMsg;
    for (const Event& event : kEvents) {
        if (uEventMsg++ == uMsg) (this->*event.pfnHandler)();
    }
    bHandlerRuns = false;
}
