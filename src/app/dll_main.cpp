#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE hinst, DWORD dwReason, void*) {
    if (dwReason == DLL_PROCESS_ATTACH) ::DisableThreadLibraryCalls(hinst);
    return TRUE;
}
