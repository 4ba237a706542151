#include "files/read_only.h"
#include "runtime/text/str_copy.h"
#include "store/ini/ini_file.h"
#include "support/guard_page.h"
#include "support/registry.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <type_traits>
#include <vector>

extern "C" FARPROC __imp_CreateFileW;

static_assert(std::has_virtual_destructor_v<IniFile> && !std::is_copy_constructible_v<IniFile>);

namespace {
using Lines = std::vector<std::wstring>;

/// Writes down what passes: "begin", "[a] ;comment", "[a] name=value", "end".
class Recorder : public IniFile {
  public:
    using IniFile::IniFile;
    Lines lines;
    int nStopAt = -1; // the event with this number gives 0
    std::size_t cchLongest[3] = {};
    bool bGiveUp = false; // the parser, at every event

    int CallBack(CallBackFlag nFlag, const wchar_t* pszSection, const wchar_t* pszName,
                 const wchar_t* pszValue) override {
        EXPECT_EQ(nFlag == cbVar, pszValue != nullptr);
        EXPECT_EQ(nFlag == cbVar || nFlag == cbComment, pszSection && pszName);
        if (nFlag == cbBegin) lines.push_back(L"begin");
        if (nFlag == cbEnd) lines.push_back(L"end");
        if (nFlag == cbComment) Note(pszSection, pszName, L"");
        if (nFlag == cbVar) Note(pszSection, std::wstring(pszName) + L"=", pszValue);
        if (bGiveUp) DeleteParser();
        return static_cast<int>(lines.size()) - 1 != nStopAt;
    }

  private:
    void Note(const wchar_t* pszSection, const std::wstring& strName, const wchar_t* pszValue) {
        cchLongest[0] = std::max(cchLongest[0], std::wcslen(pszSection));
        cchLongest[1] = std::max(cchLongest[1], strName.size());
        cchLongest[2] = std::max(cchLongest[2], std::wcslen(pszValue));
        lines.push_back(L"[" + std::wstring(pszSection) + L"] " + strName + pszValue);
    }
};

struct PassCase {
    const char* pszName;
    std::wstring strText;
    Lines expected; // between "begin" and "end"
};
class IniFileReadPass : public testing::TestWithParam<PassCase> {};
TEST_P(IniFileReadPass, Reports) {
    GuardedText text(GetParam().strText);
    Lines expected{L"begin"};
    expected.insert(expected.end(), GetParam().expected.begin(), GetParam().expected.end());
    expected.push_back(L"end");
    for (unsigned cch : {0u, static_cast<unsigned>(GetParam().strText.size())}) {
        Recorder ini;
        EXPECT_EQ(1, ini.ReadAll(text.Get(), cch));
        EXPECT_EQ(expected, ini.lines);
    }
}
const std::wstring k1500(1500, L'v'), k300(300, L'n');
const std::wstring k255(255, L'n'), k256(256, L'n'), k1024(1024, L'v'), k1025(1025, L'v');
INSTANTIATE_TEST_SUITE_P(
    IniFileRead, IniFileReadPass,
    testing::Values(
        PassCase{"HeaderAlone", L"[a]", {}}, PassCase{"OnlyBlanks", L"  ", {}},
        PassCase{
            "Variables", L"[a]\r\nx=1\r\ny=2\r\n[b]\r\nz=3", {L"[a] x=1", L"[a] y=2", L"[b] z=3"}},
        PassCase{"LineFeedsOnly", L"[a]\nx=1\n[b]\ny=2", {L"[a] x=1", L"[b] y=2"}},
        PassCase{"Prefix", L"\xFEFF[a]\nx=1", {L"[a] x=1"}},
        PassCase{"SecondPrefixIsContent", L"\xFEFF\xFEFF[a]\nx=1", {}},
        PassCase{"BlankLineIsAnEmptyComment",
                 L"\n[a]\n\n \r\nx=1\n\n",
                 {L"[] ", L"[a] ", L"[a] ", L"[a] x=1", L"[a] "}},
        PassCase{"Comments",
                 L";one\n ;two\n[a];three\n;four\nx=1\n;five",
                 {L"[] ;one", L"[] ;two", L"[a] ;four", L"[a] x=1", L"[a] ;five"}},
        PassCase{"CommentBehindAValueBelongsToIt", L"[a]\nx=1;2", {L"[a] x=1;2"}},
        PassCase{
            "BlanksAroundNameAndValue", L"[a]\nx = 1 \n \ty\t =\t 2", {L"[a] x=1 ", L"[a] y\t=2"}},
        PassCase{"EmptyValue", L"[a]\nx=\ny=", {L"[a] x=", L"[a] y="}},
        PassCase{"EmptyName", L"[a]\n=1\n =2", {L"[a] =1", L"[a] =2"}},
        PassCase{"SecondEqualsSignIsValue", L"[a]\nx=1=2", {L"[a] x=1=2"}},
        PassCase{"LineWithoutEqualsSignJoinsTheNext",
                 L"[a]\nx=1\nlost\r\ny=2",
                 {L"[a] x=1", L"[a] lost\r\ny=2"}},
        PassCase{"LineWithoutEqualsSignAtTheEnd", L"[a]\nx=1\nlost\n", {L"[a] x=1"}},
        PassCase{"HeaderWithoutBracket", L"[a]\nx=1\n[b\ny=2", {L"[a] x=1"}},
        PassCase{"HeaderAcrossLines", L"[a\nb]\nx=1", {L"[a\nb] x=1"}},
        PassCase{"HeaderKeepsItsBlanks", L"[ a ] rest\nx=1", {L"[ a ] x=1"}},
        PassCase{"EmptyHeader", L"[]\nx=1", {L"[] x=1"}},
        PassCase{"VariablesBeforeAnySection", L"x=1\n[a]\ny=2", {}},
        PassCase{"LoneReturnStaysInAValue", L"[a]\nx=1\r2\ny=3\r", {L"[a] x=1\r2", L"[a] y=3\r"}},
        PassCase{"ValueIsCutAt1024",
                 L"[a]\nx=" + k1500 + L"\ny=2",
                 {L"[a] x=" + k1500.substr(0, 1024), L"[a] y=2"}},
        PassCase{"Value1024Fits",
                 L"[a]\nx=" + k1500.substr(0, 1024),
                 {L"[a] x=" + k1500.substr(0, 1024)}},
        PassCase{"Value1025IsCut", L"[a]\nx=" + k1025 + L"\ny=2", {L"[a] x=" + k1024, L"[a] y=2"}},
        PassCase{"Name255Fits", L"[a]\n" + k255 + L"=1", {L"[a] " + k255 + L"=1"}},
        PassCase{
            "Name256IsCut", L"[a]\n" + k256 + L"=1\ny=2", {L"[a] " + k255 + L"=1", L"[a] y=2"}},
        PassCase{"Section255Fits", L"[" + k255 + L"]\ny=2", {L"[" + k255 + L"] y=2"}},
        PassCase{"Section256IsCut", L"[" + k256 + L"]\ny=2", {L"[" + k255 + L"] y=2"}},
        PassCase{
            "Comment255Fits", L";" + k255.substr(1) + L"\n;", {L"[] ;" + k255.substr(1), L"[] ;"}},
        PassCase{"Comment256IsCut", L";" + k255 + L"\n;", {L"[] ;" + k255.substr(1), L"[] ;"}},
        PassCase{"BlanksBeforeTheCutStayOff",
                 L"[a]\nx" + std::wstring(300, L' ') + L"y=1\nz=2",
                 {L"[a] x=1", L"[a] z=2"}},
        PassCase{"NameIsCutAt255",
                 L"[a]\n" + k300 + L"=1\ny=2",
                 {L"[a] " + k300.substr(0, 255) + L"=1", L"[a] y=2"}},
        PassCase{
            "SectionIsCutAt255", L"[" + k300 + L"]\ny=2", {L"[" + k300.substr(0, 255) + L"] y=2"}},
        PassCase{"CommentIsCutAt255",
                 L";" + k300 + L"\n[a]\ny=2",
                 {L"[] ;" + k300.substr(0, 254), L"[a] y=2"}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(IniFileRead, EmptyBlockGivesZeroAfterBegin) {
    for (const wchar_t* psz : {L"", L"\xFEFF", static_cast<const wchar_t*>(nullptr)}) {
        Recorder ini;
        EXPECT_EQ(0, ini.ReadAll(psz, 0));
        EXPECT_EQ(Lines{L"begin"}, ini.lines);
    }
}

TEST(IniFileRead, ZeroFromAnyEventEndsThePass) {
    const wchar_t* pszText = L";c\n[a]\n;d\nx=1\n;e\n[b]\n;f";
    Recorder whole;
    EXPECT_EQ(1, whole.ReadAll(pszText, 0));
    ASSERT_EQ(7u, whole.lines.size());
    for (int n = 0; n < 7; ++n) {
        Recorder ini;
        ini.nStopAt = n;
        EXPECT_EQ(0, ini.ReadAll(pszText, 0)) << n;
        EXPECT_EQ(n + 1u, ini.lines.size()) << n;
    }
}

TEST(IniFileRead, BaseClassTakesEverything) {
    IniFile ini;
    EXPECT_EQ(1, ini.ReadAll(L"[a]\nx=1", 0));
    EXPECT_EQ(0u, ini.MakeData(nullptr));
}

TEST(IniFileRead, StepsOutsideAPassGiveZero) {
    IniFile ini;
    wchar_t sz[IniFile::kValueSize];
    EXPECT_EQ(0, ini.GetComment(sz) || ini.GetSec(sz) || ini.GetVar(sz) || ini.GetVal(sz));
    EXPECT_EQ(1, ini.ReadAll(L"[a]\nlost", 0));
    EXPECT_EQ(1, ini.GetVal(sz)); // the parser stays
    EXPECT_EQ(0, ini.DeleteParser());
    EXPECT_EQ(0, ini.GetVal(sz));
    EXPECT_EQ(0, ini.DeleteParser());
}

TEST(IniFileRead, CallBackMayGiveTheParserUp) {
    Recorder ini;
    ini.bGiveUp = true;
    EXPECT_EQ(0, ini.ReadAll(L"[a]\nx=1", 0));
    EXPECT_EQ(Lines{L"begin"}, ini.lines);
}

/// A reader that does at every event whatever a reader may: it pulls, gives the parser up, starts
/// passes of its own, or stops.
class Meddler : public IniFile {
  public:
    explicit Meddler(std::mt19937& randomUsed) : random(randomUsed) {}
    int nEvents = 0;
    const wchar_t* pszOther = L"[o]\nx=1\n;c";

    int CallBack(CallBackFlag, const wchar_t*, const wchar_t*, const wchar_t*) override {
        ++nEvents;
        auto* psz = static_cast<wchar_t*>(text.Get());
        auto* pszValue = static_cast<wchar_t*>(value.Get());
        switch (random() % 12) {
        case 0: GetComment(psz); break;
        case 1: GetSec(psz); break;
        case 2: GetVar(psz); break;
        case 3: GetVal(pszValue); break;
        case 4: DeleteParser(); break;
        case 5:
            if (nEvents < 20) ReadAll(pszOther, 0);
            break;
        case 6: return 0;
        }
        return 1;
    }

  private:
    std::mt19937& random;
    GuardedMemory text{kTextSize * sizeof(wchar_t)}, value{kValueSize * sizeof(wchar_t)};
};

TEST(IniFileRead, ReadersThatMeddleBreakNothing) {
    std::mt19937 random(20240703);
    const wchar_t kChars[] = L"[]=;\r\n \tab\xFEFF";
    GuardedArea area(64 * sizeof(wchar_t));
    Meddler ini(random);
    for (int n = 0; n < 200000; ++n) {
        unsigned cch = 1 + random() % 40;
        auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
        std::generate(psz, psz + cch, [&] { return kChars[random() % (std::size(kChars) - 1)]; });
        if (n % 2 && cch >= 6) std::copy_n(L"[a]x=\n", 6, psz);
        ini.nEvents = 0;
        int nResult = ini.ReadAll(psz, cch);
        ASSERT_TRUE(nResult == 0 || nResult == 1);
        ASSERT_LT(ini.nEvents, 1000);
    }
    ini.DeleteParser(); // the last text's place is used again
}

TEST(IniFileRead, RandomTextsStayInBounds) {
    std::mt19937 random(20240701);
    const wchar_t kChars[] = L"[]=;\r\n \tab\xFEFF\x20AC";
    auto choose = [&] {
        if (random() % 300 == 0) return L'\0';
        return kChars[random() % (std::size(kChars) - 1)];
    };
    GuardedMemory memory(1500 * sizeof(wchar_t));
    auto* const pEnd = static_cast<wchar_t*>(memory.Get()) + 1500;
    std::size_t cchLongest[3] = {};
    for (int n = 0; n < 200000; ++n) {
        // A long one now and then, mostly of one character, so that every limit is met.
        bool bLong = n % 50 == 0;
        unsigned cch = 1 + random() % (bLong ? 1500 : 40);
        wchar_t* pszText = pEnd - cch;
        std::generate(pszText, pEnd, choose);
        if (bLong) std::fill(pszText + random() % std::min(cch, 8u), pEnd - cch / 8, choose());
        if (n % 2 && cch >= 3) std::copy_n(L"[a]", 3, pszText);
        if (n % 100 == 0 && cch >= 8) std::copy_n(L"[a]\nx=yz", 8, pszText);
        Recorder ini;
        int nResult = ini.ReadAll(pszText, cch);
        ASSERT_TRUE(nResult == 0 || nResult == 1);
        ASSERT_EQ(nResult == 1, ini.lines.back() == L"end");
        ASSERT_LE(ini.lines.size(), cch + 2);
        for (int i : {0, 1, 2}) cchLongest[i] = std::max(cchLongest[i], ini.cchLongest[i]);
    }
    EXPECT_EQ(255u, cchLongest[0]);
    EXPECT_EQ(256u, cchLongest[1]); // with the "=" that the recorder adds
    EXPECT_EQ(1024u, cchLongest[2]);
}

// Files

TEST(IniFile, KeepsAPathOf259Characters) {
    EXPECT_STREQ(L"", IniFile().GetPath());
    EXPECT_STREQ(L"", IniFile(nullptr).GetPath());
    std::wstring str(300, L'x');
    for (unsigned cch : {0u, 1u, 258u, 259u, 260u, 300u}) {
        IniFile ini(str.substr(0, cch).c_str());
        EXPECT_EQ(str.substr(0, std::min(cch, 259u)), ini.GetPath());
    }
    IniFile ini(L"a");
    ini.SetPath(L"b");
    EXPECT_STREQ(L"b", ini.GetPath());
    ini.SetPath(nullptr);
    EXPECT_STREQ(L"", ini.GetPath());
}

std::string Bytes(const std::wstring& str) {
    return std::string(reinterpret_cast<const char*>(str.data()), str.size() * sizeof(wchar_t));
}

class IniFileOnDisk : public testing::Test {
  protected:
    int Read(const std::string& strContent) {
        folder.MakeFile(L"a.ini", strContent);
        ini.lines.clear();
        return ini.ReadData();
    }
    TempFolder folder;
    std::wstring strPath = folder.File(L"a.ini");
    Recorder ini{strPath.c_str()};
};
using IniFileReadData = IniFileOnDisk;

TEST_F(IniFileReadData, ReadsUtf16WithAndWithoutAMark) {
    Lines expected{L"begin", L"[a] x=1", L"end"};
    EXPECT_EQ(1, Read(Bytes(L"\xFEFF[a]\r\nx=1")));
    EXPECT_EQ(expected, ini.lines);
    EXPECT_EQ(1, Read(Bytes(L"[a]\r\nx=1")));
    EXPECT_EQ(expected, ini.lines);
    std::string strLong = Bytes(L"[a]\r\nx=" + std::wstring(100000, L'y'));
    EXPECT_EQ(1, Read(strLong));
}

TEST_F(IniFileReadData, StopsAtATerminatorAndCompletesAnOddByte) {
    EXPECT_EQ(1, Read(Bytes(std::wstring(L"[a]\nx=1\0\ny=2", 12))));
    EXPECT_EQ((Lines{L"begin", L"[a] x=1", L"end"}), ini.lines);
    EXPECT_EQ(1, Read(Bytes(L"[a]\nx=1") + "2"));
    EXPECT_EQ((Lines{L"begin", L"[a] x=12", L"end"}), ini.lines);
    EXPECT_EQ(1, Read("["));
}

/// Leaves freed memory behind that is not zero, for blocks of about that size.
void SoilFreedMemory(std::size_t cb) {
    std::vector<std::string> blocks;
    for (std::size_t cbMore = 0; cbMore < 16; ++cbMore) {
        for (int i = 0; i < 30; ++i) blocks.emplace_back(cb + cbMore, '\xAA');
    }
}

TEST_F(IniFileReadData, ByteBehindAnOddFileIsZero) {
    for (std::size_t cch = 3; cch < 60; ++cch) {
        std::wstring strValue(cch, L'v');
        std::string strContent = Bytes(L"[a]\nx=" + strValue) + "2";
        SoilFreedMemory(strContent.size());
        EXPECT_EQ(1, Read(strContent));
        EXPECT_EQ((Lines{L"begin", L"[a] x=" + strValue + L"2", L"end"}), ini.lines) << cch;
    }
}

TEST_F(IniFileReadData, EndsAtTheBlocksEndWithoutATerminator) {
    // Sizes around those in which memory is given, so that there is no zero behind by chance.
    for (std::size_t cb : {2u, 8u, 16u, 62u, 64u, 510u, 512u, 4094u, 4096u, 65534u, 65536u}) {
        std::wstring str = L"[a]\nx=" + std::wstring(cb, L'v');
        str = str.substr(str.size() - cb / sizeof(wchar_t)); // ends in the value
        Recorder whole;
        int nExpected = whole.ReadAll(str.c_str(), 0);
        EXPECT_EQ(nExpected, Read(Bytes(str))) << cb;
        EXPECT_EQ(whole.lines, ini.lines) << cb;
    }
    Lines expected{L"begin", L"[a] x=" + std::wstring(100, L'v'), L"end"};
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(1, Read(Bytes(L"[a]\nx=" + std::wstring(100, L'v'))));
        ASSERT_EQ(expected, ini.lines);
    }
}

TEST_F(IniFileReadData, RandomFilesReadAsTheirBlock) {
    std::mt19937 random(20240704);
    const wchar_t kChars[] = L"[]=;\r\n ab";
    for (int n = 0; n < 150; ++n) {
        std::wstring str(1 + random() % 60, 0);
        for (wchar_t& ch : str) ch = kChars[random() % std::size(kChars)];
        if (n % 2) str = L"\xFEFF[a]\n" + str;
        Recorder whole;
        int nExpected = whole.ReadAll(str.c_str(), 0);
        ASSERT_EQ(nExpected, Read(Bytes(str)));
        ASSERT_EQ(whole.lines, ini.lines);
    }
}

TEST_F(IniFileReadData, LeavesNoParserOverItsBlock) {
    wchar_t szValue[IniFile::kValueSize];
    EXPECT_EQ(1, Read(Bytes(L"[a]\nlost")));
    EXPECT_EQ(0, ini.GetVal(szValue));
}

TEST_F(IniFileReadData, MissingEmptyAndHeldFilesGiveZero) {
    EXPECT_EQ(0, ini.ReadData());
    EXPECT_EQ(0, Read(""));
    EXPECT_EQ(0, Recorder().ReadData());
    EXPECT_EQ(0, Recorder(folder.Get().c_str()).ReadData());
    EXPECT_TRUE(ini.lines.empty());
    EXPECT_EQ(1, Read(Bytes(L"[a]")));
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(0, ini.ReadData());
    ::CloseHandle(h);
}

TEST_F(IniFileReadData, GivesZeroWhenStopped) {
    ini.nStopAt = 1;
    EXPECT_EQ(0, Read(Bytes(L"[a]\nx=1\ny=2")));
    EXPECT_EQ(2u, ini.lines.size());
}

class Writer : public IniFile {
  public:
    using IniFile::IniFile;
    bool bEmpty = false;
    unsigned MakeData(wchar_t* pszOut) override {
        unsigned nCount = 0;
        if (bEmpty) return 0;
        WriteSec(pszOut, L"a", nCount);
        WriteVar(pszOut, L"x", L"1", nCount);
        WriteVar(pszOut, L"empty", L"", nCount);
        return nCount;
    }
};

class IniFileWriteTest : public testing::Test {
  protected:
    TempFolder folder;
    std::wstring strPath = folder.File(L"a.ini");
    Writer ini{strPath.c_str()};
};
using IniFileWrite = IniFileWriteTest;

TEST_F(IniFileWrite, CountsAndStores) {
    unsigned nCount = 5;
    wchar_t* pszNone = nullptr;
    IniFile::WriteSec(pszNone, L"sec", nCount);
    EXPECT_EQ(12u, nCount);
    EXPECT_EQ(nullptr, pszNone);
    IniFile::WriteVar(pszNone, nullptr, nullptr, nCount);
    EXPECT_EQ(15u, nCount);
    wchar_t sz[20] = {};
    wchar_t* pszOut = sz;
    nCount = 0;
    IniFile::WriteSec(pszOut, L"s", nCount);
    IniFile::WriteVar(pszOut, L"n", L"v", nCount);
    EXPECT_STREQ(L"[s]\r\nn=v\r\n", sz);
    EXPECT_EQ(10u, nCount);
    EXPECT_EQ(sz + 10, pszOut);
}

TEST_F(IniFileWrite, RewritesTheFile) {
    folder.MakeFile(L"a.ini", std::string(500, 'o'));
    EXPECT_EQ(1, ini.WriteData());
    EXPECT_EQ(Bytes(L"\xFEFF[a]\r\nx=1\r\nempty=\r\n"), folder.ReadFile(L"a.ini"));
    Recorder back(strPath.c_str());
    EXPECT_EQ(1, back.ReadData());
    EXPECT_EQ((Lines{L"begin", L"[a] x=1", L"[a] empty=", L"end"}), back.lines);
}

TEST_F(IniFileWrite, PutsAttributesBack) {
    folder.MakeFile(L"a.ini", "old");
    constexpr DWORD kBoth = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
    ::SetFileAttributesW(strPath.c_str(), kBoth);
    EXPECT_EQ(1, ini.WriteData());
    EXPECT_EQ(kBoth, ::GetFileAttributesW(strPath.c_str()) & kBoth);
    EXPECT_EQ(Bytes(L"\xFEFF[a]\r\nx=1\r\nempty=\r\n"), folder.ReadFile(L"a.ini"));
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
}

// Only the look at these tells that the file was made plain: the file system here lets its
// administrator write a read-only one, and cutting a file keeps its attributes.
ReplaceImport* pReplacedCreate = nullptr;
std::vector<DWORD> attributesAtOpening;
HANDLE WINAPI NoteCreate(LPCWSTR pszFile, DWORD nAccess, DWORD nShare, SECURITY_ATTRIBUTES* p,
                         DWORD nDisposition, DWORD nFlags, HANDLE hTemplate) {
    attributesAtOpening.push_back(::GetFileAttributesW(pszFile));
    return pReplacedCreate->Original<decltype(NoteCreate)>()(pszFile, nAccess, nShare, p,
                                                             nDisposition, nFlags, hTemplate);
}

TEST_F(IniFileWrite, FileIsPlainWhileItIsWritten) {
    folder.MakeFile(L"a.ini", "old");
    constexpr DWORD kBoth = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
    ::SetFileAttributesW(strPath.c_str(), kBoth);
    {
        ReplaceImport replaced(__imp_CreateFileW, &NoteCreate);
        pReplacedCreate = &replaced;
        attributesAtOpening.clear();
        EXPECT_EQ(1, ini.WriteData());
    }
    ASSERT_EQ(1u, attributesAtOpening.size());
    EXPECT_EQ(0u, attributesAtOpening[0] & kBoth);
    EXPECT_EQ(kBoth, ::GetFileAttributesW(strPath.c_str()) & kBoth);
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(IniFileWrite, FileThatCannotBeMadeGivesZeroWithItsAttributes) {
    folder.MakeFile(L"a.ini", "old");
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_READONLY);
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             0, nullptr);
    EXPECT_EQ(0, ini.WriteData());
    ::CloseHandle(h);
    EXPECT_TRUE(::GetFileAttributesW(strPath.c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ("old", folder.ReadFile(L"a.ini"));
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(0, Writer().WriteData());
    EXPECT_EQ(0, Writer(folder.File(L"no\\a.ini").c_str()).WriteData());
}

TEST_F(IniFileWrite, NothingToWriteDeletesTheFile) {
    ini.bEmpty = true;
    folder.MakeFile(L"a.ini", "old");
    EXPECT_EQ(1, ini.WriteData());
    EXPECT_FALSE(std::filesystem::exists(strPath));
    EXPECT_EQ(1, ini.WriteData());
}

TEST_F(IniFileWrite, FileThatCannotBeDeletedGivesOne) {
    ini.bEmpty = true;
    folder.MakeFile(L"a.ini", "old");
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             0, nullptr);
    EXPECT_EQ(1, ini.WriteData());
    ::CloseHandle(h);
    EXPECT_EQ("old", folder.ReadFile(L"a.ini"));
}

TEST_F(IniFileWrite, FullDiskGivesOne) {
    std::wstring strFull = FullDiskFile();
    if (strFull.empty()) GTEST_SKIP() << "no file here whose disk is full";
    EXPECT_EQ(1, Writer(strFull.c_str()).WriteData());
}

TEST_F(IniFileWrite, DiskThatFillsUpKeepsWhatFits) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    std::wstring strOnDisk = disk.MakeFile(L"a.ini", "old");
    ASSERT_TRUE(disk.Fill());
    EXPECT_EQ(1, Writer(strOnDisk.c_str()).WriteData()); // its old cluster is room enough
    std::string strWhole = disk.ReadFile(L"a.ini");
    EXPECT_EQ("\xFF\xFE", strWhole.substr(0, 2));
    EXPECT_GT(strWhole.size(), 2u);
    EXPECT_EQ(1, Writer(disk.File(L"b.ini").c_str()).WriteData());
    EXPECT_EQ("", disk.ReadFile(L"b.ini"));
}

TEST_F(IniFileWrite, MoreThanABlockCanHoldGivesZeroAndTouchesNothing) {
    struct Boaster : IniFile {
        using IniFile::IniFile;
        unsigned MakeData(wchar_t* pszOut) override {
            EXPECT_EQ(nullptr, pszOut);
            return 0xFFFFFFFF;
        }
    } boaster(strPath.c_str());
    folder.MakeFile(L"a.ini", "old");
    EXPECT_EQ(0, boaster.WriteData());
    EXPECT_EQ("old", folder.ReadFile(L"a.ini"));
}

TEST_F(IniFileWrite, OneCharacterIsAFile) {
    struct OneCharacter : IniFile {
        using IniFile::IniFile;
        unsigned MakeData(wchar_t* pszOut) override {
            unsigned nCount = 0;
            CharAdd(pszOut, L'x', nCount);
            return nCount;
        }
    } one(strPath.c_str());
    EXPECT_EQ(1, one.WriteData());
    EXPECT_EQ(Bytes(L"\xFEFFx"), folder.ReadFile(L"a.ini"));
}

// The boot folder

class BootFileTest : public testing::Test {
  protected:
    BootFileTest() {
        ::RegCreateKeyExW(HKEY_LOCAL_MACHINE,
                          L"Software\\Microsoft\\Windows\\CurrentVersion\\Setup", 0, nullptr, 0,
                          KEY_ALL_ACCESS, nullptr, &hkey, nullptr);
        std::filesystem::create_directories(L"C:\\tst");
        Touch(L"C:\\tst\\boot.ini");
    }
    ~BootFileTest() override {
        std::error_code ignored;
        ::RegDeleteValueW(hkey, L"BootDir");
        ::RegCloseKey(hkey);
        std::filesystem::remove_all(L"C:\\tst", ignored);
    }
    static void Touch(const std::wstring& strPath) {
        std::ofstream(std::filesystem::path(strPath)) << "x";
    }
    void SetFolder(const std::wstring& str, bool bTerminated = true) {
        SetRegBytes(hkey, L"BootDir", REG_SZ, BytesOf(str, bTerminated));
    }
    /// The path found; empty if none.
    std::wstring Find(const wchar_t* pszName) {
        wchar_t sz[260] = L"untouched";
        if (IniFile::FindBootFile(pszName, sz)) return sz;
        EXPECT_STREQ(L"untouched", sz);
        return L"";
    }
    HKEY hkey = nullptr;
};
using BootFile = BootFileTest;

TEST_F(BootFile, IsFoundInTheBootFolder) {
    for (const wchar_t* psz : {L"C:\\tst", L"C:\\tst\\"}) {
        SetFolder(psz);
        EXPECT_EQ(L"C:\\tst\\boot.ini", Find(L"boot.ini"));
    }
    SetFolder(L"C:/tst/", false);
    EXPECT_EQ(L"C:/tst/boot.ini", Find(L"boot.ini"));
    EXPECT_EQ(L"", Find(L"missing.ini"));
    EXPECT_EQ(L"", Find(nullptr));
    EXPECT_EQ(0, IniFile::FindBootFile(L"boot.ini", nullptr));
}

TEST_F(BootFile, MemberKeepsThePath) {
    SetFolder(L"C:\\tst");
    IniFile ini(L"before");
    EXPECT_EQ(0, ini.FindBootFile(L"missing.ini"));
    EXPECT_STREQ(L"before", ini.GetPath());
    EXPECT_EQ(1, ini.FindBootFile(L"boot.ini"));
    EXPECT_STREQ(L"C:\\tst\\boot.ini", ini.GetPath());
}

TEST_F(BootFile, FolderIsNone) {
    SetFolder(L"C:\\");
    EXPECT_EQ(L"", Find(L"tst"));
}

TEST_F(BootFile, MissingEmptyAndLongValuesGiveNothing) {
    ::RegDeleteValueW(hkey, L"BootDir");
    EXPECT_EQ(L"", Find(L"C:\\tst\\boot.ini"));
    SetFolder(L"");
    EXPECT_EQ(L"", Find(L"C:\\tst\\boot.ini"));
    SetFolder(L"C:\\tst\\" + std::wstring(34, L'\0')); // 82 bytes
    EXPECT_EQ(L"", Find(L"boot.ini"));
    SetFolder(L"C:\\tst\\" + std::wstring(33, L'\0'), false); // 80
    EXPECT_EQ(L"C:\\tst\\boot.ini", Find(L"boot.ini"));
    SetFolder(std::wstring(40, L'x'), false); // without a terminator
    EXPECT_EQ(L"", Find(L"boot.ini"));
}

TEST_F(BootFile, IsCutAt19Characters) {
    SetFolder(L"C:\\tst");
    Touch(L"C:\\tst\\123456789012");
    EXPECT_EQ(L"C:\\tst\\123456789012", Find(L"123456789012"));
    EXPECT_EQ(L"C:\\tst\\123456789012", Find(L"1234567890123.ini"));
}
} // namespace
