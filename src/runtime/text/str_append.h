#pragma once
#include "runtime/base/export.h"

// The format is of FormatText's dialect: %s is wide. What is formatted is cut to 1,023 characters,
// and what of that does not fit behind the text within its cch characters (with the terminator) is
// cut too. The arguments may be the text itself.

/// Formats and appends. A null format clears the text.
TESSALY_API void StrAppendTextFmt(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, ...);
/// The same with a string of the string table as the format; for its id see res_str.h. Id 0 clears
/// the text; where there is no such string nothing is appended.
TESSALY_API void StrAppendTextFmt(wchar_t* pszText, unsigned cch, int nFormatId, ...);
