#include "runtime/text/str_chars.h"

#include <windows.h>
#include <cwchar>

namespace {
constexpr AsciiSet kWhite = AsciiSet(L"\t \n \r").Add(L' ', L' ');
constexpr AsciiSet kCapital = AsciiSet().Add(L'A', L'Z');
constexpr AsciiSet kAlpha = AsciiSet(kCapital).Add(L'a', L'z');
constexpr AsciiSet kNum = AsciiSet().Add(L'0', L'9');
constexpr AsciiSet kAlphaNum = AsciiSet(kAlpha).Add(L'0', L'9');
constexpr AsciiSet kHex = AsciiSet(kNum).Add(L'A', L'F').Add(L'a', L'f');
constexpr wchar_t kLastControl = 31, kEndOfFile = 26, kDelete = 127;
constexpr AsciiSet kCode = AsciiSet().Add(0, kLastControl).Add(kDelete, kDelete);
constexpr AsciiSet kPrintable =
    AsciiSet(L"\t \n \f \r").Add(kEndOfFile, kEndOfFile).Add(L' ', kDelete - 1);
// QUIRK: "#", "$", "%", "&", "<", ">", "@" and "_" are no punctuation, "=", "^" and "~" are.
// Test: CharSets.TableOfAllRows
constexpr AsciiSet kPunctuation(L"! \" ' ( ) * + , - . / : ; = ? [ \\ ] ^ ` { | } ~");
// QUIRK: the blank is in this set and the double quote is not. Test: CharSets.TableOfAllRows
constexpr AsciiSet kMisc =
    AsciiSet(L"! # $ % & ' ( ) * + , - . / : ; < = > ? @ [ \\ ] ^ _ ` { | } ~").Add(L' ', L' ');
} // namespace

int IsWhiteChar(wchar_t ch) { return kWhite.Has(ch); }
int IsAlphaChar(wchar_t ch) { return kAlpha.Has(ch); }
int IsCapitalChar(wchar_t ch) { return kCapital.Has(ch); }
int IsNumChar(wchar_t ch) { return kNum.Has(ch); }
int IsAlphaNumChar(wchar_t ch) { return kAlphaNum.Has(ch); }
int IsHexChar(wchar_t ch) { return kHex.Has(ch); }
int IsCodeChar(wchar_t ch) { return kCode.Has(ch); }
int IsPrintableChar(wchar_t ch) { return ch > 127 || kPrintable.Has(ch); }
int IsPrintableChar(char ch) {
    // Through 8 bits without a sign: 128 to 255 would be negative otherwise.
    return IsPrintableChar(static_cast<wchar_t>(static_cast<unsigned char>(ch)));
}
int IsPunctuationChar(wchar_t ch) { return kPunctuation.Has(ch); }
int IsMiscChar(wchar_t ch) { return kMisc.Has(ch); }

void MakeStrPrintable(wchar_t* pszText, unsigned n) {
    if (!pszText) return;
    for (unsigned i = 0; i < n; ++i) {
        if (!IsPrintableChar(pszText[i])) pszText[i] = L'.';
    }
}

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

namespace {
template <class Char>
int SkipToQuoted(Char*& p) {
    if (!p) return 0;
    p = SkipBlanksAndTabs(p);
    if (*p != L'"') return 0;
    p = SkipBlanksAndTabs(p + 1);
    return 1;
}
} // namespace

void StrTrimW(wchar_t* pszText) { TrimStr(pszText); }

void TrimStr(wchar_t* pszText) {
    if (!pszText) return;
    const wchar_t* pFirst = pszText;
    while (IsWhiteChar(*pFirst)) ++pFirst;
    const wchar_t* pEnd = pFirst + std::wcslen(pFirst);
    while (pEnd > pFirst && IsWhiteChar(pEnd[-1])) --pEnd;
    auto cch = static_cast<std::size_t>(pEnd - pFirst);
    std::wmemmove(pszText, pFirst, cch);
    pszText[cch] = 0;
}

int SkipLeadingWhiteSpaces(const wchar_t*& pszText) { return SkipToQuoted(pszText); }

int SkipLeadingWhiteSpaces(wchar_t*& pszText) { return SkipToQuoted(pszText); }
