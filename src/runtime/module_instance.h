#pragma once
#include <windows.h>

/// The instance handle of the module that this code is part of: the library, or the program that
/// links it statically. Window classes are registered and windows created with it.
HINSTANCE GetModuleInstance() noexcept;
