#pragma once
#include <windows.h>
#include <utility>

/// Owns one platform handle and gives it back with pfnClose. Empty is the null handle; a function
/// that reports failure with INVALID_HANDLE_VALUE is converted by its caller.
template <class Handle, auto pfnClose>
class OwnedHandleOf {
  public:
    OwnedHandleOf() = default;
    explicit OwnedHandleOf(Handle hTaken) noexcept : h(hTaken) {}
    OwnedHandleOf(OwnedHandleOf&& other) noexcept : h(std::exchange(other.h, nullptr)) {}
    OwnedHandleOf& operator=(OwnedHandleOf&& other) noexcept {
        Reset(std::exchange(other.h, nullptr));
        return *this;
    }
    OwnedHandleOf(const OwnedHandleOf&) = delete;
    OwnedHandleOf& operator=(const OwnedHandleOf&) = delete;
    ~OwnedHandleOf() { Reset(); }

    Handle Get() const noexcept { return h; }
    explicit operator bool() const noexcept { return h != nullptr; }
    /// Gives the handle to the caller, who closes it from now on.
    [[nodiscard]] Handle Release() noexcept { return std::exchange(h, nullptr); }
    void Reset(Handle hTaken = nullptr) noexcept {
        Handle hOld = std::exchange(h, hTaken);
        if (hOld) pfnClose(hOld);
    }
    /// For functions that return a handle through a pointer; what was held is closed first.
    Handle* Put() noexcept {
        Reset();
        return &h;
    }

  private:
    Handle h = nullptr;
};

using OwnedHandle = OwnedHandleOf<HANDLE, &::CloseHandle>;
using OwnedModule = OwnedHandleOf<HMODULE, &::FreeLibrary>;
using OwnedLocal = OwnedHandleOf<HLOCAL, &::LocalFree>;
