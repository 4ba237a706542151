// Snapshots written to a file, and read again.

#include "e2e/command_test_support.h"
#include "files/read_only.h"
#include "support/temp_folder.h"

namespace {
class CommandExport : public CommandTest {
  protected:
    /// What a file of those snapshots has to say, the first one first.
    std::string Expected(const std::vector<std::wstring>& names) {
        std::vector<std::string> sections;
        for (const std::wstring& strName : names)
            sections.push_back(SectionText(strName, store.Named(strName)->Icons()));
        return Meaning(FileText(sections));
    }
    /// The command with that file, with quotes for blanks in its path.
    static std::wstring To(const std::wstring& strFile) { return L"\"/EXPORT:" + strFile + L"\""; }
    static size_t CountFiles(const TempFolder& files) {
        size_t n = 0;
        for (const auto& entry : std::filesystem::directory_iterator(files.Get()))
            n += entry.exists();
        return n;
    }
    TempFolder folder;
};

TEST_F(CommandExport, WritesEachSnapshotTheNewestFirst) {
    std::wstring strMiddle = Plant(500, 2), strNewest = Plant(10, 3), strOldest = Plant(900'000, 1);
    CommandEnd end = Expect(kCodeDone, To(folder.File(L"out.txt")));
    EXPECT_TRUE(end.strOut.starts_with("3 snapshots are written to ")) << end.strOut;
    EXPECT_TRUE(end.Tells(L"out.txt"));
    std::string strFile = folder.ReadFile(L"out.txt");
    EXPECT_EQ(Expected({strNewest, strMiddle, strOldest}), Meaning(strFile));
    EXPECT_NE(std::string::npos, strFile.find("; Icon layouts of Tessaly. Times are UTC."));
    EXPECT_EQ(1u, CountFiles(folder)); // nothing is left beside it
}

TEST_F(CommandExport, WritesPlacesAndNumbersOfEverySize) {
    std::vector<StoredIcon> icons{
        {0, -10, 90, 5, 0xFEDCBA9876543210},
        {0xFFFFFFFF, 2147483647, -2147483647 - 1, 0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF},
        {7, 0, 0, 0, 1},
    };
    std::wstring strName = Plant(100, icons);
    Expect(kCodeDone, To(folder.File(L"out.txt")));
    std::string strFile = folder.ReadFile(L"out.txt");
    EXPECT_EQ(Expected({strName}), Meaning(strFile));
    EXPECT_NE(std::string::npos, strFile.find("Icon=0 -10 90 5 FEDCBA9876543210"));
}

TEST_F(CommandExport, WritesTwentyFiveOfAThousandIconsLessOne) {
    std::vector<std::wstring> names;
    for (int n = 0; n < 25; ++n) names.push_back(Plant(static_cast<uint64_t>(10 + n), 999, n));
    CommandEnd end = Expect(kCodeDone, To(folder.File(L"out.txt")));
    EXPECT_TRUE(end.strOut.starts_with("25 snapshots are written to ")) << end.strOut;
    EXPECT_EQ(Expected(names), Meaning(folder.ReadFile(L"out.txt")));
}

TEST_F(CommandExport, GoesByTheCurrentFolderAndReplacesAFile) {
    std::wstring strName = Plant(100);
    folder.MakeFile(L"an old one.txt", std::string(50'000, 'x'));
    Expect(kCodeDone, L"\"-export=an old one.txt\"", folder.Get());
    EXPECT_EQ(Expected({strName}), Meaning(folder.ReadFile(L"an old one.txt")));
    EXPECT_EQ(1u, CountFiles(folder));
}

TEST_F(CommandExport, OfNoneMakesNoFile) {
    Expect(kCodeNoSuchSnapshot, To(folder.File(L"out.txt")));
    EXPECT_EQ(0u, CountFiles(folder));
    folder.MakeFile(L"out.txt", "old");
    Expect(kCodeNoSuchSnapshot, To(folder.File(L"out.txt")));
    EXPECT_EQ("old", folder.ReadFile(L"out.txt"));
    EXPECT_EQ(1u, CountFiles(folder));
}

TEST_F(CommandExport, TellsOfDamagedOnesAndLeavesThemOut) {
    std::wstring strBad = PlantDamaged(10), strFirst = Plant(20), strSecond = Plant(30);
    std::wstring strEmpty = NameBeforeNow(40);
    store.Plant(strEmpty, {});
    CommandEnd end = Expect(kCodeLeftOut, To(folder.File(L"out.txt")));
    EXPECT_TRUE(end.Tells(std::string("2 snapshots are written to "))) << end.All();
    for (const std::wstring& str : {strBad, strEmpty})
        EXPECT_TRUE(end.Tells(str) || end.Tells(LocalText(str))) << end.All();
    EXPECT_EQ(Expected({strFirst, strSecond}), Meaning(folder.ReadFile(L"out.txt")));
}

TEST_F(CommandExport, OfDamagedOnesAloneMakesNoFile) {
    PlantDamaged(10);
    PlantDamaged(20);
    Expect(kCodeDamaged, To(folder.File(L"out.txt")));
    EXPECT_EQ(0u, CountFiles(folder));
    folder.MakeFile(L"out.txt", "old");
    Expect(kCodeDamaged, To(folder.File(L"out.txt")));
    EXPECT_EQ("old", folder.ReadFile(L"out.txt"));
}

TEST_F(CommandExport, ToWhereNoFileCanBeIsTold) {
    Plant(100);
    std::filesystem::create_directory(folder.File(L"a folder"));
    Expect(kCodeNoFile, To(folder.File(L"a folder")));
    Expect(kCodeNoFile, To(folder.File(L"missing\\out.txt")));
    Expect(kCodeNoFile, To(L"Q:\\out.txt"));
    EXPECT_EQ(1u, CountFiles(folder));
}

TEST_F(CommandExport, OverAFileThatSomebodyHoldsLeavesThatAlone) {
    Plant(100);
    std::wstring strFile = folder.MakeFile(L"held.txt", "old");
    HANDLE h = ::CreateFileW(strFile.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    Expect(kCodeNoFile, To(strFile));
    ::CloseHandle(h);
    EXPECT_EQ("old", folder.ReadFile(L"held.txt"));
    EXPECT_EQ(1u, CountFiles(folder));
}

TEST_F(CommandExport, ToAFullDiskLeavesTheFileThatWasThere) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    for (int n = 0; n < 3; ++n) Plant(static_cast<uint64_t>(10 + n), 999, n);
    disk.MakeFile(L"out.txt", "old");
    ASSERT_TRUE(disk.Fill(3));
    Expect(kCodeNoFile, To(disk.File(L"out.txt")));
    EXPECT_EQ("old", disk.ReadFile(L"out.txt"));
    size_t nFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(disk.File(L"")))
        nFiles += entry.exists();
    EXPECT_EQ(2u, nFiles); // that one and what fills the disk
}

TEST_F(CommandExport, ToAReadOnlyDiskIsTold) {
    std::wstring strDisk = MadeDisk(L"TESSALY_READ_ONLY_DISK");
    if (strDisk.empty()) GTEST_SKIP() << "this user can mount no read-only disk";
    Plant(100);
    Expect(kCodeNoFile, To(strDisk + L"\\file"));
    Expect(kCodeNoFile, To(strDisk + L"\\new"));
    EXPECT_EQ("old", std::string(std::istreambuf_iterator<char>(*std::make_unique<std::ifstream>(
                                     std::filesystem::path(strDisk + L"\\file"))),
                                 {}));
}

class CommandRoundTrip : public CommandBoth {
  protected:
    TempFolder folder;
};
INSTANTIATE_COMMAND_BOTH(CommandRoundTrip);

TEST_P(CommandRoundTrip, BringsEverySnapshotBackByteForByte) {
    Begin();
    for (int n = 0; n < 25; ++n) Plant(static_cast<uint64_t>(10 + 7 * n), 1 + 40 * n, n);
    auto before = AllValues(store);
    Expect(kCodeDone, L"\"/EXPORT:" + folder.File(L"all.txt") + L"\"");
    Expect(kCodeDone, L"/DELETEALL");
    ASSERT_EQ(0, store.Count());
    CommandEnd end = Expect(kCodeDone, L"/IMPORT:all.txt", folder.Get());
    EXPECT_TRUE(end.Tells(std::string("25 snapshots are taken in."))) << end.strOut;
    EXPECT_EQ(before, AllValues(store));
}

TEST_P(CommandRoundTrip, BringsRealIconsBackToTheirPlaces) {
    Begin(8);
    Expect(kCodeDone, L"/REMEMBER");
    auto icons = ExpectedIcons();
    Expect(kCodeDone, L"\"/EXPORT:" + folder.File(L"one.txt") + L"\"");
    Expect(kCodeDone, L"/DELETEALL");
    for (int n = 0; n < 8; ++n) desktop->Move(n, {500 - n, 30 * n});
    Expect(kCodeDone, L"\"/IMPORT:" + folder.File(L"one.txt") + L"\"");
    Expect(kCodeDone, L"/RESTORE");
    EXPECT_EQ(icons, ExpectedIcons());
}
} // namespace
