#pragma once
#include "runtime/base/export.h"

// What the system does when nobody uses it, and what stands behind the windows.

/// Keeps the screen and the system awake as if the user had just done something. Nothing where the
/// platform can't.
TESSALY_API void StopScreenSaver();
/// Keeps them awake. With bDisplay once, for the display and, with bSystem, the system. Without
/// bDisplay from now on: bSystem keeps the system awake until a call with neither on the same
/// thread, or until that thread ends.
TESSALY_API void ImitateUserActivity(int bSystem, int bDisplay);
/// Sets the picture file of the desktop for the user; null removes it. The platform's result.
TESSALY_API int SetWallpaper(const wchar_t* pszPath);
