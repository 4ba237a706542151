#pragma once
#include <windows.h>
#include <atomic>

/// A lock for a few instructions on data of the whole process. The compiler initialises it, so that
/// it needs no place in the library's start. Held for longer, or over a call that may wait, it
/// would burn time: that is for CritSec.
class SpinLock {
  public:
    constexpr SpinLock() noexcept = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

    /// Holds the lock for the length of a block.
    class Guard {
      public:
        explicit Guard(SpinLock& lockToHold) noexcept : lock(lockToHold) {
            // The owner may have a lower priority: it gets time.
            while (lock.flag.test_and_set(std::memory_order_acquire)) ::Sleep(1);
        }
        ~Guard() { lock.flag.clear(std::memory_order_release); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

      private:
        SpinLock& lock;
    };

  private:
    std::atomic_flag flag;
};
