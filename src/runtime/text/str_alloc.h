#pragma once
#include "runtime/base/export.h"
#include <cstddef>

// Texts on the library's heap, held by a plain pointer that starts as null. Only these functions
// take and free them: the way to free one is to give no new text. Out of memory leaves a null.

/// Replaces a text by a fresh copy of pszNew and stores that one's length; no new text leaves a
/// null and length 0. The old text is freed; with bWipe it is filled with zeros before, over its
/// stored length and the terminator. pszNew may lie in the old text.
TESSALY_API void StrAllocCopy(wchar_t*& pszText, unsigned& cch, const wchar_t* pszNew, int bWipe);
/// The same without length and filling. An empty new text leaves a null too.
TESSALY_API void StrRealloc(wchar_t*& pszText, const wchar_t* pszNew);

/// Writes n zero characters, which no optimiser leaves out. Null does nothing.
TESSALY_API void StrErase(wchar_t* pszText, unsigned n);
/// 1 if all n bytes of the block are b; 0 for a null block or no bytes.
TESSALY_API int IsMemSetTo(const void* pBlock, unsigned char b, std::size_t n);
