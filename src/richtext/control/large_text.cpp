#include "richtext/control/large_text.h"
#include "wnd/draw/font_util.h"

LargeStaticTextCtl::~LargeStaticTextCtl() {
    if (hFont) ::DeleteObject(hFont);
}

void LargeStaticTextCtl::Setup(int multiplier, int add, long weight, const wchar_t* faceName) {
    nMultiplier = multiplier;
    nAdd = add;
    lWeight = weight;
    pszFaceName = faceName;
    LOGFONTW lf{};
    if (!::GetObjectW(::GetStockObject(ANSI_VAR_FONT), sizeof(lf), &lf)) return;
    lf.lfQuality = ANTIALIASED_QUALITY;
    if (weight != FW_NORMAL) lf.lfWeight = weight;
    if (multiplier != 0 && multiplier != 1) lf.lfHeight *= multiplier;
    AddToFontHeight(lf, add);
    if (hFont) ::DeleteObject(hFont);
    hFont = CreateFontWithFace(lf, faceName);
}

void LargeStaticTextCtl::Init(HWND hwndDlg, unsigned int nId) {
    ::SendDlgItemMessageW(hwndDlg, static_cast<int>(nId), WM_SETFONT,
                          reinterpret_cast<WPARAM>(hFont), TRUE);
}

LargePageTitle::LargePageTitle() : LargeStaticTextCtl(2, 2, FW_BOLD, L"Segoe") {}
