#pragma once
#include "runtime/base/export.h"

// Whether the icons are put back when the displays change: a number in the user's registry, which
// the monitor reads when its window stands, and again whenever it is told that it may have changed.

/// 1 if it is on; 0 if it is off, also as long as nobody has turned it on.
TESSALY_API int GetRestoreOnChange();
/// Turns it on or off, and tells a monitor that runs. 1; 0 if the registry could not be written.
TESSALY_API int SetRestoreOnChange(int bOn);
