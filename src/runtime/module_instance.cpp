#include "runtime/module_instance.h"

extern "C" IMAGE_DOS_HEADER __ImageBase; // the linker puts it at the module's first byte

HINSTANCE GetModuleInstance() noexcept { return reinterpret_cast<HINSTANCE>(&__ImageBase); }
