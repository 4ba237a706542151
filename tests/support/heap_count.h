#pragma once

/// How many blocks that were made with new are alive in this program. A block freed twice takes the
/// number below what it was.
long CountLiveBlocks();
