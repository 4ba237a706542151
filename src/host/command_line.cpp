#include "host/command_line.h"
#include "runtime/text/str_chars.h"

#include <windows.h>

namespace {
struct Switch {
    const wchar_t* pszName;
    void (*pfnApply)(HostOptions& options);
};
// A switch with data is a row for each sign that may divide them and each value that they may have.
constexpr Switch kSwitches[] = {
    {L"QUIET", [](HostOptions& options) { options.bQuiet = true; }},
    {L"EXIT", [](HostOptions& options) { options.bExit = true; }},
    {L"AUTOSTART", [](HostOptions& options) { options.autoStart = AutoStart::Tell; }},
    {L"AUTOSTART:ON", [](HostOptions& options) { options.autoStart = AutoStart::On; }},
    {L"AUTOSTART=ON", [](HostOptions& options) { options.autoStart = AutoStart::On; }},
    {L"AUTOSTART:OFF", [](HostOptions& options) { options.autoStart = AutoStart::Off; }},
    {L"AUTOSTART=OFF", [](HostOptions& options) { options.autoStart = AutoStart::Off; }},
    {L"DISPLAYS", [](HostOptions& options) { options.displays = Displays::Tell; }},
    {L"DISPLAYS:ON", [](HostOptions& options) { options.displays = Displays::On; }},
    {L"DISPLAYS=ON", [](HostOptions& options) { options.displays = Displays::On; }},
    {L"DISPLAYS:OFF", [](HostOptions& options) { options.displays = Displays::Off; }},
    {L"DISPLAYS=OFF", [](HostOptions& options) { options.displays = Displays::Off; }},
    {L"CHECK4UPDATES", [](HostOptions& options) { options.updateCheck = UpdateCheck::Silent; }},
    {L"?", [](HostOptions& options) { options.bHelp = true; }},
};
constexpr Switch kWord = {L"check4updates",
                          [](HostOptions& options) { options.updateCheck = UpdateCheck::Person; }};

/// Not by the user's language, in some of which "i" is no small "I".
bool IsSameName(const wchar_t* pszText, const wchar_t* pszName, int cchText = -1) {
    return ::CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, pszText, cchText, pszName, -1) ==
           CSTR_EQUAL;
}

const Switch* FindSwitch(const wchar_t* pszArgument) {
    if (*pszArgument != L'/' && *pszArgument != L'-')
        return IsSameName(pszArgument, kWord.pszName) ? &kWord : nullptr;
    for (const Switch& known : kSwitches) {
        if (IsSameName(pszArgument + 1, known.pszName)) return &known;
    }
    return nullptr;
}

// Commands with the snapshots. Each reads its data, which are null without a dividing sign; false
// if they are none of its.

/// Reads digits, at most so many, and moves on behind them. A number that is too large becomes the
/// largest. False without a digit.
bool ReadDigits(const wchar_t*& psz, int nMost, unsigned& nRead) {
    constexpr unsigned kLargest = 0xFFFFFFFF;
    unsigned long long n = 0;
    const wchar_t* pStart = psz;
    for (; IsAsciiDigit(*psz) && psz - pStart < nMost; ++psz) {
        n = n * 10 + static_cast<unsigned>(*psz - L'0');
        if (n > kLargest) n = kLargest;
    }
    nRead = static_cast<unsigned>(n);
    return psz != pStart;
}

bool ReadNumber(const wchar_t* psz, SnapshotRequest& request) {
    constexpr int kAnyLength = 0x7FFFFFFF;
    if (!psz || !ReadDigits(psz, kAnyLength, request.nNumber) || *psz) return false;
    request.choice = SnapshotChoice::ByNumber;
    return true;
}

/// "2026-11-21T10:05:00", each part but the year of two digits.
bool ReadTime(const wchar_t* psz, SnapshotRequest& request) {
    SYSTEMTIME st{};
    struct {
        WORD& wPart;
        wchar_t chBehind;
    } const kParts[] = {{st.wYear, L'-'}, {st.wMonth, L'-'},  {st.wDay, L'T'},
                        {st.wHour, L':'}, {st.wMinute, L':'}, {st.wSecond, 0}};
    for (const auto& part : kParts) {
        bool bYear = &part.wPart == &st.wYear;
        const wchar_t* pStart = psz;
        unsigned n = 0;
        if (!ReadDigits(psz, bYear ? 5 : 2, n)) return false;
        if (psz - pStart < (bYear ? 4 : 2) || n > 0xFFFF) return false;
        part.wPart = static_cast<WORD>(n);
        if (*psz != part.chBehind && (part.chBehind != L'T' || *psz != L't')) return false;
        ++psz;
    }
    // And back: not every platform refuses a day that its month does not have.
    FILETIME ft;
    SYSTEMTIME stBack;
    if (!::SystemTimeToFileTime(&st, &ft) || !::FileTimeToSystemTime(&ft, &stBack) ||
        stBack.wDay != st.wDay)
        return false;
    request.choice = SnapshotChoice::ByTime;
    request.stLocal = st;
    return true;
}

bool ReadNothing(const wchar_t* psz, SnapshotRequest&) { return !psz; }
bool ReadChoice(const wchar_t* psz, SnapshotRequest& request) {
    return !psz || ReadNumber(psz, request) || ReadTime(psz, request);
}
bool ReadFileName(const wchar_t* psz, SnapshotRequest& request) {
    request.pszFile = psz;
    return psz && *psz;
}

struct Command {
    const wchar_t* pszName;
    SnapshotCommand command;
    bool (*pfnRead)(const wchar_t* pszData, SnapshotRequest& request);
};
constexpr Command kCommands[] = {
    {L"LIST", SnapshotCommand::List, &ReadNothing},
    {L"REMEMBER", SnapshotCommand::Remember, &ReadNothing},
    {L"RESTORE", SnapshotCommand::Restore, &ReadChoice},
    {L"DELETE", SnapshotCommand::Delete, &ReadNumber},
    {L"DELETEALL", SnapshotCommand::DeleteAll, &ReadNothing},
    {L"EXPORT", SnapshotCommand::Export, &ReadFileName},
    {L"IMPORT", SnapshotCommand::Import, &ReadFileName},
};

/// The command that the argument names, and its data. Null for none.
const Command* FindCommand(const wchar_t* pszArgument, const wchar_t*& pszData) {
    if (*pszArgument != L'/' && *pszArgument != L'-') return nullptr;
    const wchar_t* pszName = pszArgument + 1;
    const wchar_t* pszEnd = pszName;
    while (*pszEnd && *pszEnd != L':' && *pszEnd != L'=') ++pszEnd;
    pszData = *pszEnd ? pszEnd + 1 : nullptr;
    for (const Command& known : kCommands) {
        if (IsSameName(pszName, known.pszName, static_cast<int>(pszEnd - pszName))) return &known;
    }
    return nullptr;
}

/// False if the argument is a command that can't be taken.
bool TakeCommand(const Command& known, const wchar_t* pszData, HostOptions& options) {
    options.bCommandNamed = true;
    if (options.request.command != SnapshotCommand::None) return false;
    SnapshotRequest request{};
    request.command = known.command;
    if (!known.pfnRead(pszData, request)) return false;
    options.request = request;
    return true;
}

bool HasOtherWork(const HostOptions& options) {
    return options.bExit || options.autoStart != AutoStart::None ||
           options.displays != Displays::None || options.updateCheck != UpdateCheck::None;
}
} // namespace

HostOptions ParseHostOptions(int nArguments, const wchar_t* const* ppszArguments) {
    HostOptions options;
    const wchar_t* pszCommand = nullptr;
    for (int i = 1; i < nArguments; ++i) {
        const wchar_t* pszArgument = ppszArguments[i];
        const wchar_t* pszData = nullptr;
        bool bTaken = false;
        if (const Switch* pKnown = FindSwitch(pszArgument)) {
            pKnown->pfnApply(options);
            bTaken = true;
        } else if (const Command* pCommand = FindCommand(pszArgument, pszData)) {
            bTaken = TakeCommand(*pCommand, pszData, options);
            if (bTaken) pszCommand = pszArgument;
        }
        if (!bTaken && !options.pszUnknown) options.pszUnknown = pszArgument;
    }
    if (pszCommand && !options.pszUnknown && HasOtherWork(options)) options.pszUnknown = pszCommand;
    options.request.bQuiet = options.bQuiet;
    return options;
}
