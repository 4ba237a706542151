#include "buttons/icon_btn.h"
#include "buttons/owner_draw.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/menu_text.h"
#include "wnd/core/wnd_input.h"
#include "wnd/draw/csdc.h"
#include "wnd/draw/font_util.h"

#include <algorithm>
#include <cwchar>

namespace {
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr int kTextSize = 128;                // characters of a label, with the terminator
constexpr int kFocusCorner = 4;               // pixels, of the rounded frame
constexpr int kFocusGapX = 2, kFocusGapY = 1; // pixels around the text
constexpr WORD kMouseHasLeft = 0xFFFF;        // both coordinates, as the dialog's handler posts it
constexpr UINT kLabelFormat = DT_SINGLELINE | DT_VCENTER | DT_NOCLIP;
} // namespace

/// How a button is drawn now.
struct IconBtn::Look {
    bool bSelected;
    bool bFocused;
    bool bDisabled;
    bool bChecked;
    const wchar_t* pszText;

    unsigned FaceState() const {
        unsigned uState = DFCS_BUTTONPUSH | DFCS_ADJUSTRECT;
        if (bChecked) uState |= DFCS_CHECKED;
        if (bSelected) uState |= DFCS_PUSHED;
        if (bDisabled) uState |= DFCS_INACTIVE;
        return uState;
    }
};

IconBtn::IconBtn(unsigned icon, unsigned hoverIcon, unsigned long flags, int x, int y)
    : xPos(x), yPos(y), dwFlags(flags) {
    hIcon = LoadSmallIcon(icon, sizeIconNormal);
    hIconHover = LoadSmallIcon(hoverIcon, sizeIconHover);
    if (x == kCommon) {
        xPos = dxCommon;
        yPos = dyCommon;
    }
    if (flags == kCommon) dwFlags = dwCommonFlags;
    Initialize(dwFlags, xPos, yPos);
}

IconBtn::~IconBtn() {
    if (hFontThis) ::DeleteObject(hFontThis);
    Uninitialize();
    if (hIcon) ::DestroyIcon(hIcon);
    if (hIconHover) ::DestroyIcon(hIconHover);
}

HICON IconBtn::LoadSmallIcon(unsigned icon, SIZE& size) {
    if (!icon) return nullptr;
    size = {::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON)};
    const ResourceRef res =
        ResolveResourceId(static_cast<int>(icon), nullptr, DefaultModule::kApplication);
    return static_cast<HICON>(
        ::LoadImageW(res.hinst, res.pszName, IMAGE_ICON, size.cx, size.cy, LR_DEFAULTCOLOR));
}

IconBtn::operator HICON() const { return this ? hIcon : nullptr; }

void IconBtn::OnInit() { MakeOwnerDrawn(*this); }

void IconBtn::DrawButton(HDC hdc, RECT* prc, unsigned state) {
    ::DrawFrameControl(hdc, prc, DFC_BUTTON, state);
}

void IconBtn::SetThisFontProperties(int addHeight, long weight, int italic, int strikeOut,
                                    const wchar_t* faceName) {
    DoSetFontProperties(hFontThis, IsLink() ? hFontLink : hFontText, addHeight, weight, italic,
                        strikeOut, faceName);
}

// Messages

LRESULT IconBtn::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_SETCURSOR && bHover) return 1;
    if (uMsg == WM_DROPFILES) return OnDropFilesMessage(wParam, lParam);
    LRESULT lResult = CSWnd::OnWndMessage(uMsg, wParam, lParam);
    switch (uMsg) {
    case WM_ENABLE: Repaint(1); break;
    case BM_SETCHECK:
        dwCheck = (dwCheck & ~1ull) | (wParam & 1);
        Repaint(0);
        break;
    case BM_GETCHECK:
    case BM_GETSTATE: return (lResult & ~LRESULT{1}) | static_cast<LRESULT>(dwCheck & 1);
    case WM_MOUSEMOVE:
        if (!IsLink()) break;
        if (LOWORD(lParam) == kMouseHasLeft && HIWORD(lParam) == kMouseHasLeft) {
            SetHover(0);
            break;
        }
        if (!hCursorHand) hCursorHand = ::LoadCursorW(nullptr, IDC_HAND);
        ::SetCursor(hCursorHand);
        SetHover(1);
        break;
    case WM_MOUSELEAVE: SetHover(0); break;
    }
    return lResult;
}

void IconBtn::SetHover(int bOn) {
    if (bHover == bOn) return;
    bHover = bOn;
    if (bOn && IsReady()) CatchMouseOut(hWnd);
    Repaint(0);
}

/// A null window would be all windows of the screen.
void IconBtn::Repaint(int bErase) {
    if (IsReady()) Invalidate(nullptr, bErase);
}

// Painting

void IconBtn::DrawFocus(HDC hdc, RECT& rc) {
    ::RoundRect(hdc, rc.left, rc.top, rc.right, rc.bottom, kFocusCorner, kFocusCorner);
}

void IconBtn::DrawLink(HDC hdc, RECT& rc) {
    ::MoveToEx(hdc, rc.left + kFocusGapX, rc.bottom, nullptr);
    ::LineTo(hdc, rc.right - kFocusGapX, rc.bottom);
}

/// Of the icon, and with bText of the text, which comes without its "&".
SIZE IconBtn::MeasureContent(HDC hdc, const wchar_t* pszText, bool bText) const {
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, pszText, static_cast<int>(std::wcslen(pszText)), &size);
    if (!bText) size = {};
    if (!hIcon) return size;
    return {size.cx + sizeIcon.cx + (bText ? sizeGap.cx : 0), std::max(size.cy, sizeIcon.cy)};
}

RECT IconBtn::PlaceContent(const RECT& rcItem, SIZE size, bool bShifted) const {
    int x = rcItem.left + (rcItem.right - rcItem.left - size.cx) / 2;
    int y = rcItem.top + (rcItem.bottom - rcItem.top - size.cy) / 2;
    if (!(dwFlags & kIconCenterVertically)) y = yPos;
    if (!(dwFlags & kIconCenterHorizontally)) x = xPos;
    if (bShifted) {
        ++x;
        ++y;
    }
    return {x, y, x + size.cx, y + size.cy};
}

void IconBtn::OnDrawItem(DRAWITEMSTRUCT* pItem) {
    CSDC dc(pItem->hDC, 1);
    // Text and check are read where they lie: each message to the window goes the way of its
    // subclassing, which costs more than all of the drawing.
    wchar_t szText[kTextSize] = {}, szShown[kTextSize];
    ::DefWindowProcW(hWnd, WM_GETTEXT, kTextSize, reinterpret_cast<LPARAM>(szText));
    std::wmemcpy(szShown, szText, kTextSize);
    RemoveMenuChar(szShown);
    const Look look{.bSelected = (pItem->itemState & ODS_SELECTED) != 0,
                    .bFocused = (pItem->itemState & ODS_FOCUS) != 0,
                    .bDisabled = (pItem->itemState & ODS_DISABLED) != 0,
                    .bChecked = (dwCheck & 1) != 0, // what BM_GETSTATE tells
                    .pszText = szText};
    const bool bLink = IsLink();

    ::SetBkMode(dc, OPAQUE);
    ::SetBkColor(dc, rgbBk[bLink ? 0 : look.bSelected]);
    ::SelectObject(dc, hFontThis ? hFontThis : bLink ? hFontLink : hFontText);
    const bool bText = *szText != 0;
    const SIZE size = MeasureContent(dc, szShown, bText);
    RECT rc = PlaceContent(pItem->rcItem, size, (look.bSelected || look.bChecked) && !bLink);
    const POINT ptIcon{rc.left, rc.top};
    if (hIcon && bText) rc.left += sizeIcon.cx + sizeGap.cx;

    if (!bLink) DrawButton(dc, &pItem->rcItem, look.FaceState());
    ::SelectObject(dc, ::GetStockObject(NULL_BRUSH));
    if (bText) DrawLabel(dc, look, rc);
    if (!bLink) {
        ::SelectObject(dc, look.bFocused ? penFocusText : penFocusBkg);
        DrawFocus(dc, rc);
    }
    if (hIcon) {
        ::DrawIconEx(dc, ptIcon.x, ptIcon.y, bHover && hIconHover ? hIconHover : hIcon, sizeIcon.cx,
                     sizeIcon.cy, 0, hbrBkg, DI_NORMAL);
    }
}

/// The text in rc, which becomes the frame around it; and for a link the frame or the underline,
/// after those of the painting before are wiped off.
void IconBtn::DrawLabel(HDC hdc, const Look& look, RECT& rc) {
    if (look.bDisabled && !look.bSelected) {
        RECT rcShadow{rc.left + 1, rc.top + 1, rc.right + 1, rc.bottom + 1};
        ::SetTextColor(hdc, kWhite);
        ::DrawTextW(hdc, look.pszText, -1, &rcShadow, kLabelFormat);
    }
    const bool bLink = IsLink();
    ::SetTextColor(hdc, look.bDisabled    ? rgbGray
                        : bLink && bHover ? rgbHover
                        : bLink           ? rgbLink[look.bSelected]
                                          : rgbText[look.bSelected]);
    ::DrawTextW(hdc, look.pszText, -1, &rc, kLabelFormat);
    ::DrawTextW(hdc, look.pszText, -1, &rc, kLabelFormat | DT_CALCRECT);
    ::InflateRect(&rc, kFocusGapX, kFocusGapY);
    if (!bLink) return;
    ::SelectObject(hdc, penBkg);
    DrawFocus(hdc, rc);
    DrawLink(hdc, rc);
    if (look.bFocused) {
        ::SelectObject(hdc, bHover ? penHoverDotted : penLinkDotted);
        DrawFocus(hdc, rc);
    } else {
        ::SelectObject(hdc, look.bDisabled ? penGrayDashed : bHover ? penHoverSolid : penLinkSolid);
        DrawLink(hdc, rc);
    }
}

// Buttons of captions

CSCloseBtnForDlg::CSCloseBtnForDlg()
    : IconBtn(static_cast<unsigned>(-IDI_DLG_CLOSE), static_cast<unsigned>(-IDI_DLG_CLOSE_HOVER),
              kCommon, kCommon, kCommon) {}

CSMinimizeBtnForDlg::CSMinimizeBtnForDlg()
    : IconBtn(static_cast<unsigned>(-IDI_DLG_MINIMIZE),
              static_cast<unsigned>(-IDI_DLG_MINIMIZE_HOVER), kCommon, kCommon, kCommon) {}
