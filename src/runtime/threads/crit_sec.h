#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

/// A critical section. A copy has the bytes of the platform's structure and nothing else: it must
/// not be entered or destroyed together with its original.
class TESSALY_API CritSec {
  public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the platform fills it
    CritSec() noexcept { ::InitializeCriticalSection(&cs); }
    ~CritSec() { ::DeleteCriticalSection(&cs); }
    CritSec(const CritSec&) = default;
    CritSec& operator=(const CritSec&) = default;

    /// Waits until no other thread is inside. The owner may enter again.
    void Enter() noexcept { ::EnterCriticalSection(&cs); }
    void Leave() noexcept { ::LeaveCriticalSection(&cs); } ///< Undoes one Enter of this thread.
    /// Enters and leaves at once: returns when the present owner has left.
    void Wait() noexcept {
        Enter();
        Leave();
    }

  private:
    CRITICAL_SECTION cs;
};

/// Holds a CritSec for the length of a block.
class CritSecLock {
  public:
    explicit CritSecLock(CritSec& csToHold) noexcept : cs(csToHold) { cs.Enter(); } ///< Enters it.
    ~CritSecLock() { cs.Leave(); }
    CritSecLock(const CritSecLock&) = delete;
    CritSecLock& operator=(const CritSecLock&) = delete;

  private:
    CritSec& cs;
};

/// A process-wide critical section that the library's start makes and its end destroys.
using ManualLock = ManualObject<CritSec>;

/// Holds a ManualLock for the length of a block; nothing while the lock has not been started.
class ManualLockGuard {
  public:
    /// Enters it, if it is there.
    explicit ManualLockGuard(ManualLock& lock) noexcept : pcs(lock.Get()) {
        if (pcs) pcs->Enter();
    }
    ~ManualLockGuard() {
        if (pcs) pcs->Leave();
    }
    ManualLockGuard(const ManualLockGuard&) = delete;
    ManualLockGuard& operator=(const ManualLockGuard&) = delete;

  private:
    CritSec* pcs;
};
