// Sets the property of a window of another process: the window's number, the property's name, the
// value. Started by the tests.
#include <windows.h>
#include <cwchar>

int wmain(int nArgs, wchar_t** ppszArgs) {
    if (nArgs != 4) return 2;
    auto hwnd = reinterpret_cast<HWND>(std::wcstoull(ppszArgs[1], nullptr, 10));
    auto hValue = reinterpret_cast<HANDLE>(std::wcstoull(ppszArgs[3], nullptr, 10));
    return ::SetPropW(hwnd, ppszArgs[2], hValue) ? 0 : 1;
}
