#pragma once
#include "runtime/base/export.h"

// Counting and finding single characters. A null text counts as empty; the terminator is no
// character of a text.

/// What FindChar and the like give for "none".
constexpr unsigned kNotFound = 0xFFFFFFFF;

/// 1 if the text is not empty and all of it is digits (IsNumChar).
TESSALY_API int IsNumStr(const wchar_t* pszText);
/// The index of a character's first occurrence, kNotFound if there is none.
TESSALY_API unsigned FindChar(const wchar_t* pszText, wchar_t ch);
/// The same under its other name.
TESSALY_API unsigned strPos(const wchar_t* pszText, wchar_t ch);
/// How often the character occurs.
TESSALY_API unsigned StrCharCount(const wchar_t* pszText, wchar_t ch);
/// How many characters of the text are in the set, a text of single characters.
TESSALY_API unsigned StrCountChars(const wchar_t* pszText, const wchar_t* pszSet);
/// The number of lines in the first n characters, or in all of a shorter text: 1 plus the number
/// of LFs, so that an empty line behind the last one counts; 0 for an empty text.
TESSALY_API unsigned GetLineCount(const wchar_t* pszText, unsigned n);
