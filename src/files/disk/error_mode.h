#pragma once
#include "runtime/base/export.h"

#include <windows.h>

// What the platform does about errors of drives, for as long as somebody touches them.

/// Sets the error mode (SEM_..., winbase.h) for its lifetime. The mode is the whole process'.
class TESSALY_API ErrorModeSuppressor {
  public:
    /// The mode for the lifetime.
    explicit ErrorModeSuppressor(UINT nMode) : nPrevious(::SetErrorMode(nMode)) {}
    ErrorModeSuppressor(const ErrorModeSuppressor&) = delete; // puts the mode back once
    ErrorModeSuppressor& operator=(const ErrorModeSuppressor&) = delete;
    ~ErrorModeSuppressor() { ::SetErrorMode(nPrevious); }

  private:
    UINT nPrevious;
};

/// Held by code that touches removable drives, so that no system dialog asks for a disk.
class TESSALY_API NoFloppyDiskError : public ErrorModeSuppressor {
  public:
    NoFloppyDiskError() : ErrorModeSuppressor(SEM_FAILCRITICALERRORS) {}
};
