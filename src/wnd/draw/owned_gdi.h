#pragma once
#include "runtime/base/owned_handle.h"
#include <windows.h>

// Owners of drawing objects. What is still selected in a context can't be deleted: declare the
// owner before the CSDC that it is selected into, so that the context goes first.

using OwnedBitmap = OwnedHandleOf<HBITMAP, &::DeleteObject>;
using OwnedBrush = OwnedHandleOf<HBRUSH, &::DeleteObject>;
using OwnedPen = OwnedHandleOf<HPEN, &::DeleteObject>;
using OwnedIcon = OwnedHandleOf<HICON, &::DestroyIcon>;
