#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// The module that this library is part of: its resources come from there, and its window classes
/// are registered with it. Null before the library's start.
TESSALY_API HINSTANCE GetLibraryInstance();

/// For the library's start alone.
void SetLibraryInstance(HINSTANCE hinst);
