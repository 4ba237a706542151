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
bool IsSameName(const wchar_t* pszText, const wchar_t* pszName) {
    return ::CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, pszText, -1, pszName, -1) ==
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
