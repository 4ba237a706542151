#pragma once

/// From the first call on each block that this program takes with malloc, and so with new, has a
/// mark behind it, and is kept for a while with a pattern in it when it is freed. (The platform's
/// own checks tell of dialogs on many threads what is not so, also of those with no code of ours.)
void CheckBlocks();
/// Looks at the freed blocks that are kept, and tells how many blocks were found so far that were
/// written behind their end, after they were freed, or freed twice.
int CountBrokenBlocks();
