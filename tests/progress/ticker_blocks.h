#pragma once
#include "support/heap_count.h"
#include "support/wait_until.h"

/// CountLiveBlocks, once what threads that have ended leave behind is gone too.
inline long CountSettledBlocks() {
    constexpr DWORD kStillMs = 30;
    long nBlocks = CountLiveBlocks();
    auto HasChanged = [&] { return CountLiveBlocks() != nBlocks; };
    while (PumpUntil(HasChanged, kStillMs)) nBlocks = CountLiveBlocks();
    return nBlocks;
}
