#pragma once
struct SnapshotRequest;

/// Does a command with the snapshots and tells the user how it came out, unless it is quiet.
/// Returns the exit code.
int RunCommand(const SnapshotRequest& request);
