#pragma once
#include "runtime/base/export.h"

// Tokens: the pieces of a text between separators, where any number of separators in a row is one.
// A separator set is a text of single characters; null or empty separates nothing.

/// The static buffer of GetToken, in characters with the terminator.
constexpr unsigned kTokenBufferSize = 256;

/// The next token of a text that is cut up in place. The first call takes the text, the following
/// ones null and the context of the call before. Skips separators, cuts the token with a
/// terminator, and stores in the context where to go on. The token, or null at the end and for null
/// without a context (start it as null).
TESSALY_API wchar_t* StrTokEx(wchar_t* pszText, const wchar_t* pszSeparators, wchar_t*& pszContext);

/// The token with that index, from 0, in a buffer of the process that the next call overwrites: for
/// use at once, on one thread. Only the first 255 characters of the text are looked at. Null if
/// there is no such token, for a negative index and for a null text.
TESSALY_API const wchar_t* GetToken(const wchar_t* pszText, const wchar_t* pszSeparators,
                                    int nIndex);

/// The number of tokens in the whole text; 0 for null.
TESSALY_API unsigned GetTokenCount(const wchar_t* pszText, const wchar_t* pszSeparators);
