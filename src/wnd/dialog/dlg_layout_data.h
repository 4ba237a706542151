#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Where a dialog was and how it was shown, kept by the caller across runs of the dialog (see
/// CSDlg::EnableResizing). Not filled yet while its length is 0.
struct MyWindowPlacement : WINDOWPLACEMENT {
    constexpr MyWindowPlacement() : WINDOWPLACEMENT{} {}
    /// Says that the record is filled, or is about to be.
    void Initialize() { length = sizeof(WINDOWPLACEMENT); }
    /// Whether the record is filled.
    int IsInitialized() const { return length == sizeof(WINDOWPLACEMENT); }
};

/// A run of sibling controls that can be folded away, see CSDlg::AddCtrlGroup.
struct CSCtrlGroup {
    unsigned int firstId;       // in the order of siblings
    unsigned int lastId;        // the last one of the run
    unsigned int containerId;   // a frame around the group that grows and shrinks with it, or 0
    unsigned int parentGroupId; // firstId of the group around this one, or 0
    int groupHeight;            // pixels, measured when the dialog is first shown
    int isShown;                // non-zero: it is not folded away
};

/// The thickness of a sizing frame in pixels, the same for all windows.
struct FrameThickness {
    int cx; // of the upright edges
    int cy; // of the others
};
/// The thickness as it was last read.
const FrameThickness& GetFrameThickness();
/// Reads it from the system (SM_CXFRAME, SM_CYFRAME): for a new dialog, and when the system's
/// settings have changed.
void ReadFrameThickness();
