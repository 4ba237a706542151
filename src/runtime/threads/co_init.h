#pragma once
#include "runtime/base/export.h"

/// COM on the calling thread for the length of a block. Not for a thread that has COM
/// multithreaded: it stays so, and the block's end takes that away.
class TESSALY_API CoInit {
  public:
    CoInit();
    ~CoInit();
    CoInit(const CoInit&) = delete; // undoes what it did
    CoInit& operator=(const CoInit&) = delete;
};

/// COM and the common controls while at least one object lives in the process. The first one's
/// thread is the one that gets COM, and the last one belongs on the same thread.
class TESSALY_API CoInitEx {
  public:
    CoInitEx();
    ~CoInitEx();
    CoInitEx(const CoInitEx&) = delete; // counted
    CoInitEx& operator=(const CoInitEx&) = delete;
};
