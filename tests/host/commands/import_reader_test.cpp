#include "host/commands/import_reader.h"
#include "host/commands/export_text.h"
#include "support/guard_page.h"
#include "support/no_memory.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {
using Records = std::vector<IconRecord>;

constexpr unsigned __int64 kTime = 0x01CAC36B51D3C400; // a day of 2010
const std::wstring kHead = L"[Tessaly]\r\nFormat=1\r\n";

Records MakeRecords(unsigned n) {
    Records records;
    for (unsigned i = 0; i < n; ++i) {
        POINT pt{static_cast<LONG>(i * 75) - 100, -static_cast<LONG>(i)};
        records.push_back({i, pt, 8 + i, 0x0123456789ABCDEFull + i});
    }
    return records;
}

std::wstring Section(unsigned __int64 qwTime, const Records& records) {
    CommandText text;
    AddExportSection(text, qwTime, records);
    return text.Get();
}

std::wstring Replaced(std::wstring str, const std::wstring& strOld, const std::wstring& strNew) {
    std::size_t n = str.find(strOld);
    EXPECT_NE(std::wstring::npos, n);
    return str.replace(n, strOld.size(), strNew);
}

struct Read {
    std::wstring strName, strFault;
    unsigned __int64 qwTime;
    Records records;
};

/// All sections of a text, which lies right before a page that may not be touched and has no
/// terminator. The head must be good.
std::vector<Read> ReadAll(const std::wstring& strText) {
    GuardedMemory memory(strText.size() * sizeof(wchar_t));
    std::memcpy(memory.Get(), strText.data(), memory.GetSize());
    ImportReader reader({static_cast<const wchar_t*>(memory.Get()), strText.size()});
    EXPECT_TRUE(reader.IsReady());
    EXPECT_EQ(ImportReader::Head::Ours, reader.ReadHead());
    std::vector<Read> all;
    ImportSection section;
    while (reader.ReadSection(section)) {
        Records records;
        if (!section.pszFault) {
            auto read = reader.GetRecords();
            records.assign(read.begin(), read.end());
        };
        all.push_back({section.szName, section.pszFault ? section.pszFault : L"", section.qwTime,
                       std::move(records)});
    }
    return all;
}

/// Whether a text of one section is left out.
bool IsLeftOut(const std::wstring& strSection) {
    std::vector<Read> all = ReadAll(kHead + strSection);
    EXPECT_EQ(1u, all.size());
    return all.empty() || !all[0].strFault.empty();
}

bool IsSame(const Records& a, const Records& b) {
    return a.size() == b.size() && !std::memcmp(a.data(), b.data(), a.size() * sizeof(IconRecord));
}

ImportReader::Head HeadOf(const std::wstring& strText) {
    ImportReader reader(strText);
    return reader.ReadHead();
}

TEST(ExportText, StandsAsItIsPromised) {
    CommandText text;
    AddExportHead(text);
    Records records = {{0, {10, 20}, 8, 0x0123456789ABCDEF}, {1, {-10, 90}, 5, 0xFEDCBA9876543210}};
    AddExportSection(text, kTime, records);
    EXPECT_STREQ(L"; Icon layouts of Tessaly. Times are UTC.\r\n"
                 L"[Tessaly]\r\n"
                 L"Format=1\r\n"
                 L"\r\n"
                 L"[01CAC36B51D3C400]\r\n"
                 L"Time=2010-03-14T11:41:43Z\r\n"
                 L"Icons=2\r\n"
                 L"Digest=1b85feff9aaa6e815907ca3cc0bef06a\r\n"
                 L"Icon=0 10 20 8 0123456789ABCDEF\r\n"
                 L"Icon=1 -10 90 5 FEDCBA9876543210\r\n",
                 text.Get());
}

TEST(ImportReader, ReadsWhatWasExported) {
    for (unsigned n : {1u, 2u, 998u, 999u}) {
        Records records = MakeRecords(n);
        records[0].pt = {-2147483647 - 1, 2147483647};
        records[0].nIndex = records[0].cchName = 0xFFFFFFFF;
        std::vector<Read> all = ReadAll(kHead + Section(kTime, records) + Section(kTime - 1, {{}}));
        ASSERT_EQ(2u, all.size());
        EXPECT_EQ(L"", all[0].strFault);
        EXPECT_EQ(kTime, all[0].qwTime);
        EXPECT_TRUE(IsSame(records, all[0].records)) << n;
        EXPECT_EQ(kTime - 1, all[1].qwTime);
    }
    EXPECT_TRUE(IsLeftOut(Section(kTime, MakeRecords(1000))));
    EXPECT_TRUE(IsLeftOut(Section(kTime, {})));
}

TEST(ImportReader, TakesWhatAPersonMayHaveChanged) {
    const std::wstring strSection = Section(kTime, MakeRecords(2));
    std::wstring strLf = strSection, strUpper = strSection, strSpaced = strSection;
    std::erase(strLf, L'\r');
    std::ranges::transform(strUpper, strUpper.begin(), [](wchar_t ch) {
        return ch >= L'a' && ch <= L'f' ? static_cast<wchar_t>(ch - 32) : ch;
    });
    const std::wstring strSpace = L"\t\r\n\r\n ; no=thing\r\n  ";
    for (std::size_t n = 0; (n = strSpaced.find(L"\r\n", n)) != std::wstring::npos;
         n += strSpace.size() + 2) {
        strSpaced.insert(n, strSpace);
    }
    for (const std::wstring& str : {strSection, strLf, strUpper, strSpaced, L" " + strSection,
                                    strSection.substr(0, strSection.size() - 2)}) {
        EXPECT_FALSE(IsLeftOut(str));
    }
}

TEST(ImportReader, TellsWhatIsNoExport) {
    using Head = ImportReader::Head;
    EXPECT_EQ(Head::Ours, HeadOf(kHead));
    EXPECT_EQ(Head::Ours, HeadOf(L"\n;\n[tessaly]\nformat = 01"));
    for (const wchar_t* psz : {L"[Tessaly]\nFormat=2", L"[Tessaly]\nFormat=0",
                               L"[Tessaly]\nFormat=99999999999999999999999"})
        EXPECT_EQ(Head::OtherVersion, HeadOf(psz)) << psz;
    for (const wchar_t* psz :
         {L"", L"\r\n", L";", L"Format=1", L"[Tessaly]", L"[Tessaly", L"[Tessaly]\nFormat=",
          L"[Tessaly]\nFormat", L"[Tessaly]\nFormat=1x", L"[Tessaly]\nFormat=-1",
          L"[Tessaly]\nFormat=1\nFormat=1", L"[Tessaly]\nOther=1\nFormat=1",
          L"x\n[Tessaly]\nFormat=1", L"[Other]\nFormat=1", L"[01CAC36B51D3C400]\nFormat=1"}) {
        EXPECT_EQ(Head::NotOurs, HeadOf(psz)) << psz;
    }
}

TEST(ImportReader, LeavesOutASectionThatIsDamagedInAnyWay) {
    const std::wstring str = Section(kTime, MakeRecords(2));
    struct {
        const wchar_t *pszOld, *pszNew;
    } const kDamages[] = {
        {L"Time=2010", L"Time=2011"},
        {L"11:41:43Z", L"11:41:44Z"},
        {L"11:41:43Z", L"11:41:43"},
        {L"Time=", L"Times="},
        {L"Time=", L"Time=\r\nTime="},
        {L"Icons=2", L"Icons=1"},
        {L"Icons=2", L"Icons=3"},
        {L"Icons=2", L"Icons=-2"},
        {L"Icons=2", L"Icons=4294967298"},
        {L"Icons=2\r\n", L""},
        {L"Icons=2", L"Icons=2\r\nIcons=2"},
        {L"Icons=2", L"Icons="},
        {L"Icons=2", L"Icons"},
        {L"Digest=", L"Digest=0"},
        {L"Digest=", L"Digest=\r\n;"},
        {L"Digest=", L";"},
        {L"Icon=0", L"Icon=1"},
        {L"Icon=0", L"Icon=0 0"},
        {L"Icon=0", L"Icon=4294967296"},
        {L"Icon=0", L"Icon=-1"},
        {L"Icon=0", L"Icon="},
        {L"Icon=0", L";"},
        {L"-100", L"-2147483649"},
        {L"-100", L"--100"},
        {L"-100", L"-"},
        {L"-100", L"2147483648"},
        {L"ABCDEF", L"ABCDE"},
        {L"ABCDEF", L"ABCDEFG"},
        {L"ABCDEF", L"ABCDEG"},
        {L"Icon=0", L"Unknown=1\r\nIcon=0"},
        {L"Icon=0", L"nothing\r\nIcon=0"},
        {L"[01CAC36B51D3C400]", L"[01CAC36B51D3C40]"},
        {L"[01CAC36B51D3C400]", L"[01CAC36B51D3C4000]"},
        {L"[01CAC36B51D3C400]", L"[01CAC36B51D3C40G]"},
        {L"[01CAC36B51D3C400]", L"[01CAC36B51D3C400"},
        {L"[01CAC36B51D3C400]", L"[]"},
        {L"[01CAC36B51D3C400]", L"["},
    };
    for (const auto& damage : kDamages) {
        std::wstring strDamaged = Replaced(str, damage.pszOld, damage.pszNew);
        EXPECT_TRUE(IsLeftOut(strDamaged)) << damage.pszOld << " -> " << damage.pszNew;
        // What follows is not touched by it.
        std::vector<Read> all = ReadAll(kHead + strDamaged + Section(kTime + 1, MakeRecords(3)));
        ASSERT_EQ(2u, all.size());
        EXPECT_EQ(kTime + 1, all[1].qwTime);
        EXPECT_TRUE(IsSame(MakeRecords(3), all[1].records));
    }
}

TEST(ImportReader, LeavesOutTimesThatAreNoneOrAreStillToCome) {
    FILETIME ft;
    ::GetSystemTimeAsFileTime(&ft);
    unsigned __int64 qwNow =
        static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    constexpr unsigned __int64 kMinute = 600000000;
    EXPECT_FALSE(IsLeftOut(Section(qwNow - kMinute, MakeRecords(1))));
    EXPECT_TRUE(IsLeftOut(Section(qwNow + 5 * kMinute, MakeRecords(1))));
    for (unsigned __int64 qw : {0ull, 1ull << 63, ~0ull, 0x7FFFFFFFFFFFFFFFull})
        EXPECT_TRUE(IsLeftOut(Section(qw, MakeRecords(1)))) << qw;
}

TEST(ImportReader, ShowsNoSignThatSteersAConsole) {
    std::vector<Read> all = ReadAll(kHead + L"[\x1B[2J\x9B\x202E"
                                            L"a\x7F very long name of it]");
    ASSERT_EQ(1u, all.size());
    EXPECT_EQ(L"?[2J??a? very long ", all[0].strName);
}

TEST(ImportReader, GoesBackToASection) {
    const std::wstring str = kHead + Section(kTime, MakeRecords(2)) + Section(kTime + 1, {{}});
    ImportReader reader(str);
    ASSERT_EQ(ImportReader::Head::Ours, reader.ReadHead());
    ImportSection first, second;
    ASSERT_TRUE(reader.ReadSection(first));
    ASSERT_TRUE(reader.ReadSection(second));
    reader.MoveTo(first);
    ImportSection again;
    ASSERT_TRUE(reader.ReadSection(again));
    EXPECT_EQ(kTime, again.qwTime);
    EXPECT_EQ(2u, reader.GetRecords().size());
}

TEST(ImportReader, CutAnywhereGivesWhatStandsBeforeTheCut) {
    const std::wstring strFirst = kHead + Section(kTime, MakeRecords(2));
    const std::wstring str = strFirst + Section(kTime + 1, MakeRecords(2));
    for (std::size_t n = strFirst.size(); n < str.size(); ++n) {
        std::vector<Read> all = ReadAll(str.substr(0, n));
        ASSERT_LE(1u, all.size()) << n;
        EXPECT_EQ(kTime, all[0].qwTime);
        bool bWhole = n + 2 >= str.size(); // but for its last line's end
        if (all.size() > 1) {
            EXPECT_EQ(bWhole, all[1].strFault.empty()) << n;
        }
    }
}

/// A text made of pieces that mean something and of others that do not.
std::wstring RandomText(std::mt19937& random) {
    static const std::wstring strGood = Section(kTime, MakeRecords(3));
    static const wchar_t* const kPieces[] = {L"[",
                                             L"]",
                                             L"=",
                                             L"\n",
                                             L"\r\n",
                                             L"\r",
                                             L";",
                                             L" ",
                                             L"\t",
                                             L"-",
                                             L"Time",
                                             L"Icons",
                                             L"Icon=",
                                             L"Icon",
                                             L"Digest",
                                             L"Format=1",
                                             L"0",
                                             L"99999",
                                             L"01CAC36B51D3C400",
                                             L"0123456789abcdef0123456789abcdef",
                                             L"[Tessaly]\nFormat=1\n",
                                             L"2010-03-14T11:41:43Z",
                                             L"Z"};
    std::wstring str = kHead;
    for (unsigned n = random() % 40; n; --n) {
        switch (random() % 4) {
        case 0: str += static_cast<wchar_t>(random() % 0x10000); break;
        case 1: str += strGood; break;
        default: str += kPieces[random() % std::size(kPieces)]; break;
        }
    }
    for (unsigned n = random() % 4; n; --n) {
        std::size_t nAt = kHead.size() + random() % (str.size() - kHead.size() + 1);
        if (random() % 2 && nAt < str.size())
            str.erase(nAt, 1 + random() % 5);
        else
            str.insert(nAt, 1, static_cast<wchar_t>(random() % 128));
    }
    return str;
}

TEST(ImportReader, RandomTextsAreReadWithinTheirEndsAndNothingFalseIsTaken) {
    std::mt19937 random(20260101);
    const Records expected = MakeRecords(3);
    int nTaken = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::wstring str = RandomText(random);
        // The head may have been added to.
        if (HeadOf(str) != ImportReader::Head::Ours) continue;
        for (const Read& read : ReadAll(str)) {
            if (!read.strFault.empty()) continue;
            ++nTaken;
            EXPECT_EQ(kTime, read.qwTime);
            EXPECT_TRUE(IsSame(expected, read.records)); // or its digest would not hold
        }
    }
    EXPECT_LT(500, nTaken);
    for (int i = 0; i < 300; ++i) { // and bytes of any kind behind no head at all
        std::wstring str(random() % 500, L' ');
        for (wchar_t& ch : str) ch = static_cast<wchar_t>(random() % (i % 2 ? 128 : 0x10000));
        GuardedMemory memory(str.size() * sizeof(wchar_t));
        std::memcpy(memory.Get(), str.data(), memory.GetSize());
        ImportReader reader({static_cast<const wchar_t*>(memory.Get()), str.size()});
        EXPECT_NE(ImportReader::Head::Ours, reader.ReadHead());
    }
}

TEST(ImportReader, SaysWhenThereIsNoMemory) {
    bool bReady = true;
    {
        NoMemory none;
        ImportReader reader(kHead);
        bReady = reader.IsReady();
    }
    EXPECT_FALSE(bReady);
}

TEST(CommandTextTest, KeepsWhatItHasWithoutMemory) {
    CommandText text, empty;
    text.Add(L"kept");
    {
        NoMemory none;
        for (int i = 0; i < 2000; ++i) text.Add(L"0123456789");
        empty.Add(L"lost");
    }
    EXPECT_FALSE(text.IsWhole());
    EXPECT_EQ(0, wcsncmp(L"kept0123456789", text.Get(), 14));
    EXPECT_STREQ(L"", empty.Get());
    text.Add(L"none of it any more");
    EXPECT_EQ(text.GetLength(), wcslen(text.Get()));
}

TEST(CommandTextTest, GrowsAndTakesLongTexts) {
    CommandText text, other;
    EXPECT_STREQ(L"", text.Get());
    text.NextLine(); // nothing before the first line
    std::wstring strExpected;
    for (int i = 0; i < 3000; ++i) {
        text.Add(L"%d;", i);
        strExpected += std::to_wstring(i) + L";";
    }
    EXPECT_EQ(strExpected, text.Get());
    other.Add(L"a");
    other.NextLine();
    other.Append(text);
    EXPECT_EQ(L"a\n" + strExpected, other.Get());
    EXPECT_EQ(strExpected.size() + 2, other.GetLength());
    EXPECT_TRUE(other.IsWhole());
}
} // namespace
