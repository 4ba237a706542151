#include "runtime/text/encoding.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <cwchar>

// Hexadecimal text

namespace {
template <class Char>
bool WriteHex(Char* pszText, unsigned cch, const void* pData, unsigned n) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    if (!pszText || cch == 0) return false;
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    unsigned nFitting = std::min(pBytes ? n : 0, (cch - 1) / 2);
    for (unsigned i = 0; i < nFitting; ++i) {
        *pszText++ = static_cast<Char>(kDigits[pBytes[i] >> 4]);
        *pszText++ = static_cast<Char>(kDigits[pBytes[i] & 15]);
    }
    *pszText = 0;
    return nFitting == n;
}

/// Bytes in the system code page, up to the first zero among them, as terminated text.
bool WriteText(wchar_t* pszOut, unsigned cch, const char* pszBytes, unsigned cb) {
    HeapArray<wchar_t> text(cb); // a byte gives at most one character
    if (!text.IsReady()) return false;
    int cbText = static_cast<int>(::strnlen(pszBytes, cb));
    int cchText = 0;
    if (cbText) {
        cchText =
            ::MultiByteToWideChar(CP_ACP, 0, pszBytes, cbText, text.Get(), static_cast<int>(cb));
    }
    unsigned cchFitting = std::min(static_cast<unsigned>(cchText), cch - 1);
    std::wmemcpy(pszOut, text.Get(), cchFitting);
    pszOut[cchFitting] = 0;
    return true;
}
} // namespace

int BinToHex(wchar_t* pszText, unsigned cch, const void* pData, unsigned n) {
    return WriteHex(pszText, cch, pData, n);
}

int BinToHex(char* pszText, unsigned cch, const void* pData, unsigned n) {
    return WriteHex(pszText, cch, pData, n);
}

unsigned char HexToCode(wchar_t ch) {
    if (IsAsciiDigit(ch)) return static_cast<unsigned char>(ch - L'0');
    if (ch >= L'A' && ch <= L'F') return static_cast<unsigned char>(ch - L'A' + 10);
    if (ch >= L'a' && ch <= L'f') return static_cast<unsigned char>(ch - L'a' + 10);
    return 0;
}

unsigned char HexToChar(wchar_t chHigh, wchar_t chLow) {
    return static_cast<unsigned char>(HexToCode(chHigh) << 4 | HexToCode(chLow));
}

unsigned HexToBin(void* pData, const wchar_t* pszText) {
    auto* pBytes = static_cast<unsigned char*>(pData);
    unsigned n = 0;
    while (pszText && *pszText) {
        // After a single last character this reads the terminator, which counts as the digit 0.
        unsigned char bRead = HexToChar(pszText[0], pszText[1]);
        if (pBytes) pBytes[n] = bRead;
        ++n;
        pszText += pszText[1] ? 2 : 1;
    }
    return n;
}

unsigned HexToBinLE(void* pData, const wchar_t* pszText) {
    unsigned n = HexToBin(pData, pszText);
    auto* pBytes = static_cast<unsigned char*>(pData);
    if (pBytes) std::reverse(pBytes, pBytes + n);
    return n;
}

int StrToHex(wchar_t* pszOut, unsigned cch, const wchar_t* pszText) {
    CVT cvt(kHexSourceSize);
    const char* pszNarrow = pszText && *pszText ? cvt.T_A(pszText) : nullptr;
    unsigned cb = pszNarrow ? static_cast<unsigned>(std::strlen(pszNarrow)) : 0;
    BinToHex(pszOut, cch, pszNarrow, cb);
    return pszNarrow != nullptr;
}

int HexToStr(wchar_t* pszOut, unsigned cch, const wchar_t* pszText) {
    if (!pszOut || cch == 0) return 0;
    unsigned cb = HexToBin(nullptr, pszText);
    HeapArray<char> bytes(cb);
    if (cb == 0 || cb > INT_MAX || !bytes.IsReady()) {
        *pszOut = 0;
        return cb == 0;
    }
    HexToBin(bytes.Get(), pszText);
    bool bDone = WriteText(pszOut, cch, bytes.Get(), cb);
    if (!bDone) *pszOut = 0;
    return bDone;
}

// Bytes as text for file names

namespace {
constexpr wchar_t kAlphabet[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned kGroupBytes = 3, kGroupChars = 4, kPieceBits = 6, kPieceMask = 0x3F;
constexpr int kNoPiece = -1;

/// The 6 bits that a character stands for.
int PieceOf(wchar_t ch) {
    if (ch >= L'A' && ch <= L'Z') return ch - L'A';
    if (ch >= L'a' && ch <= L'z') return ch - L'a' + 26;
    if (IsAsciiDigit(ch)) return ch - L'0' + 52;
    if (ch == L'-') return 62;
    return ch == L'_' ? 63 : kNoPiece;
}

/// One group from n bytes, 1 to 3.
void WriteGroup(wchar_t* pOut, const unsigned char* pBytes, unsigned n) {
    std::uint32_t group = 0;
    for (unsigned i = 0; i < n; ++i) group |= static_cast<std::uint32_t>(pBytes[i]) << (8 * i);
    for (unsigned i = 0; i < kGroupChars; ++i, group >>= kPieceBits) {
        pOut[i] = i <= n ? kAlphabet[group & kPieceMask] : L'=';
    }
}

/// The characters of the next group, with "=" for what the text lacks; moves on behind it.
void ReadGroup(wchar_t (&group)[kGroupChars], const wchar_t*& p) {
    for (wchar_t& ch : group) ch = *p ? *p++ : L'=';
}

std::uint32_t GroupBits(const wchar_t (&group)[kGroupChars]) {
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < kGroupChars; ++i) {
        int nPiece = PieceOf(group[i]);
        if (nPiece == kNoPiece) break;
        bits |= static_cast<std::uint32_t>(nPiece) << (kPieceBits * i);
    }
    return bits;
}
} // namespace

// QUIRK: lowest bits first, where the standards' base64 writes the highest first: neither reads
// the other's text. Test: BinToBase64FS.WritesLowestBitsFirst
unsigned BinToBase64FS(wchar_t* pszText, unsigned cch, const void* pData, unsigned n) {
    std::uint64_t cchAll = (n + std::uint64_t{kGroupBytes - 1}) / kGroupBytes * kGroupChars + 1;
    if (!pData || n == 0 || cchAll > UINT_MAX) cchAll = 0;
    if (!pszText || cch == 0) return static_cast<unsigned>(cchAll);
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    unsigned cchRoom = cch - 1;
    unsigned nLeft = cchAll ? n : 0;
    while (nLeft > 0 && cchRoom >= kGroupChars) {
        unsigned nGroup = nLeft < kGroupBytes ? nLeft : kGroupBytes;
        WriteGroup(pszText, pBytes, nGroup);
        pszText += kGroupChars;
        cchRoom -= kGroupChars;
        pBytes += nGroup;
        nLeft -= nGroup;
    }
    *pszText = 0;
    return static_cast<unsigned>(cchAll);
}

unsigned Base64FSToBin(void* pData, unsigned cb, const wchar_t* pszText) {
    auto* pBytes = static_cast<unsigned char*>(pData);
    unsigned cbAll = 0;
    while (pszText && *pszText) {
        wchar_t group[kGroupChars];
        ReadGroup(group, pszText);
        unsigned n = 1u + (group[2] != L'=') + (group[3] != L'=');
        std::uint32_t bits = GroupBits(group);
        for (unsigned i = 0; i < n; ++i, ++cbAll, bits >>= 8) {
            if (pBytes && cbAll < cb) pBytes[cbAll] = static_cast<unsigned char>(bits);
        }
    }
    return cbAll;
}

// Code pages

namespace {
/// What the platform leaves in a destination that is too small has no terminator.
template <class Char>
int EmptyOnFailure(int n, Char* pszOut, int cOut) {
    if (n == 0 && pszOut && cOut > 0) *pszOut = 0;
    return n;
}

int Widen(UINT uCodePage, const char* pszText, wchar_t* pszOut, int cchOut) {
    int n = ::MultiByteToWideChar(uCodePage, 0, pszText, -1, pszOut, cchOut);
    return EmptyOnFailure(n, pszOut, cchOut);
}

int Narrow(UINT uCodePage, const wchar_t* pszText, char* pszOut, int cbOut) {
    int n = ::WideCharToMultiByte(uCodePage, 0, pszText, -1, pszOut, cbOut, nullptr, nullptr);
    return EmptyOnFailure(n, pszOut, cbOut);
}
} // namespace

int mb2wc(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_ACP, pszText, pszOut, cchOut);
}
int wc2mb(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_ACP, pszText, pszOut, cbOut);
}
int mb2wcOEM(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_OEMCP, pszText, pszOut, cchOut);
}
int wc2mbOEM(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_OEMCP, pszText, pszOut, cbOut);
}
int utf82wc(const char* pszText, wchar_t* pszOut, int cchOut) {
    return Widen(CP_UTF8, pszText, pszOut, cchOut);
}
int wc2utf8(const wchar_t* pszText, char* pszOut, int cbOut) {
    return Narrow(CP_UTF8, pszText, pszOut, cbOut);
}

// CVT: text for a foreign call and back

namespace {
/// Converts pszText into at most cbOut bytes with the terminator, cut at whole characters: the
/// platform's own call fails on a text that does not fit and leaves an open end.
void Narrow(char* pszOut, unsigned cbOut, const wchar_t* pszText, unsigned cchMax) {
    if (!cbOut) return;
    int cbRoom = static_cast<int>(cbOut - 1 < INT_MAX ? cbOut - 1 : INT_MAX);
    int cchText = static_cast<int>(::wcsnlen(pszText, cchMax < INT_MAX ? cchMax : INT_MAX));
    if (cchText > cbRoom) cchText = cbRoom; // a character takes at least one byte
    int cbText = 0;
    while (cchText > 0 && cbRoom > 0) {
        cbText =
            ::WideCharToMultiByte(CP_ACP, 0, pszText, cchText, pszOut, cbRoom, nullptr, nullptr);
        if (cbText > 0) break;
        --cchText;
    }
    pszOut[cbText] = 0;
}

void Widen(wchar_t* pszOut, unsigned cchOut, const char* pszText, unsigned cbMax) {
    if (!cchOut) return;
    int cchRoom = static_cast<int>(cchOut - 1 < INT_MAX ? cchOut - 1 : INT_MAX);
    int cbText = static_cast<int>(::strnlen(pszText, cbMax < INT_MAX ? cbMax : INT_MAX));
    int cchText = 0;
    while (cbText > 0 && cchRoom > 0) {
        cchText = ::MultiByteToWideChar(CP_ACP, 0, pszText, cbText, pszOut, cchRoom);
        if (cchText > 0) break;
        --cbText;
    }
    pszOut[cchText] = 0;
}
} // namespace

CVT::CVT(unsigned cchWanted) : cch(cchWanted) {}

CVT::~CVT() = default;

/// One block for both widths, so that a switch of direction never finds one that is too small.
bool CVT::Allocate() {
    if (!buffer.IsReady()) buffer = HeapArray<wchar_t>(static_cast<std::size_t>(cch) + 1);
    return buffer.IsReady();
}

char* CVT::T_A(const wchar_t* pszText) {
    if (!Allocate()) return nullptr;
    auto* pszNarrow = reinterpret_cast<char*>(buffer.Get());
    unsigned cbBuffer = cch < UINT_MAX ? cch + 1 : cch;
    if (pszText) {
        Narrow(pszNarrow, cbBuffer, pszText, UINT_MAX);
    } else {
        *pszNarrow = 0;
    }
    return pszNarrow;
}

wchar_t* CVT::A_T() { return Allocate() ? buffer.Get() : nullptr; }

void CVT::T_A(char* pszOut) const {
    if (!pszOut) return;
    if (!buffer.IsReady()) return Narrow(pszOut, cch, L"", 0);
    Narrow(pszOut, cch, buffer.Get(), cch);
}

void CVT::A_T(wchar_t* pszOut) const {
    if (!pszOut) return;
    if (!buffer.IsReady()) return Widen(pszOut, cch, "", 0);
    Widen(pszOut, cch, reinterpret_cast<const char*>(buffer.Get()), cch);
}
