#pragma once

/// Has each test that damages the heap fail: a write beside one of the program's own blocks, seen
/// when the block is freed or grown, and one beside any other block or into a freed one, seen at
/// the end of the test. To be called once, while the program has one thread. The platform marks the
/// ends of blocks and what is freed only in programs that `desktop_env_check_heaps` names; in
/// others less is found.
void CheckHeaps();
/// Has the process's own heap not be looked at as a whole, for a program in which the platform
/// writes into what it has freed itself. The library has its blocks elsewhere; of the few that it
/// makes there, each is still looked at when it is freed.
void LeaveOutProcessHeap();
