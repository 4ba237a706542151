#pragma once

/// What the program was asked for.
struct HostOptions {
    int bQuiet = 0;                      // start without the opening balloon
    int bExit = 0;                       // ask the running program to close, and start nothing
    const wchar_t* pszUnknown = nullptr; // the first argument that means nothing; borrowed
};

/// Reads the arguments, of which the first is the program itself. Switches begin with "/" or "-"
/// and are in any case of letters.
HostOptions ParseHostOptions(int nArguments, const wchar_t* const* ppszArguments);
