#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// How the characters of a text stand in a file.

/// The encoding of a text file, as far as its start tells. Any other value is read like fmtAnsi,
/// and nothing is written in it.
enum CSFileTextFmt : int {
    fmtUnknown = 0,   // not yet known, or the file could not be read
    fmtAnsi = 1,      // bytes in the ANSI code page, lines end in CR LF, or no line end was seen
    fmtUnicode = 2,   // UTF-16 little-endian with its mark, FF FE
    fmtUnicodeBE = 3, // UTF-16 big-endian with its mark, FE FF
    fmtUtf8 = 4,      // UTF-8 with its mark, EF BB BF, lines end in CR LF
    fmtUtf8Lf = 5,    // the same, with lines that end in LF alone
    fmtAnsiLf = 6,    // bytes with lines that end in LF alone
    fmtBinary = 7,    // a control character was found: not a text
};

/// No length: a stream's that nobody can tell before its end, or a text's that did not fit.
constexpr DWORD kTextSizeUnknown = 0xFFFFFFFF;

/// No more than this is read of a file, from its start, to tell its encoding.
constexpr DWORD kTextProbeSize = 8192;

/// Swaps the two bytes of each 16-bit unit, in place. A last odd byte stays as it is. Null does
/// nothing.
TESSALY_API void ReverseUnicodeBytes(BYTE* pBytes, DWORD cb);
/// The same for nCount characters.
TESSALY_API void ReverseUnicodeBytes(wchar_t* pszText, unsigned nCount);
