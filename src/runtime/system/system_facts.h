#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Which Windows this is, asked anew with each call. All answers come from GetVersionExW, which
// tells Windows 8.1 and later only to programs whose manifest names them. Each test is 1 or 0, and
// 0 outside the NT family.

/// The NT family.
TESSALY_API int WinNT();

/// At least this version.
///@{
TESSALY_API int Win2K();
TESSALY_API int WinXP();
TESSALY_API int WinServer2003();
TESSALY_API int WinVista();
TESSALY_API int Win7();
TESSALY_API int Win8();
TESSALY_API int Win81();
TESSALY_API int Win10();
///@}

/// Exactly this version.
///@{
TESSALY_API int Win2K_only();
TESSALY_API int WinXP_only();
TESSALY_API int WinVista_only();
TESSALY_API int Win7_only();
///@}

/// A server or a domain controller.
TESSALY_API int WinServer();
/// Not a home edition.
TESSALY_API int WinPro();

/// Build number in the low 32 bits, above it minor and major version in 16 bits each. The service
/// pack, if asked for, is major in the high 16 bits and minor in the low. 0 if the system does not
/// tell; the service pack is then 0.
TESSALY_API unsigned long long GetWinVersion(DWORD* pdwServicePack = nullptr);

/// 1 if this process is of 32 bits and the system of 64; 0 also if the system does not tell.
TESSALY_API int IsWow64();

/// 1 if fewer than two of the drives A: and B: are removable.
TESSALY_API int SingleFloppy();
/// The system's setting "AllowMultipleTSSessions", a number; 0 if it cannot be read.
TESSALY_API int IsFastUserSwitchingEnabled();
/// The system's default language as text: its locale name from Windows Vista on ("en-US"), before
/// that its English name. cchBuffer counts the terminator. Returns 1; 0 if it does not fit, and the
/// text is then empty.
TESSALY_API int GetWinLanguage(wchar_t* pszBuffer, int cchBuffer);

/// The product's own time: now, in seconds since 26 December 1995, 00:00 UTC.
TESSALY_API DWORD GetCurTime();
/// A given time (UTC) in the product's own, the low 32 bits of it.
TESSALY_API DWORD GetProductTime(const FILETIME& ft);
/// The present time, UTC. Returns 1; 0 when the platform refused.
TESSALY_API int GetSysFileTime(FILETIME* pft);
/// The packed date: year - 1980 in the high bits, month in 4 bits, day in 5. Null means today by
/// the local clock.
TESSALY_API DWORD GetDOSdate(const SYSTEMTIME* pst = nullptr);
