#pragma once
#include "runtime/base/export.h"

/// Removes the white characters (IsWhiteChar) from both ends of a text, in place. Meant for texts
/// that hold something else too; one that does not becomes empty.
///
/// An overload of the platform's StrTrimW, which takes the set of characters to remove and stands
/// in shlwapi.h: with one argument a caller gets this one.
TESSALY_API void StrTrimW(wchar_t* pszText);
/// The same where the text may be null or empty.
TESSALY_API void TrimStr(wchar_t* pszText);

/// Moves past blanks and tabs. If a double quote comes next, moves past it and past further blanks
/// and tabs and gives 1, otherwise 0. A null text stays null.
TESSALY_API int SkipLeadingWhiteSpaces(const wchar_t*& pszText);
TESSALY_API int SkipLeadingWhiteSpaces(wchar_t*& pszText);
