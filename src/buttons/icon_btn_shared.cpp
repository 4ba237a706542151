// What all icon buttons share: colours, pens, brushes, fonts.

#include "buttons/icon_btn.h"
#include "runtime/base/ownership.h"
#include "wnd/draw/draw_util.h"
#include "wnd/draw/font_util.h"

#include <atomic>

namespace {
/// Held while the shared objects are made or deleted: buttons may be built on several threads.
constinit std::atomic_flag flagSharedBusy;

auto HoldShared() {
    while (flagSharedBusy.test_and_set(std::memory_order_acquire)) ::SwitchToThread();
    return ScopeExit([] { flagSharedBusy.clear(std::memory_order_release); });
}

template <class Handle>
void DeleteAndForget(Handle& h) {
    if (h) ::DeleteObject(h);
    h = nullptr;
}
} // namespace

long IconBtn::dwRefCount = 0;
unsigned long IconBtn::dwCommonFlags = kIconCenterVertically | kIconCenterHorizontally;
int IconBtn::dxCommon = 0, IconBtn::dyCommon = 0;
COLORREF IconBtn::rgbBk[2] = {};
HBRUSH IconBtn::hbr[2] = {};
COLORREF IconBtn::rgbHover = RGB(187, 0, 0);
COLORREF IconBtn::rgbGray = 0;
COLORREF IconBtn::rgbText[2] = {};
COLORREF IconBtn::rgbLink[2] = {RGB(0, 0, 187), 0xFFFFFF};
HFONT IconBtn::hFontText = nullptr, IconBtn::hFontLink = nullptr;
SIZE IconBtn::sizeIcon{};
SIZE IconBtn::sizeGap{2, 2};
HCURSOR IconBtn::hCursorHand = nullptr;
HPEN IconBtn::penHoverDotted = nullptr, IconBtn::penHoverDashed = nullptr;
HPEN IconBtn::penHoverSolid = nullptr, IconBtn::penLinkDotted = nullptr;
HPEN IconBtn::penLinkDashed = nullptr, IconBtn::penLinkSolid = nullptr;
HPEN IconBtn::penGrayDotted = nullptr, IconBtn::penGrayDashed = nullptr;
HPEN IconBtn::penBkg = nullptr, IconBtn::penFocusText = nullptr;
HPEN IconBtn::penFocusLink = nullptr, IconBtn::penFocusBkg = nullptr;
HBRUSH IconBtn::hbrBkg = nullptr;

bool IconBtn::CountReference(unsigned long flags, int dx, int dy) {
    if (::InterlockedIncrement(&dwRefCount) != 1) return false;
    dwCommonFlags = flags;
    dxCommon = dx;
    dyCommon = dy;
    return true;
}

void IconBtn::ReserveCommon(unsigned long flags, int dx, int dy) { CountReference(flags, dx, dy); }

void IconBtn::Initialize(unsigned long flags, int dx, int dy) {
    auto held = HoldShared(); // also from a last button that is just going
    CountReference(flags, dx, dy);
    if (!hbrBkg) MakeShared();
}

void IconBtn::MakeFonts() {
    auto* hfontGui = static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    if (!hFontText) hFontText = hfontGui;
    if (!hFontLink) hFontLink = hfontGui;
}

void IconBtn::MakeShared() {
    rgbBk[0] = ::GetSysColor(COLOR_BTNFACE);
    rgbBk[1] = ::GetSysColor(COLOR_BTNHIGHLIGHT);
    for (int n : {0, 1}) hbr[n] = ::CreateSolidBrush(rgbBk[n]);
    rgbGray = ::GetSysColor(COLOR_GRAYTEXT);
    rgbText[0] = rgbText[1] = ::GetSysColor(COLOR_BTNTEXT);
    MakeFonts();
    sizeIcon = {::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON)};
    penHoverDotted = CreateDottedPen(rgbHover);
    penHoverDashed = CreateDashedPen(rgbHover);
    penHoverSolid = CreateSolidPen(rgbHover);
    penLinkDotted = CreateDottedPen(rgbLink[0]);
    penLinkDashed = CreateDashedPen(rgbLink[0]);
    penLinkSolid = CreateSolidPen(rgbLink[0]);
    penGrayDotted = CreateDottedPen(rgbGray);
    penGrayDashed = CreateDashedPen(rgbGray);
    penBkg = CreateSolidPen(rgbBk[0]);
    penFocusText = CreateDottedPen(rgbText[0]);
    penFocusLink = CreateSolidPen(rgbText[0]);
    penFocusBkg = CreateDottedPen(rgbBk[0]);
    hbrBkg = ::CreateSolidBrush(rgbBk[0]);
}

void IconBtn::Uninitialize() {
    auto held = HoldShared();
    if (::InterlockedDecrement(&dwRefCount) >= 1) return;
    for (HPEN* ppen : {&penHoverDotted, &penHoverDashed, &penHoverSolid, &penLinkDotted,
                       &penLinkDashed, &penLinkSolid, &penGrayDotted, &penGrayDashed, &penBkg,
                       &penFocusText, &penFocusLink, &penFocusBkg}) {
        DeleteAndForget(*ppen);
    }
    for (HBRUSH* phbr : {&hbr[0], &hbr[1], &hbrBkg}) DeleteAndForget(*phbr);
}

void IconBtn::SetTextFontProperties(int addHeight, long weight, int italic, int strikeOut,
                                    const wchar_t* faceName) {
    MakeFonts(); // no button may have been there yet
    DoSetFontProperties(hFontText, hFontText, addHeight, weight, italic, strikeOut, faceName);
}

void IconBtn::SetLinkFontProperties(int addHeight, long weight, int italic, int strikeOut,
                                    const wchar_t* faceName) {
    MakeFonts(); // no button may have been there yet
    DoSetFontProperties(hFontLink, hFontLink, addHeight, weight, italic, strikeOut, faceName);
}

void IconBtn::DoSetFontProperties(HFONT& target, HFONT& source, int addHeight, long weight,
                                  int italic, int strikeOut, const wchar_t* faceName) {
    LOGFONTW lf{};
    if (!source || !::GetObjectW(source, sizeof(lf), &lf)) return;
    AddToFontHeight(lf, addHeight);
    if (weight) lf.lfWeight = weight;
    if (italic) lf.lfItalic = TRUE;
    if (strikeOut) lf.lfStrikeOut = TRUE;
    DeleteAndForget(target); // may be the source, whose description is read
    target = CreateFontWithFace(lf, faceName);
}
