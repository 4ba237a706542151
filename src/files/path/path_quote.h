#pragma once
#include "runtime/base/export.h"

// Quotes around paths and the arguments of command lines. Where pszIn is null pszOut's own text is
// changed, whatever its length; otherwise pszOut has 260 characters and longer results are cut.

/// Puts the text between double quotes if it holds a blank. The buffer must have room for two more
/// characters. Null does nothing.
TESSALY_API void AddQuotesIfSpace(wchar_t* pszPath);
/// A text that starts with a double quote loses that and ends before the next one; any other stays
/// whole.
TESSALY_API void UnQuote(wchar_t* pszOut, const wchar_t* pszIn);
/// Blanks and tabs, then one double quote, then blanks and tabs are removed from the start, and the
/// same from the end.
TESSALY_API void RemoveWhiteSpacesAndQuotes(wchar_t* pszOut, const wchar_t* pszIn);
