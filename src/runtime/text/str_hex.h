#pragma once
#include "runtime/base/export.h"

// Numbers and bytes in hexadecimal text. Either case is read; what is no digit counts as the digit
// 0 and rejects nothing.

/// Writes two upper-case characters per byte, first byte first, and a terminator, into at most cch
/// characters; of what does not fit only whole pairs are written. n bytes take 2 * n + 1. 1 if all
/// fitted, otherwise 0.
TESSALY_API int BinToHex(wchar_t* pszText, unsigned cch, const void* pData, unsigned n);
/// The same as 8-bit text.
TESSALY_API int BinToHex(char* pszText, unsigned cch, const void* pData, unsigned n);

/// The value of a hexadecimal digit, 0 for any other character.
TESSALY_API unsigned char HexToCode(wchar_t ch);
/// One byte from a pair of characters, the first in the high nibble.
TESSALY_API unsigned char HexToChar(wchar_t chHigh, wchar_t chLow);
/// Bytes from the pairs of a text, first pair first. A single last character counts as one more
/// pair, with its low nibble 0. Returns the number of bytes; null pData only counts. pData must
/// have room for all of them.
TESSALY_API unsigned HexToBin(void* pData, const wchar_t* pszText);
/// The same with the bytes reversed after reading: a number written most significant pair first
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
