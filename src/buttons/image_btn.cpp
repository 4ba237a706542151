#include "buttons/image_btn.h"
#include "buttons/owner_draw.h"
#include "runtime/base/current_product.h"
#include "wnd/core/wnd_input.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/draw/csdc.h"

#include <cstdlib>

namespace {
constexpr unsigned long kTransparent = 0xFF00FF; // magenta
constexpr int kBitsOfAFrame = 3;
constexpr int kFrameMask = (1 << kBitsOfAFrame) - 1;
} // namespace

/// How a button is drawn now, besides its hover.
struct ImageBtn::Look {
    bool bPressed;
    bool bDisabled;
    bool bFocused; // and not disabled
};

HCURSOR ImageBtn::hCursorHand = nullptr;

void ImageBtnDescriptor::Init(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover,
                              int idPressed, int idDisabled, int idFocus, unsigned long flags) {
    const int ids[] = {idNormal, idHover, idPressed, idDisabled, idFocus};
    for (int n = 0; n < 5; ++n) idIcon[n] = ids[n];
    hInstance = hinst;
    cxImage = cx;
    cyImage = cy;
    dwFlags = flags;
}

ImageBtnBmp::ImageBtnBmp(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
                         unsigned long flags) {
    Init(cx, cy, hinst, 0, 0, 0, 0, 0, flags);
    idBitmap = idBmp;
    wStateMap = stateMap;
}

ImageBtnIcon::ImageBtnIcon(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover,
                           int idPressed, int idDisabled, int idFocus, unsigned long flags) {
    Init(cx, cy, hinst, idNormal, idHover, idPressed, idDisabled, idFocus, flags);
}

ImageBtn::ImageBtn(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
                   unsigned long flags) {
    LoadBmp(cx, cy, hinst, idBmp, stateMap, flags);
}

ImageBtn::ImageBtn(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
                   int idDisabled, int idFocus, unsigned long flags) {
    LoadIconW(cx, cy, hinst, idNormal, idHover, idPressed, idDisabled, idFocus, flags);
}

ImageBtn::ImageBtn(const ImageBtnDescriptor& b) {
    if (b.idBitmap) {
        LoadBmp(b.cxImage, b.cyImage, b.hInstance, b.idBitmap, b.wStateMap, b.dwFlags);
    } else if (b.idIcon[0]) {
        LoadIconW(b.cxImage, b.cyImage, b.hInstance, b.idIcon[0], b.idIcon[1], b.idIcon[2],
                  b.idIcon[3], b.idIcon[4], b.dwFlags);
    }
}

// Images

void ImageBtn::BeginLoad(int cx, int cy, int bIcons) {
    bIconMode = bIcons;
    cxImage = cx;
    cyImage = cy;
    imageList.Create(cx, cy, ILC_COLOR32 | ILC_MASK, 1, 1);
}

void ImageBtn::LoadBmp(int cx, int cy, HINSTANCE hinst, int idBmp, unsigned short stateMap,
                       unsigned long flags) {
    BeginLoad(cx, cy, 0);
    imageList.AddFromBitmap(idBmp, hinst, kTransparent);
    unsigned nMap = stateMap ? stateMap : kAllFrames;
    for (int* piState : {&iNormal, &iHover, &iPressed, &iDisabled, &iFocus}) {
        *piState = static_cast<int>(nMap & kFrameMask) - 1;
        nMap >>= kBitsOfAFrame;
    }
    const SIZE size = imageList.GetBitmapSize();
    if (size.cy > 0 && cx > 0) {
        const int nLast = size.cx / cx - 1;
        // The normal frame is not among them: what the strip lacks of it is just not drawn.
        for (int* piState : {&iHover, &iPressed, &iDisabled, &iFocus}) {
            if (*piState > nLast) *piState = -1;
        }
    }
    dwFlags = flags;
    bChecked = bHover = 0;
}

int ImageBtn::AddState(int idIcon, HINSTANCE hinst) {
    return idIcon ? imageList.ReplaceIcon(-1, idIcon, hinst) : -1;
}

void ImageBtn::LoadIconW(int cx, int cy, HINSTANCE hinst, int idNormal, int idHover, int idPressed,
                         int idDisabled, int idFocus, unsigned long flags) {
    BeginLoad(cx, cy, 1);
    if (idNormal < 0) hinst = GetLibraryInstance();
    iNormal = AddState(std::abs(idNormal), hinst);
    iHover = AddState(std::abs(idHover), hinst);
    iPressed = AddState(std::abs(idPressed), hinst);
    iDisabled = AddState(std::abs(idDisabled), hinst);
    iFocus = AddState(std::abs(idFocus), hinst);
    dwFlags = flags;
    bChecked = bHover = 0;
}

// State

void ImageBtn::Check(int bOn) {
    bChecked = bOn;
    if (IsReady()) InvalidateErase(nullptr); // a null window would be all windows of the screen
}

void ImageBtn::OnInit() { MakeOwnerDrawn(*this); }

LRESULT ImageBtn::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_SETCURSOR && bHover) return 1;
    if (uMsg == WM_DROPFILES) return OnDropFilesMessage(wParam, lParam);
    LRESULT lResult = CSWnd::OnWndMessage(uMsg, wParam, lParam);
    switch (uMsg) {
    case WM_MOUSEMOVE: OnMouseMove(wParam, lParam); break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
    case WM_MOUSELEAVE: EndHover(); break;
    // The focus frame may lie around the picture, where no other layer draws over it.
    case WM_KILLFOCUS:
        if (IsReady()) InvalidateErase(nullptr);
        break;
    }
    return lResult;
}

void ImageBtn::OnMouseMove(WPARAM wParam, LPARAM lParam) {
    if (!IsReady()) return;
    POINT pt{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    if (dlg) {
        ::MapWindowPoints(hWnd, *dlg, &pt, 1);
        dlg->OnMouseMove(wParam, pt.x, pt.y);
        if (!IsReady()) return;
    }
    if (!hCursorHand) hCursorHand = ::LoadCursorW(nullptr, IDC_HAND);
    ::SetCursor(hCursorHand);
    if (bHover) return;
    bHover = 1;
    CatchMouseOut(hWnd);
    InvalidateErase(nullptr);
}

void ImageBtn::EndHover() {
    if (!bHover) return;
    bHover = 0;
    if (IsReady()) InvalidateErase(nullptr);
}

// Painting

void ImageBtn::DrawLayer(int index, HDC hdc, int x, int y) {
    if (index >= 0) imageList.Draw(index, hdc, x, y, ILD_TRANSPARENT);
}

void ImageBtn::OnDrawItem(DRAWITEMSTRUCT* pItem) {
    CSDC dc(pItem->hDC, 1);
    Look look{};
    look.bDisabled = (pItem->itemState & ODS_DISABLED) != 0;
    look.bFocused = (pItem->itemState & ODS_FOCUS) != 0 && !look.bDisabled;
    look.bPressed = (pItem->itemState & ODS_SELECTED) != 0 ||
                    (SendMsg(BM_GETSTATE, 0, 0) & BST_CHECKED) != 0 || bChecked;
    const RECT& rc = pItem->rcItem;
    int x = rc.left, y = rc.top;
    if (dwFlags & kImageCenterHorizontally) x += (rc.right - cxImage - rc.left) / 2;
    if (dwFlags & kImageCenterVertically) y += (rc.bottom - cyImage - rc.top) / 2;
    if (bIconMode) {
        DrawLayer(ChooseIcon(look), dc, x, y);
    } else {
        DrawFrames(look, dc, x, y);
    }
}

int ImageBtn::ChooseIcon(const Look& look) const {
    const int index = look.bFocused    ? iFocus
                      : look.bPressed  ? iPressed
                      : look.bDisabled ? iDisabled
                      : bHover         ? iHover
                                       : -1;
    if (index != -1) return index;
    return bHover && !look.bDisabled && iHover != -1 ? iHover : iNormal;
}

void ImageBtn::DrawFrames(const Look& look, HDC hdc, int x, int y) {
    DrawLayer(iNormal, hdc, x, y);
    if (bHover && !look.bDisabled) DrawLayer(iHover, hdc, x, y);
    if (look.bPressed && iPressed != -1) {
        DrawLayer(iPressed, hdc, x, y);
    } else if (look.bDisabled) {
        DrawLayer(iDisabled, hdc, x, y);
    }
    if (look.bFocused && !(dwFlags & kImageNoFocusFrame)) DrawLayer(iFocus, hdc, x, y);
}
