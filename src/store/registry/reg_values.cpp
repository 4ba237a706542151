#include "store/registry/reg_values.h"
#include "runtime/text/str_format.h"

#include <new>
#include <utility>

namespace {
constexpr std::size_t kFieldNameSize = 256; // of a prefix and a side's letter, with the terminator
constexpr unsigned kFontSize = 92;          // bytes that are stored
static_assert(sizeof(LOGFONTW) == kFontSize); // stored as it stands in memory

/// The numbers are values of their own, so that those that did not change are not written.
struct RectSide {
    const wchar_t* pszFormat;
    LONG RECT::*pnSide;
};
constexpr RectSide kSides[] = {
    {L"%sL", &RECT::left},
    {L"%sT", &RECT::top},
    {L"%sR", &RECT::right},
    {L"%sB", &RECT::bottom},
};
} // namespace

void RegGetRect(RegKey& key, RECT* prc, const wchar_t* pszPrefix) {
    if (!prc) return;
    for (const RectSide& side : kSides) {
        wchar_t szName[kFieldNameSize];
        FormatText(szName, side.pszFormat, pszPrefix ? pszPrefix : L"");
        prc->*side.pnSide = key.GetInt(szName, prc->*side.pnSide);
    }
}

int RegPutRect(RegKey& key, const RECT* prc, const wchar_t* pszPrefix) {
    if (!prc) return 0;
    bool bAll = true;
    for (const RectSide& side : kSides) {
        wchar_t szName[kFieldNameSize];
        FormatText(szName, side.pszFormat, pszPrefix ? pszPrefix : L"");
        if (!key.PutDword(szName, static_cast<DWORD>(prc->*side.pnSide), 1)) bAll = false;
    }
    return bAll;
}

int RegGetLogFont(RegKey& key, const wchar_t* pszName, LOGFONTW*& plf) {
    if (key.GetBinSize(pszName) == kFontSize && (plf || RegNewLogFont(plf)) &&
        key.GetBin(pszName, plf, kFontSize)) {
        return 1;
    }
    RegDelLogFont(plf);
    return 0;
}

int RegPutLogFont(RegKey& key, const wchar_t* pszName, const LOGFONTW* plf) {
    if (!plf) return key.DelValue(pszName);
    return key.PutBin(pszName, plf, kFontSize, REG_BINARY);
}

int RegNewLogFont(LOGFONTW*& plf) {
    plf = new (std::nothrow) LOGFONTW;
    return plf != nullptr;
}

void RegDelLogFont(LOGFONTW*& plf) { delete std::exchange(plf, nullptr); }
