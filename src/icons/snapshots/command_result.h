#pragma once

/// How a command came out. The numbers up to NoMemory go from the monitor to the program that asks;
/// none of them is 0, which is the answer of a monitor that does not know commands.
enum class CommandResult : int {
    Done = 1,
    Pending = 2,   // the capture has not come yet
    Unchanged = 3, // captured; it is equal to the newest snapshot
    NoSnapshot = 4,
    Damaged = 5, // its digest does not hold
    NotWritten = 6,
    NoDesktop = 7,    // there is none, or the shell did not answer in time
    AutoArranged = 8, // the desktop arranges its icons by itself
    IsThere = 9,      // with the same content
    Differs = 10,     // a snapshot of that time is there, with another content
    NoRoom = 11,
    NoMemory = 12,
    // Known to the program that was started alone.
    NoIcons,      // none to store, or too many
    Busy,         // another command, or a start, takes too long
    OldMonitor,   // the one that runs knows no commands
    OutOfReach,   // the one that runs has higher rights
    OtherUser,    // the one that runs is another user's, or may not be looked at
    NoAnswer,     // the one that runs did not answer, or has gone
    FileFailed,   // it can't be read or written
    NotOurFile,   // no export of this program
    OtherVersion, // an export of another version
    FileTooLarge,
};
