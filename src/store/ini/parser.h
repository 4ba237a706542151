#pragma once
#include "runtime/base/export.h"

/// A cursor over a block of text that it does not own. The text ends at its terminator or behind
/// its length, whichever comes first. Results are 1 for yes and 0 for no; the skips give NotEnd.
/// At the end every test but IsOneOf says no, and nothing behind it is read.
class TESSALY_API Parser {
  public:
    /// cchText 0 means up to the terminator. A null text is an empty one.
    Parser(const wchar_t* pszText, unsigned cchText);

    int NotEnd() const { return p < pEnd && *p; } ///< Whether there is still a character.
    // These three do not test for either end.
    wchar_t GetCurrentChar() const { return *p; } ///< The character that stands here.
    wchar_t GetPrevChar() const { return p[-1]; } ///< The one before.
    wchar_t GetNextChar() const { return p[1]; }  ///< The one behind.

    /// A blank or a tab.
    int IsWhite() const { return NotEnd() && (*p == L' ' || *p == L'\t'); }
    int IsTab() const { return NotEnd() && *p == L'\t'; } ///< A tab.
    /// A line end: a line feed, or a carriage return with a line feed behind it.
    // QUIRK: a carriage return alone is none. Test: Parser.IsCR
    int IsCR() const {
        if (!NotEnd()) return 0;
        return *p == L'\n' || (*p == L'\r' && p + 1 < pEnd && p[1] == L'\n');
    }
    int IsUnicodePrefix() const { return NotEnd() && *p == kUnicodePrefix; } ///< The mark U+FEFF.
    // QUIRK: the end of the text counts as one of any set. Test: Parser.IsOneOf
    int IsOneOf(const wchar_t* pszSet) const; ///< One of the characters of the set.

    /// Passes the mark U+FEFF, if it is there.
    int SkipUnicodePrefix() { return SkipIf(kUnicodePrefix); }
    int SkipChar(); ///< Passes one character.
    /// Passes blanks and tabs.
    int SkipWhite() {
        while (IsWhite()) ++p;
        return NotEnd();
    }
    /// Passes one carriage return and one line feed, each if it is there.
    int SkipCR() {
        SkipIf(L'\r');
        return SkipIf(L'\n');
    }
    /// Passes the rest of the line and its end.
    int SkipLine();
    /// Passes empty lines and the indentation of the first line with content.
    int SkipWhiteLines() {
        for (SkipWhite(); IsCR(); SkipWhite()) SkipCR();
        return NotEnd();
    }
    /// Passes what stands before the next white character or line end.
    int SkipToken();
    /// Passes that character; 0 if another one stands here.
    int MustBe(wchar_t ch) {
        if (!NotEnd() || *p != ch) return 0;
        ++p;
        return 1;
    }
    /// Copies one character, without any test, and moves both on.
    void CharCopy(wchar_t*& pszOut) { *pszOut++ = *p++; }
    /// Copies a token of at most cchOut - 1 characters, and terminates it. The rest of a longer one
    /// is what comes next. A null output or one of no characters gets nothing.
    void TokenCopy(wchar_t* pszOut, unsigned cchOut);
    /// Passes what stands before the line end, or all of the text, and copies of it what fits into
    /// cchOut characters with the terminator, of which there must be one. The length of the copy.
    unsigned CopyToLineEnd(wchar_t* pszOut, unsigned cchOut);
    /// The same up to that character.
    unsigned CopyToChar(wchar_t ch, wchar_t* pszOut, unsigned cchOut);

  private:
    static constexpr wchar_t kUnicodePrefix = 0xFEFF;

    int IsTokenChar() const { return NotEnd() && !IsWhite() && !IsCR(); }
    int SkipIf(wchar_t ch) {
        MustBe(ch);
        return NotEnd();
    }
    /// At the end of the line or of the text, but for the block's length.
    int IsLineEnd(const wchar_t* pAt) const;
    template <class Fn>
    unsigned CopyWhile(wchar_t* pszOut, unsigned cchOut, Fn fnGoesOn);

    const wchar_t* p;
    const wchar_t* pEnd;
};
