#pragma once
#include "runtime/base/export.h"

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
