#pragma once
#include <windows.h>

/// The path of a module's file; null is the program. 0 and an empty text if it does not fit.
int GetModulePath(HINSTANCE hinst, wchar_t (&szPath)[MAX_PATH]);
