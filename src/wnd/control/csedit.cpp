#include "wnd/control/csedit.h"
#include "runtime/system/dll_loader.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"

#include <commctrl.h>
#include <shlwapi.h>
#include <algorithm>
#include <atomic>

CSEdit::~CSEdit() = default;

LRESULT CSEdit::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_KEYDOWN:
    case WM_KEYUP:
        if (readOnly && LOWORD(wParam) == VK_DELETE) return 0;
        break;
    case WM_CHAR:
    case WM_CUT:
    case WM_PASTE:
        if (readOnly) return 0;
        break;
    case EM_SETSEL: {
        bool bBlocked = blockSelAll != 0;
        blockSelAll = 0;
        // The select-all of the platform's dialog code when the edit gets the focus by a key.
        if (bBlocked && wParam == 0 && static_cast<int>(lParam) == -1) return 0;
        break;
    }
    case WM_DROPFILES: return OnDropFilesMessage(wParam, lParam);
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

int CSEdit::OnCtlColor(UINT uMsg, HDC hdc, HBRUSH* phbr) {
    // An edit that is disabled or read-only for the platform asks as a static.
    if (!editBrush || (uMsg != WM_CTLCOLOREDIT && uMsg != WM_CTLCOLORSTATIC)) return 0;
    ::SetBkMode(hdc, TRANSPARENT);
    *phbr = editBrush.Get();
    return 1;
}

void CSEdit::Clear() { SetText(L""); }

void CSEdit::GetSel(int& nStart, int& nEnd) {
    SendMsg(EM_GETSEL, reinterpret_cast<WPARAM>(&nStart), reinterpret_cast<LPARAM>(&nEnd));
}

void CSEdit::SetSel(int nStart, int nEnd) { SendMsg(EM_SETSEL, static_cast<WPARAM>(nStart), nEnd); }

void CSEdit::ReplaceSel(LPCWSTR pszText, int bUndo) {
    SendMsg(EM_REPLACESEL, static_cast<WPARAM>(bUndo), reinterpret_cast<LPARAM>(pszText));
}

LRESULT CSEdit::PosFromChar(int nChar) {
    return SendMsg(EM_POSFROMCHAR, static_cast<WPARAM>(nChar), 0);
}

void CSEdit::SetMaxTextLimit(unsigned int cch) { SendMsg(EM_LIMITTEXT, cch, 0); }

int CSEdit::IsModified() { return static_cast<int>(SendMsg(EM_GETMODIFY, 0, 0)); }

void CSEdit::SetModified(int bModified) {
    SendMsg(EM_SETMODIFY, static_cast<WPARAM>(bModified), 0);
}

wchar_t CSEdit::GetPasswordChar() {
    return static_cast<wchar_t>(SendMsg(EM_GETPASSWORDCHAR, 0, 0));
}

void CSEdit::SetPasswordChar(wchar_t ch) { SendMsg(EM_SETPASSWORDCHAR, ch, 0); }

// Colour and balloon

namespace {
constexpr UINT kRedrawWhole = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_FRAME;
} // namespace

void CSEdit::SetBkgColor(unsigned long cr) {
    editBrush.Reset(::CreateSolidBrush(cr));
    Redraw(kRedrawWhole);
}

void CSEdit::ClearBkgColor() {
    if (!editBrush) return;
    editBrush.Reset();
    Redraw(kRedrawWhole);
}

int CSEdit::ShowBalloon(LPCWSTR pszTitle, LPCWSTR pszText, int nIcon) {
    if (!WinXP()) return 0;
    EDITBALLOONTIP tip{sizeof(tip), pszTitle, pszText, nIcon};
    return static_cast<int>(SendMsg(EM_SHOWBALLOONTIP, 0, reinterpret_cast<LPARAM>(&tip)));
}

int CSEdit::HideBalloon() {
    return WinXP() ? static_cast<int>(SendMsg(EM_HIDEBALLOONTIP, 0, 0)) : 0;
}

// Several lines

int CSMultiLineEdit::GetLineCount() { return static_cast<int>(SendMsg(EM_GETLINECOUNT, 0, 0)); }

int CSMultiLineEdit::LineFromChar(int nChar) {
    return static_cast<int>(SendMsg(EM_LINEFROMCHAR, static_cast<WPARAM>(nChar), 0));
}

int EditCtrl_GetLineSize(HWND hwnd, unsigned int nLine) {
    // The platform takes the number -1 for the caret's line.
    auto nLines = static_cast<unsigned int>(::SendMessageW(hwnd, EM_GETLINECOUNT, 0, 0));
    if (nLine >= nLines) return 0;
    auto nStart = static_cast<int>(::SendMessageW(hwnd, EM_LINEINDEX, nLine, 0));
    if (nStart == -1) return 0;
    int nNext = -1;
    if (nLine + 1 < nLines) {
        nNext = static_cast<int>(::SendMessageW(hwnd, EM_LINEINDEX, nLine + 1, 0));
    }
    return (nNext == -1 ? ::GetWindowTextLengthW(hwnd) : nNext) - nStart;
}

int EditCtrl_GetLine(HWND hwnd, unsigned int nLine, wchar_t* pszBuffer, unsigned int cch) {
    WORD cchRoom = LOWORD(cch);
    if (!pszBuffer || cchRoom == 0) return 0;
    pszBuffer[0] = cchRoom; // how the message learns of the room; it writes no terminator itself
    LRESULT lRead = ::SendMessageW(hwnd, EM_GETLINE, nLine, reinterpret_cast<LPARAM>(pszBuffer));
    auto cchRead = static_cast<int>(std::clamp<LRESULT>(lRead, 0, cchRoom - 1));
    pszBuffer[cchRead] = 0;
    return cchRead;
}

// Completion of paths

namespace {
enum class Known { Nothing, Missing, There };
constinit std::atomic<Known> autoComplete{Known::Nothing};

constinit RuntimeFunc<decltype(::SHAutoComplete)> fnAutoComplete(L"shlwapi.dll", "SHAutoComplete");

constexpr unsigned short kFirstVersion = 0x0500; // major and minor
constexpr DWORD kFirstBuild = 2615;              // of that version

bool IsShlwapiNewEnough() {
    DWORD dwBuild = 0;
    unsigned short nVersion = GetVerDll(L"Shlwapi", nullptr, nullptr, &dwBuild);
    return nVersion > kFirstVersion || (nVersion == kFirstVersion && dwBuild >= kFirstBuild);
}
} // namespace

int CanAutoComplete() {
    if (autoComplete == Known::Nothing) {
        bool bThere = IsShlwapiNewEnough() && SUCCEEDED(MySHAutoComplete(nullptr, 0));
        autoComplete = bThere ? Known::There : Known::Missing;
    }
    return autoComplete == Known::There;
}

HRESULT MySHAutoComplete(HWND hwndEdit, unsigned long dwFlags) {
    if (autoComplete == Known::Missing) return E_NOTIMPL;
    auto* pfn = fnAutoComplete.Get();
    if (!pfn) return E_NOTIMPL;
    return hwndEdit ? pfn(hwndEdit, dwFlags) : S_OK;
}
