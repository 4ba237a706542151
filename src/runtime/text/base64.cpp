#include "runtime/text/base64.h"

#include <climits>
#include <cstdint>

namespace {
constexpr wchar_t kAlphabet[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned kGroupBytes = 3, kGroupChars = 4, kPieceBits = 6, kPieceMask = 0x3F;
constexpr int kNoPiece = -1;

/// The 6 bits that a character stands for.
int PieceOf(wchar_t ch) {
    if (ch >= L'A' && ch <= L'Z') return ch - L'A';
    if (ch >= L'a' && ch <= L'z') return ch - L'a' + 26;
    if (ch >= L'0' && ch <= L'9') return ch - L'0' + 52;
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
