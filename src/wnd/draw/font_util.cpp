#include "wnd/draw/font_util.h"

void AddToFontHeight(LOGFONTW& lf, LONG n) { lf.lfHeight += lf.lfHeight > 0 ? n : -n; }

HFONT CreateFontWithFace(const LOGFONTW& lf, const wchar_t* pszFace) {
    if (!pszFace || !*pszFace) return ::CreateFontIndirectW(&lf);
    LOGFONTW lfFace = lf;
    ::lstrcpynW(lfFace.lfFaceName, pszFace, LF_FACESIZE);
    HFONT hfont = ::CreateFontIndirectW(&lfFace);
    return hfont ? hfont : ::CreateFontIndirectW(&lf);
}
