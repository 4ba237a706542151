#include "icons/agent/library_hold.h"
#include "runtime/base/ownership.h"

#include <utility>

namespace {
const char chInside = 0; // its address lies in this module's image, wherever the object does

/// For the caller of Release to have left this library's code: it still has to return through it.
constexpr DWORD kLeaveMs = 1000;

DWORD WINAPI GiveBack(void* hmod) {
    ::Sleep(kLeaveMs);
    ::FreeLibraryAndExitThread(static_cast<HMODULE>(hmod), 0); // never returns to this code
}
} // namespace

void LibraryHold::Take() {
    if (hmodHeld) return;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(&chInside), &hmodHeld);
}

void LibraryHold::Release() {
    HMODULE hmod = std::exchange(hmodHeld, nullptr);
    if (!hmod) return;
    OwnedHandle thread(::CreateThread(nullptr, 0, &GiveBack, hmod, 0, nullptr));
    if (!thread) hmodHeld = hmod; // held on; the next release tries again
}
