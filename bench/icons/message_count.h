#pragma once
#include <windows.h>

/// What one thread of another process got since its counters were installed.
struct MessageCounts {
    LONG nPosted; // taken from its queue, timers among them
    LONG nSent;   // that reached its windows by a call
    LONG nLast;   // the number of the last of either
};

using InstallCountersFunc = int(DWORD dwThread);
using GetCountsFunc = MessageCounts();
using RemoveCountersFunc = void();
