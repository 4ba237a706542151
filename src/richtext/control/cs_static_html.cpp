#include "richtext/control/cs_static_html.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/text_format.h"
#include "wnd/core/wnd_input.h"
#include "wnd/dialog/csdlg.h"

#include <cwchar>

namespace {
constexpr int kMaxLinkText = 253;   // characters of the window text that MakeLink reads
constexpr int kMarkupSize = 256;    // what MakeLink and MakeHtml set, with the terminator
constexpr int kTitleSize = 260;     // titles and their mark-up, with the terminator
constexpr int kTitleFmtSize = 2048; // a formatted title, before it is cut to that
constexpr const wchar_t* kTitleFormat = L"<b><dkgrey>%s</dkgrey></b>";

/// The point of a mouse message, signed.
POINT PointOf(LPARAM lParam) {
    return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

bool IsLinkKey(WPARAM wKey) { return wKey == VK_SPACE || wKey == VK_RETURN; }

void CopyColor(unsigned long cr, DrawHTMLTools& tools, void (DrawHTMLTools::*pfnSet)(COLORREF)) {
    if (cr != CLR_INVALID) (tools.*pfnSet)(cr);
}
} // namespace

HCURSOR CSStaticHTML::hCursorHand = nullptr;

CSStaticHTML::CSStaticHTML() = default;
CSStaticHTML::~CSStaticHTML() = default;

int CSStaticHTML::IsKindOf(LPCWSTR pszClass) {
    return (pszClass && std::wcscmp(pszClass, L"CSStaticHTML") == 0) || CSCtrl::IsKindOf(pszClass);
}

void CSStaticHTML::OnInit() {
    bNotify = (GetStyle(0) & SS_NOTIFY) != 0;
    drawHTML.SetLinkCmdID(ctrlId);
    CopyColor(dlg->GetDlgBkgColor(), tools, &DrawHTMLTools::SetBkgColor);
    CopyColor(dlg->GetDlgTextColor(), tools, &DrawHTMLTools::SetTextColor);
    CopyColor(dlg->GetDlgThirdColor(), tools, &DrawHTMLTools::SetLinkColor);
}

void CSStaticHTML::OnSystemSettingChange(WPARAM wParam, LPARAM lParam) {
    CSCtrl::OnSystemSettingChange(wParam, lParam);
    tools.Update();
}

// Text

int CSStaticHTML::SetHTMLText(const wchar_t* pszNew) { return SetText(pszNew); }

int CSStaticHTML::SetHTMLText(int nStringId, HINSTANCE hinst) {
    return SetText(static_cast<const wchar_t*>(ResStr(nStringId, hinst)));
}

int CSStaticHTML::GetHTMLText(wchar_t* pszBuffer, int cch) {
    if (pszBuffer && cch > 0) ::lstrcpynW(pszBuffer, pszHTML.IsReady() ? pszHTML.Get() : L"", cch);
    return static_cast<int>(nHTMLLength);
}

unsigned CSStaticHTML::GetHTMLTextStripTags(wchar_t* out, int size) {
    return DrawHTML::GetHTMLTextStripTags(pszHTML.Get(), out, size);
}

int CSStaticHTML::UpdateText(const wchar_t* pszNew) {
    if (pszNew) {
        const auto nLength = static_cast<unsigned>(std::wcslen(pszNew));
        const std::size_t cch = nLength + std::size_t{1};
        if (nLength == nHTMLLength && pszHTML.IsReady()) {
            std::wmemmove(pszHTML.Get(), pszNew, cch);
        } else {
            HeapArray<wchar_t> copy(cch);
            if (copy.IsReady()) std::wmemcpy(copy.Get(), pszNew, cch);
            nHTMLLength = copy.IsReady() ? nLength : 0;
            pszHTML = std::move(copy); // only now: the new text may be a part of the old one
        }
    } else if (!pszHTML.IsReady()) {
        const int nLength = GetTextLength();
        HeapArray<wchar_t> read(nLength > 0 ? nLength + std::size_t{1} : 0);
        if (read.IsReady()) {
            GetText(read.Get(), nLength + 1);
            nHTMLLength = static_cast<unsigned>(std::wcslen(read.Get()));
            pszHTML = std::move(read);
        }
    }
    return nHTMLLength != 0;
}

void CSStaticHTML::MakeLink() {
    wchar_t szText[kMaxLinkText + 1] = {};
    GetText(szText, kMaxLinkText + 1);
    wchar_t szLink[kMarkupSize];
    FormatText(szLink, L"%s%s%s", DrawHTML::pszBra_A, szText, L"</a>");
    SetHTMLText(szLink);
}

void CSStaticHTML::MakeHtml(const wchar_t* pszFormat) {
    wchar_t szText[kMarkupSize] = {};
    GetText(szText, kMarkupSize);
    wchar_t szMarkup[kMarkupSize];
    FormatText(szMarkup, pszFormat, szText);
    SetHTMLText(szMarkup);
}

// Painting

int CSStaticHTML::CalcHeight(HDC hdc, RECT* prc) {
    if (!pszHTML.IsReady()) UpdateText(nullptr); // nothing was painted yet
    return drawHTML.Draw(DrawMeasure, hdc, prc, pszHTML.Get(), nHTMLLength, &links, &tools);
}

void CSStaticHTML::OnPaint(CSDC& dc, PAINTSTRUCT& /*ps*/) {
    if (!pszHTML.IsReady()) UpdateText(nullptr);
    if (bTransparent) {
        HWND hwndParent = GetParent();
        RECT rc{};
        ::GetWindowRect(hWnd, &rc);
        ::MapWindowPoints(HWND_DESKTOP, hwndParent, reinterpret_cast<POINT*>(&rc), 2);
        ::RedrawWindow(hwndParent, &rc, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ERASENOW);
    }
    drawHTML.OnPaint(hWnd, dc, pszHTML.Get(), nHTMLLength, !bTransparent, &links, &tools, bFocused);
}

LRESULT CSStaticHTML::OnPaintMessage() {
    PAINTSTRUCT ps;
    HDC hdc = ::BeginPaint(hWnd, &ps);
    if (!hdc) {
        ::ValidateRect(hWnd, nullptr); // else it is asked for again and again
        return 0;
    }
    HWND hwndPainted = hWnd; // a handler of the parent's may end this window
    CSDC dc(hdc, 1);
    OnPaint(dc, ps);
    ::EndPaint(hwndPainted, &ps);
    ::ValidateRect(hwndPainted, nullptr);
    return 0;
}

// Links

LRESULT CSStaticHTML::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case WM_SETTEXT:
        UpdateText(reinterpret_cast<const wchar_t*>(lParam));
        ::InvalidateRect(hWnd, nullptr, TRUE);
        return 1; // the window's own text stays
    case WM_PAINT: return OnPaintMessage();
    case WM_DROPFILES: return OnDropFilesMessage(wParam, lParam);
    case WM_NCHITTEST: return OnNcHitTest(wParam, lParam);
    case WM_SETCURSOR:
        if (bHover) return 1; // the hand stays
        break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: return OnButtonDown(uMsg, wParam, lParam);
    case WM_GETDLGCODE:
        if (IsLinkKey(wParam) && links.GetLinkCount()) return DLGC_WANTMESSAGE;
        break;
    case WM_KEYUP:
        if (bFocused && IsLinkKey(wParam) && links.GetLinkCount()) {
            SimulateLink(ctrlId);
        }
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        bFocused = uMsg == WM_SETFOCUS;
        ::InvalidateRect(hWnd, nullptr, FALSE);
        break;
    }
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

LRESULT CSStaticHTML::OnNcHitTest(WPARAM wParam, LPARAM lParam) {
    POINT pt = PointOf(lParam);
    ::MapWindowPoints(HWND_DESKTOP, hWnd, &pt, 1);
    if (!drawHTML.IsLinkArea(&links, pt.x, pt.y)) {
        if (bHover) {
            bHover = 0;
            ::InvalidateRect(hWnd, nullptr, FALSE);
        }
        return CSWnd::OnWndMessage(WM_NCHITTEST, wParam, lParam);
    }
    if (!hCursorHand) hCursorHand = ::LoadCursorW(nullptr, IDC_HAND);
    if (::GetCursor() != hCursorHand) ::SetCursor(hCursorHand);
    if (!bHover) {
        bHover = 1;
        CatchMouseOut(hWnd);
        ::InvalidateRect(hWnd, nullptr, FALSE);
    }
    return bNotify ? HTCLIENT : HTTRANSPARENT;
}

LRESULT CSStaticHTML::OnButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    const POINT pt = PointOf(lParam);
    const unsigned id = drawHTML.GetLinkAreaID(&links, pt.x, pt.y);
    if (id == 0) return 0; // the press goes no further
    // As a press on any static: the dialog gets STN_CLICKED.
    if (id == ctrlId) return CSWnd::OnWndMessage(uMsg, wParam, lParam);
    SimulateLink(id);
    return 0;
}

/// A control that was subclassed without Init has no dialog to tell.
void CSStaticHTML::SimulateLink(unsigned id) {
    if (dlg) dlg->SimulateButton(static_cast<unsigned short>(id));
}

// The title of a dialog without a caption

void PopupTitle::InitTitle(CSDlg* pDlg) {
    Init(pDlg, kCtrlId, nullptr, 0);
    wchar_t szTitle[kTitleSize] = {};
    GetText(szTitle, kTitleSize);
    pDlg->SetText(szTitle);
    ShowTitle(szTitle);
}

void PopupTitle::SetTitleFmt(const wchar_t* pszFormat, ...) {
    const bool bId = IsResourceIdArg(pszFormat) != 0;
    const ResStr str(bId ? GetResourceIdArg(pszFormat) : 0);
    wchar_t szTitle[kTitleFmtSize];
    va_list args;
    va_start(args, pszFormat);
    FormatTextV(szTitle, kTitleFmtSize, bId ? static_cast<const wchar_t*>(str) : pszFormat, args);
    va_end(args);
    ShowTitle(szTitle);
}

void PopupTitle::ShowTitle(const wchar_t* pszTitle) {
    wchar_t szMarkup[kTitleSize];
    FormatText(szMarkup, kTitleFormat, pszTitle);
    SetHTMLText(szMarkup);
}
