// The library's entry point. In a file of its own, as programs that link the library statically
// have none.

#include "app/start/library_start.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE hinst, DWORD dwReason, void* pReserved) {
    if (dwReason == DLL_PROCESS_ATTACH) {
        ::DisableThreadLibraryCalls(hinst);
        LibraryStart(hinst);
    } else if (dwReason == DLL_PROCESS_DETACH && !pReserved) {
        // When the process ends (pReserved is set) the other threads are gone wherever they were,
        // perhaps with locks held; the system takes everything back by itself.
        LibraryStop();
    }
    return TRUE;
}
