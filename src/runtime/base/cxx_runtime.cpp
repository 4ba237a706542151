// The library's own pieces of the C++ runtime: linking the compiler's would bring imports that
// Windows XP does not have. Part of the library's image only; the tests use the compiler's.

#include <windows.h>
#include <new>

namespace {
void* AllocateOrNull(std::size_t cb) noexcept {
    return ::HeapAlloc(::GetProcessHeap(), 0, cb ? cb : 1);
}
void* AllocateOrEnd(std::size_t cb) noexcept {
    void* p = AllocateOrNull(cb);
    // A plain new may not give null, and there is no exception to throw. Code that can go on
    // without the memory asks with std::nothrow.
    if (!p) __builtin_trap();
    return p;
}
void Free(void* p) noexcept {
    if (p) ::HeapFree(::GetProcessHeap(), 0, p);
}
} // namespace

const std::nothrow_t std::nothrow{};

void* operator new(std::size_t cb) { return AllocateOrEnd(cb); }
void* operator new[](std::size_t cb) { return AllocateOrEnd(cb); }
void* operator new(std::size_t cb, const std::nothrow_t&) noexcept { return AllocateOrNull(cb); }
void* operator new[](std::size_t cb, const std::nothrow_t&) noexcept { return AllocateOrNull(cb); }
void operator delete(void* p) noexcept { Free(p); }
void operator delete[](void* p) noexcept { Free(p); }
void operator delete(void* p, std::size_t) noexcept { Free(p); }
void operator delete[](void* p, std::size_t) noexcept { Free(p); }

extern "C" void __cxa_pure_virtual() { __builtin_trap(); }
