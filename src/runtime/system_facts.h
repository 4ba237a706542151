#pragma once
#include "runtime/export.h"
#include <windows.h>

/// 1 if fewer than two of the drives A: and B: are removable.
TESSALY_API int SingleFloppy();
/// The system's default language as text: its locale name from Windows Vista on ("en-US"), before
/// that its English name. cchBuffer counts the terminator. Returns 1; 0 if it does not fit, and the
/// text is then empty.
TESSALY_API int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer);
