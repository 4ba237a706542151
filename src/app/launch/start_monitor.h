#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// What the start with Windows calls, through RunDll32.exe: starts the program beside this library,
/// without its opening balloon, and returns at once. A program that runs already is left alone. The
/// arguments are those of such a call and have no meaning.
extern "C" TESSALY_API void CALLBACK StartMonitor(HWND hwnd, HINSTANCE hinst, const char* pszLine,
                                                  int nShow);
/// Its exported name.
constexpr const wchar_t* kStartMonitorEntry = L"StartMonitor";
