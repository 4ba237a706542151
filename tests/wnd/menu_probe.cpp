// Prints whether menu bitmaps are made; started by the tests under names for which the platform
// shows itself as one Windows or another.
#include "wnd/menu/csmenu.h"

#include <cstdio>

int wmain() {
    HICON hicon = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_APPLICATION));
    HBITMAP hbm = CSMenu::GenerateBitmap(hicon);
    std::printf("%d %d\n", hicon != nullptr, hbm != nullptr);
    ::DeleteObject(hbm);
    return 0;
}
