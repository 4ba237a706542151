#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Asks the user for a printer and prints a text on one page, with words wrapped; what does not fit
/// is not printed. Margins are in tenths of an inch from the edges of what the printer can reach.
/// bFixedFont: every character as wide as the next. nIgnored has no meaning. hwnd must be a window;
/// all above it are disabled meanwhile. 1 if the text was printed; 0 if the user did not want to,
/// if there is no printer or it refused, or when out of memory (the last error is E_OUTOFMEMORY
/// then). A null text counts as empty.
TESSALY_API int PrintText(HWND hwnd, LPCWSTR pszDocName, LPCWSTR pszText, int bFixedFont,
                          int nIgnored, int nLeft, int nTop, int nRight, int nBottom);
