#include "files/text/text_convert.h"
#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "files/text/text_encoding.h"
#include "files/text/text_probe.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

// A text is read and converted in pieces, and all that is done with one is done while it is in the
// processor's cache: a whole file's bytes would be new memory, and come from there at every turn.

namespace {
constexpr std::size_t kPieceSize = 0x10000; // bytes

/// Where bytes may be cut, so that no character is in two pieces.
struct CutRule {
    unsigned nLimit; // behind a byte below this
    bool bUtf8;      // without one, before a byte that begins a character
};
constexpr CutRule kCutAnywhere = {UCHAR_MAX + 1, false};
constexpr CutRule kCutUtf8 = {0x80, true};
/// In code pages of several bytes: whatever is below is no part of a longer character.
constexpr CutRule kCutMultiByte = {0x30, false};

CutRule GetCutRule(UINT nCodePage) {
    if (nCodePage == CP_UTF8) return kCutUtf8;
    CPINFO info;
    return ::GetCPInfo(nCodePage, &info) && info.MaxCharSize == 1 ? kCutAnywhere : kCutMultiByte;
}

/// How many of cb bytes make a piece of whole characters; 0 if that cannot be told.
std::size_t FindPiece(const BYTE* p, std::size_t cb, const CutRule& rule) {
    for (std::size_t n = cb; n; --n) {
        if (p[n - 1] < rule.nLimit) return n;
    }
    if (!rule.bUtf8) return 0;
    for (std::size_t n = cb; n && cb - n < 4; --n) {
        if ((p[n - 1] & 0xC0) != 0x80) return n - 1;
    }
    return cb; // so many continuations in a row are no character anyway
}

/// Whether one of the eight bytes is a line feed.
bool HasLineFeed(const BYTE* p) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    std::uint64_t n;
    std::memcpy(&n, p, sizeof(n));
    n ^= kOnes * '\n'; // a line feed becomes 0, which the borrow finds
    return ((n - kOnes) & ~n & kOnes * 0x80) != 0;
}

/// Copies cb bytes and puts a carriage return before each line feed that has none. bPrevious stands
/// before the first byte. pOut has room for twice as many. Returns their number.
std::size_t AddCarriageReturns(BYTE* pOut, const BYTE* p, std::size_t cb, BYTE bPrevious) {
    BYTE* pTo = pOut;
    const BYTE* const pEnd = p + cb;
    while (p != pEnd) {
        if (pEnd - p >= 8 && !HasLineFeed(p)) {
            std::memcpy(pTo, p, 8);
            pTo += 8;
            p += 8;
            bPrevious = p[-1];
            continue;
        }
        if (*p == '\n' && bPrevious != '\r') *pTo++ = '\r';
        bPrevious = *p++;
        *pTo++ = bPrevious;
    }
    return static_cast<std::size_t>(pTo - pOut);
}

/// Each byte becomes a character.
// QUIRK: as a signed byte and in no code page, so that E9 becomes U+FFE9: only in this format.
// Test: TextQuirks.BytesWithLineFeedsAreWidenedWithTheirSign
void WidenBytes(const BYTE* p, std::size_t cb, wchar_t* pszOut) {
    for (std::size_t i = 0; i < cb; ++i) {
        pszOut[i] = static_cast<wchar_t>(static_cast<signed char>(p[i]));
    }
}

constexpr std::size_t kSanitizeBlock =
    64; // characters; a loop of so many is done by wide registers

/// Whether one of the characters may need to be replaced: cheaper to ask than IsPrintableChar, and
/// wrong about two that are rare. No branches: a loop of a fixed length is then done by wide
/// registers.
template <class Char>
bool AnySuspect(const Char* p) {
    Char nAny = 0;
    for (std::size_t i = 0; i < kSanitizeBlock; ++i) {
        const Char ch = p[i];
        nAny |= static_cast<Char>((ch < 32) & (ch != '\t') & (ch != '\n') & (ch != '\r')) |
                static_cast<Char>(ch == 127);
    }
    return nAny != 0;
}

template <class Char>
void ReplaceControls(Char* p, std::size_t n, Char chReplacement) {
    for (std::size_t i = 0; i < n; ++i) {
        if (!IsPrintableChar(p[i])) p[i] = chReplacement;
    }
}

/// Whole texts of files come here, of which hardly any has something to replace. Unsigned is
/// Char's unsigned form.
template <class Unsigned, class Char>
void SanitizeText(Char* p, std::size_t n, Char chReplacement) {
    if (!p) return;
    for (; n >= kSanitizeBlock; n -= kSanitizeBlock, p += kSanitizeBlock) {
        if (AnySuspect(reinterpret_cast<const Unsigned*>(p))) {
            ReplaceControls(p, kSanitizeBlock, chReplacement);
        }
    }
    ReplaceControls(p, n, chReplacement);
}

/// A text in the making.
class TextMaker {
  public:
    TextMaker(CSFileTextFmt fmtOfBytes, wchar_t* pszInto, DWORD cchInto, wchar_t ch)
        : fmt(fmtOfBytes), psz(pszInto), cch(cchInto), chReplacement(ch) {}
    [[nodiscard]] bool Start();
    /// Converts bytes, as many as make whole characters, or all if they are the last ones. Returns
    /// how many; IsFull tells whether the text had room for them.
    std::size_t Take(const BYTE* p, std::size_t cb, bool bLast);
    bool IsFull() const { return bFull; }
    /// Ends the text; the number of characters with the terminator.
    DWORD Finish();

  private:
    int Convert(const BYTE* p, std::size_t cb);

    CSFileTextFmt fmt;
    wchar_t* psz;
    DWORD cch; // characters that psz has room for, with the terminator
    wchar_t chReplacement;
    DWORD n = 0; // characters by now
    UINT nCodePage = CP_UTF8;
    CutRule rule = kCutAnywhere;
    HeapArray<BYTE> lines; // a piece with carriage returns; only for formats without
    BYTE bPrevious = 0;    // the byte before the next piece
    bool bStarted = false; // bytes were taken
    bool bFull = false;
};

bool TextMaker::Start() {
    if (fmt != fmtUtf8 && fmt != fmtUtf8Lf) nCodePage = ::GetACP();
    if (fmt != fmtAnsiLf) rule = GetCutRule(nCodePage);
    if (fmt == fmtAnsiLf) bPrevious = '\r'; // here the file's first byte gets no carriage return
    if (fmt != fmtUtf8Lf && fmt != fmtAnsiLf) return true;
    lines = HeapArray<BYTE>(2 * kPieceSize);
    return lines.IsReady();
}

/// The characters that one piece makes, behind the others; -1 if they do not fit.
int TextMaker::Convert(const BYTE* p, std::size_t cb) {
    const DWORD cchRoom = cch - 1 - n;
    if (fmt == fmtAnsiLf) {
        if (cb > cchRoom) return -1;
        WidenBytes(p, cb, psz + n);
        return static_cast<int>(cb);
    }
    if (!cchRoom) return -1; // the platform would only count
    const int nMade =
        ::MultiByteToWideChar(nCodePage, 0, reinterpret_cast<const char*>(p), static_cast<int>(cb),
                              psz + n, static_cast<int>(std::min<DWORD>(cchRoom, INT_MAX)));
    // Where there is room for half of a last character of two, some platforms cut it and say
    // nothing: what fills the room is counted again.
    const bool bLost = nMade > 0 && static_cast<DWORD>(nMade) + 1 >= cchRoom &&
                       ::MultiByteToWideChar(nCodePage, 0, reinterpret_cast<const char*>(p),
                                             static_cast<int>(cb), nullptr, 0) != nMade;
    return nMade > 0 && !bLost ? nMade : -1;
}

std::size_t TextMaker::Take(const BYTE* p, std::size_t cb, bool bLast) {
    const bool bUtf8 = fmt == fmtUtf8 || fmt == fmtUtf8Lf;
    const bool bMark = !bStarted && bUtf8 && StartsWithUtf8Mark(p, cb);
    const std::size_t cbMark = bMark ? sizeof(kUtf8Mark) : 0;
    const std::size_t cbPiece = bLast ? cb : FindPiece(p, cb, rule);
    if (!cbPiece) return 0;
    bStarted = true;
    if (cbPiece == cbMark) return cbPiece;
    const BYTE* pPiece = p + cbMark;
    std::size_t cbToConvert = cbPiece - cbMark;
    if (lines.IsReady()) {
        cbToConvert = AddCarriageReturns(lines.Get(), pPiece, cbToConvert, bPrevious);
        bPrevious = p[cbPiece - 1];
        pPiece = lines.Get();
    }
    const int nMade = Convert(pPiece, cbToConvert);
    bFull = nMade < 0;
    if (bFull) return cbPiece;
    CSFile::Sanitize(psz + n, static_cast<unsigned>(nMade), chReplacement);
    n += static_cast<DWORD>(nMade);
    return cbPiece;
}

DWORD TextMaker::Finish() {
    psz[n] = 0;
    return n + 1;
}

/// Makes the block twice as large. False without memory.
bool Grow(HeapArray<BYTE>& block) {
    HeapArray<BYTE> larger(2 * block.GetCount());
    if (!larger.IsReady()) return false;
    std::memcpy(larger.Get(), block.Get(), block.GetCount());
    block = std::move(larger);
    return true;
}
} // namespace

void CSFile::Sanitize(wchar_t* pszText, unsigned nCount, wchar_t chReplacement) {
    SanitizeText<wchar_t>(pszText, nCount, chReplacement);
}

void CSFile::Sanitize(char* pszText, unsigned nCount, char chReplacement) {
    SanitizeText<unsigned char>(pszText, nCount, chReplacement);
}

DWORD ReadAsText(CoreFile& file, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut, DWORD cchOut,
                 wchar_t chReplacement) {
    const bool bUnknown = cb == kTextSizeUnknown;
    // That many bytes of an unknown number are more than the text has room for.
    unsigned __int64 cbLeft = bUnknown ? static_cast<unsigned __int64>(cchOut) * 2 : cb;
    TextMaker text(fmt, pszOut, cchOut, chReplacement);
    HeapArray<BYTE> window(std::clamp<std::size_t>(cbLeft, 1, kPieceSize));
    if (!window.IsReady() || !text.Start()) return 0;
    for (std::size_t cbHeld = 0;;) {
        const unsigned __int64 cbWanted =
            std::min<unsigned __int64>(cbLeft, window.GetCount() - cbHeld);
        unsigned __int64 cbRead = 0;
        if (!ReadUpTo(file, window.Get() + cbHeld, cbWanted, &cbRead)) return 0;
        cbHeld += cbRead;
        cbLeft -= cbRead;
        if (bUnknown && !cbLeft) return kTextSizeUnknown;
        const bool bLast = cbRead < cbWanted || !cbLeft;
        const std::size_t cbTaken = text.Take(window.Get(), cbHeld, bLast);
        if (text.IsFull()) return kTextSizeUnknown;
        if (bLast) return text.Finish();
        if (!cbTaken && !Grow(window)) return 0; // a code page without a place to cut
        cbHeld -= cbTaken;
        std::memmove(window.Get(), window.Get() + cbTaken, cbHeld);
    }
}
