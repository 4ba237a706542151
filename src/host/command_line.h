#pragma once
#include "host/commands/snapshot_request.h"
#include "host/displays_switch.h"

/// What to do about the start with Windows.
enum class AutoStart { None, Tell, On, Off };

/// Which check for updates to do: one that only speaks if there is an update, or one for a person.
enum class UpdateCheck { None, Silent, Person };

/// What the program was asked for.
struct HostOptions {
    bool bQuiet = false;                   // start without the opening balloon
    bool bExit = false;                    // ask the running program to close, and start nothing
    AutoStart autoStart = AutoStart::None; // other than None: start nothing
    Displays displays = Displays::None;    // other than None: start nothing
    UpdateCheck updateCheck = UpdateCheck::None; // other than None: start nothing
    bool bHelp = false;                          // tell what it knows, and do nothing
    SnapshotRequest request{};           // other than None: start nothing; its file is borrowed
    bool bCommandNamed = false;          // a command with snapshots was meant, whatever came of it
    const wchar_t* pszUnknown = nullptr; // the first argument that means nothing; borrowed
};

/// Reads the arguments, of which the first is the program itself. Switches begin with "/" or "-"
/// and are in any case of letters; data of theirs follow ":" or "=". Of several about the start
/// with Windows the last one counts, and so of those about the displays, and of both checks for
/// updates. That for a person is the only word without a sign; a sign makes it the silent one.
///
/// A command with the snapshots stands alone but for "/QUIET": a second one, or one beside
/// something else to do, counts as unknown, as do data that are none of the command's.
HostOptions ParseHostOptions(int nArguments, const wchar_t* const* ppszArguments);
