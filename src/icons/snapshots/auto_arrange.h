#pragma once
#include <windows.h>

/// Whether the desktop arranges its icons by itself, by the list view's style or, where the folder
/// view is in charge, that one's flags. Messages that are sent to the caller's windows may be
/// handled meanwhile. COM is used for the length of the call.
[[nodiscard]] bool IsAutoArranged(HWND hwndListView);

/// Asks the user whether the desktop may stop arranging its icons: true after a yes.
[[nodiscard]] bool AskToStopAutoArrange();
/// Makes it stop, both ways. COM is used for the length of the call.
void StopAutoArrange(HWND hwndListView);

/// Makes the desktop leave its icons where they are put, as a restore needs it. If it arranges them
/// by itself (IsAutoArranged), the user is asked once; after a yes both are cleared. False after
/// any other answer: nothing has been changed then. For the monitor's thread; COM is used for the
/// length of the call.
[[nodiscard]] bool ClearAutoArrange(HWND hwndListView);
