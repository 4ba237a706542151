#pragma once
#include "runtime/base/export.h"

/// Frees a buffer that a function of the library allocated for its caller, as that function says;
/// null is nothing to do. Nothing else may free one: the caller may have another heap.
TESSALY_API void FreeDllBuf(void* pBuffer);
