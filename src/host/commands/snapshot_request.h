#pragma once
#include <windows.h>

/// What the command line can have done with the snapshots.
enum class SnapshotCommand : int {
    None,
    List,
    Remember,
    Restore,
    Delete,
    DeleteAll,
    Export,
    Import
};

/// How a command names its snapshot.
enum class SnapshotChoice : int { Newest, ByNumber, ByTime };

/// A command with its data.
struct SnapshotRequest {
    SnapshotCommand command;
    SnapshotChoice choice;  // of Restore and Delete
    unsigned nNumber;       // ByNumber: its place in the list, from 1
    SYSTEMTIME stLocal;     // ByTime: the local time, to the second
    const wchar_t* pszFile; // of Export and Import, by the current directory; borrowed
    int bQuiet;             // non-zero: nobody is asked
};
