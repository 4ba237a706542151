#pragma once
#include "store/registry/reg_key.h"

// Windows lists the values of a key in the order in which they were written. The snapshots count on
// that order being the one of their ages, as it is while each is written when it is taken; one that
// is written later than newer ones would be listed behind them, and the newest be taken for the
// oldest.

/// Writes all snapshots that are newer than that time anew, the oldest first, so that they are
/// listed behind it. Each is there at any moment, by its name or as a copy: the name with
/// kCopyMark, which is none of a snapshot. What cannot be written stays as it is.
void ListNewerBehind(RegKey& key, unsigned __int64 qwTime);
/// Brings back what a program that ended within ListNewerBehind has left as copies.
void FinishCopies(RegKey& key);

constexpr wchar_t kCopyMark = L'~';
