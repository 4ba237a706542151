#pragma once
#include "runtime/base/export.h"

// Upper and lower case, by the platform's tables for the user's language (CharUpperW, CharLowerW):
// one character for one, so that no text changes its length.

/// The character in the other case, or itself.
TESSALY_API wchar_t CharToLower(wchar_t ch);
TESSALY_API wchar_t CharToUpper(wchar_t ch);
/// The same on one character in place. Null does nothing.
TESSALY_API void CharToLower(wchar_t* pch);
TESSALY_API void CharToUpper(wchar_t* pch);
/// The same over a whole text in place. Null does nothing.
TESSALY_API void StrToLower(wchar_t* pszText);
TESSALY_API void StrToUpper(wchar_t* pszText);

/// Puts the first ASCII letter of each word into upper case, in place. Words end at white
/// characters (IsWhiteChar); the rest of a word stays as it is. A letter that is not ASCII, a digit
/// or a sign before that letter does not count as the word's beginning: "3rd" becomes "3Rd".
TESSALY_API void StrCapitalizeAll(wchar_t* pszText);

/// Rotates A to Z and a to z by 13 places, in place, and leaves the rest. Twice gives the text
/// back.
TESSALY_API void StrRot13(wchar_t* pszText);
