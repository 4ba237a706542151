#pragma once
#include "runtime/threads/crit_sec.h"
#include "runtime/base/manual_object.h"

/// A process-wide critical section that the library's start makes and its end destroys.
using ManualLock = ManualObject<CritSec>;

/// Holds a ManualLock for the length of a block; nothing while the lock has not been started.
class ManualLockGuard {
  public:
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
