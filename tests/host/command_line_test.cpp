#include "host/command_line.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
HostOptions Parse(std::vector<const wchar_t*> arguments) {
    arguments.insert(arguments.begin(), L"/exit"); // the program's own name is no switch
    return ParseHostOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(ParseHostOptions, WithoutArgumentsAsksForNothing) {
    HostOptions options = ParseHostOptions(0, nullptr);
    EXPECT_EQ(0, options.bQuiet);
    EXPECT_EQ(0, options.bExit);
    EXPECT_EQ(nullptr, options.pszUnknown);
    EXPECT_EQ(0, Parse({}).bExit);
}

TEST(ParseHostOptions, TakesSwitchesInAnyCaseWithEitherSign) {
    for (const wchar_t* psz : {L"/QUIET", L"/quiet", L"-Quiet", L"-qUIET"}) {
        HostOptions options = Parse({psz});
        EXPECT_EQ(1, options.bQuiet) << psz;
        EXPECT_EQ(0, options.bExit) << psz;
        EXPECT_EQ(nullptr, options.pszUnknown) << psz;
    }
    for (const wchar_t* psz : {L"/EXIT", L"-exit"}) EXPECT_EQ(1, Parse({psz}).bExit) << psz;
    HostOptions both = Parse({L"/quiet", L"-EXIT"});
    EXPECT_EQ(1, both.bQuiet);
    EXPECT_EQ(1, both.bExit);
}

TEST(ParseHostOptions, TakesDataOfTheStartWithWindows) {
    EXPECT_EQ(AutoStart::None, Parse({L"/quiet"}).autoStart);
    for (const wchar_t* psz : {L"/AUTOSTART", L"-autostart"})
        EXPECT_EQ(AutoStart::Tell, Parse({psz}).autoStart) << psz;
    for (const wchar_t* psz : {L"/AUTOSTART:ON", L"-autostart:on", L"/AutoStart=On"})
        EXPECT_EQ(AutoStart::On, Parse({psz}).autoStart) << psz;
    for (const wchar_t* psz : {L"/AUTOSTART:OFF", L"-autostart:off", L"/AutoStart=Off"})
        EXPECT_EQ(AutoStart::Off, Parse({psz}).autoStart) << psz;
    HostOptions options = Parse({L"/autostart:on", L"/quiet", L"/autostart:off"});
    EXPECT_EQ(AutoStart::Off, options.autoStart);
    EXPECT_EQ(1, options.bQuiet);
    EXPECT_EQ(nullptr, options.pszUnknown);
    for (const wchar_t* psz : {L"/autostart:", L"/autostart:o", L"/autostart: on", L"/autostart on",
                               L"/autostart:on:off", L"autostart:on", L"/autostart:1"})
        EXPECT_EQ(psz, Parse({psz}).pszUnknown) << psz;
}

TEST(ParseHostOptions, TakesDataOfTheDisplays) {
    EXPECT_EQ(Displays::None, Parse({L"/quiet"}).displays);
    for (const wchar_t* psz : {L"/DISPLAYS", L"-displays"})
        EXPECT_EQ(Displays::Tell, Parse({psz}).displays) << psz;
    for (const wchar_t* psz : {L"/DISPLAYS:ON", L"-displays:on", L"/Displays=On"})
        EXPECT_EQ(Displays::On, Parse({psz}).displays) << psz;
    for (const wchar_t* psz : {L"/DISPLAYS:OFF", L"-displays:off", L"/Displays=Off"})
        EXPECT_EQ(Displays::Off, Parse({psz}).displays) << psz;
    HostOptions options = Parse({L"/displays:on", L"/quiet", L"/displays"});
    EXPECT_EQ(Displays::Tell, options.displays);
    EXPECT_EQ(AutoStart::None, options.autoStart);
    EXPECT_EQ(nullptr, options.pszUnknown);
    for (const wchar_t* psz : {L"/displays:", L"/displays:o", L"/displays: on", L"/displays on",
                               L"/display", L"displays:on", L"/displays:1"})
        EXPECT_EQ(psz, Parse({psz}).pszUnknown) << psz;
}

TEST(ParseHostOptions, TellsTheSilentCheckForUpdatesFromAPersons) {
    EXPECT_EQ(UpdateCheck::None, Parse({L"/quiet"}).updateCheck);
    for (const wchar_t* psz : {L"/CHECK4UPDATES", L"-check4updates", L"/Check4Updates"})
        EXPECT_EQ(UpdateCheck::Silent, Parse({psz}).updateCheck) << psz;
    for (const wchar_t* psz : {L"check4updates", L"CHECK4UPDATES"})
        EXPECT_EQ(UpdateCheck::Person, Parse({psz}).updateCheck) << psz;
    EXPECT_EQ(UpdateCheck::Person, Parse({L"/check4updates", L"check4updates"}).updateCheck);
    for (const wchar_t* psz : {L"/check4update", L"//check4updates", L"check4updates "})
        EXPECT_EQ(psz, Parse({psz}).pszUnknown) << psz;
}

TEST(ParseHostOptions, TakesTheQuestionMarkAsAskingForHelp) {
    for (const wchar_t* psz : {L"/?", L"-?"}) {
        EXPECT_EQ(true, Parse({psz}).bHelp) << psz;
        EXPECT_EQ(nullptr, Parse({psz}).pszUnknown) << psz;
    }
    EXPECT_EQ(false, Parse({L"/quiet"}).bHelp);
    EXPECT_STREQ(L"?", Parse({L"?"}).pszUnknown);
}

TEST(ParseHostOptions, NamesTheFirstUnknownArgument) {
    for (const wchar_t* psz :
         {L"/quie", L"/quiets", L"quiet", L"", L"/", L"-", L"//quiet", L"--exit", L"/quiet "})
        EXPECT_EQ(psz, Parse({L"/quiet", psz, L"/other"}).pszUnknown) << psz;
}

TEST(ParseHostOptions, TakesCommandsWithTheirData) {
    struct {
        const wchar_t* psz;
        SnapshotCommand command;
    } const kPlain[] = {{L"/LIST", SnapshotCommand::List},
                        {L"-list", SnapshotCommand::List},
                        {L"/Remember", SnapshotCommand::Remember},
                        {L"/restore", SnapshotCommand::Restore},
                        {L"/DELETEALL", SnapshotCommand::DeleteAll}};
    for (const auto& row : kPlain) {
        HostOptions options = Parse({row.psz});
        EXPECT_EQ(row.command, options.request.command) << row.psz;
        EXPECT_EQ(SnapshotChoice::Newest, options.request.choice);
        EXPECT_EQ(nullptr, options.pszUnknown);
        EXPECT_TRUE(options.bCommandNamed);
    }
    EXPECT_FALSE(Parse({L"/quiet"}).bCommandNamed);
    HostOptions options = Parse({L"/DELETE:12"});
    EXPECT_EQ(SnapshotCommand::Delete, options.request.command);
    EXPECT_EQ(SnapshotChoice::ByNumber, options.request.choice);
    EXPECT_EQ(12u, options.request.nNumber);
    EXPECT_EQ(0xFFFFFFFFu, Parse({L"/restore=99999999999999999999"}).request.nNumber);
    EXPECT_EQ(0u, Parse({L"/restore:0"}).request.nNumber);
    EXPECT_STREQ(L"C:\\a b:c=d.txt", Parse({L"/export:C:\\a b:c=d.txt"}).request.pszFile);
    EXPECT_STREQ(L"=", Parse({L"-IMPORT=="}).request.pszFile);
    EXPECT_EQ(1, Parse({L"/LIST", L"/quiet"}).request.bQuiet);
}

TEST(ParseHostOptions, TakesTimesThatAreDates) {
    SnapshotRequest request = Parse({L"/restore:2026-11-21T10:05:07"}).request;
    EXPECT_EQ(SnapshotChoice::ByTime, request.choice);
    const SYSTEMTIME& st = request.stLocal;
    EXPECT_EQ((std::vector<WORD>{2026, 11, 21, 10, 5, 7}),
              (std::vector<WORD>{st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond}));
    for (const wchar_t* psz : {L"/restore:2024-02-29t23:59:59", L"/restore=12345-01-01T00:00:00"})
        EXPECT_EQ(nullptr, Parse({psz}).pszUnknown) << psz;
    for (const wchar_t* psz :
         {L"/restore:2026-02-29T10:05:07", L"/restore:2026-11-21T24:00:00",
          L"/restore:2026-11-21T10:60:00", L"/restore:2026-11-21T10:05:60",
          L"/restore:2026-13-21T10:05:07", L"/restore:1600-01-01T00:00:00",
          L"/restore:2026-11-21 10:05:07", L"/restore:2026-11-21", L"/restore:2026-11-21T10:05",
          L"/restore:2026-11-21T10:05:07Z", L"/restore:2026-1-21T10:05:07",
          L"/restore:26-11-21T10:05:07", L"/restore:99999-11-21T10:05:07"})
        EXPECT_EQ(psz, Parse({psz}).pszUnknown) << psz;
}

TEST(ParseHostOptions, RefusesDataThatAreNoneOfTheCommands) {
    for (const wchar_t* psz : {L"/list:",      L"/list:1",
                               L"/remember=x", L"/deleteall:1",
                               L"/delete",     L"/delete:",
                               L"/delete:x",   L"/delete:-1",
                               L"/delete: 1",  L"/delete:2026-11-21T10:05:07",
                               L"/restore:",   L"/restore:abc",
                               L"/restore:1x", L"/restore:+1",
                               L"/export",     L"/export:",
                               L"/import=",    L"/lists",
                               L"/",           L"/:",
                               L"list",        L"//list"}) {
        HostOptions options = Parse({psz});
        EXPECT_EQ(psz, options.pszUnknown) << psz;
        EXPECT_EQ(SnapshotCommand::None, options.request.command) << psz;
    }
    EXPECT_TRUE(Parse({L"/delete"}).bCommandNamed);
    EXPECT_FALSE(Parse({L"/deletes"}).bCommandNamed);
}

TEST(ParseHostOptions, TakesOneCommandAlone) {
    EXPECT_STREQ(L"/restore", Parse({L"/list", L"/restore"}).pszUnknown);
    EXPECT_STREQ(L"/LIST", Parse({L"/list", L"/quiet", L"/LIST"}).pszUnknown);
    for (const wchar_t* psz : {L"/exit", L"/autostart", L"/autostart:on", L"check4updates"}) {
        EXPECT_STREQ(L"/list", Parse({L"/list", psz}).pszUnknown) << psz;
        EXPECT_STREQ(L"/list", Parse({psz, L"/list"}).pszUnknown) << psz;
    }
}
} // namespace
