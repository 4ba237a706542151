#pragma once

/// What the program ends with. Scripts compare these numbers: none changes its meaning.
enum ExitCode : int {
    kExitDone = 0,         // also: another one runs already, or nothing to close
    kExitStillRunning = 1, // the running one did not close in time
    kExitBadSwitch = 2,
    kExitNoLibrary = 3,
    kExitNoAutoStart = 4, // asked whether it starts with Windows: it does not
    kExitNoDisplays = 4,  // asked whether it puts the icons back when the displays change: no
    kExitNotWritten = 5,  // the registry could not be written
    kExitMarkTaken = 6,   // something that is not this program has its mark
    kExitNoSnapshot = 7,  // none at all, or none of that number or time
    kExitDamaged = 8,     // the snapshot's digest does not hold; nothing was done
    kExitNoDesktop = 9,   // not found, or the shell or the running monitor did not answer in time
    kExitFile = 10,       // the file cannot be read or written
    kExitNothingTaken =
        11,           // the file is no export of this program, or nothing in it could be taken
    kExitPartly = 12, // done, but something was left out
    kExitBusy = 13,   // another command or a starting program did not end in time
    kExitAutoArranged = 14, // the desktop arranges its icons, and the answer was no
};
