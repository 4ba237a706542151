#pragma once
#include <new>

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
    /// Null before Start and after Stop.
    T* Get() noexcept { return pObject; }

  private:
    alignas(T) unsigned char bytes[sizeof(T)] = {};
    T* pObject = nullptr;
};
