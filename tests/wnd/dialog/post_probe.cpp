// Posts a message to a window of another process: the window's number, message, wParam, lParam.
// Started by the tests.
#include <windows.h>
#include <cwchar>

int wmain(int nArgs, wchar_t** ppszArgs) {
    if (nArgs != 5) return 2;
    unsigned long long values[4];
    for (int n = 0; n < 4; ++n) values[n] = std::wcstoull(ppszArgs[n + 1], nullptr, 10);
    BOOL bPosted = ::PostMessageW(reinterpret_cast<HWND>(values[0]), static_cast<UINT>(values[1]),
                                  values[2], static_cast<LPARAM>(values[3]));
    return bPosted ? 0 : 1;
}
