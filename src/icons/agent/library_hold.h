#pragma once
#include <windows.h>

/// Keeps this library mapped while the shell's windows call into it. The hook's own reference goes
/// with the process that set it: without a second one, a monitor that is killed would leave the
/// shell with procedures of a library that is gone.
class LibraryHold {
  public:
    constexpr LibraryHold() noexcept = default;
    LibraryHold(const LibraryHold&) = delete;
    LibraryHold& operator=(const LibraryHold&) = delete;

    /// Takes the reference unless it is held.
    void Take();
    /// Gives it back, a second later and on a thread of its own: the caller still runs code of this
    /// library. Only for a caller on whose stack nothing else of this library waits.
    void Release();
    int IsHeld() const { return hmodHeld != nullptr; }

  private:
    HMODULE hmodHeld = nullptr;
};
