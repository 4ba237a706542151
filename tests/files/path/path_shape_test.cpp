#include "files/path/path_shape.h"
#include "files/module_copy.h"
#include "files/path_support.h"
#include "files/path_tables.h"
#include "runtime/system/dll_loader.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace {
struct ShapeCase {
    const char* pszName;
    const wchar_t* pszPath;
    int nResult;
};
class ShapeTest : public testing::TestWithParam<ShapeCase> {
  protected:
    /// The row against a page that may not be touched. A null text gives 0.
    template <class Fn>
    static void ExpectShape(Fn&& test) {
        GuardedText path(GetParam().pszPath);
        EXPECT_EQ(GetParam().nResult, test(path.Get()));
        EXPECT_EQ(0, test(nullptr));
    }
};

class IsFullPathNameTest : public ShapeTest {};
TEST_P(IsFullPathNameTest, StartsWithASeparatorOrADrivesRoot) { ExpectShape(IsFullPathName); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsFullPathNameTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Backslash", L"\\", 1},
                    ShapeCase{"Slash", L"/a", 1}, ShapeCase{"Server", L"\\\\server", 1},
                    ShapeCase{"Letter", L"C", 0}, ShapeCase{"Drive", L"C:", 0},
                    ShapeCase{"NameOnADrive", L"C:a", 0}, ShapeCase{"DriveRoot", L"C:\\", 1},
                    ShapeCase{"SlashAndSmallLetter", L"z:/", 1}, ShapeCase{"Digit", L"1:\\", 0},
                    ShapeCase{"BeforeA", L"@:\\", 0}, ShapeCase{"BehindZ", L"[:\\", 0},
                    ShapeCase{"BeyondAscii", L"\u00C4:\\", 0}, ShapeCase{"Relative", L"a\\b", 0}),
    kRowName);

class IsPathTest : public ShapeTest {};
TEST_P(IsPathTest, HasASecondColonOrASeparator) { ExpectShape(IsPath); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsPathTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Colon", L":", 0},
                    ShapeCase{"Name", L"a", 0}, ShapeCase{"TwoColons", L"::", 1},
                    ShapeCase{"Drive", L"C:", 1}, ShapeCase{"LaterColon", L"ab:", 0},
                    ShapeCase{"Backslash", L"\\", 1}, ShapeCase{"Slash", L"a/", 1},
                    ShapeCase{"InnerBackslash", L"abc\\d", 1}),
    kRowName);

class IsMaskTest : public ShapeTest {};
TEST_P(IsMaskTest, HoldsAStarOrAQuestionMark) { ExpectShape(IsMask); }
INSTANTIATE_TEST_SUITE_P(Texts, IsMaskTest,
                         testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Star", L"*", 1},
                                         ShapeCase{"QuestionMark", L"a?b", 1},
                                         ShapeCase{"Dot", L"a.b", 0},
                                         ShapeCase{"Brackets", L"[a]", 0},
                                         ShapeCase{"OtherPatternCharacters", L"a<\">b", 0}),
                         kRowName);

class IsDrivePathTest : public ShapeTest {};
TEST_P(IsDrivePathTest, IsExactlyADrive) { ExpectShape(IsDrivePath); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsDrivePathTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Letter", L"C", 0},
                    ShapeCase{"Drive", L"C:", 1}, ShapeCase{"Root", L"z:\\", 1},
                    ShapeCase{"RootWithASlash", L"C:/", 0}, ShapeCase{"NameOnTheDrive", L"C:a", 0},
                    ShapeCase{"PathOnTheDrive", L"C:\\a", 0}, ShapeCase{"Digit", L"1:", 0},
                    ShapeCase{"TwoColons", L"::", 0}),
    kRowName);

class IsDosFolderTest : public ShapeTest {};
TEST_P(IsDosFolderTest, StartsWithADrivesRoot) { ExpectShape(IsDosFolder); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsDosFolderTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Letter", L"C", 0},
                    ShapeCase{"Drive", L"C:", 0}, ShapeCase{"Root", L"C:\\", 1},
                    ShapeCase{"PathWithASlash", L"c:/a", 1}, ShapeCase{"NameOnTheDrive", L"C:a", 0},
                    ShapeCase{"Server", L"\\\\s", 0}, ShapeCase{"Digit", L"1:\\", 0}),
    kRowName);

struct RootFolderCase {
    const char* pszName;
    const wchar_t* pszPath;
    int nResult, nUncResult;
};
class IsRootFolderTest : public testing::TestWithParam<RootFolderCase> {};
TEST_P(IsRootFolderTest, IsADrivesRootAndForUncAServer) {
    GuardedText path(GetParam().pszPath);
    EXPECT_EQ(GetParam().nResult, IsRootFolder(path.Get(), 0));
    EXPECT_EQ(GetParam().nUncResult, IsRootFolder(path.Get(), 1));
}
INSTANTIATE_TEST_SUITE_P(
    Texts, IsRootFolderTest,
    testing::Values(
        RootFolderCase{"Empty", L"", 0, 0}, RootFolderCase{"Drive", L"C:", 0, 0},
        RootFolderCase{"Root", L"C:\\", 1, 1}, RootFolderCase{"RootWithASlash", L"C:/", 1, 1},
        RootFolderCase{"Folder", L"C:\\a", 0, 0}, RootFolderCase{"Digit", L"1:\\", 0, 0},
        RootFolderCase{"Backslash", L"\\", 0, 0}, RootFolderCase{"TwoBackslashes", L"\\\\", 0, 0},
        RootFolderCase{"Server", L"\\\\server", 0, 1},
        RootFolderCase{"ServerWithSlashes", L"//server", 0, 1},
        RootFolderCase{"ServerAndASeparator", L"\\\\server\\", 0, 0},
        RootFolderCase{"ShareBehindASlash", L"\\\\server/share", 0, 0},
        RootFolderCase{"Share", L"\\\\server\\share", 0, 0},
        RootFolderCase{"EmptyServer", L"\\\\\\server", 0, 0}),
    kRowName);

TEST(IsRootFolder, NullIsNone) { EXPECT_EQ(0, IsRootFolder(nullptr, 1)); }

class IsNetworkPathTest : public ShapeTest {};
TEST_P(IsNetworkPathTest, IsTwoBackslashesAndMore) { ExpectShape(IsNetworkPath); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsNetworkPathTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Backslash", L"\\", 0},
                    ShapeCase{"TwoBackslashes", L"\\\\", 0}, ShapeCase{"Server", L"\\\\s", 1},
                    ShapeCase{"Slashes", L"//s", 0}, ShapeCase{"Mixed", L"\\/s", 0},
                    ShapeCase{"ThreeBackslashes", L"\\\\\\", 1}),
    kRowName);

class IsNetworkComputerTest : public ShapeTest {};
TEST_P(IsNetworkComputerTest, HasNoFurtherSeparator) { ExpectShape(IsNetworkComputer); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsNetworkComputerTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"TwoBackslashes", L"\\\\", 0},
                    ShapeCase{"Server", L"\\\\s", 1}, ShapeCase{"BackslashBehind", L"\\\\s\\", 0},
                    ShapeCase{"SlashBehind", L"\\\\s/", 0}, ShapeCase{"Share", L"\\\\s\\x", 0},
                    ShapeCase{"Slashes", L"//s", 0}),
    kRowName);

class IsNetworkShareTest : public ShapeTest {};
TEST_P(IsNetworkShareTest, IsExactlyServerAndShare) { ExpectShape(IsNetworkShare); }
INSTANTIATE_TEST_SUITE_P(Texts, IsNetworkShareTest,
                         testing::Values(ShapeCase{"Empty", L"", 0},
                                         ShapeCase{"Server", L"\\\\s", 0},
                                         ShapeCase{"EmptyShare", L"\\\\s\\", 0},
                                         ShapeCase{"Share", L"\\\\s\\x", 1},
                                         ShapeCase{"ShareBehindASlash", L"\\\\s/x", 1},
                                         ShapeCase{"SeparatorBehind", L"\\\\s\\x\\", 0},
                                         ShapeCase{"FolderBehind", L"\\\\s\\x\\y", 0},
                                         ShapeCase{"EmptyServer", L"\\\\\\x", 0},
                                         ShapeCase{"TwoSeparators", L"\\\\s\\\\x", 0},
                                         ShapeCase{"Slashes", L"//s/x", 0}),
                         kRowName);

struct SubFolderCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszFolder;
    int nStrict, nOrSame;
};
class IsSubFolderOfTest : public testing::TestWithParam<SubFolderCase> {};
TEST_P(IsSubFolderOfTest, LiesBelowTheFolderAtAnyDepth) {
    GuardedText path(GetParam().pszPath), folder(GetParam().pszFolder);
    EXPECT_EQ(GetParam().nStrict, IsSubFolderOf(path.Get(), folder.Get(), 0));
    EXPECT_EQ(GetParam().nOrSame, IsSubFolderOf(path.Get(), folder.Get(), 1));
}
INSTANTIATE_TEST_SUITE_P(
    Paths, IsSubFolderOfTest,
    testing::Values(SubFolderCase{"BothEmpty", L"", L"", 0, 0},
                    SubFolderCase{"EmptyFolder", L"C:\\a", L"", 0, 0},
                    SubFolderCase{"EmptyPath", L"", L"C:\\a", 0, 0},
                    SubFolderCase{"LongerName", L"C:\\ab", L"C:\\a", 0, 0},
                    SubFolderCase{"FolderWithASeparator", L"C:\\a\\b", L"C:\\a\\", 1, 1},
                    SubFolderCase{"Below", L"C:\\a\\b", L"C:\\a", 1, 1},
                    SubFolderCase{"Same", L"C:\\a", L"C:\\a", 0, 1},
                    SubFolderCase{"OtherCaseAndSlashes", L"c:/A/B", L"C:\\a", 1, 1},
                    SubFolderCase{"PathWithASeparator", L"C:\\a\\", L"C:\\a", 0,
                                  1}, // a separator at the end is no difference
                    SubFolderCase{"SameButForTheFoldersSeparator", L"C:\\a", L"C:\\a\\", 0, 1},
                    SubFolderCase{"TwoSeparatorsAtTheFolder", L"C:\\a", L"C:\\a\\\\", 0,
                                  0}, // two are
                    SubFolderCase{"TwoSeparatorsAtThePath", L"C:\\a\\\\", L"C:\\a", 1,
                                  1}, // something stands behind the separator
                    SubFolderCase{"FolderIsBelow", L"C:\\a", L"C:\\a\\b", 0, 0},
                    SubFolderCase{"OtherName", L"C:\\b", L"C:\\a", 0, 0},
                    SubFolderCase{"BelowARoot", L"C:\\x", L"C:\\", 1, 1},
                    SubFolderCase{"RootOfADrive", L"C:\\", L"C:", 0, 1},
                    SubFolderCase{"CaseBeyondAscii", L"\u00E4\\b", L"\u00C4", 1, 1}),
    kRowName);

TEST(IsSubFolderOf, NullsGiveZeroAndTheSameGivesTheCallersValue) {
    EXPECT_EQ(0, IsSubFolderOf(nullptr, L"a", 1));
    EXPECT_EQ(0, IsSubFolderOf(L"a", nullptr, 1));
    EXPECT_EQ(7, IsSubFolderOf(L"a", L"A", 7)); // the caller's value itself
}

struct TwoPathsCase {
    const char* pszName;
    const wchar_t* pszFirst;
    const wchar_t* pszSecond;
    int nResult;
};
class IsSamePathTest : public testing::TestWithParam<TwoPathsCase> {};
TEST_P(IsSamePathTest, IsSameButForCaseAndSeparators) {
    EXPECT_EQ(GetParam().nResult, IsSamePath(GetParam().pszFirst, GetParam().pszSecond));
    EXPECT_EQ(GetParam().nResult, IsSamePath(GetParam().pszSecond, GetParam().pszFirst));
}
INSTANTIATE_TEST_SUITE_P(Paths, IsSamePathTest,
                         testing::Values(TwoPathsCase{"CaseAndSlashes", L"c:/X/", L"C:\\x", 1},
                                         TwoPathsCase{"BothEmpty", L"", L"", 1},
                                         TwoPathsCase{"OneEmpty", L"a", L"", 0},
                                         TwoPathsCase{"Longer", L"a", L"ab", 0},
                                         TwoPathsCase{"RootAndDrive", L"C:\\", L"C:", 0},
                                         TwoPathsCase{"TwoSeparatorsAndOne", L"a\\\\", L"a\\", 0},
                                         TwoPathsCase{"CaseBeyondAscii", L"\u00E4/", L"\u00C4", 1},
                                         TwoPathsCase{"InnerSlash", L"a\\b", L"a/b/", 1},
                                         TwoPathsCase{"NullAndEmpty", nullptr, L"", 1},
                                         TwoPathsCase{"NullAndName", nullptr, L"a", 0},
                                         TwoPathsCase{"BothNull", nullptr, nullptr, 1}),
                         kRowName);

TEST(IsSamePath, CountsTheFirst259Characters) {
    std::wstring str(259, L'n');
    EXPECT_EQ(0, IsSamePath(str.c_str(), str.substr(1).c_str()));
    EXPECT_EQ(1, IsSamePath((str + L"a").c_str(), (str + L"bc").c_str()));
}

class IsFileInFolderTest : public testing::TestWithParam<TwoPathsCase> {};
TEST_P(IsFileInFolderTest, IsANameRightBelowTheFolder) {
    EXPECT_EQ(GetParam().nResult, IsFileInFolder(GetParam().pszFirst, GetParam().pszSecond));
}
INSTANTIATE_TEST_SUITE_P(Paths, IsFileInFolderTest,
                         testing::Values(TwoPathsCase{"File", L"C:\\a\\b", L"C:\\a", 1},
                                         TwoPathsCase{"BehindASlash", L"C:\\a/b", L"C:\\a", 1},
                                         TwoPathsCase{"EmptyName", L"C:\\a\\", L"C:\\a", 1},
                                         TwoPathsCase{"Deeper", L"C:\\a\\b\\c", L"C:\\a", 0},
                                         TwoPathsCase{"LongerName", L"C:\\ab", L"C:\\a", 0},
                                         TwoPathsCase{"FolderItself", L"C:\\a", L"C:\\a", 0},
                                         TwoPathsCase{"OtherCase", L"C:\\a\\b", L"C:\\A", 0},
                                         TwoPathsCase{"OtherSeparators", L"C:/a/b", L"C:\\a", 0},
                                         TwoPathsCase{"FolderWithASeparator", L"C:\\a", L"C:\\", 0},
                                         TwoPathsCase{"OnADrive", L"C:\\a", L"C:", 1},
                                         TwoPathsCase{"EmptyFolder", L"\\a", L"", 0},
                                         TwoPathsCase{"ShorterThanTheFolder", L"a", L"abc", 0},
                                         TwoPathsCase{"EmptyFile", L"", L"a", 0},
                                         TwoPathsCase{"NullFile", nullptr, L"a", 0},
                                         TwoPathsCase{"NullFolder", L"a", nullptr, 0}),
                         kRowName);

TEST(InvalidChars, AreTextsToBeShown) {
    EXPECT_STREQ(L"\\ / : * ? \" < > |", GetInvalidFileNameChars());
    EXPECT_STREQ(L": * ? \" < > |", GetInvalidFolderNameChars());
}

class IsValidFileNameTest : public ShapeTest {};
TEST_P(IsValidFileNameTest, OtherCharactersAreValid) { ExpectShape(IsValidFileName); }
INSTANTIATE_TEST_SUITE_P(Texts, IsValidFileNameTest,
                         testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Letter", L"a", 1},
                                         ShapeCase{"BlankAndDot", L"a b.c", 1},
                                         ShapeCase{"Blank", L" ", 1}, ShapeCase{"Dots", L"..", 1},
                                         ShapeCase{"Tab", L"\t", 1}),
                         kRowName);

TEST(IsValidFileName, HoldsNoneOfTheInvalidCharacters) {
    for (const wchar_t* p = L"\\/:*?\"<>|"; *p; ++p) {
        for (const wchar_t* pszForm : {L"%", L"a%", L"%b", L"a%b"}) {
            std::wstring str = pszForm;
            str[str.find(L'%')] = *p;
            EXPECT_EQ(0, IsValidFileName(str.c_str())) << str;
        }
    }
}

class IsValidAltFileNameTest : public ShapeTest {};
TEST_P(IsValidAltFileNameTest, IsEightAndFour) { ExpectShape(IsValidAltFileName); }
INSTANTIATE_TEST_SUITE_P(
    Texts, IsValidAltFileNameTest,
    testing::Values(ShapeCase{"Empty", L"", 0}, ShapeCase{"Eight", L"12345678", 1},
                    ShapeCase{"Nine", L"123456789", 0},
                    ShapeCase{"EightAndThree", L"12345678.123", 1},
                    ShapeCase{"EightAndFour", L"12345678.1234", 0},
                    ShapeCase{"NineAndOne", L"123456789.1", 0},
                    ShapeCase{"ExtensionOfThree", L".123", 1},
                    ShapeCase{"ExtensionOfFour", L".1234", 0}, ShapeCase{"TwoDots", L"a.b.c", 1},
                    ShapeCase{"DotAtTheEnd", L"a.", 1}, ShapeCase{"InvalidCharacter", L"a?.b", 0}),
    kRowName);

class IsValidFolderNameTest : public ShapeTest {};
TEST_P(IsValidFolderNameTest, HasARootNoEmptyNameAndNoInvalidCharacter) {
    ExpectShape(IsValidFolderName);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, IsValidFolderNameTest,
    testing::Values(
        ShapeCase{"Empty", L"", 0}, ShapeCase{"Letter", L"C", 0}, ShapeCase{"Backslash", L"\\", 0},
        ShapeCase{"Relative", L"a\\b", 0}, ShapeCase{"Slashes", L"//s", 0},
        ShapeCase{"Digit", L"1:\\a", 0}, ShapeCase{"Drive", L"C:", 1},
        ShapeCase{"Root", L"C:\\", 1}, ShapeCase{"Path", L"c:/a b/c.d", 1},
        ShapeCase{"NameOnADrive", L"C:a", 1}, ShapeCase{"TwoBackslashes", L"C:\\\\a", 0},
        ShapeCase{"BackslashAndSlash", L"C:\\a\\/b", 0},
        ShapeCase{"SlashAndBackslash", L"C:/\\", 0}, ShapeCase{"TwoSlashesAtTheEnd", L"C:a//", 0},
        ShapeCase{"TwoBackslashesAlone", L"\\\\", 1}, ShapeCase{"Share", L"\\\\s\\x", 1},
        ShapeCase{"ThreeBackslashes", L"\\\\\\s", 1}, // the pair lies before the third character
        ShapeCase{"EmptyShare", L"\\\\s\\\\x", 0}, ShapeCase{"Colon", L"C:\\a:b", 0},
        ShapeCase{"Star", L"C:*", 0}, ShapeCase{"QuestionMark", L"C:\\?", 0},
        ShapeCase{"Quote", L"C:\\\"", 0}, ShapeCase{"Less", L"C:\\<", 0},
        ShapeCase{"Greater", L"C:\\>", 0}, ShapeCase{"Bar", L"\\\\s|", 0}),
    kRowName);

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
    RandomPaths paths(821);
    for (int i = 0; i < kRandomInputs; ++i) {
        bRight = bRight && !IsFtpFolder(paths.Next().c_str());
    }
    return bRight;
}

TEST(IsFtpFolderDeathTest, WithTheLibraryTheTextDecides) {
    EXPECT_EXIT(std::exit(AnswersRightWithTheLibrary() ? 0 : 1), testing::ExitedWithCode(0), "");
}

class IsFileSysUNCTest : public testing::TestWithParam<ShapeCase> {};
TEST_P(IsFileSysUNCTest, OnlyFatGivesZero) {
    EXPECT_EQ(GetParam().nResult, IsFileSysUNC(GetParam().pszPath));
}
INSTANTIATE_TEST_SUITE_P(
    Names, IsFileSysUNCTest,
    testing::Values(ShapeCase{"Fat", L"FAT", 0}, ShapeCase{"Fat32", L"FAT32", 0},
                    ShapeCase{"ExFat", L"exFAT", 0}, ShapeCase{"Empty", L"", 1},
                    ShapeCase{"Ntfs", L"NTFS", 1}, ShapeCase{"Hpfs", L"HPFS", 1},
                    ShapeCase{"Owfs", L"OWFS", 1}, ShapeCase{"Cdfs", L"CDFS", 1},
                    ShapeCase{"SmallLetters", L"fat", 1}, ShapeCase{"OneCapital", L"Fat32", 1},
                    ShapeCase{"Null", nullptr, 1}),
    kRowName);

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
