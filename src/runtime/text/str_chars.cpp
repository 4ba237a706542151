#include "runtime/text/str_chars.h"

#include <cstdint>

namespace {
/// A set of ASCII characters, one bit each.
class AsciiSet {
  public:
    constexpr AsciiSet& Add(unsigned nFirst, unsigned nLast) {
        for (unsigned n = nFirst; n <= nLast; ++n) bits[n / 64] |= std::uint64_t{1} << (n % 64);
        return *this;
    }
    constexpr int Has(unsigned n) const { return n < 128 && (bits[n / 64] >> (n % 64) & 1); }

  private:
    std::uint64_t bits[2] = {};
};

constexpr AsciiSet kWhite = AsciiSet().Add(' ', ' ').Add('\t', '\n').Add('\r', '\r');
constexpr AsciiSet kCapital = AsciiSet().Add('A', 'Z');
constexpr AsciiSet kAlpha = AsciiSet(kCapital).Add('a', 'z');
constexpr AsciiSet kNum = AsciiSet().Add('0', '9');
constexpr AsciiSet kAlphaNum = AsciiSet(kAlpha).Add('0', '9');
constexpr AsciiSet kHex = AsciiSet(kNum).Add('A', 'F').Add('a', 'f');
constexpr AsciiSet kCode = AsciiSet().Add(0, 31).Add(127, 127);
constexpr AsciiSet kPrintable = AsciiSet().Add(32, 126).Add('\t', '\n').Add('\f', '\r').Add(26, 26);
// QUIRK: "#", "$", "%", "&", "<", ">", "@" and "_" are no punctuation, "=", "^" and "~" are.
// Test: CharSets.TableOfAllRows
constexpr AsciiSet kPunctuation = AsciiSet()
                                      .Add(33, 34)
                                      .Add(39, 47)
                                      .Add(58, 59)
                                      .Add(61, 61)
                                      .Add(63, 63)
                                      .Add(91, 94)
                                      .Add(96, 96)
                                      .Add(123, 126);
// QUIRK: the blank is in this set and the double quote (34) is not. Test: CharSets.TableOfAllRows
constexpr AsciiSet kMisc = AsciiSet().Add(32, 33).Add(35, 47).Add(58, 64).Add(91, 96).Add(123, 126);
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
