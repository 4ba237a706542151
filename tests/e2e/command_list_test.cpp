// The commands that look at the stored snapshots and delete them.

#include "e2e/command_test_support.h"

namespace {
constexpr wchar_t kNoDate[] = L"FFFFFFFFFFFFFFFF";

/// The line of a list.
std::string Line(int n, const std::wstring& strName, int nIcons, const char* pszRest) {
    return std::to_string(n) + "\t" + ToUtf8(LocalText(strName)) + "\t" + std::to_string(nIcons) +
           "\t" + pszRest;
}

class CommandList : public CommandBoth {
  protected:
    std::vector<std::string> List() { return Lines(Expect(kCodeDone, L"/LIST").strOut); }
};
INSTANTIATE_COMMAND_BOTH(CommandList);

TEST_P(CommandList, TellsEachSnapshotTheNewestFirst) {
    Begin();
    std::wstring strMiddle = Plant(3000, 5), strNewest = Plant(5, 1), strOldest = Plant(86400, 999);
    EXPECT_EQ((std::vector<std::string>{Line(1, strNewest, 1, "ok"), Line(2, strMiddle, 5, "ok"),
                                        Line(3, strOldest, 999, "ok")}),
              List());
}

TEST_P(CommandList, NamesTheOneRestoredLast) {
    Begin();
    std::wstring strNewest = Plant(10), strOldest = Plant(20);
    Mark(strOldest);
    EXPECT_EQ((std::vector<std::string>{Line(1, strNewest, 3, "ok"),
                                        Line(2, strOldest, 3, "ok\trestored last")}),
              List());
    Mark(NameBeforeNow(500)); // of one that is gone
    EXPECT_EQ((std::vector<std::string>{Line(1, strNewest, 3, "ok"), Line(2, strOldest, 3, "ok")}),
              List());
}

TEST_P(CommandList, TellsWhichAreDamaged) {
    Begin();
    std::wstring strBad = PlantDamaged(10, 7), strGood = Plant(20);
    std::wstring strEmpty = NameBeforeNow(30), strHeader = NameBeforeNow(40);
    store.Plant(strEmpty, {});
    store.Plant(strHeader, std::vector<BYTE>(16));
    Mark(strBad);
    EXPECT_EQ((std::vector<std::string>{Line(1, strBad, 7, "damaged\trestored last"),
                                        Line(2, strGood, 3, "ok"), Line(3, strEmpty, 0, "damaged"),
                                        Line(4, strHeader, 0, "damaged")}),
              List());
}

TEST_P(CommandList, LeavesOutWhatHasNoDate) {
    Begin();
    store.Plant(kNoDate, MakeSnapshotBytes(MadeIcons(3)));
    store.Plant(L"01DC", MakeSnapshotBytes(MadeIcons(3)));
    CommandEnd none = RunCommand(L"/LIST");
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, none.dwCode);
    EXPECT_EQ("There are no snapshots.\r\n", none.All());
    std::wstring strName = Plant(100);
    EXPECT_EQ(std::vector<std::string>{Line(1, strName, 3, "ok")}, List());
}

TEST_P(CommandList, OfNoneMakesNoKey) {
    Begin();
    CommandEnd none = RunCommand(L"/LIST");
    EXPECT_EQ(DWORD{kCodeNoSuchSnapshot}, none.dwCode);
    EXPECT_EQ("There are no snapshots.\r\n", none.All());
    EXPECT_FALSE(store.KeyExists());
    RunCommand(L"/RESTORE");
    RunCommand(L"/EXPORT:C:\\no snapshots.txt");
    EXPECT_FALSE(store.KeyExists());
}

TEST_F(CommandTest, ListIsStrictlyByTimeInWhateverOrderValuesCome) {
    // The platform gives values by name: one whose first letter is no digit of a number comes last
    // and is the oldest.
    Plant(100);
    Plant(200);
    Plant(300);
    std::wstring strLast = NameBeforeNow(40'000'000);
    strLast[0] = L'Z';
    store.Plant(strLast, MakeSnapshotBytes(MadeIcons(3)));
    std::string strBefore = "9999";
    for (const std::string& str : Lines(RunCommand(L"/LIST").strOut)) {
        std::string strTime = str.substr(str.find('\t') + 1, 19);
        EXPECT_LT(strTime, strBefore);
        strBefore = strTime;
    }
}

TEST_F(CommandTest, ListAndExportNeedNobody) {
    Begin(true);
    std::wstring strName = Plant(100);
    SuspendedProcess noMonitor(monitor.ProcessId()), noShell(desktop->ProcessId());
    EXPECT_EQ(std::vector<std::string>{Line(1, strName, 3, "ok")},
              Lines(Expect(kCodeDone, L"/LIST").strOut));
    Expect(kCodeDone, L"\"/EXPORT:C:\\needs nobody.txt\"");
    EXPECT_TRUE(::DeleteFileW(L"C:\\needs nobody.txt"));
}

TEST_F(CommandTest, ListTellsMoreThanThereIsRoomFor) {
    std::vector<std::string> expected;
    for (int n = 1; n <= 40; ++n)
        expected.push_back(Line(n, Plant(static_cast<uint64_t>(10 * n), n), n, "ok"));
    EXPECT_EQ(expected, Lines(Expect(kCodeDone, L"/LIST").strOut));
}

// Deleting

class CommandDelete : public CommandBoth {};
INSTANTIATE_COMMAND_BOTH(CommandDelete);

TEST_P(CommandDelete, TakesTheOneOfThatNumberInTheList) {
    Begin();
    std::wstring strThird = Plant(30), strFirst = Plant(10), strSecond = Plant(20);
    CommandEnd end = Expect(kCodeDone, L"/DELETE:2");
    EXPECT_EQ("The snapshot of " + ToUtf8(LocalText(strSecond)) + " is deleted.\r\n", end.strOut);
    EXPECT_EQ((std::set<std::wstring>{strFirst, strThird}), Names());
    Expect(kCodeDone, L"/DELETE:2");
    EXPECT_EQ((std::set<std::wstring>{strFirst}), Names());
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_EQ(0, store.Count());
    Expect(kCodeNoSuchSnapshot, L"/DELETE:1");
}

TEST_P(CommandDelete, OfANumberThatIsNotInTheListDoesNothing) {
    Begin();
    for (unsigned n = 0; n < 25; ++n) Plant(10 + n);
    store.Plant(kNoDate, MakeSnapshotBytes(MadeIcons(3)));
    auto before = AllValues(store);
    for (const wchar_t* psz : {L"0", L"26", L"27", L"4294967297", L"99999999999999999999999"})
        Expect(kCodeNoSuchSnapshot, L"/DELETE:" + std::wstring(psz));
    EXPECT_EQ(before, AllValues(store));
    Expect(kCodeDone, L"/DELETE:25");
    EXPECT_EQ(25u, AllValues(store).size());
}

TEST_P(CommandDelete, TakesTheMarkOfTheOneThatHadIt) {
    Begin();
    std::wstring strFirst = Plant(10), strSecond = Plant(20), strThird = Plant(30);
    Mark(strSecond);
    Expect(kCodeDone, L"/DELETE:3");
    EXPECT_EQ(strSecond, store.Marked());
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_EQ(strSecond, store.Marked());
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_FALSE(store.Marked());
}

TEST_P(CommandDelete, TakesDamagedOnesToo) {
    Begin();
    std::wstring strGood = Plant(10), strBad = PlantDamaged(20), strEmpty = NameBeforeNow(30);
    store.Plant(strEmpty, {});
    Expect(kCodeDone, L"/DELETE:3");
    EXPECT_TRUE(Expect(kCodeDone, L"/DELETE:2").Tells(LocalText(strBad)));
    EXPECT_EQ(std::set<std::wstring>{strGood}, Names());
}

TEST_P(CommandDelete, DeleteAllTakesAllWithoutAQuestion) {
    Begin();
    for (unsigned n = 0; n < 30; ++n) Plant(10 + n);
    PlantDamaged(5);
    Mark(Plant(7));
    EXPECT_EQ("All snapshots are deleted.\r\n", Expect(kCodeDone, L"/DELETEALL").strOut);
    EXPECT_TRUE(AllValues(store).empty());
    EXPECT_EQ(kCodeDone, RunCommand(L"/DELETEALL").dwCode); // there are none now
}

TEST_F(CommandTest, DeletingNeedsNoDesktop) {
    std::wstring strKept = Plant(20);
    Plant(10);
    Expect(kCodeDone, L"/DELETE:1");
    EXPECT_EQ(std::set<std::wstring>{strKept}, Names());
    Expect(kCodeDone, L"/DELETEALL");
    EXPECT_EQ(0, store.Count());
    EXPECT_TRUE(LeftNothing());
}
} // namespace
