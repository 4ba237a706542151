// A program that does nothing but ask about the screen: what any start of a program with windows
// costs.
#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    return ::GetDesktopWindow() && ::GetSystemMetrics(SM_CXSCREEN) ? 0 : 1;
}
