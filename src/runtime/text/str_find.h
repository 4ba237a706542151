#pragma once
#include "runtime/base/export.h"

// Comparing texts and finding texts in lists. bIgnoreCase compares through CharUpperW, that
// is by the platform's tables for the user's language, character by character.

/// 1 if the text starts with the prefix. A null prefix gives 1. An empty prefix gives 1 only if the
/// text is not empty. A null text counts as empty.
TESSALY_API int StrStartsWith(const wchar_t* pszText, const wchar_t* pszPrefix, int bIgnoreCase);

/// 1 if the two texts are the same. A null text counts as empty.
TESSALY_API int StrIsSame(const wchar_t* pszText, const wchar_t* pszOther, int bIgnoreCase);

/// The index of the first text of a list that equals pszText; kNotFound if none does or an argument
/// is null. The list is terminated texts one after another, with an empty text as its end, which is
/// in no list.
TESSALY_API unsigned StrFindInList(const wchar_t* pszList, const wchar_t* pszText, int bIgnoreCase);

/// 1 if the text begins with an item of the list, whose items stand between separators ("abc" is in
/// "x,ab", with the separator ","). An empty item within the list, or at its start, matches every
/// text; behind a separator at the very end there is no item. An empty or null list gives 0, a null
/// text counts as empty.
TESSALY_API int IsStrInList(const wchar_t* pszText, const wchar_t* pszList, wchar_t chSeparator,
                            int bIgnoreCase);

// Counting and finding single characters. A null text counts as empty; the terminator is no
// character of a text.

/// What FindChar and the like give for "none".
constexpr unsigned kNotFound = 0xFFFFFFFF;

/// 1 if the text is not empty and all of it is digits (IsNumChar).
TESSALY_API int IsNumStr(const wchar_t* pszText);
/// The index of a character's first occurrence, kNotFound if there is none.
TESSALY_API unsigned FindChar(const wchar_t* pszText, wchar_t ch);
/// FindChar under another name.
TESSALY_API unsigned strPos(const wchar_t* pszText, wchar_t ch);
/// How often the character occurs.
TESSALY_API unsigned StrCharCount(const wchar_t* pszText, wchar_t ch);
/// How many characters of the text are in the set, a text of single characters.
TESSALY_API unsigned StrCountChars(const wchar_t* pszText, const wchar_t* pszSet);
/// The number of lines in the first n characters, or in all of a shorter text: 1 plus the number
/// of LFs, so that an empty line behind the last one counts; 0 for an empty text.
TESSALY_API unsigned GetLineCount(const wchar_t* pszText, unsigned n);

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
