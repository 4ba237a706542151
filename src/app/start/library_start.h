#pragma once
#include <windows.h>

/// The library's start, in its fixed order: what is not constant-initialised is made, then the
/// instance, the registry root and the subclassing are set. Called by the library's entry point;
/// programs that link the library statically call it first in main with their own module. It runs
/// under the loader lock: nothing in it may load a module or wait for a thread.
void LibraryStart(HINSTANCE hinst);

/// The counterpart, in the reverse order: when the library is unloaded, not when the process ends.
void LibraryStop();
