#include "runtime/base/library_instance.h"

namespace {
constinit HINSTANCE hinstLibrary = nullptr;
} // namespace

HINSTANCE GetLibraryInstance() { return hinstLibrary; }

void SetLibraryInstance(HINSTANCE hinst) { hinstLibrary = hinst; }
