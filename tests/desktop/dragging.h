#pragma once
#include <windows.h>

// What a shell does about drags on its desktop: icons follow the mouse with either button and lie
// where they are dropped. The test platform's own view runs the drag but leaves the icon, and knows
// nothing of the right button's drag.

enum class DragSource {
    PlatformView, // its handler of LVN_BEGINDRAG runs the drag and returns after the drop
    PlainView,    // nobody runs it: the loop is ours
};

/// Puts the shell's own window procedures below whatever a guest subclasses later.
void InstallDragging(HWND hwndView, HWND hwndList, DragSource source);

/// Sends the view a WM_NOTIFY made up by a test, with hwndFrom as its sender. A subclass sees it as
/// any other; the view itself, which would act on it, does not get it.
void SendMadeUpNotify(HWND hwndView, HWND hwndFrom, UINT nCode, int nItem);

/// 1 if the window's procedure is the one that InstallDragging put there: no guest is attached.
bool HasOwnProcedure(HWND hwnd);
