#pragma once
#include "runtime/base/export.h"
#include "runtime/text/text_format.h"

// Small texts for people: sizes, times, names that have to fit. What does not fit into the given
// characters (with the terminator) is cut.

/// A size in bytes in the largest unit that it fills, with 1,024 of one unit in the next: "17 B",
/// "1.5 KB", up to TB. The tenth is cut, not rounded, and left out where it is 0 unless
/// bAlwaysDecimal is given; bytes have none.
TESSALY_API void SizeToStr(wchar_t* pszText, unsigned cch, unsigned long long cb,
                           int bAlwaysDecimal);

/// How long something still takes, in its two largest units: "2 minute(s) 5 seconds", or "2 m 5 s"
/// in the short form. 1; for 0 seconds the text is empty and the result 0.
TESSALY_API int GetTextRemaining(unsigned nSeconds, wchar_t* pszText, unsigned cch, int bLongForm);

/// The static buffer of FitText, in characters with the terminator; what is longer is cut.
constexpr unsigned kFitTextSize = 1024;

/// Shortens a text by a piece of its middle, with "..." in its place, by proportion: cxFull is how
/// wide the text is, cxWanted how wide it may be. A text that fits, null and the empty text come
/// back as they are; where not one character would be left before the dots, the result is empty.
/// Everything else lives in a buffer of the process that the next call overwrites: for use at once,
/// on one thread.
TESSALY_API const wchar_t* FitText(const wchar_t* pszText, int cxFull, int cxWanted);

// The format is of FormatText's dialect (runtime/text/text_format.h): %s is wide. What is formatted
// is cut to 1,023 characters, and what of that does not fit behind the text within its cch
// characters (with the terminator) is cut too. The arguments may be the text itself. With an id for
// the format: see runtime/messages/res_str.h.

/// Formats and appends. A null format clears the text; nothing is appended to a null text or to one
/// without a terminator within its cch characters.
TESSALY_API void StrAppendTextFmt(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, ...);
/// StrAppendTextFmt with a started argument list.
void StrAppendTextFmtV(wchar_t* pszText, unsigned cch, const wchar_t* pszFormat, va_list args);
