// How commands are written, and where what they tell goes: redirected, to a console, into a box, or
// nowhere.

#include "e2e/command_test_support.h"
#include "support/temp_folder.h"

#include <cstring>
#include <thread>

namespace {
constexpr const char* kAllSwitches[] = {"/QUIET",     "/EXIT",    "/AUTOSTART", "check4updates",
                                        "/LIST",      "/RESTORE", "/REMEMBER",  "/DELETE",
                                        "/DELETEALL", "/EXPORT",  "/IMPORT"};

/// Words of a text, divided by any blanks: those of a console are places.
std::vector<std::string> Words(const std::string& str) {
    std::vector<std::string> words(1);
    for (char ch : str) {
        if (!strchr(" \t\r\n", ch))
            words.back() += ch;
        else if (!words.back().empty())
            words.emplace_back();
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

class CommandLine : public CommandTest {
  protected:
    /// Told like a wrong switch, wherever that is told; nothing is done.
    void ExpectBadSwitch(const std::wstring& strArguments) {
        auto before = AllValues(store);
        CommandBoxes ended = RunWithBoxes(strArguments);
        EXPECT_EQ(DWORD{kCodeBadSwitch}, ended.dwCode) << ToUtf8(strArguments);
        ASSERT_EQ(1u, ended.boxes.size()) << ToUtf8(strArguments);
        EXPECT_EQ(L"Tessaly", ended.boxes[0].strTitle);
        EXPECT_NE(L"", ended.boxes[0].strText);
        EXPECT_EQ(before, AllValues(store)) << ToUtf8(strArguments);
    }
};

TEST_F(CommandLine, SwitchesAreOfAnyCaseAndBeginWithEitherSign) {
    Plant(100);
    Plant(200);
    std::string strList = Expect(kCodeDone, L"/LIST").strOut;
    for (const wchar_t* psz : {L"/list", L"-LIST", L"-List"})
        EXPECT_EQ(strList, Expect(kCodeDone, psz).strOut);
    Expect(kCodeDone, L"-delete=2");
    Expect(kCodeDone, L"/Delete:1");
    EXPECT_EQ(0, store.Count());
    Expect(kCodeDone, L"-DeleteAll");
    Plant(100);
    Expect(kCodeDone, L"-deleteALL");
    EXPECT_EQ(0, store.Count());
}

TEST_F(CommandLine, DataThatMeanNothingAreToldLikeAWrongSwitch) {
    Plant(100);
    for (const wchar_t* psz :
         {L"/RESTORE:abc", L"/RESTORE:", L"/RESTORE=", L"/RESTORE:1x", L"/RESTORE:1.5", L"/DELETE",
          L"/DELETE:", L"/DELETE:abc", L"/EXPORT", L"/EXPORT:", L"/IMPORT", L"/IMPORT:"})
        ExpectBadSwitch(psz);
}

TEST_F(CommandLine, DateThatIsNoneIsToldLikeAWrongSwitch) {
    Plant(100);
    for (const wchar_t* psz :
         {L"2026-13-01T10:05:00", L"2026-00-01T10:05:00", L"2026-02-30T10:05:00",
          L"2026-11-21T25:05:00", L"2026-11-21T10:60:00", L"2026-11-21T10:05:61",
          L"2026-11-21T10:05:00x", L"2026-11-2xT10:05:00"})
        ExpectBadSwitch(L"/RESTORE:" + std::wstring(psz));
}

TEST_F(CommandLine, DataOfASwitchThatTakesNoneAreToldLikeAWrongSwitch) {
    Plant(100);
    for (const wchar_t* psz : {L"/LIST:1", L"/REMEMBER:x", L"/DELETEALL:1", L"/LISTS", L"LIST"})
        ExpectBadSwitch(psz);
}

TEST_F(CommandLine, SecondThingToDoIsToldLikeAWrongSwitch) {
    Plant(100);
    for (const wchar_t* psz :
         {L"/LIST /DELETEALL", L"/DELETEALL /LIST", L"/DELETE:1 /DELETE:1", L"/DELETEALL /EXIT",
          L"/EXIT /DELETE:1", L"/DELETE:1 /AUTOSTART", L"/AUTOSTART:OFF /DELETEALL",
          L"/DELETEALL check4updates", L"/CHECK4UPDATES /DELETEALL"})
        ExpectBadSwitch(psz);
}

TEST_F(CommandLine, SecondThingToDoIsNotDoneEither) {
    Begin(true);
    Plant(100);
    ExpectBadSwitch(L"/EXIT /LIST");
    ExpectBadSwitch(L"/LIST /EXIT");
    ExpectBadSwitch(L"/LIST /AUTOSTART:ON");
    EXPECT_TRUE(monitor.IsRunning());
    CommandBoxes asked = RunWithBoxes(L"/AUTOSTART");
    EXPECT_EQ(4u, asked.dwCode); // it does not
    EXPECT_TRUE(StillCaptures());
}

// Where it goes

TEST_F(CommandLine, RedirectedOutputIsUtf8WithWholeEndsOfLinesAndNoMark) {
    TempFolder folder;
    Plant(100);
    std::string strList = Expect(kCodeDone, L"/LIST").strOut;
    EXPECT_EQ(1u, Lines(strList).size());
    EXPECT_NE('\xEF', strList[0]);
    std::wstring strFile = L"Снимки äß 図.txt";
    CommandEnd end = Expect(kCodeDone, L"\"/EXPORT:" + folder.File(strFile) + L"\"");
    EXPECT_TRUE(end.Tells(strFile)) << end.strOut;
    EXPECT_EQ(1u, Lines(end.strOut).size());
}

TEST_F(CommandLine, OutputGoesIntoAPipe) {
    for (unsigned n = 0; n < 25; ++n) Plant(100 + n);
    std::string strWanted = Expect(kCodeDone, L"/LIST").strOut;
    SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
    HANDLE hRead = nullptr, hWrite = nullptr;
    ASSERT_TRUE(::CreatePipe(&hRead, &hWrite, &security, 0));
    ::SetHandleInformation(hRead, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdOutput = hWrite;
    PROCESS_INFORMATION pi{};
    std::wstring strLine = L"\"" + ProductFolder() + L"\\TSEXE64.exe\" /LIST";
    ASSERT_TRUE(::CreateProcessW(nullptr, strLine.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS,
                                 nullptr, nullptr, &si, &pi));
    ::CloseHandle(hWrite);
    std::string strRead;
    char sz[512];
    for (DWORD cb = 0; ::ReadFile(hRead, sz, sizeof(sz), &cb, nullptr) && cb;)
        strRead.append(sz, cb);
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, kTestDeadlineMs));
    EXPECT_EQ(strWanted, strRead);
    ::CloseHandle(hRead);
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
}

TEST_F(CommandLine, WhatFailedGoesToTheErrorOutputOrElseToTheOutput) {
    CommandEnd both = RunCommand(L"/RESTORE");
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, both.dwCode);
    EXPECT_EQ("", both.strOut);
    EXPECT_NE("", both.strErr);
    CommandEnd out = RunCommand(L"/RESTORE", Redirected::Out);
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, out.dwCode);
    EXPECT_EQ(both.strErr, out.strOut);
    CommandEnd error = RunCommand(L"/RESTORE", Redirected::Error);
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, error.dwCode);
    EXPECT_EQ(both.strErr, error.strErr);
}

class CommandOnConsole : public CommandLine, public testing::WithParamInterface<ConsoleUse> {};

TEST_P(CommandOnConsole, ListStandsOnTheConsole) {
    std::wstring strNewest = Plant(100), strOldest = Plant(200, 12);
    Mark(strOldest);
    CommandEnd end = RunOnConsole(L"/LIST", GetParam());
    EXPECT_EQ(DWORD{kCodeDone}, end.dwCode);
    EXPECT_EQ(L"", end.strBox);
    std::vector<std::string> expected{"1",        ToUtf8(LocalText(strNewest)),
                                      "3",        "ok",
                                      "2",        ToUtf8(LocalText(strOldest)),
                                      "12",       "ok",
                                      "restored", "last"};
    EXPECT_EQ(expected, Words(end.strOut));
}

TEST_P(CommandOnConsole, WhatFailedStandsOnTheConsole) {
    std::string strTold = Expect(kCodeNoSuchSnapshot, L"/RESTORE").strErr;
    CommandEnd end = RunOnConsole(L"/RESTORE", GetParam());
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, end.dwCode);
    EXPECT_EQ(L"", end.strBox);
    EXPECT_EQ(Words(strTold), Words(end.strOut));
}

TEST_P(CommandOnConsole, TextsOfAnyScriptStandOnTheConsole) {
    TempFolder folder;
    Plant(100);
    Plant(200);
    CommandEnd end = RunOnConsole(L"\"/EXPORT:" + folder.File(L"Снимки.txt") + L"\"", GetParam());
    EXPECT_EQ(DWORD{kCodeDone}, end.dwCode);
    EXPECT_TRUE(end.Tells(L"2 snapshots are written to ")) << end.strOut;
    EXPECT_TRUE(end.Tells(L"Снимки.txt")) << end.strOut;
}

TEST_P(CommandOnConsole, SwitchesAreToldOnTheConsole) {
    CommandEnd help = RunOnConsole(L"/?", GetParam());
    EXPECT_EQ(DWORD{kCodeDone}, help.dwCode);
    EXPECT_EQ(L"", help.strBox);
    for (const char* psz : kAllSwitches) EXPECT_TRUE(help.Tells(std::string(psz))) << psz;
    CommandEnd wrong = RunOnConsole(L"/bogus", GetParam());
    EXPECT_EQ(DWORD{kCodeBadSwitch}, wrong.dwCode);
    EXPECT_TRUE(wrong.Tells(std::string("\"/bogus\" is not a switch of this program.")))
        << wrong.strOut;
    EXPECT_EQ(DWORD{kCodeBadSwitch}, RunOnConsole(L"/RESTORE:abc", GetParam()).dwCode);
}

TEST_P(CommandOnConsole, QuietLeavesItEmpty) {
    Plant(100);
    for (const wchar_t* psz : {L"/LIST /QUIET", L"/QUIET /DELETE:1"}) {
        CommandEnd end = RunOnConsole(psz, GetParam());
        EXPECT_EQ(DWORD{kCodeDone}, end.dwCode);
        EXPECT_EQ(Words(""), Words(end.strOut));
    }
    CommandEnd end = RunOnConsole(L"/RESTORE /QUIET", GetParam());
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, end.dwCode);
    EXPECT_EQ(Words(""), Words(end.strOut));
}
INSTANTIATE_TEST_SUITE_P(Ways, CommandOnConsole,
                         testing::Values(ConsoleUse::Shared, ConsoleUse::Attached),
                         [](const auto& row) {
                             return row.param == ConsoleUse::Shared ? "Shared" : "Attached";
                         });

/// What a box says of the lines of an output.
std::vector<std::string> BoxWords(const SeenCommandBox& box) { return Words(ToUtf8(box.strText)); }

TEST_F(CommandLine, WithoutAConsoleOneBoxTellsEverything) {
    for (unsigned n = 0; n < 5; ++n) Plant(100 + n);
    CommandBoxes list = RunWithBoxes(L"/LIST");
    EXPECT_EQ(DWORD{kCodeDone}, list.dwCode);
    ASSERT_EQ(1u, list.boxes.size());
    EXPECT_EQ(L"Tessaly", list.boxes[0].strTitle);
    EXPECT_EQ(1, list.boxes[0].bHasIcon);
    EXPECT_EQ(std::vector<int>{IDOK}, list.boxes[0].buttons);
    EXPECT_EQ(Words(Expect(kCodeDone, L"/LIST").strOut), BoxWords(list.boxes[0]));
    CommandBoxes deleted = RunWithBoxes(L"/DELETEALL");
    EXPECT_EQ(DWORD{kCodeDone}, deleted.dwCode);
    ASSERT_EQ(1u, deleted.boxes.size());
    EXPECT_EQ(L"All snapshots are deleted.", deleted.boxes[0].strText);
}

TEST_F(CommandLine, WithoutAConsoleOneBoxTellsWhatFailed) {
    CommandBoxes failed = RunWithBoxes(L"/RESTORE");
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, failed.dwCode);
    ASSERT_EQ(1u, failed.boxes.size());
    EXPECT_EQ(1, failed.boxes[0].bHasIcon);
    EXPECT_EQ(Words(Expect(kCodeNoSuchSnapshot, L"/RESTORE").strErr), BoxWords(failed.boxes[0]));
    CommandBoxes help = RunWithBoxes(L"/?");
    EXPECT_EQ(DWORD{kCodeDone}, help.dwCode);
    ASSERT_EQ(1u, help.boxes.size());
    for (const char* psz : kAllSwitches)
        EXPECT_NE(std::string::npos, ToUtf8(help.boxes[0].strText).find(psz)) << psz;
}

TEST_F(CommandLine, QuietTellsNothingAnywhere) {
    TempFolder folder;
    Plant(100);
    PlantDamaged(200);
    const struct {
        std::wstring strArguments;
        CommandCode code;
    } kRows[] = {
        {L"/LIST", kCodeDone},
        {L"/RESTORE:3", kCodeNoSuchSnapshot},
        {L"/RESTORE:2", kCodeDamaged},
        {L"/RESTORE", kCodeNoShell}, // there is no desktop
        {L"/EXPORT:" + folder.File(L"out"), kCodeLeftOut},
        {L"/EXPORT:" + folder.File(L"none\\out"), kCodeNoFile},
        {L"/IMPORT:" + folder.File(L"missing"), kCodeNoFile},
        {L"/IMPORT:" + folder.MakeFile(L"other", "hello"), kCodeNoExport},
        {L"/DELETE:1", kCodeDone},
        {L"/DELETEALL", kCodeDone},
    };
    for (const auto& row : kRows) {
        CommandBoxes ended = RunWithBoxes(row.strArguments + L" /QUIET");
        EXPECT_EQ(DWORD{row.code}, ended.dwCode) << ToUtf8(row.strArguments);
        EXPECT_EQ(0u, ended.boxes.size()) << ToUtf8(row.strArguments);
    }
    Plant(100);
    PlantDamaged(200);
    for (const auto& row : kRows) {
        CommandEnd ended = RunCommand(L"/QUIET " + row.strArguments);
        EXPECT_EQ(DWORD{row.code}, ended.dwCode) << ToUtf8(row.strArguments);
        EXPECT_EQ("", ended.All()) << ToUtf8(row.strArguments);
    }
}

TEST_F(CommandLine, EarlierSwitchesKeepTheirBoxes) {
    CommandProcess process;
    process.Start(L"/AUTOSTART");
    std::optional<SeenMessageBox> box = AnswerMessageBox(process.Id(), IDOK);
    ASSERT_TRUE(box);
    EXPECT_EQ(L"Tessaly does not start with Windows.", box->strText);
    CommandEnd end = process.Wait();
    EXPECT_EQ(4u, end.dwCode);
    EXPECT_EQ("", end.All());
}
} // namespace
