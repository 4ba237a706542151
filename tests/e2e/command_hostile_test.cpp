// Files that are damaged or no snapshots at all.

#include "e2e/command_test_support.h"
#include "support/temp_folder.h"

#include <random>

namespace {
class HostileFile : public CommandTest {
  protected:
    CommandEnd Import(const std::string& strContent) {
        return RunCommand(L"\"/IMPORT:" + folder.MakeFile(L"in.txt", strContent) + L"\"");
    }
    void ExpectNoExport(const std::string& strContent, const char* pszWhat) {
        SCOPED_TRACE(pszWhat);
        CommandEnd end = Import(strContent);
        EXPECT_EQ(DWORD{kCodeNoExport}, end.dwCode);
        EXPECT_NE("", end.strErr);
        EXPECT_EQ(before, AllValues(store));
    }
    void SetUp() override {
        CommandTest::SetUp();
        strName = NameBeforeNow(100);
        strSection = SectionText(strName, MadeIcons(3));
    }
    TempFolder folder;
    std::wstring strName;
    std::string strSection;
    std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> before;
};

TEST_F(HostileFile, OfAnythingElseIsNoExport) {
    Plant(5000);
    before = AllValues(store);
    ExpectNoExport("", "empty");
    ExpectNoExport("\n", "an empty line");
    ExpectNoExport("hello", "a word");
    ExpectNoExport("MZ\x90", "a program's beginning");
    ExpectNoExport("\xFF\xFE", "a mark alone");
    ExpectNoExport(strSection, "no header");
    ExpectNoExport("[Other]\r\nFormat=1\r\n\r\n" + strSection, "another header");
    ExpectNoExport(strSection + "\r\n[Tessaly]\r\nFormat=1\r\n", "the header last");
    ExpectNoExport("[Tessaly]\r\n\r\n" + strSection, "a header without a format");
    ExpectNoExport("[Tessaly]\r\nFormat=one\r\n\r\n" + strSection, "a format that is no number");
    ExpectNoExport(std::string(1'000'000, '['), "brackets");
    ExpectNoExport(std::string(1'000'000, '\0'), "zeros");
    ExpectNoExport(std::string(3'000'000, '\n'), "ends of lines");
}

TEST_F(HostileFile, OfAnotherVersionIsToldAsSuch) {
    for (const char* psz : {"2", "0", "10", "4294967297", "99999999999999999999"}) {
        CommandEnd end =
            Import("[Tessaly]\r\nFormat=" + std::string(psz) + "\r\n\r\n" + strSection);
        EXPECT_EQ(DWORD{kCodeNoExport}, end.dwCode) << psz;
        EXPECT_NE(std::string::npos, end.strErr.find("made by another version")) << end.All();
        EXPECT_EQ(0, store.Count());
    }
}

TEST_F(HostileFile, OfRandomBytesIsNoExport) {
    Plant(5000);
    before = AllValues(store);
    std::mt19937 random(11);
    for (size_t cb : {1u, 2u, 3u, 100u, 5'000u, 70'000u, 1'000'000u}) {
        std::string str(cb, '\0');
        for (char& ch : str) ch = static_cast<char>(random());
        ExpectNoExport(str, "bytes");
    }
}

TEST_F(HostileFile, OfAHundredMegabytesIsRefusedUnread) {
    std::wstring strFile = folder.MakeFile(L"in.txt", FileText({strSection}));
    std::filesystem::resize_file(strFile, 100'000'000);
    CommandEnd end = RunCommand(L"\"/IMPORT:" + strFile + L"\"");
    EXPECT_EQ(DWORD{kCodeNoExport}, end.dwCode);
    EXPECT_NE("", end.strErr);
    EXPECT_EQ(0, store.Count());
}

/// A snapshot whose section is damaged, and the name by which that has to be told.
struct Damaged {
    std::string strToldName, strSection;
};

/// Sections that are damaged, each of a snapshot of its own, in files with and without good ones.
class DamagedSection : public HostileFile {
  protected:
    static constexpr size_t kToldAtMost = 20;

    /// The section of a new snapshot, and its name.
    std::string Make(int nIcons = 3) {
        strName = NameBeforeNow(1000 + 10 * nMade++);
        return strSection = SectionText(strName, MadeIcons(nIcons));
    }
    void Add(const std::string& strDamaged) { rows.push_back({ToUtf8(strName), strDamaged}); }
    /// A new section with another text in the place of one of its lines.
    void AddWith(const std::string& strKey, const std::string& strLine) {
        Make();
        std::string strOld = Line(strKey);
        Add(Replaced(strSection, strOld, strLine));
    }
    /// The line of the new section.
    std::string Line(const std::string& strKey) const {
        size_t nAt = strSection.find("\r\n" + strKey + "=") + 2;
        return strSection.substr(nAt, strSection.find("\r\n", nAt) + 2 - nAt);
    }
    /// All are left out and told, whatever stands beside them.
    void ExpectLeftOut() {
        ASSERT_LE(rows.size(), kToldAtMost);
        std::wstring strFirst = NameBeforeNow(200), strLast = NameBeforeNow(300);
        std::vector<std::string> alone, beside{SectionText(strFirst, MadeIcons(2))};
        for (const Damaged& row : rows) {
            alone.push_back(row.strSection);
            beside.push_back(row.strSection);
        }
        beside.push_back(SectionText(strLast, MadeIcons(4)));
        CommandEnd ofAlone = Import(FileText(alone));
        EXPECT_EQ(DWORD{kCodeNoExport}, ofAlone.dwCode) << ofAlone.All();
        EXPECT_EQ(std::set<std::wstring>{}, Names());
        CommandEnd ofBeside = Import(FileText(beside));
        EXPECT_EQ(DWORD{kCodeLeftOut}, ofBeside.dwCode) << ofBeside.All();
        EXPECT_TRUE(ofBeside.Tells(std::string("2 snapshots are taken in."))) << ofBeside.All();
        EXPECT_EQ((std::set<std::wstring>{strFirst, strLast}), Names());
        for (const Damaged& row : rows) {
            EXPECT_TRUE(ofAlone.Tells(row.strToldName)) << row.strSection << ofAlone.All();
            EXPECT_TRUE(ofBeside.Tells(row.strToldName)) << row.strSection << ofBeside.All();
        }
    }
    std::vector<Damaged> rows;

  private:
    unsigned nMade = 0;
};

TEST_F(DamagedSection, WithLinesThatAreMissingDoubleOrUnknownIsLeftOut) {
    for (const char* psz : {"Time", "Icons", "Digest"}) {
        AddWith(psz, "");
        Make();
        Add(strSection + Line(psz));
    }
    Add(Make() + "Colour=1\r\n");
    Add(Make() + "a line\r\n");
    AddWith("Icon", ""); // one less than are told
    Make();
    Add(strSection + Line("Icon"));
    ExpectLeftOut();
}

TEST_F(DamagedSection, WithAWrongCountIsLeftOut) {
    for (const char* psz : {"0", "2", "4", "-3", "", "three", "4294967299", "3 3"})
        AddWith("Icons", "Icons=" + std::string(psz) + "\r\n");
    Add(Make(0));
    Add(Make(1000));
    ExpectLeftOut();
    store.Clear();
    CommandEnd most = Import(FileText({Make(999)}));
    EXPECT_EQ(DWORD{kCodeDone}, most.dwCode) << most.All();
}

TEST_F(DamagedSection, WithAWrongDigestIsLeftOut) {
    Make();
    std::string strDigest = Line("Digest").substr(7, 32); // that of every new section
    std::string strOther = strDigest;
    strOther[31] = strOther[31] == '0' ? '1' : '0';
    for (const std::string& str : {strOther, std::string(32, '0'), strDigest.substr(1),
                                   strDigest + "0", std::string(), std::string(32, 'g')})
        AddWith("Digest", "Digest=" + str + "\r\n");
    Make();
    Add(Replaced(strSection, "Icon=1 10", "Icon=1 11"));
    ExpectLeftOut();
}

TEST_F(DamagedSection, WithAWrongTimeIsLeftOut) {
    AddWith("Time", "Time=" + UtcText(NameBeforeNow(100'000)) + "\r\n");
    for (const char* psz : {"2026-02-30T10:05:00Z", "0", ""})
        AddWith("Time", "Time=" + std::string(psz) + "\r\n");
    Make();
    Add(Replaced(strSection, "Z\r\nIcons", "\r\nIcons"));
    Make();
    Add(Replaced(strSection, "Z\r\nIcons", "ZZ\r\nIcons"));
    ExpectLeftOut();
}

TEST_F(DamagedSection, OfATimeThatIsNoDateOrHasNotComeIsLeftOut) {
    uint64_t nTomorrow = Now() + 864'000'000'000;
    wchar_t sz[17];
    swprintf(sz, 17, L"%016llX", static_cast<unsigned long long>(nTomorrow));
    rows.push_back({ToUtf8(sz), SectionText(sz, MadeIcons(3))});
    std::string strNoDate = "FFFFFFFFFFFFFFFF";
    Make();
    rows.push_back({strNoDate, Replaced(strSection, ToUtf8(strName), strNoDate)});
    ExpectLeftOut();
}

TEST_F(DamagedSection, WithAWrongNameIsLeftOut) {
    for (int n = 0; n < 5; ++n) {
        Make();
        std::string str = ToUtf8(strName);
        const std::string others[] = {str.substr(1), "0" + str, str + "0", str.substr(0, 15) + "G",
                                      "Other"};
        rows.push_back({others[n], Replaced(strSection, "[" + str + "]", "[" + others[n] + "]")});
    }
    ExpectLeftOut();
}

TEST_F(DamagedSection, WithNumbersThatAreNoneOrOutOfRangeIsLeftOut) {
    Make();
    std::string strIcon = Line("Icon"); // the first of every new section
    std::string strKey = strIcon.substr(strIcon.rfind(' ') + 1, 16);
    for (const std::string& str :
         {"4294967296 0 0 9 " + strKey, "-1 0 0 9 " + strKey, "0 2147483648 0 9 " + strKey,
          "0 -2147483649 0 9 " + strKey, "0 0 99999999999999999999 9 " + strKey,
          "0 0 0 4294967296 " + strKey, "0 0 0 -1 " + strKey, "a 0 0 9 " + strKey,
          "0 0 0 9 " + strKey + "0", "0 0 0 9 " + strKey.substr(1), std::string("0 0 0 9"),
          "0 0 0 9 " + strKey + " 1", "0 0x0 0 9 " + strKey, std::string()})
        AddWith("Icon", "Icon=" + str + "\r\n");
    ExpectLeftOut();
}

/// A file of three snapshots, with their ends in it.
class WholeFile : public HostileFile {
  protected:
    void SetUp() override {
        HostileFile::SetUp();
        for (int n = 1; n <= 3; ++n) {
            std::wstring str = NameBeforeNow(static_cast<uint64_t>(100 * n));
            good[str] = {REG_BINARY, MakeSnapshotBytes(MadeIcons(n))};
            sections.push_back(SectionText(str, MadeIcons(n)));
            strAll = FileText(sections);
            ends.push_back(strAll.size());
        }
    }
    /// Everything that is stored is one of them.
    void ExpectGoodOnes() {
        for (const auto& [str, value] : AllValues(store)) {
            ASSERT_TRUE(good.contains(str)) << ToUtf8(str);
            EXPECT_EQ(good[str], value);
        }
    }
    std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> good;
    std::vector<std::string> sections;
    std::vector<size_t> ends;
    std::string strAll;
};

TEST_F(WholeFile, ThatIsCutInAnyLineGivesWhatStandsBeforeTheCut) {
    size_t nStart = 0;
    for (size_t nEnd; (nEnd = strAll.find("\r\n", nStart)) != std::string::npos;
         nStart = nEnd + 2) {
        if (nEnd - nStart < 2) continue; // a blank line
        size_t nCut = (nStart + nEnd) / 2;
        std::string strCut = strAll.substr(0, nCut);
        SCOPED_TRACE(strCut.substr(nStart));
        store.Clear();
        CommandEnd end = Import(strCut);
        int nWhole = 0;
        for (size_t nSectionEnd : ends) nWhole += nSectionEnd <= nCut;
        // Half a section's name may be taken for a line of the section before.
        bool bInName = strAll[nStart] == '[' && nWhole > 0;
        EXPECT_LE(store.Count(), nWhole);
        EXPECT_GE(store.Count(), nWhole - (bInName ? 1 : 0));
        EXPECT_EQ(DWORD{store.Count() ? kCodeLeftOut : kCodeNoExport}, end.dwCode) << end.All();
        ExpectGoodOnes();
    }
}

TEST_F(WholeFile, ThatIsCutBetweenLinesGivesWhatStandsBeforeTheCut) {
    for (size_t nCut = strAll.find("\r\n") + 2; nCut < strAll.size();
         nCut = strAll.find("\r\n", nCut) + 2) {
        store.Clear();
        CommandEnd end = Import(strAll.substr(0, nCut));
        SCOPED_TRACE(nCut);
        int nWhole = 0;
        for (size_t nSectionEnd : ends) nWhole += nSectionEnd <= nCut;
        EXPECT_EQ(nWhole, store.Count());
        EXPECT_TRUE(end.dwCode == kCodeNoExport || end.dwCode == kCodeLeftOut ||
                    (end.dwCode == kCodeDone && nWhole))
            << end.dwCode << end.All();
        ExpectGoodOnes();
    }
}

TEST_F(WholeFile, WithRandomChangesGivesOnlyWhatIsGood) {
    std::mt19937 random(12);
    for (int n = 0; n < 25; ++n) {
        std::string str = strAll;
        for (unsigned nChanges = 1 + random() % 6; nChanges; --nChanges) {
            size_t nAt = random() % str.size();
            switch (random() % 4) {
            case 0: str[nAt] = static_cast<char>(random()); break;
            case 1: str.erase(nAt, 1 + random() % 40); break;
            case 2: str.insert(nAt, str.substr(random() % str.size(), random() % 60)); break;
            case 3: str.insert(nAt, 1, "\r\n\0[]=; -0"[random() % 10]); break;
            }
            if (str.empty()) str = "[";
        }
        store.Clear();
        CommandEnd end = Import(str);
        EXPECT_TRUE(end.dwCode == kCodeDone || end.dwCode == kCodeNoExport ||
                    end.dwCode == kCodeLeftOut)
            << end.dwCode << "\n"
            << str;
        // (A name may have become that of another moment of the same second.)
        for (const StoredSnapshot& value : store.Values()) {
            bool bGood = false;
            for (const auto& [strGood, content] : good)
                bGood = bGood || (content.second == value.bytes &&
                                  UtcText(strGood) == UtcText(value.strName));
            EXPECT_TRUE(bGood) << str;
        }
    }
}

TEST_F(WholeFile, WithTheSameSectionAgainAndAgainGivesItOnce) {
    std::string strMany = strAll;
    for (int n = 0; n < 200; ++n) strMany += "\r\n" + sections[static_cast<size_t>(n % 3)];
    CommandEnd end = Import(strMany);
    EXPECT_TRUE(end.dwCode == kCodeDone || end.dwCode == kCodeLeftOut) << end.dwCode;
    ExpectGoodOnes();
    EXPECT_EQ(3, store.Count());
}
} // namespace
