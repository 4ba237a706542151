#include "runtime/text/str_case.h"
#include "runtime/text/str_chars.h"

#include <windows.h>

namespace {
/// The platform's functions take one character in place of a pointer if all the rest is 0.
wchar_t* CharAsPointer(wchar_t ch) {
    return reinterpret_cast<wchar_t*>(static_cast<ULONG_PTR>(ch));
}

wchar_t PointerAsChar(const wchar_t* psz) {
    return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(psz));
}

wchar_t Rotated(wchar_t ch, wchar_t chFirst) {
    constexpr int kLetters = 26, kPlaces = 13;
    return static_cast<wchar_t>(chFirst + (ch - chFirst + kPlaces) % kLetters);
}
} // namespace

wchar_t CharToLower(wchar_t ch) { return PointerAsChar(::CharLowerW(CharAsPointer(ch))); }

wchar_t CharToUpper(wchar_t ch) { return PointerAsChar(::CharUpperW(CharAsPointer(ch))); }

void CharToLower(wchar_t* pch) {
    if (pch) *pch = CharToLower(*pch);
}

void CharToUpper(wchar_t* pch) {
    if (pch) *pch = CharToUpper(*pch);
}

void StrToLower(wchar_t* pszText) {
    if (pszText) ::CharLowerW(pszText);
}

void StrToUpper(wchar_t* pszText) {
    if (pszText) ::CharUpperW(pszText);
}

// QUIRK: only ASCII letters begin a word, so that of "\u00E9tat" the "t" is raised.
// Test: StrCapitalizeAll.OnlyAsciiLettersBeginAWord
void StrCapitalizeAll(wchar_t* pszText) {
    if (!pszText) return;
    for (wchar_t* p = pszText; *p;) {
        while (*p && !IsAlphaChar(*p)) ++p;
        if (*p) CharToUpper(p);
        while (*p && !IsWhiteChar(*p)) ++p;
        while (IsWhiteChar(*p)) ++p;
    }
}

void StrRot13(wchar_t* pszText) {
    for (wchar_t* p = pszText; p && *p; ++p) {
        if (IsAlphaChar(*p)) *p = Rotated(*p, IsCapitalChar(*p) ? L'A' : L'a');
    }
}
