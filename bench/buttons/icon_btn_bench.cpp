// What a repaint of an icon button costs beside its drawing calls alone. `bench_icon_btn`.

#include "../measure.h"
#include "buttons/icon_btn.h"
#include "resources/resource_ids.h"

#include <windows.h>

namespace {
constexpr int kWidth = 120, kHeight = 30;
constexpr int kRepaints = 20; // in less time than the system gives a program at once
constexpr RECT kItem{0, 0, kWidth, kHeight};
constexpr const wchar_t* kText = L"&Open the page";
constexpr const wchar_t* kMeasured = L"Open the page";
constexpr int kMeasuredLength = 13;

/// What both paint with.
class BenchBtn : public IconBtn {
  public:
    explicit BenchBtn(unsigned long flags)
        : IconBtn(static_cast<unsigned>(-IDI_DLG_CLOSE), 0, flags, 2, 2) {}

    /// The drawing calls of one that is up, without focus and mouse, in a context that is left as
    /// it was.
    static void DrawBare(HDC hdc, HICON hicon, bool bLink) {
        ::SaveDC(hdc);
        ::SetBkMode(hdc, OPAQUE);
        ::SetBkColor(hdc, rgbBk[0]);
        ::SelectObject(hdc, bLink ? hFontLink : hFontText);
        SIZE size{};
        ::GetTextExtentPoint32W(hdc, kMeasured, kMeasuredLength, &size);
        int cx = size.cx + sizeGap.cx + sizeIcon.cx, cy = std::max(size.cy, sizeIcon.cy);
        POINT pt{(kWidth - cx) / 2, (kHeight - cy) / 2};
        RECT rc{pt.x + sizeIcon.cx + sizeGap.cx, pt.y, pt.x + cx, pt.y + cy};
        if (!bLink) {
            RECT rcFace = kItem;
            ::DrawFrameControl(hdc, &rcFace, DFC_BUTTON, DFCS_BUTTONPUSH | DFCS_ADJUSTRECT);
        }
        ::SelectObject(hdc, ::GetStockObject(NULL_BRUSH));
        ::SetTextColor(hdc, bLink ? rgbLink[0] : rgbText[0]);
        constexpr UINT kFormat = DT_SINGLELINE | DT_VCENTER | DT_NOCLIP;
        ::DrawTextW(hdc, kText, -1, &rc, kFormat);
        ::DrawTextW(hdc, kText, -1, &rc, kFormat | DT_CALCRECT);
        rc = {rc.left - 2, rc.top - 1, rc.right + 2, rc.bottom + 1};
        ::SelectObject(hdc, bLink ? penBkg : penFocusBkg);
        ::RoundRect(hdc, rc.left, rc.top, rc.right, rc.bottom, 4, 4);
        if (bLink) {
            for (HPEN pen : {penBkg, penLinkSolid}) {
                ::SelectObject(hdc, pen);
                ::MoveToEx(hdc, rc.left + 2, rc.bottom, nullptr);
                ::LineTo(hdc, rc.right - 2, rc.bottom);
            }
        }
        ::DrawIconEx(hdc, pt.x, pt.y, hicon, sizeIcon.cx, sizeIcon.cy, 0, hbrBkg, DI_NORMAL);
        ::RestoreDC(hdc, -1);
    }
};

bool Measure(const char* pszWhat, unsigned long dwFlags) {
    BenchBtn button(dwFlags);
    HWND hwnd = ::CreateWindowExW(0, L"BUTTON", kText, WS_POPUP | BS_OWNERDRAW, 0, 0, kWidth,
                                  kHeight, nullptr, nullptr, nullptr, nullptr);
    HDC hdcScreen = ::GetDC(nullptr), hdc = ::CreateCompatibleDC(hdcScreen);
    HBITMAP hbm = ::CreateCompatibleBitmap(hdcScreen, kWidth, kHeight);
    ::ReleaseDC(nullptr, hdcScreen);
    HGDIOBJ hbmBefore = ::SelectObject(hdc, hbm);
    button.Subclass(hwnd);
    auto Repaint = [&] {
        for (int i = 0; i < kRepaints; ++i) {
            DRAWITEMSTRUCT item{};
            item.CtlType = ODT_BUTTON;
            item.hwndItem = hwnd;
            item.hDC = hdc;
            item.rcItem = kItem;
            button.OnDrawItem(&item);
            ::GdiFlush();
        }
    };
    auto DrawBare = [&] {
        for (int i = 0; i < kRepaints; ++i) {
            BenchBtn::DrawBare(hdc, button, dwFlags & kIconLink);
            ::GdiFlush();
        }
    };
    constexpr int kTurns = 401;
    bool bOk = Report(pszWhat, Compare(kTurns, Repaint, DrawBare), 1.1, true);
    button.Unsubclass();
    ::DestroyWindow(hwnd);
    ::SelectObject(hdc, hbmBefore);
    ::DeleteDC(hdc);
    ::DeleteObject(hbm);
    return bOk;
}
} // namespace

int main() {
    constexpr unsigned long kCentred = kIconCenterVertically | kIconCenterHorizontally;
    bool bOk = Measure("20 repaints of a plain icon button / bare drawing", kCentred);
    bOk &= Measure("20 repaints of a link / bare drawing", kCentred | kIconLink);
    return bOk ? 0 : 1;
}
