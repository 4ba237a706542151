#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// 1 if fewer than two of the drives A: and B: are removable.
TESSALY_API int SingleFloppy();
/// 1 on editions that have the feature. On a WinPro edition the user is told, over hwndOwner, that
/// the command is not available there, and the result is 0.
// QUIRK: the other way round than the name of WinPro suggests: it is what is not supported.
// Test: WinProNotSupported.TellsTheUserOnAProfessionalEdition
TESSALY_API int WinProNotSupported(HWND hwndOwner);
/// The system's setting "AllowMultipleTSSessions"; 0 if it cannot be read.
TESSALY_API int IsFastUserSwitchingEnabled();
/// The system's default language as text: its locale name from Windows Vista on ("en-US"), before
/// that its English name. cchBuffer counts the terminator. Returns 1; 0 if it does not fit, and the
/// text is then empty.
TESSALY_API int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer);
