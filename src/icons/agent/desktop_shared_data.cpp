#include "icons/agent/desktop_shared_data.h"

// The initialiser keeps it out of .bss, which would not be shared; a section name of the image has
// at most eight characters.
__attribute__((section(".SDATA"), shared)) DesktopSharedData desktopSharedData = {};
