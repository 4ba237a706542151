#pragma once
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"

// Numbers and bytes in hexadecimal text. Either case is read; what is no digit counts as the digit
// 0 and rejects nothing.

/// Writes two upper-case characters per byte, first byte first, and a terminator, into at most cch
/// characters; of what does not fit only whole pairs are written. n bytes take 2 * n + 1. 1 if all
/// fitted, otherwise 0.
TESSALY_API int BinToHex(wchar_t* pszText, unsigned cch, const void* pData, unsigned n);
/// Writes the same as 8-bit text.
TESSALY_API int BinToHex(char* pszText, unsigned cch, const void* pData, unsigned n);

/// The value of a hexadecimal digit, 0 for any other character.
TESSALY_API unsigned char HexToCode(wchar_t ch);
/// One byte from a pair of characters, the first in the high nibble.
TESSALY_API unsigned char HexToChar(wchar_t chHigh, wchar_t chLow);
/// Bytes from the pairs of a text, first pair first. A single last character counts as one more
/// pair, with its low nibble 0. Returns the number of bytes; null pData only counts. pData must
/// have room for all of them.
TESSALY_API unsigned HexToBin(void* pData, const wchar_t* pszText);
/// HexToBin with the bytes reversed after reading: a number written most significant pair first
/// becomes a little-endian value.
TESSALY_API unsigned HexToBinLE(void* pData, const wchar_t* pszText);

/// The longest 8-bit text, in bytes without a terminator, that StrToHex makes of its source.
constexpr unsigned kHexSourceSize = 260;

/// A text in the system code page, cut to kHexSourceSize bytes, in hexadecimal, written as by
/// BinToHex. pszOut may be pszText. 1; for an empty or null text, or without memory, the result is
/// empty and 0.
TESSALY_API int StrToHex(wchar_t* pszOut, unsigned cch, const wchar_t* pszText);
/// The reverse: the text whose bytes in the system code page pszText holds, cut to cch characters
/// with the terminator. pszOut may be pszText. 1; 0 without memory or without a place to write.
TESSALY_API int HexToStr(wchar_t* pszOut, unsigned cch, const wchar_t* pszText);

// Bytes as text that may be part of a file name. The alphabet is A-Z, a-z, 0-9, "-" and "_"; "="
// pads. This is not the base64 of the standards, in the order of the bits too: three bytes are one
// little-endian number of 24 bits, whose pieces of 6 bits are written lowest first.

/// Writes n bytes as terminated text of at most cch characters; of what does not fit only whole
/// groups of four characters are written. Returns what all of it takes, with the terminator; 0 for
/// no data, and if that number is beyond 32 bits. With a null text it only measures.
TESSALY_API unsigned BinToBase64FS(wchar_t* pszText, unsigned cch, const void* pData, unsigned n);

/// Reads groups of four characters into at most cb bytes. Returns the number of bytes that the text
/// holds, whatever cb is; with null data it only counts. A group holds one byte, one more if its
/// third character is not "=", and one more if its fourth is not; characters that a last group
/// lacks count as "=". A character outside the alphabet ends its group: the bits from there on are
/// 0. Null counts as empty.
TESSALY_API unsigned Base64FSToBin(void* pData, unsigned cb, const wchar_t* pszText);

// Conversions between 16-bit text and the code pages, over terminated sources. Sizes are those of
// the destination, in characters or bytes, with the terminator; a size of 0 only measures, and the
// destination may then be null. The result is the platform's: what was written or is needed, with
// the terminator; 0 on failure (GetLastError), also for a null source and if it does not fit. On
// failure a destination of any size holds the empty text.

/// Converts from the system code page (CP_ACP).
TESSALY_API int mb2wc(const char* pszText, wchar_t* pszOut, int cchOut);
/// Converts to the system code page (CP_ACP).
TESSALY_API int wc2mb(const wchar_t* pszText, char* pszOut, int cbOut);
/// Converts from the console's code page (CP_OEMCP).
TESSALY_API int mb2wcOEM(const char* pszText, wchar_t* pszOut, int cchOut);
/// Converts to the console's code page (CP_OEMCP).
TESSALY_API int wc2mbOEM(const wchar_t* pszText, char* pszOut, int cbOut);
/// Converts from UTF-8.
TESSALY_API int utf82wc(const char* pszText, wchar_t* pszOut, int cchOut);
TESSALY_API int wc2utf8(const wchar_t* pszText, char* pszOut, int cbOut); ///< Converts to UTF-8.

/// Text between the platform's 16-bit and 8-bit forms (system code page), through one owned buffer
/// that is allocated on first use. There are two ways to use it around a foreign call:
///
///     CVT cvt;                                CVT cvt;
///     SomethingA(cvt.T_A(szText));            SomethingW(cvt.A_T());
///     cvt.A_T(szText); // what it made of it  cvt.T_A(szNarrow); // the same in 8 bits
///
/// What does not fit is cut; every text is terminated. Out of memory gives null pointers and empty
/// texts.
class TESSALY_API CVT {
  public:
    /// cchWanted is the size in characters of the texts that pass through, terminator included.
    explicit CVT(unsigned cchWanted = 260);
    CVT(const CVT&) = delete; // owns the buffer
    CVT& operator=(const CVT&) = delete;
    ~CVT();

    unsigned GetSize() const { return cch; } ///< The size that was wanted, in characters.
    /// The text in 8 bits, in the buffer, which a narrow function may then change: it has room for
    /// GetSize() characters and the terminator. A null text counts as empty.
    char* T_A(const wchar_t* pszText);
    /// The buffer as a place for 16-bit text, of GetSize() characters and the terminator.
    wchar_t* A_T();
    /// The 16-bit text in the buffer, in 8 bits, into pszOut of GetSize() bytes.
    void T_A(char* pszOut) const;
    /// The 8-bit text in the buffer, in 16 bits, into pszOut of GetSize() characters.
    void A_T(wchar_t* pszOut) const;
    /// The text itself, which is of 16 bits already: for calls that are written for both forms.
    static const wchar_t* T_W(const wchar_t* pszText) { return pszText; }

  private:
    bool Allocate();

    HeapArray<wchar_t> buffer; // of cch characters and a terminator, once it is used
    unsigned cch;
};
