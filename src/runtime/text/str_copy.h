#pragma once
#include "runtime/base/export.h"
#include <cstddef>

// Building texts in two passes with one routine: first with a null destination, which only counts,
// then with a place of that size, which writes. The destination moves on behind what was written,
// the counter by as many characters.
//
//     void Build(wchar_t* psz, unsigned& cch) {        unsigned cch = 0;
//         CopyStr(psz, L"name=", cch);                 Build(nullptr, cch);
//         CopyStrZ(psz, pszName, cch);                 CSBuf buf(cch * sizeof(wchar_t));
//     }                                                Build(..., cch = 0);
//
// Nothing here checks space. A null source counts as empty.

/// Copies the characters of a text, without its terminator.
TESSALY_API void CopyStr(wchar_t*& pszDest, const wchar_t* pszSource, unsigned& cch);
/// Copies a text with its terminator, which is counted too.
TESSALY_API void CopyStrZ(wchar_t*& pszDest, const wchar_t* pszSource, unsigned& cch);
/// Copies the characters of a text, without its terminator, to which the source moves on.
TESSALY_API void StrCopy(wchar_t*& pszDest, const wchar_t*& pszSource, unsigned& cch);
/// Stores one character.
TESSALY_API void CharAdd(wchar_t*& pszDest, wchar_t ch, unsigned& cch);

// Steps over text, one 16-bit character each. A null pointer stays null; nothing but the start
// given to DecPsz is a bound.

/// Stores one character and moves on. A null destination is left alone.
TESSALY_API void CharAdd(wchar_t*& pszDest, wchar_t ch);
/// Copies one character, also a terminator, and moves both on. 1 if it was not the terminator; 0 if
/// it was or a pointer is null.
TESSALY_API int CharCopy(wchar_t*& pszDest, const wchar_t*& pszSource);
/// Moves on by one character. Returns the new place.
TESSALY_API const wchar_t* IncPsz(const wchar_t*& psz);
TESSALY_API wchar_t* IncPsz(wchar_t*& psz);
/// Moves on by one character. Returns the old place.
TESSALY_API const wchar_t* PszInc(const wchar_t*& psz);
TESSALY_API wchar_t* PszInc(wchar_t*& psz);
/// Moves back by one character, but not to before pszStart. Returns the new place.
TESSALY_API const wchar_t* DecPsz(const wchar_t* pszStart, const wchar_t*& psz);
TESSALY_API wchar_t* DecPsz(const wchar_t* pszStart, wchar_t*& psz);
/// The character there; 0 for null.
TESSALY_API wchar_t CharAt(const wchar_t* psz);

// Texts on the library's heap, held by a plain pointer that starts as null. Only these functions
// take and free them: the way to free one is to give no new text. Out of memory leaves a null.

/// Replaces a text by a fresh copy of pszNew and stores that one's length; no new text leaves a
/// null and length 0. The old text is freed; with bWipe it is filled with zeros before, over its
/// stored length and the terminator. pszNew may lie in the old text.
TESSALY_API void StrAllocCopy(wchar_t*& pszText, unsigned& cch, const wchar_t* pszNew, int bWipe);
/// Replaces a text by a fresh copy of pszNew and frees the old one, which pszNew may lie in. No new
/// text, and an empty one, leave a null.
TESSALY_API void StrRealloc(wchar_t*& pszText, const wchar_t* pszNew);

/// Writes n zero characters, which no optimiser leaves out. Null does nothing.
TESSALY_API void StrErase(wchar_t* pszText, unsigned n);
/// 1 if all n bytes of the block are b; 0 for a null block or no bytes.
TESSALY_API int IsMemSetTo(const void* pBlock, unsigned char b, std::size_t n);
