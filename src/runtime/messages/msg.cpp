#include "runtime/messages/msg.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/system/system_facts.h"

#include <commctrl.h>
#include <atomic>
#include <cwchar>

namespace {
// Codes of automation servers, from WINERROR.H's FACILITY_ITF: this one stands for number 0.
constexpr DWORD kFirstDispatchError = 0x80040200;
constexpr DWORD kLastDispatchError = 0x8004FFFF;

constinit std::atomic<MsgPauseResumeFunc*> pfnPauseResume{nullptr};
constinit wchar_t szErrorText[kMessageSize] = {};
constinit wchar_t szHresultText[kMessageSize] = {};

/// A box over a window that has a dialog open belongs over that dialog.
HWND FindOwner(HWND hwndGiven) {
    if (hwndGiven == MsgNoOwner()) return nullptr;
    HWND hwnd = hwndGiven ? hwndGiven : ::GetActiveWindow();
    return hwnd ? ::GetLastActivePopup(hwnd) : nullptr;
}

void PauseOrResume(int nResume) {
    if (MsgPauseResumeFunc* pfn = pfnPauseResume) pfn(nResume);
}

/// All boxes of the system come from here.
int ShowBox(HWND hwndOwner, UINT nFlags, const wchar_t* pszText) {
    // With a manifest for version 6 of the controls, a box needs their classes to be registered.
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES};
    ::InitCommonControlsEx(&controls);
    HWND hwnd = FindOwner(hwndOwner);
    PauseOrResume(0);
    int nResult =
        ::MessageBoxW(hwnd, pszText, GetCurrentProduct().pfnGetName(), nFlags | MB_SETFOREGROUND);
    PauseOrResume(1);
    return nResult;
}

/// A text or a string of the table, loaded for as long as this lives.
class LoadedText {
  public:
    explicit LoadedText(const void* pArg)
        : str(IsResourceIdArg(pArg) ? GetResourceIdArg(pArg) : 0),
          psz(IsResourceIdArg(pArg) ? str : static_cast<const wchar_t*>(pArg)) {}
    const wchar_t* Get() const { return psz; }

  private:
    ResStr str;
    const wchar_t* psz;
};

int ShowFormatted(HWND hwndOwner, UINT nFlags, const void* pFormat, va_list args) {
    LoadedText format(pFormat);
    wchar_t szText[kMessageSize] = {};
    FormatTextV(szText, kMessageSize, format.Get(), args);
    return ShowBox(hwndOwner, nFlags, szText);
}

/// The string nId, formatted, and behind an empty line the error's text; each unless it is missing.
int ShowError(HWND hwndOwner, UINT nFlags, int nId, va_list args, const wchar_t* pszError) {
    wchar_t szText[kMessageSize] = {};
    if (nId) FormatTextV(szText, kMessageSize, ResStr(nId), args);
    if (pszError) {
        std::size_t cch = std::wcslen(szText);
        FormatText(szText + cch, kMessageSize - cch, L"%s%s", cch ? L"\n\n" : L"", pszError);
    }
    return ShowBox(hwndOwner, nFlags == kMsgErrorFlags ? MB_ICONEXCLAMATION : nFlags, szText);
}

/// The system's text of a code; its length, 0 for an unknown code.
DWORD FormatSystemText(wchar_t (&szBuffer)[kMessageSize], DWORD nCode) {
    szBuffer[0] = 0;
    return ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                            nCode, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), szBuffer,
                            kMessageSize, nullptr);
}

/// The text without its line end. Codes of automation servers stand for numbers that only the
/// server knows; any other unknown code is shown as it is.
const wchar_t* GetHresultText(HRESULT hr) {
    auto nCode = static_cast<DWORD>(hr);
    DWORD cch = FormatSystemText(szHresultText, nCode);
    while (cch && (szHresultText[cch - 1] == L'\r' || szHresultText[cch - 1] == L'\n'))
        szHresultText[--cch] = 0;
    if (cch) return szHresultText;
    if (nCode > kFirstDispatchError && nCode <= kLastDispatchError) {
        FormatText(szHresultText, L"IDispatch error #%d",
                   static_cast<int>(LOWORD(nCode - kFirstDispatchError)));
    } else {
        FormatText(szHresultText, L"Unknown error 0x%0lX", nCode);
    }
    return szHresultText;
}
} // namespace

int Msg(HWND hwndOwner, UINT nFlags, MsgText text) {
    return ShowBox(hwndOwner, nFlags, LoadedText(text.Get()).Get());
}

int MsgFmt(HWND hwndOwner, UINT nFlags, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    int nResult = ShowFormatted(hwndOwner, nFlags, pszFormat, args);
    va_end(args);
    return nResult;
}

int MsgFmt(HWND hwndOwner, UINT nFlags, int nId, ...) {
    va_list args;
    va_start(args, nId);
    int nResult = ShowFormatted(hwndOwner, nFlags, MsgText(nId).Get(), args);
    va_end(args);
    return nResult;
}

int MsgFmt(HWND hwndOwner, UINT nFlags, const wchar_t* pszFormat, ArgList args) {
    return ShowFormatted(hwndOwner, nFlags, pszFormat, args.v);
}

int MsgFmt(HWND hwndOwner, UINT nFlags, int nId, ArgList args) {
    return ShowFormatted(hwndOwner, nFlags, MsgText(nId).Get(), args.v);
}

int MsgLastError(HWND hwndOwner, UINT nFlags, int nId, ...) {
    DWORD nError = ::GetLastError(); // before anything else can change it
    if (!nError && !nId) return 1;
    va_list args;
    va_start(args, nId);
    int nResult =
        ShowError(hwndOwner, nFlags, nId, args, nError ? GetLastErrorText(nError) : nullptr);
    va_end(args);
    return nResult;
}

int MsgHRESULT(HWND hwndOwner, HRESULT hr, UINT nFlags, int nId, ...) {
    if (SUCCEEDED(hr) && !nId) return 1;
    va_list args;
    va_start(args, nId);
    int nResult =
        ShowError(hwndOwner, nFlags, nId, args, FAILED(hr) ? GetHresultText(hr) : nullptr);
    va_end(args);
    return nResult;
}

void MsgSetPauseResumeCallback(MsgPauseResumeFunc* pfnNew) { pfnPauseResume = pfnNew; }

const wchar_t* GetLastErrorText(DWORD nError) {
    FormatSystemText(szErrorText, nError ? nError : ::GetLastError());
    return szErrorText;
}

int WinProNotSupported(HWND hwndOwner) {
    if (!WinPro()) return 1;
    Msg(hwndOwner, MB_ICONHAND, -IDS_NOT_ON_THIS_EDITION);
    return 0;
}
