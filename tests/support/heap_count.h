#pragma once

/// How many blocks that were made with new are alive in this program. A block freed twice takes the
/// number below what it was.
long CountLiveBlocks();
/// From now on the n-th block that this thread makes with new can't be had; 1 is the next one. All
/// behind it can.
void FailBlock(int n);
