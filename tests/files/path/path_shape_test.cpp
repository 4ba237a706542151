#include "files/path/path_shape.h"
#include "files/module_copy.h"
#include "files/path_support.h"
#include "runtime/system/dll_loader.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace {
struct ShapeRow {
    const wchar_t* pszPath;
    int nResult;
};

template <class Fn>
void ExpectShapes(std::initializer_list<ShapeRow> rows, Fn&& test) {
    for (const ShapeRow& row : rows) {
        GuardedText path(row.pszPath);
        EXPECT_EQ(row.nResult, test(path.Get())) << row.pszPath;
    }
    EXPECT_EQ(0, test(nullptr));
}

TEST(IsFullPathName, StartsWithASeparatorOrADrivesRoot) {
    ExpectShapes({{L"", 0},
                  {L"\\", 1},
                  {L"/a", 1},
                  {L"\\\\server", 1},
                  {L"C", 0},
                  {L"C:", 0},
                  {L"C:a", 0},
                  {L"C:\\", 1},
                  {L"z:/", 1},
                  {L"1:\\", 0},
                  {L"@:\\", 0},
                  {L"[:\\", 0},
                  {L"\u00C4:\\", 0},
                  {L"a\\b", 0}},
                 IsFullPathName);
}

TEST(IsPath, HasASecondColonOrASeparator) {
    ExpectShapes({{L"", 0},
                  {L":", 0},
                  {L"a", 0},
                  {L"::", 1},
                  {L"C:", 1},
                  {L"ab:", 0},
                  {L"\\", 1},
                  {L"a/", 1},
                  {L"abc\\d", 1}},
                 IsPath);
}

TEST(IsMask, HoldsAStarOrAQuestionMarkAndNothingElseCounts) {
    ExpectShapes({{L"", 0}, {L"*", 1}, {L"a?b", 1}, {L"a.b", 0}, {L"[a]", 0}, {L"a<\">b", 0}},
                 IsMask);
}

TEST(IsDrivePath, IsExactlyADrive) {
    ExpectShapes({{L"", 0},
                  {L"C", 0},
                  {L"C:", 1},
                  {L"z:\\", 1},
                  {L"C:/", 0},
                  {L"C:a", 0},
                  {L"C:\\a", 0},
                  {L"1:", 0},
                  {L"::", 0}},
                 IsDrivePath);
}

TEST(IsDosFolder, StartsWithADrivesRoot) {
    ExpectShapes({{L"", 0},
                  {L"C", 0},
                  {L"C:", 0},
                  {L"C:\\", 1},
                  {L"c:/a", 1},
                  {L"C:a", 0},
                  {L"\\\\s", 0},
                  {L"1:\\", 0}},
                 IsDosFolder);
}

TEST(IsRootFolder, IsADrivesRootAndForUncAServer) {
    const struct {
        const wchar_t* pszPath;
        int nResult, nUncResult;
    } rows[] = {{L"", 0, 0},
                {L"C:", 0, 0},
                {L"C:\\", 1, 1},
                {L"C:/", 1, 1},
                {L"C:\\a", 0, 0},
                {L"1:\\", 0, 0},
                {L"\\", 0, 0},
                {L"\\\\", 0, 0},
                {L"\\\\server", 0, 1},
                {L"//server", 0, 1},
                {L"\\\\server\\", 0, 0},
                {L"\\\\server/share", 0, 0},
                {L"\\\\server\\share", 0, 0},
                {L"\\\\\\server", 0, 0}};
    for (const auto& row : rows) {
        GuardedText path(row.pszPath);
        EXPECT_EQ(row.nResult, IsRootFolder(path.Get(), 0)) << row.pszPath;
        EXPECT_EQ(row.nUncResult, IsRootFolder(path.Get(), 1)) << row.pszPath;
    }
    EXPECT_EQ(0, IsRootFolder(nullptr, 1));
}

TEST(IsNetworkPath, IsTwoBackslashesAndMore) {
    ExpectShapes({{L"", 0},
                  {L"\\", 0},
                  {L"\\\\", 0},
                  {L"\\\\s", 1},
                  {L"//s", 0},
                  {L"\\/s", 0},
                  {L"\\\\\\", 1}},
                 IsNetworkPath);
}

TEST(IsNetworkComputer, HasNoFurtherSeparator) {
    ExpectShapes({{L"", 0},
                  {L"\\\\", 0},
                  {L"\\\\s", 1},
                  {L"\\\\s\\", 0},
                  {L"\\\\s/", 0},
                  {L"\\\\s\\x", 0},
                  {L"//s", 0}},
                 IsNetworkComputer);
}

TEST(IsNetworkShare, IsExactlyServerAndShare) {
    ExpectShapes({{L"", 0},
                  {L"\\\\s", 0},
                  {L"\\\\s\\", 0},
                  {L"\\\\s\\x", 1},
                  {L"\\\\s/x", 1},
                  {L"\\\\s\\x\\", 0},
                  {L"\\\\s\\x\\y", 0},
                  {L"\\\\\\x", 0},
                  {L"\\\\s\\\\x", 0},
                  {L"//s/x", 0}},
                 IsNetworkShare);
}

TEST(IsSubFolderOf, TableOfAllCases) {
    const struct {
        const wchar_t* pszPath;
        const wchar_t* pszFolder;
        int nStrict, nOrSame;
    } rows[] = {
        {L"", L"", 0, 0},
        {L"C:\\a", L"", 0, 0},
        {L"", L"C:\\a", 0, 0},
        {L"C:\\ab", L"C:\\a", 0, 0},
        {L"C:\\a\\b", L"C:\\a\\", 1, 1},
        {L"C:\\a\\b", L"C:\\a", 1, 1},
        {L"C:\\a", L"C:\\a", 0, 1},
        {L"c:/A/B", L"C:\\a", 1, 1},
        {L"C:\\a\\", L"C:\\a", 0, 1}, // a separator at the end is no difference
        {L"C:\\a", L"C:\\a\\", 0, 1},
        {L"C:\\a", L"C:\\a\\\\", 0, 0}, // two are
        {L"C:\\a\\\\", L"C:\\a", 1, 1}, // something stands behind the separator
        {L"C:\\a", L"C:\\a\\b", 0, 0},
        {L"C:\\b", L"C:\\a", 0, 0},
        {L"C:\\x", L"C:\\", 1, 1},
        {L"C:\\", L"C:", 0, 1},
        {L"\u00E4\\b", L"\u00C4", 1, 1},
    };
    for (const auto& row : rows) {
        GuardedText path(row.pszPath), folder(row.pszFolder);
        EXPECT_EQ(row.nStrict, IsSubFolderOf(path.Get(), folder.Get(), 0))
            << row.pszPath << " " << row.pszFolder;
        EXPECT_EQ(row.nOrSame, IsSubFolderOf(path.Get(), folder.Get(), 1))
            << row.pszPath << " " << row.pszFolder;
    }
    EXPECT_EQ(0, IsSubFolderOf(nullptr, L"a", 1));
    EXPECT_EQ(0, IsSubFolderOf(L"a", nullptr, 1));
    EXPECT_EQ(7, IsSubFolderOf(L"a", L"A", 7)); // the caller's value itself
}

TEST(IsSamePath, TableOfAllCases) {
    const struct {
        const wchar_t* psz1;
        const wchar_t* psz2;
        int nResult;
    } rows[] = {{L"c:/X/", L"C:\\x", 1},    {L"", L"", 1},         {L"a", L"", 0},
                {L"a", L"ab", 0},           {L"C:\\", L"C:", 0},   {L"a\\\\", L"a\\", 0},
                {L"\u00E4/", L"\u00C4", 1}, {L"a\\b", L"a/b/", 1}, {nullptr, L"", 1},
                {nullptr, L"a", 0},         {nullptr, nullptr, 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, IsSamePath(row.psz1, row.psz2)) << (row.psz1 ? row.psz1 : L"(null)");
        EXPECT_EQ(row.nResult, IsSamePath(row.psz2, row.psz1)) << (row.psz1 ? row.psz1 : L"(null)");
    }
}

TEST(IsSamePath, CountsTheFirst259Characters) {
    std::wstring str(259, L'n');
    EXPECT_EQ(0, IsSamePath(str.c_str(), str.substr(1).c_str()));
    EXPECT_EQ(1, IsSamePath((str + L"a").c_str(), (str + L"bc").c_str()));
}

TEST(IsFileInFolder, TableOfAllCases) {
    const struct {
        const wchar_t* pszFile;
        const wchar_t* pszFolder;
        int nResult;
    } rows[] = {{L"C:\\a\\b", L"C:\\a", 1},
                {L"C:\\a/b", L"C:\\a", 1},
                {L"C:\\a\\", L"C:\\a", 1},
                {L"C:\\a\\b\\c", L"C:\\a", 0},
                {L"C:\\ab", L"C:\\a", 0},
                {L"C:\\a", L"C:\\a", 0},
                {L"C:\\a\\b", L"C:\\A", 0},
                {L"C:/a/b", L"C:\\a", 0},
                {L"C:\\a", L"C:\\", 0},
                {L"C:\\a", L"C:", 1},
                {L"\\a", L"", 0},
                {L"a", L"abc", 0},
                {L"", L"a", 0},
                {nullptr, L"a", 0},
                {L"a", nullptr, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.nResult, IsFileInFolder(row.pszFile, row.pszFolder))
            << (row.pszFile ? row.pszFile : L"(null)");
    }
}

TEST(InvalidChars, AreTextsToBeShown) {
    EXPECT_STREQ(L"\\ / : * ? \" < > |", GetInvalidFileNameChars());
    EXPECT_STREQ(L": * ? \" < > |", GetInvalidFolderNameChars());
}

TEST(IsValidFileName, HoldsNoneOfTheInvalidCharacters) {
    ExpectShapes({{L"", 0}, {L"a", 1}, {L"a b.c", 1}, {L" ", 1}, {L"..", 1}, {L"\t", 1}},
                 IsValidFileName);
    for (const wchar_t* p = L"\\/:*?\"<>|"; *p; ++p) {
        for (const wchar_t* pszForm : {L"%", L"a%", L"%b", L"a%b"}) {
            std::wstring str = pszForm;
            str[str.find(L'%')] = *p;
            EXPECT_EQ(0, IsValidFileName(str.c_str())) << str;
        }
    }
}

TEST(IsValidAltFileName, IsEightAndFour) {
    ExpectShapes({{L"", 0},
                  {L"12345678", 1},
                  {L"123456789", 0},
                  {L"12345678.123", 1},
                  {L"12345678.1234", 0},
                  {L"123456789.1", 0},
                  {L".123", 1},
                  {L".1234", 0},
                  {L"a.b.c", 1},
                  {L"a.", 1},
                  {L"a?.b", 0}},
                 IsValidAltFileName);
}

TEST(IsValidFolderName, TableOfAllCases) {
    ExpectShapes({{L"", 0},           {L"C", 0},       {L"\\", 0},      {L"a\\b", 0},
                  {L"//s", 0},        {L"1:\\a", 0},   {L"C:", 1},      {L"C:\\", 1},
                  {L"c:/a b/c.d", 1}, {L"C:a", 1},     {L"C:\\\\a", 0}, {L"C:\\a\\/b", 0},
                  {L"C:/\\", 0},      {L"C:a//", 0},   {L"\\\\", 1},    {L"\\\\s\\x", 1},
                  {L"\\\\\\s", 1}, // the pair lies before the third character
                  {L"\\\\s\\\\x", 0}, {L"C:\\a:b", 0}, {L"C:*", 0},     {L"C:\\?", 0},
                  {L"C:\\\"", 0},     {L"C:\\<", 0},   {L"C:\\>", 0},   {L"\\\\s|", 0}},
                 IsValidFolderName);
}

TEST(IsFtpFolder, FollowsThePlatform) {
    int bHas = GetVerDll(L"msieftp.dll") != 0;
    EXPECT_EQ(bHas, IsFtpFolder(nullptr));
    EXPECT_EQ(bHas, IsFtpFolder(L"ftp://host/path"));
    EXPECT_EQ(0, IsFtpFolder(L"http://host"));
}

/// Whether a process that has the library goes by the text. The answer is kept as long as the
/// process lives, so that this is for a process of its own.
bool AnswersRightWithTheLibrary() {
    TempFolder folder;
    ModuleCopy library(folder.File(L"msieftp.dll")); // the platform goes by the name
    bool bRight = library.Get() && IsFtpFolder(nullptr);
    for (const wchar_t* psz : {L"ftp://", L"FtP://host"}) bRight = bRight && IsFtpFolder(psz);
    for (const wchar_t* psz : {L"", L"f", L"ftp:/", L"ftp:\\\\host", L" ftp://", L"ftps://"}) {
        bRight = bRight && !IsFtpFolder(psz);
    }
    return bRight;
}

TEST(IsFtpFolderDeathTest, WithTheLibraryTheTextDecides) {
    EXPECT_EXIT(std::exit(AnswersRightWithTheLibrary() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(IsFileSysUNC, OnlyFatGivesZero) {
    for (const wchar_t* psz : {L"FAT", L"FAT32", L"exFAT"}) EXPECT_EQ(0, IsFileSysUNC(psz)) << psz;
    for (const wchar_t* psz : {L"", L"NTFS", L"HPFS", L"OWFS", L"CDFS", L"fat", L"Fat32"}) {
        EXPECT_EQ(1, IsFileSysUNC(psz)) << psz;
    }
    EXPECT_EQ(1, IsFileSysUNC(nullptr));
}

// Random texts against a second telling of the rules

bool HasSep(const std::wstring& str, std::size_t nFrom) {
    return str.find_first_of(L"\\/", nFrom) != std::wstring::npos;
}
bool HasDrive(const std::wstring& str) {
    return str.size() >= 2 && str[0] < 128 && std::isalpha(str[0]) && str[1] == L':';
}

TEST(ShapeRandom, TestsOfOneText) {
    RandomPaths paths(821);
    GuardedArea area(2 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 4 == 0) str = L"\\\\" + str;
        const wchar_t* psz = area.Put(str);
        bool bDos = str.size() >= 3 && HasDrive(str) && IsSep(str[2]);
        bool bNet = str.size() >= 3 && str.substr(0, 2) == L"\\\\";
        bool bTwo = str.size() >= 3 && IsSep(str[0]) && IsSep(str[1]);
        ASSERT_EQ(bDos, IsDosFolder(psz)) << str;
        ASSERT_EQ(bDos || (!str.empty() && IsSep(str[0])), IsFullPathName(psz)) << str;
        ASSERT_EQ((str.size() >= 2 && str[1] == L':') || HasSep(str, 0), IsPath(psz)) << str;
        ASSERT_EQ(str.find_first_of(L"*?") != std::wstring::npos, IsMask(psz)) << str;
        ASSERT_EQ(HasDrive(str) && (str.size() == 2 || str.substr(2) == L"\\"), IsDrivePath(psz));
        ASSERT_EQ(bDos && str.size() == 3, IsRootFolder(psz, 0)) << str;
        ASSERT_EQ((bDos && str.size() == 3) || (bTwo && !HasSep(str, 2)), IsRootFolder(psz, 1));
        ASSERT_EQ(bNet, IsNetworkPath(psz)) << str;
        ASSERT_EQ(bNet && !HasSep(str, 2), IsNetworkComputer(psz)) << str;
        std::size_t n = bNet ? str.find_first_of(L"\\/", 2) : 0;
        bool bShare = bNet && n != std::wstring::npos && n > 2 && n + 1 < str.size();
        ASSERT_EQ(bShare && !HasSep(str, n + 1), IsNetworkShare(psz)) << str;
        ASSERT_EQ(str.find(L"FAT") == std::wstring::npos, IsFileSysUNC(psz)) << str;
        ASSERT_EQ(0, IsFtpFolder(psz));
    }
}

TEST(ShapeRandom, ValidNames) {
    RandomPaths paths(822);
    GuardedArea area(2 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        const wchar_t* psz = area.Put(str);
        bool bValid = !str.empty() && str.find_first_of(L"\\/:*?\"<>|") == std::wstring::npos;
        ASSERT_EQ(bValid, IsValidFileName(psz)) << str;
        std::size_t nDot = std::min(str.rfind(L'.'), str.size());
        ASSERT_EQ(bValid && nDot <= 8 && str.size() - nDot <= 4, IsValidAltFileName(psz)) << str;
        bool bPair = false;
        for (std::size_t n = 2; n + 1 < str.size(); ++n)
            bPair |= IsSep(str[n]) && IsSep(str[n + 1]);
        bool bFolder = (HasDrive(str) || str.substr(0, 2) == L"\\\\") && !bPair &&
                       str.find_first_of(L":*?\"<>|", 2) == std::wstring::npos;
        ASSERT_EQ(bFolder, IsValidFolderName(psz)) << str;
    }
}

std::wstring Folded(std::wstring str) {
    for (wchar_t& ch : str) ch = ch == L'/' ? L'\\' : ch;
    ::CharUpperW(str.data());
    return str;
}

TEST(ShapeRandom, TestsOfTwoTexts) {
    RandomPaths paths(823);
    GuardedArea area1(2 * 1024), area2(2 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str1 = paths.Next();
        std::wstring str2 = str1.substr(0, paths.Below(str1.size() + 2));
        if (i % 4 == 0) str2 += paths.Next();
        if (i % 2) str2 = Folded(str2);
        if (i % 8 == 0) std::swap(str1, str2);
        const wchar_t* psz1 = area1.Put(str1);
        const wchar_t* psz2 = area2.Put(str2);
        std::wstring strPath = Folded(str1), strFolder = Folded(str2);
        for (int bOrSame : {0, 1}) {
            int nExpected = 0;
            if (strPath.empty() || strFolder.empty()) {
                nExpected = 0;
            } else if (strPath == strFolder || strPath + L"\\" == strFolder) {
                nExpected = bOrSame;
            } else if (strPath == strFolder + L"\\") {
                nExpected = bOrSame || IsSep(strFolder.back());
            } else if (strPath.starts_with(strFolder)) {
                nExpected = IsSep(strFolder.back()) || IsSep(strPath[strFolder.size()]);
            }
            ASSERT_EQ(nExpected, IsSubFolderOf(psz1, psz2, bOrSame)) << str1 << L" " << str2;
        }
        bool bBehind = str1.size() > str2.size() && IsSep(str1[str2.size()]);
        ASSERT_EQ(!str2.empty() && str1.starts_with(str2) && bBehind &&
                      !HasSep(str1, str2.size() + 1),
                  IsFileInFolder(psz1, psz2))
            << str1 << L" " << str2;
        for (std::wstring* pstr : {&strPath, &strFolder}) {
            pstr->resize(std::min<std::size_t>(pstr->size(), 259));
            std::size_t cch = pstr->size();
            bool bCut = cch && (*pstr)[cch - 1] == L'\\';
            if (bCut && cch > 1) bCut = (*pstr)[cch - 2] != L'\\' && (*pstr)[cch - 2] != L':';
            if (bCut) pstr->pop_back();
        }
        ASSERT_EQ(strPath == strFolder, IsSamePath(psz1, psz2)) << str1 << L" " << str2;
    }
}
} // namespace
