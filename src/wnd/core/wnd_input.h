#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// The mouse and the keyboard, and small objects for the length of a block.

/// 1 if the key (VK_) is down, as of the thread's last input message.
TESSALY_API int IsKeyPressed(int nKey);
/// 1 if the key's toggle is on, as of the thread's last input message.
TESSALY_API int IsKeyToggled(int nKey);
/// 1 if the button (VK_LBUTTON...) is down now; left and right as the user has swapped them.
TESSALY_API int IsMouseButtonPressed(int nButton);
/// The cursor in the window's client pixels. 1; 0, and *ppt as it was, if it can't be read.
TESSALY_API int GetCursorClientPos(HWND hwnd, POINT* ppt);
/// Asks for one WM_MOUSELEAVE. The platform's result.
TESSALY_API int CatchMouseOut(HWND hwnd);

/// The cursor, in the window's client pixels, or with a null window in the screen's.
struct TESSALY_API MousePOINT : POINT {
    explicit MousePOINT(HWND hwnd); ///< Asks for the cursor.
};

/// Disables a window for the length of a block.
// QUIRK: the end enables it whatever state it had before. Test:
// CSWndEnabler.EnablesInTheEndWhatWasDisabledBefore
class TESSALY_API CSWndEnabler {
  public:
    explicit CSWndEnabler(HWND hwndTarget); ///< Disables the window.
    ~CSWndEnabler();
    CSWndEnabler(const CSWndEnabler&) = delete;
    CSWndEnabler& operator=(const CSWndEnabler&) = delete;

  private:
    HWND hwnd;
};
