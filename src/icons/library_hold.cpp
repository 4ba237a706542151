#include "icons/library_hold.h"
#include "runtime/owned_handle.h"

#include <utility>

namespace {
const char chInside = 0; // its address lies in this module's image, wherever the object does
} // namespace

void LibraryHold::Take() {
    if (hmodHeld) return;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(&chInside), &hmodHeld);
}

void LibraryHold::Release() {
    HMODULE hmod = std::exchange(hmodHeld, nullptr);
    if (!hmod) return;
    // FreeLibrary itself is the thread's procedure: its return address lies in the platform.
    auto pfnFree = reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(::FreeLibrary));
    OwnedHandle thread(::CreateThread(nullptr, 0, pfnFree, hmod, 0, nullptr));
    if (!thread) hmodHeld = hmod; // held on; the next release tries again
}
