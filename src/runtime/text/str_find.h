#pragma once
#include "runtime/base/export.h"
#include "runtime/text/str_count.h" // kNotFound

// Comparing texts and finding texts in lists. bIgnoreCase compares through CharUpperW, that
// is by the platform's tables for the user's language, character by character.

/// 1 if the text starts with the prefix. A null prefix gives 1. An empty prefix gives 1 only if the
/// text is not empty. A null text counts as empty.
TESSALY_API int StrStartsWith(const wchar_t* pszText, const wchar_t* pszPrefix, int bIgnoreCase);

/// 1 if the two texts are the same. A null text counts as empty.
TESSALY_API int StrIsSame(const wchar_t* pszText, const wchar_t* pszOther, int bIgnoreCase);

/// The list is terminated texts one after another, with an empty text as its end. The index of the
/// first one that equals pszText; kNotFound if none does or an argument is null. An empty text is
/// in no list.
TESSALY_API unsigned StrFindInList(const wchar_t* pszList, const wchar_t* pszText, int bIgnoreCase);

/// 1 if the text begins with an item of the list, whose items stand between separators ("abc" is in
/// "x,ab", with the separator ","). An empty item within the list, or at its start, matches every
/// text; behind a separator at the very end there is no item. An empty or null list gives 0, a null
/// text counts as empty.
TESSALY_API int IsStrInList(const wchar_t* pszText, const wchar_t* pszList, wchar_t chSeparator,
                            int bIgnoreCase);
