// Files of snapshots taken in: what is taken, what is left out, and what is told of it.

#include "e2e/command_test_support.h"
#include "support/temp_folder.h"

namespace {
class CommandImport : public CommandBoth {
  protected:
    CommandEnd Import(CommandCode code, const std::string& strContent) {
        return Expect(code, L"\"/IMPORT:" + folder.MakeFile(L"in.txt", strContent) + L"\"");
    }
    /// A snapshot that is not stored: its name, and its section.
    std::pair<std::wstring, std::string> Make(uint64_t nSecondsAgo, int nIcons = 3) {
        std::wstring strName = NameBeforeNow(nSecondsAgo);
        return {strName, SectionText(strName, MadeIcons(nIcons))};
    }
    static bool TellsCount(const CommandEnd& end, int n) {
        return n == 1 ? end.Tells(std::string("1 snapshot"))
                      : end.Tells(std::to_string(n) + " snapshots are taken in.");
    }
    TempFolder folder;
};
INSTANTIATE_COMMAND_BOTH(CommandImport);

TEST_P(CommandImport, StoresWhatTheFileHolds) {
    Begin();
    auto first = Make(500, 2), second = Make(100, 999);
    CommandEnd end = Import(kCodeDone, FileText({first.second, second.second}));
    EXPECT_TRUE(TellsCount(end, 2)) << end.strOut;
    EXPECT_EQ((std::set<std::wstring>{first.first, second.first}), Names());
    EXPECT_EQ(MakeSnapshotBytes(MadeIcons(2)), store.Named(first.first)->bytes);
    EXPECT_EQ(MakeSnapshotBytes(MadeIcons(999)), store.Named(second.first)->bytes);
    EXPECT_EQ(DWORD{REG_BINARY}, store.Named(first.first)->dwType);
    EXPECT_FALSE(store.Marked());
}

TEST_P(CommandImport, LeavesWhatIsStoredAsItIs) {
    Begin();
    std::wstring strStored = Plant(300), strOther = Plant(400, 4);
    Mark(strOther);
    auto before = AllValues(store);
    std::string strSame = SectionText(strStored, MadeIcons(3));
    CommandEnd same = Import(kCodeDone, FileText({strSame}));
    EXPECT_TRUE(same.Tells(std::string("is there already"))) << same.All();
    EXPECT_TRUE(same.Tells(strStored)) << same.All();
    EXPECT_EQ(before, AllValues(store));
    CommandEnd different = Import(kCodeNoExport, FileText({SectionText(strOther, MadeIcons(9))}));
    EXPECT_TRUE(different.Tells(strOther)) << different.All();
    EXPECT_EQ(before, AllValues(store));
    auto fresh = Make(200);
    CommandEnd both = Import(
        kCodeLeftOut, FileText({SectionText(strOther, MadeIcons(9)), strSame, fresh.second}));
    EXPECT_TRUE(TellsCount(both, 1)) << both.All();
    before[fresh.first] = {REG_BINARY, MakeSnapshotBytes(MadeIcons(3))};
    EXPECT_EQ(before, AllValues(store));
}

struct RoomCase {
    const char* pszName;
    int nStored, nInFile, nTaken;
    CommandCode code;
};
TEST_P(CommandImport, KeepsToTwentyFiveAndTakesTheNewestOfTheFile) {
    constexpr RoomCase kRows[] = {
        {"all the room", 0, 25, 25, kCodeDone}, {"one too many", 0, 26, 25, kCodeLeftOut},
        {"just fits", 24, 1, 1, kCodeDone},     {"one of two", 24, 2, 1, kCodeLeftOut},
        {"full", 25, 1, 0, kCodeNoExport},      {"more than full", 26, 3, 0, kCodeNoExport},
    };
    Begin();
    for (const RoomCase& row : kRows) {
        SCOPED_TRACE(row.pszName);
        store.Clear();
        // What is stored is older than all that comes, and stays all the same.
        for (int n = 0; n < row.nStored; ++n) Plant(static_cast<uint64_t>(5000 + n), 1);
        auto expected = AllValues(store);
        std::vector<std::string> sections;
        std::vector<std::wstring> left;
        for (int n = 0; n < row.nInFile; ++n) {
            auto made = Make(static_cast<uint64_t>(100 + n), 2);    // the newest first
            sections.insert(sections.begin() + n / 2, made.second); // in any order
            if (n < row.nTaken)
                expected[made.first] = {REG_BINARY, MakeSnapshotBytes(MadeIcons(2))};
            else
                left.push_back(made.first);
        }
        CommandEnd end = Import(row.code, FileText(sections));
        EXPECT_TRUE(!row.nTaken || TellsCount(end, row.nTaken)) << end.All();
        for (const std::wstring& str : left) EXPECT_TRUE(end.Tells(str)) << end.All();
        EXPECT_EQ(expected, AllValues(store));
    }
}

TEST_P(CommandImport, OfWhatIsThereAlreadyNeedsNoRoom) {
    Begin();
    std::vector<std::string> sections;
    for (unsigned n = 0; n < 25; ++n) sections.push_back(SectionText(Plant(100 + n), MadeIcons(3)));
    auto before = AllValues(store);
    Import(kCodeDone, FileText(sections));
    EXPECT_EQ(before, AllValues(store));
}

TEST_P(CommandImport, TellsThatTheRegistryRefuses) {
    Begin();
    auto made = Make(100);
    {
        RefusedKey refused;
        EXPECT_NE("", Import(kCodeNotWritten, FileText({made.second})).strErr);
    }
    EXPECT_EQ(0, store.Count());
    Import(kCodeDone, FileText({made.second}));
    EXPECT_EQ(std::set<std::wstring>{made.first}, Names());
}

TEST_P(CommandImport, TellsTheFirstTwentyThatAreLeftOutAndHowManyOthers) {
    Begin();
    for (int nDamaged : {20, 21, 29}) {
        std::vector<std::string> sections;
        std::vector<std::wstring> names;
        for (int n = 0; n < nDamaged; ++n) {
            auto made = Make(static_cast<uint64_t>(1000 + n));
            names.push_back(made.first);
            sections.push_back(Replaced(made.second, "Icons=3", "Icons=4"));
        }
        CommandEnd end = Import(kCodeNoExport, FileText(sections));
        std::string strTold = end.All();
        for (int n = 0; n < nDamaged; ++n)
            EXPECT_EQ(n < 20, end.Tells(names[static_cast<size_t>(n)])) << n << "\n" << strTold;
        for (const std::wstring& str : names) {
            size_t nAt = strTold.find(ToUtf8(str));
            if (nAt != std::string::npos) strTold.erase(nAt, str.size());
        }
        size_t nLast = strTold.rfind("\r\n", strTold.size() - 3);
        std::string strOthers = std::to_string(nDamaged - 20);
        bool bTold = strTold.find(strOthers + " ", nLast) != std::string::npos;
        EXPECT_TRUE(nDamaged == 20 || bTold) << strTold;
        EXPECT_EQ(0, store.Count());
    }
}

// How a file may be written

class CommandImportText : public CommandTest {
  protected:
    void SetUp() override {
        CommandTest::SetUp();
        strName = NameBeforeNow(100);
        strGood = FileText({SectionText(strName, MadeIcons(3))});
    }
    CommandEnd Import(CommandCode code, const std::string& strContent) {
        return Expect(code, L"\"/IMPORT:" + folder.MakeFile(L"in.txt", strContent) + L"\"");
    }
    void ExpectTaken(const std::string& strContent) {
        store.Clear();
        Import(kCodeDone, strContent);
        auto value = store.Named(strName);
        ASSERT_TRUE(value);
        EXPECT_EQ(MakeSnapshotBytes(MadeIcons(3)), value->bytes);
        EXPECT_EQ(1, store.Count());
    }
    TempFolder folder;
    std::wstring strName;
    std::string strGood;
};

std::string Utf16(const std::string& str) {
    std::string strOut = "\xFF\xFE";
    for (char ch : str) {
        strOut += ch;
        strOut += '\0';
    }
    return strOut;
}

std::string WithoutReturns(std::string str) {
    std::erase(str, '\r');
    return str;
}

TEST_F(CommandImportText, MayBeOfEitherEncodingAndHaveEitherEndOfLine) {
    ExpectTaken(strGood);
    ExpectTaken("\xEF\xBB\xBF" + strGood);
    ExpectTaken(Utf16(strGood));
    ExpectTaken(WithoutReturns(strGood));
    ExpectTaken("\xEF\xBB\xBF" + WithoutReturns(strGood));
    ExpectTaken(Utf16(WithoutReturns(strGood)));
    std::string strOpenEnd = strGood;
    strOpenEnd.resize(strOpenEnd.size() - 2);
    ExpectTaken(strOpenEnd); // the last line has no end
}

TEST_F(CommandImportText, MayHaveCommentsAndBlankLinesAnywhere) {
    std::string strAll;
    for (const std::string& str : Lines(strGood))
        strAll += "\r\n; [Tessaly] Icons=7 Ä \xE5\x9B\xB3\r\n\r\n;\r\n" + str + "\r\n";
    ExpectTaken(strAll + ";");
    ExpectTaken(Meaning(strGood)); // and none
}

TEST_F(CommandImportText, MayHaveItsDigestInEitherCase) {
    size_t nAt = strGood.find("Digest=") + 7;
    std::string strUpper = strGood;
    for (size_t n = nAt; n < nAt + 32; ++n)
        strUpper[n] = static_cast<char>(toupper(static_cast<unsigned char>(strUpper[n])));
    ExpectTaken(strUpper);
}

TEST_F(CommandImportText, MayBeSixteenMebibytesLongAndNoLonger) {
    constexpr size_t kLongest = 16 * 1024 * 1024;
    std::string strLong = strGood;
    while (strLong.size() < kLongest - 200) strLong += ";" + std::string(97, 'x') + "\r\n";
    strLong += ";" + std::string(kLongest - strLong.size() - 1, 'y');
    ASSERT_EQ(kLongest, strLong.size());
    ExpectTaken(strLong);
    store.Clear();
    CommandEnd end = Import(kCodeNoExport, strLong + "y");
    EXPECT_NE("", end.strErr);
    EXPECT_EQ(0, store.Count());
}

TEST_F(CommandImportText, IsReadFromTheCurrentFolder) {
    folder.MakeFile(L"Снимки 1.txt", strGood);
    Expect(kCodeDone, L"\"-import=Снимки 1.txt\"", folder.Get());
    EXPECT_EQ(std::set<std::wstring>{strName}, Names());
    EXPECT_EQ(strGood, folder.ReadFile(L"Снимки 1.txt"));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(CommandImportText, ThatCannotBeReadIsTold) {
    Expect(kCodeNoFile, L"\"/IMPORT:" + folder.File(L"missing.txt") + L"\"");
    Expect(kCodeNoFile, L"\"/IMPORT:" + folder.Get() + L"\"");
    Expect(kCodeNoFile, L"/IMPORT:Q:\\in.txt");
    std::wstring strHeld = folder.MakeFile(L"held.txt", strGood);
    HANDLE h = ::CreateFileW(strHeld.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    Expect(kCodeNoFile, L"\"/IMPORT:" + strHeld + L"\"");
    ::CloseHandle(h);
    EXPECT_FALSE(store.KeyExists());
}
} // namespace
