#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Asks the user for a printer and prints a text on one page, with words wrapped; what does not fit
/// is not printed. Margins are in tenths of an inch. bFixedFont: every character as wide as the
/// next. nIgnored has no meaning. 1 if the text was printed; 0 if the user did not want to, if
/// there is no printer, or when out of memory (the last error is E_OUTOFMEMORY then).
TESSALY_API int PrintText(HWND hwnd, LPCWSTR pszDocName, LPCWSTR pszText, int bFixedFont,
                          int nIgnored, int nLeft, int nTop, int nRight, int nBottom);
