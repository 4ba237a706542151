#pragma once
#include "runtime/base/export.h"

/// Shows the About box and returns when it is closed. If one is open already, in this process or in
/// another, that one is brought forward instead.
TESSALY_API void ShowAboutOrActivate();
