#pragma once
#include "runtime/base/export.h"

// Conversions between 16-bit text and the code pages, over terminated sources. Sizes are those of
// the destination, in characters or bytes, with the terminator; a size of 0 only measures, and the
// destination may then be null. The result is the platform's: what was written or is needed, with
// the terminator; 0 on failure (GetLastError), also for a null source and if it does not fit. On
// failure a destination of any size holds the empty text.

/// The system code page (CP_ACP).
TESSALY_API int mb2wc(const char* pszText, wchar_t* pszOut, int cchOut);
TESSALY_API int wc2mb(const wchar_t* pszText, char* pszOut, int cbOut);
/// The console's code page (CP_OEMCP).
TESSALY_API int mb2wcOEM(const char* pszText, wchar_t* pszOut, int cchOut);
TESSALY_API int wc2mbOEM(const wchar_t* pszText, char* pszOut, int cbOut);
/// UTF-8.
TESSALY_API int utf82wc(const char* pszText, wchar_t* pszOut, int cchOut);
TESSALY_API int wc2utf8(const wchar_t* pszText, char* pszOut, int cbOut);
