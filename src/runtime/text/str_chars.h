#pragma once
#include "runtime/base/export.h"

// Sets of characters. They are ASCII only, whatever the user's language: of the characters above
// 127 none belongs to any set but IsPrintableChar's. Each IsXxxChar gives 1 or 0.

/// A set of ASCII characters, given as a text; blanks in it only set the others apart.
class AsciiSet {
  public:
    constexpr AsciiSet() = default;
    /// The characters of the text but for blanks.
    constexpr explicit AsciiSet(const wchar_t* pszChars) {
        for (const wchar_t* p = pszChars; *p; ++p) {
            if (*p != L' ') Add(*p, *p);
        }
    }
    /// Adds the characters from chFirst to chLast, also a blank. Returns the set.
    constexpr AsciiSet& Add(wchar_t chFirst, wchar_t chLast) {
        for (unsigned n = chFirst; n <= chLast; ++n) nBits[n / kBits] |= 1ull << n % kBits;
        return *this;
    }
    /// Whether the character is one of them.
    constexpr bool Has(wchar_t ch) const {
        return ch < 2 * kBits && (nBits[ch / kBits] >> ch % kBits & 1);
    }
    /// Whether a text holds one of them.
    bool AnyIn(const wchar_t* psz) const {
        while (*psz && !Has(*psz)) ++psz;
        return *psz != 0;
    }

  private:
    static constexpr unsigned kBits = 64;
    unsigned long long nBits[2] = {};
};

/// Blank, tab, CR, LF.
TESSALY_API int IsWhiteChar(wchar_t ch);
/// A to Z, a to z.
TESSALY_API int IsAlphaChar(wchar_t ch);
/// A to Z.
TESSALY_API int IsCapitalChar(wchar_t ch);
/// The digits 0 to 9.
TESSALY_API int IsNumChar(wchar_t ch);
/// A to Z, a to z, 0 to 9.
TESSALY_API int IsAlphaNumChar(wchar_t ch);
/// The digits 0 to 9, A to F, a to f.
TESSALY_API int IsHexChar(wchar_t ch);
/// Control characters: below 32, and 127.
TESSALY_API int IsCodeChar(wchar_t ch);
/// What may be shown or stands in a text file: 32 and above except 127, and tab, LF, form feed, CR
/// and 26 (the end mark of old text files).
TESSALY_API int IsPrintableChar(wchar_t ch);
/// The same for a character of 8 bits, of which 128 to 255 are printable.
TESSALY_API int IsPrintableChar(char ch);
/// ! " ' ( ) * + , - . / : ; = ? [ \ ] ^ ` { | } ~
TESSALY_API int IsPunctuationChar(wchar_t ch);
/// Blank and every ASCII sign that is neither letter nor digit, except the double quote.
TESSALY_API int IsMiscChar(wchar_t ch);

/// Replaces by "." each of the first n characters that is not printable. A terminator among them
/// is replaced too: n is the text's length or less. Null does nothing.
TESSALY_API void MakeStrPrintable(wchar_t* pszText, unsigned n);

// Upper and lower case, by the platform's tables for the user's language (CharUpperW, CharLowerW):
// one character for one, so that no text changes its length.

/// The character in lower, or upper, case; itself if it has none.
TESSALY_API wchar_t CharToLower(wchar_t ch);
TESSALY_API wchar_t CharToUpper(wchar_t ch);
/// Changes one character in place. Null does nothing.
TESSALY_API void CharToLower(wchar_t* pch);
TESSALY_API void CharToUpper(wchar_t* pch);
/// Changes a whole text in place. Null does nothing.
TESSALY_API void StrToLower(wchar_t* pszText);
TESSALY_API void StrToUpper(wchar_t* pszText);

/// Puts the first ASCII letter of each word into upper case, in place. Words end at white
/// characters (IsWhiteChar); the rest of a word stays as it is. A letter that is not ASCII, a digit
/// or a sign before that letter does not count as the word's beginning: "3rd" becomes "3Rd". Null
/// does nothing.
TESSALY_API void StrCapitalizeAll(wchar_t* pszText);

/// Rotates A to Z and a to z by 13 places, in place, and leaves the rest. Twice gives the text
/// back. Null does nothing.
TESSALY_API void StrRot13(wchar_t* pszText);

/// Removes the white characters (IsWhiteChar) from both ends of a text, in place; a text of nothing
/// else becomes empty. Null does nothing.
///
/// An overload of the platform's StrTrimW, which takes the set of characters to remove and stands
/// in shlwapi.h: with one argument a caller gets this one.
TESSALY_API void StrTrimW(wchar_t* pszText);
/// StrTrimW under a name of its own. Null does nothing.
TESSALY_API void TrimStr(wchar_t* pszText);

/// Whether it is one of 0 to 9, in whatever language the system speaks.
inline bool IsAsciiDigit(wchar_t ch) { return ch >= L'0' && ch <= L'9'; }

// Blanks and tabs, as they stand around the words of a command line.

/// Whether it is one of the two.
inline bool IsBlankOrTab(wchar_t ch) { return ch == L' ' || ch == L'\t'; }
/// The first character that is neither blank nor tab.
template <class Char>
Char* SkipBlanksAndTabs(Char* psz) {
    while (IsBlankOrTab(*psz)) ++psz;
    return psz;
}

/// Moves past blanks and tabs. If a double quote comes next, moves past it and past further blanks
/// and tabs and gives 1, otherwise 0. A null text stays null.
TESSALY_API int SkipLeadingWhiteSpaces(const wchar_t*& pszText);
TESSALY_API int SkipLeadingWhiteSpaces(wchar_t*& pszText);
