#pragma once
#include "runtime/export.h"

// Numbers and bytes in hexadecimal text. Either case is read; what is no digit counts as the digit
// 0 and rejects nothing.

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
