#pragma once
#include <windows.h>
#include <atomic>

/// The object whose window is being created at the moment, one per thread: the first message of a
/// new window comes before its creator has the handle, and finds its object here. A slot of the
/// platform is used because compiler thread-locals fail on XP in a library that is loaded late.
class CreationSlot {
  public:
    constexpr CreationSlot() noexcept = default;
    CreationSlot(const CreationSlot&) = delete;
    CreationSlot& operator=(const CreationSlot&) = delete;
    ~CreationSlot();

    /// Stores the object (null: none) for the calling thread. 0 if the process has no slots left.
    int Set(void* pObject) noexcept;
    /// The calling thread's object, which is no longer waiting then; null for none.
    void* Take() noexcept;

  private:
    std::atomic<DWORD> dwIndex{TLS_OUT_OF_INDEXES}; // allocated by the first Set
};
