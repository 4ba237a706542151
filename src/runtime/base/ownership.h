#pragma once
#include <windows.h>
#include <new>
#include <utility>

/// Owns one platform handle and gives it back with pfnClose. Empty is the null handle; a function
/// that reports failure with INVALID_HANDLE_VALUE is converted by its caller.
template <class Handle, auto pfnClose>
class OwnedHandleOf {
  public:
    OwnedHandleOf() = default;
    explicit OwnedHandleOf(Handle hTaken) noexcept : h(hTaken) {} ///< Takes the handle.
    /// Takes the other's handle.
    OwnedHandleOf(OwnedHandleOf&& other) noexcept : h(std::exchange(other.h, nullptr)) {}
    /// Takes the other's handle; what was held is closed.
    OwnedHandleOf& operator=(OwnedHandleOf&& other) noexcept {
        Reset(std::exchange(other.h, nullptr));
        return *this;
    }
    OwnedHandleOf(const OwnedHandleOf&) = delete;
    OwnedHandleOf& operator=(const OwnedHandleOf&) = delete;
    ~OwnedHandleOf() { Reset(); }

    /// The handle, which stays the object's; null if it is empty.
    Handle Get() const noexcept { return h; }
    explicit operator bool() const noexcept { return h != nullptr; }
    /// Returns the handle, which the caller closes from now on.
    [[nodiscard]] Handle Release() noexcept { return std::exchange(h, nullptr); }
    /// Closes what is held and takes the handle, or null.
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

using OwnedHandle = OwnedHandleOf<HANDLE, &::CloseHandle>;  ///< Closed by CloseHandle.
using OwnedModule = OwnedHandleOf<HMODULE, &::FreeLibrary>; ///< Given back by FreeLibrary.
using OwnedLocal = OwnedHandleOf<HLOCAL, &::LocalFree>;     ///< Freed by LocalFree.
using OwnedGlobal = OwnedHandleOf<HGLOBAL, &::GlobalFree>;  ///< Freed by GlobalFree.

/// Gives back a reference, as OwnedInterface's end.
template <class Interface>
void ReleaseInterface(Interface* p) {
    p->Release();
}
/// Owns one reference to a COM object.
template <class Interface>
using OwnedInterface = OwnedHandleOf<Interface*, &ReleaseInterface<Interface>>;

/// Runs fnAtEnd at the end of the scope unless dismissed.
template <class Fn>
class ScopeExit {
  public:
    /// The function or lambda of the end.
    explicit ScopeExit(Fn fnAtEnd) noexcept : fn(std::move(fnAtEnd)) {}
    ~ScopeExit() {
        if (bArmed) fn();
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    void Dismiss() noexcept { bArmed = false; } ///< Nothing runs at the end.

  private:
    Fn fn;
    bool bArmed = true;
};

/// Room for a process-wide object whose construction is not constant and therefore belongs into the
/// library's ordered start. The room itself is constant-initialised and has no destructor: nothing
/// runs before Start, and nothing after Stop. Start and Stop are not for several threads at once.
template <class T>
class ManualObject {
  public:
    constexpr ManualObject() noexcept = default;
    ManualObject(const ManualObject&) = delete;
    ManualObject& operator=(const ManualObject&) = delete;

    /// Constructs the object; nothing if it lives already.
    void Start() noexcept {
        if (!pObject) pObject = new (bytes) T;
    }
    /// Destroys the object; nothing if there is none.
    void Stop() noexcept {
        if (!pObject) return;
        T* pEnding = pObject;
        pObject = nullptr; // whoever asks from now on goes without
        pEnding->~T();
    }
    /// The object; null before Start and after Stop.
    T* Get() noexcept { return pObject; }

  private:
    alignas(T) unsigned char bytes[sizeof(T)] = {};
    T* pObject = nullptr;
};
