#include "host/command_line.h"

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
};

const Switch* FindSwitch(const wchar_t* pszArgument) {
    if (*pszArgument != L'/' && *pszArgument != L'-') return nullptr;
    for (const Switch& known : kSwitches) {
        // Not by the user's language, in some of which "i" is no small "I".
        int nOrder = ::CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, pszArgument + 1, -1,
                                      known.pszName, -1);
        if (nOrder == CSTR_EQUAL) return &known;
    }
    return nullptr;
}
} // namespace

HostOptions ParseHostOptions(int nArguments, const wchar_t* const* ppszArguments) {
    HostOptions options;
    for (int i = 1; i < nArguments; ++i) {
        if (const Switch* pKnown = FindSwitch(ppszArguments[i]))
            pKnown->pfnApply(options);
        else if (!options.pszUnknown)
            options.pszUnknown = ppszArguments[i];
    }
    return options;
}
