// The images' own pieces of the stack protector: a random word lies between a function's buffers
// and its return address, and the function ends the process if the word has changed. Linking the
// compiler's pieces would bring a message, a file and imports. Part of the images alone.

#include <windows.h>
#include <cstdint>

// Calls of both are made by the compiler, which knows these names.
// NOLINTBEGIN(bugprone-reserved-identifier): they are the compiler's to choose
extern "C" std::uintptr_t __stack_chk_guard;
extern "C" [[noreturn]] void __stack_chk_fail();
// NOLINTEND(bugprone-reserved-identifier)

// Never zero, even before the start has set it.
constinit std::uintptr_t __stack_chk_guard = 0x9E3779B97F4A7C00;

void __stack_chk_fail() {
    // Nothing may run on this stack any more, handlers as little as ours. From Windows 8 on the
    // system ends the process by this interrupt at once; before that it is an access violation.
    asm volatile("int $0x29" : : "c"(FAST_FAIL_STACK_COOKIE_CHECK_FAILURE));
    __builtin_trap();
}

namespace {
/// Spreads every bit over the whole word. (The finalizer of the splitmix64 generator.)
__attribute__((always_inline)) inline std::uint64_t Mix(std::uint64_t qw) {
    qw = (qw ^ (qw >> 30)) * 0xBF58476D1CE4E5B9;
    qw = (qw ^ (qw >> 27)) * 0x94D049BB133111EB;
    return qw ^ (qw >> 31);
}

/// What differs from start to start and cannot be read from outside: a counter of fine grain, where
/// the system has put the stack and the image, who and when. The system's random numbers would be
/// an import more, and a library to load under the loader's lock.
__attribute__((no_stack_protector)) int SetStackGuard() {
    LARGE_INTEGER nCounter{};
    ::QueryPerformanceCounter(&nCounter);
    FILETIME ftNow{};
    ::GetSystemTimeAsFileTime(&ftNow);
    const std::uint64_t words[] = {
        static_cast<std::uint64_t>(nCounter.QuadPart),
        static_cast<std::uint64_t>(ftNow.dwHighDateTime) << 32 | ftNow.dwLowDateTime,
        static_cast<std::uint64_t>(::GetCurrentProcessId()) << 32 | ::GetCurrentThreadId(),
        ::GetTickCount(),
        __builtin_ia32_rdtsc(),
        reinterpret_cast<std::uintptr_t>(&nCounter),
        reinterpret_cast<std::uintptr_t>(&__stack_chk_guard),
    };
    std::uint64_t qwGuard = __stack_chk_guard;
    for (std::uint64_t qw : words) qwGuard = Mix(qwGuard ^ qw);
    constexpr std::uint64_t kFirstByte = 0xFF;
    // A zero at the front: text copied too far can neither read the word nor write it.
    __stack_chk_guard = qwGuard & ~kFirstByte;
    return 0;
}

/// The C runtime calls what lies in here before anything that has a guard in its frame: the global
/// constructors and DllMain or the program's main function come later.
__attribute__((section(".CRT$XIB"), used)) int (*const pfnSetStackGuard)() = &SetStackGuard;
} // namespace
