#pragma once
class MyMonitor_Wnd;

/// The menu of the icon in the notification area: built from the store as it stands, shown at the
/// cursor until the user has chosen, taken apart again. Does what was chosen before it returns, and
/// with it waits for the boxes that this may show; messages are dispatched all the time. A request
/// that comes while the menu is open does nothing.
void OpenTrayMenu(MyMonitor_Wnd& monitor);
