#include "icons/agent/desktop_shared_data.h"

// There is no lock: each word is written before the message is posted that makes the shell read it,
// and the monitor's thread is the only writer.
//
// The initialiser keeps the words out of .bss, which would not be shared. A section's name has at
// most eight characters in an image.
__attribute__((section(".SDATA"), shared)) DesktopSharedData desktopSharedData = {};
