// A program that does nothing: what any start costs.
#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int) { return 0; }
