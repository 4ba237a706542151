#include "files/path/path_split.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <cctype>

namespace {
constexpr std::size_t kNone = std::wstring::npos;

struct FindCase {
    const char* pszName;
    const wchar_t* pszPath;
    std::size_t nAt; // kNone: null
};
using FindConst = const wchar_t* (*)(const wchar_t*);
using FindIn = wchar_t* (*)(wchar_t*);

class FindTest : public testing::TestWithParam<FindCase> {
  protected:
    /// The row through both overloads. A null text gives null.
    static void ExpectFind(FindConst find, FindIn findIn) {
        auto [pszName, pszPath, nAt] = GetParam();
        EXPECT_EQ(nAt == kNone ? nullptr : pszPath + nAt, find(pszPath));
        std::wstring str = pszPath;
        EXPECT_EQ(nAt == kNone ? nullptr : str.data() + nAt, findIn(str.data()));
        EXPECT_EQ(pszPath, str);
        EXPECT_EQ(nullptr, find(nullptr));
        EXPECT_EQ(nullptr, findIn(nullptr));
    }
};

class LocateFileNameTest : public FindTest {};
TEST_P(LocateFileNameTest, StandsBehindTheLastSeparatorOrColon) {
    ExpectFind(LocateFileName, LocateFileName);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, LocateFileNameTest,
    testing::Values(FindCase{"Empty", L"", 0}, FindCase{"Name", L"a", 0},
                    FindCase{"Backslash", L"\\", 1}, FindCase{"Drive", L"C:", 2},
                    FindCase{"NameOnADrive", L"C:a", 2},
                    FindCase{"SeparatorAtTheEnd", L"C:\\a\\", 5}, FindCase{"Path", L"C:\\a", 3},
                    FindCase{"SlashAndBackslash", L"C:/a\\b/c.d", 7},
                    FindCase{"Share", L"\\\\server\\share", 9},
                    FindCase{"Stream", L"file:stream", 5}, FindCase{"NameWithADot", L"a.b", 0}),
    kRowName);

class LocateFileExtTest : public FindTest {};
TEST_P(LocateFileExtTest, IsTheLastDotOfTheNamePart) { ExpectFind(LocateFileExt, LocateFileExt); }
INSTANTIATE_TEST_SUITE_P(Texts, LocateFileExtTest,
                         testing::Values(FindCase{"Empty", L"", kNone},
                                         FindCase{"Name", L"a", kNone}, FindCase{"Dot", L".", 0},
                                         FindCase{"TwoDots", L"a.b.c", 3},
                                         FindCase{"FoldersDot", L"C:\\a.b\\c", kNone},
                                         FindCase{"FoldersDotAndASlash", L"C:\\a.b/c", kNone},
                                         FindCase{"DotBeforeAColon", L"a.b:c", kNone},
                                         FindCase{"DotAtTheEnd", L"C:\\a.b\\c.", 8},
                                         FindCase{"OnADrive", L"C:.x", 2},
                                         FindCase{"NoName", L"a.b\\", kNone}),
                         kRowName);

class FindNameExtTest : public FindTest {};
TEST_P(FindNameExtTest, StandsBehindTheLastSeparatorAndNotBehindAColon) {
    ExpectFind(FindNameExt, FindNameExt);
}
INSTANTIATE_TEST_SUITE_P(Texts, FindNameExtTest,
                         testing::Values(FindCase{"Empty", L"", kNone}, FindCase{"Name", L"a", 0},
                                         FindCase{"Drive", L"C:", 0},
                                         FindCase{"NameOnADrive", L"C:a.b", 0},
                                         FindCase{"Root", L"C:\\", kNone},
                                         FindCase{"SeparatorAtTheEnd", L"C:\\a\\", kNone},
                                         FindCase{"SlashAndBackslash", L"C:\\a/b.c", 5},
                                         FindCase{"ColonInTheName", L"\\a:b", 1}),
                         kRowName);

class FindDotExtTest : public FindTest {};
TEST_P(FindDotExtTest, IsTheLastDotOfTheWholeText) { ExpectFind(FindDotExt, FindDotExt); }
INSTANTIATE_TEST_SUITE_P(Texts, FindDotExtTest,
                         testing::Values(FindCase{"Empty", L"", kNone},
                                         FindCase{"NoDot", L"abc", kNone},
                                         FindCase{"FoldersDot", L"a.b\\c", 1},
                                         FindCase{"TwoDots", L"a.b.c", 3},
                                         FindCase{"DotAtTheEnd", L"a.", 1}),
                         kRowName);

class FindLastSeparatorTest : public FindTest {};
TEST_P(FindLastSeparatorTest, IsTheLastOfEitherKind) {
    ExpectFind(FindLastSeparator, FindLastSeparator);
}
INSTANTIATE_TEST_SUITE_P(Texts, FindLastSeparatorTest,
                         testing::Values(FindCase{"Empty", L"", kNone},
                                         FindCase{"NoSeparator", L"C:a", kNone},
                                         FindCase{"Backslash", L"\\", 0},
                                         FindCase{"Slash", L"a\\b/c", 3},
                                         FindCase{"BackslashAtTheEnd", L"a/b\\", 3}),
                         kRowName);

struct ComponentCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszCut;
    std::size_t nAt;
};
class FindLastPathComponentTest : public testing::TestWithParam<ComponentCase> {};
TEST_P(FindLastPathComponentTest, CutsASeparatorAtTheEndFirst) {
    std::wstring str = GetParam().pszPath;
    wchar_t* pFound = FindLastPathComponent(str.data());
    EXPECT_STREQ(GetParam().pszCut, str.c_str());
    EXPECT_EQ(GetParam().nAt, static_cast<std::size_t>(pFound - str.data()));
}
INSTANTIATE_TEST_SUITE_P(
    Texts, FindLastPathComponentTest,
    testing::Values(ComponentCase{"Empty", L"", L"", 0}, ComponentCase{"Backslash", L"\\", L"", 0},
                    ComponentCase{"SlashAtTheEnd", L"a/", L"a", 0},
                    ComponentCase{"Root", L"C:\\", L"C:", 2},
                    ComponentCase{"Path", L"C:\\a\\b", L"C:\\a\\b", 5},
                    ComponentCase{"PathWithASeparator", L"C:\\a\\b\\", L"C:\\a\\b", 5},
                    ComponentCase{"TwoSeparators", L"a\\\\", L"a\\", 2}),
    kRowName);

TEST(FindLastPathComponent, NullGivesNull) { EXPECT_EQ(nullptr, FindLastPathComponent(nullptr)); }

class StripFileNameTest : public ChangeTest {};
TEST_P(StripFileNameTest, CutsBehindTheLastSeparatorOrColon) { ExpectChange(StripFileName); }
INSTANTIATE_TEST_SUITE_P(Texts, StripFileNameTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Name", L"a", L""},
                                         ChangeCase{"Drive", L"C:", L"C:"},
                                         ChangeCase{"NameOnADrive", L"C:a", L"C:"},
                                         ChangeCase{"Path", L"C:\\a", L"C:\\"},
                                         ChangeCase{"SeparatorAtTheEnd", L"C:\\a\\", L"C:\\a\\"},
                                         ChangeCase{"Slash", L"a/b", L"a/"}),
                         kRowName);

class StripFileNameAndBackslashTest : public ChangeTest {};
TEST_P(StripFileNameAndBackslashTest, KeepsTheSeparatorBehindAColon) {
    ExpectChange(StripFileNameAndBackslash);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, StripFileNameAndBackslashTest,
    testing::Values(ChangeCase{"Empty", L"", L""}, ChangeCase{"Backslash", L"\\", L""},
                    ChangeCase{"Name", L"a", L""}, ChangeCase{"NameBehindABackslash", L"\\a", L""},
                    ChangeCase{"Drive", L"C:", L"C:"}, ChangeCase{"NameOnADrive", L"C:a", L"C:"},
                    ChangeCase{"Root", L"C:\\", L"C:\\"},
                    ChangeCase{"FileInTheRoot", L"C:\\a", L"C:\\"},
                    ChangeCase{"FileBehindASlash", L"C:/a", L"C:/"},
                    ChangeCase{"SeparatorAtTheEnd", L"C:\\a\\", L"C:\\a"},
                    ChangeCase{"Path", L"C:\\a\\b", L"C:\\a"},
                    ChangeCase{"TwoSeparators", L"C:\\\\a", L"C:\\"},
                    ChangeCase{"Share", L"\\\\s\\x", L"\\\\s"}),
    kRowName);

class StripFileExtTest : public ChangeTest {};
TEST_P(StripFileExtTest, CutsAtTheLastDotOfTheName) { ExpectChange(StripFileExt); }
INSTANTIATE_TEST_SUITE_P(Texts, StripFileExtTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"TwoDots", L"a.b.c", L"a.b"},
                                         ChangeCase{"FoldersDot", L"a.b\\c", L"a.b\\c"},
                                         ChangeCase{"ExtensionAlone", L".x", L""},
                                         ChangeCase{"OnADrive", L"C:.x", L"C:"},
                                         ChangeCase{"DotAtTheEnd", L"a.", L"a"}),
                         kRowName);

class DirFromPathTest : public ChangeTest {};
TEST_P(DirFromPathTest, IsTheFolderWithoutASeparatorAtItsEnd) { ExpectCopy(DirFromPath); }
INSTANTIATE_TEST_SUITE_P(Texts, DirFromPathTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Name", L"a", L""},
                                         ChangeCase{"Backslash", L"\\", L""},
                                         ChangeCase{"Drive", L"C:", L"C:"},
                                         ChangeCase{"FileInTheRoot", L"C:\\a", L"C:\\"},
                                         ChangeCase{"NameOnADrive", L"C:a", L"C:"},
                                         ChangeCase{"Path", L"C:\\a\\b", L"C:\\a"},
                                         ChangeCase{"SeparatorAtTheEnd", L"C:\\a\\", L"C:\\a"},
                                         ChangeCase{"Slashes", L"C:/a/b", L"C:/a"},
                                         ChangeCase{"TwoSeparators", L"a\\\\b", L"a\\\\"},
                                         ChangeCase{"Share", L"\\\\s\\x", L"\\\\s"}),
                         kRowName);

class GetParentFolderTest : public ChangeTest {};
TEST_P(GetParentFolderTest, CutsAtTheLastSeparator) { ExpectCopy(GetParentFolder); }
INSTANTIATE_TEST_SUITE_P(Texts, GetParentFolderTest,
                         testing::Values(ChangeCase{"Empty", L"", L""},
                                         ChangeCase{"Name", L"a", L"a"},
                                         ChangeCase{"Backslash", L"\\", L""},
                                         ChangeCase{"Drive", L"C:", L"C:"},
                                         ChangeCase{"NameOnADrive", L"C:a", L"C:a"},
                                         ChangeCase{"FileInTheRoot", L"C:\\a", L"C:\\"},
                                         ChangeCase{"Root", L"C:\\", L"C:\\"},
                                         ChangeCase{"NameBehindABackslash", L"\\a", L""},
                                         ChangeCase{"Path", L"C:\\a\\b", L"C:\\a"},
                                         ChangeCase{"SeparatorAtTheEnd", L"C:\\a\\", L"C:\\a"},
                                         ChangeCase{"Slashes", L"C:/a/b", L"C:/a"},
                                         ChangeCase{"Share", L"\\\\s\\x", L"\\\\s"}),
                         kRowName);

TEST(SplitCopies, NullGivesAnEmptyText) {
    for (auto copy : {DirFromPath, GetParentFolder}) {
        PathBuffer out(L"before");
        copy(out, nullptr);
        EXPECT_STREQ(L"", out);
    }
}

TEST(SplitCopies, CutWhatReaches260Characters) {
    PathBuffer out;
    for (std::size_t cch : {259u, 260u, 261u, 1000u}) {
        std::wstring str(cch, L'n');
        GetParentFolder(out, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        ParsePath(nullptr, out, nullptr, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        str[0] = L'.';
        ParsePath(nullptr, nullptr, out, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        str += L"\\name";
        ParsePath(out, nullptr, nullptr, str.c_str());
        EXPECT_EQ(str.substr(0, 259), out.Str());
        DirFromPath(out, str.c_str());
        EXPECT_STREQ(L"", out); // the separator is beyond the cut: all is a name
    }
}

struct ParseCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszFolder;
    const wchar_t* pszFileName;
    const wchar_t* pszExt;
};

class ParsePathTest : public testing::TestWithParam<ParseCase> {};
TEST_P(ParsePathTest, GivesThreeParts) {
    const ParseCase& row = GetParam();
    PathBuffer folder, name, ext;
    EXPECT_EQ(1, ParsePath(folder, name, ext, row.pszPath));
    EXPECT_STREQ(row.pszFolder, folder);
    EXPECT_STREQ(row.pszFileName, name);
    EXPECT_STREQ(row.pszExt, ext);
    folder.Set(row.pszPath);
    EXPECT_EQ(1, ParsePath(folder, nullptr, nullptr, folder));
    EXPECT_STREQ(row.pszFolder, folder);
}
INSTANTIATE_TEST_SUITE_P(
    Paths, ParsePathTest,
    testing::Values(ParseCase{"Empty", L"", L"", L"", L""}, ParseCase{"Name", L"a", L"", L"a", L""},
                    ParseCase{"TwoDots", L"a.b.c", L"", L"a.b", L".c"},
                    ParseCase{"InTheRoot", L"C:\\a.txt", L"C:\\", L"a", L".txt"},
                    ParseCase{"InTheRootBehindASlash", L"C:/a.txt", L"C:/", L"a", L".txt"},
                    ParseCase{"InAFolder", L"C:\\d\\a.txt", L"C:\\d", L"a", L".txt"},
                    ParseCase{"NoName", L"C:\\d\\", L"C:\\d", L"", L""},
                    ParseCase{"OnADrive", L"C:a.b", L"", L"C:a", L".b"},
                    ParseCase{"BehindABackslash", L"\\a", L"", L"a", L""},
                    ParseCase{"Share", L"\\\\server\\share", L"\\\\server", L"share", L""},
                    ParseCase{"OnAShare", L"\\\\server\\share\\a.b", L"\\\\server\\share", L"a",
                              L".b"},
                    ParseCase{"FoldersDot", L"C:\\d.e\\a", L"C:\\d.e", L"a", L".e\\a"}
                    // the "." is a folder's
                    ),
    kRowName);

TEST(ParsePath, NullGivesEmptyParts) {
    PathBuffer folder(L"x"), name(L"x"), ext(L"x");
    EXPECT_EQ(1, ParsePath(folder, name, ext, nullptr));
    EXPECT_STREQ(L"", folder);
    EXPECT_STREQ(L"", name);
    EXPECT_STREQ(L"", ext);
}

TEST(ParsePath, LongNameBehindAFoldersDotIsCut) {
    PathBuffer name, ext;
    std::wstring str = L"d.e\\" + std::wstring(300, L'n');
    EXPECT_EQ(1, ParsePath(nullptr, name, ext, str.c_str()));
    EXPECT_EQ(std::wstring(259, L'n'), name.Str());
    EXPECT_EQ(str.substr(1, 259), ext.Str());
}

TEST(ParsePath, NameKeepsItsExtensionUnlessThatIsAskedFor) {
    PathBuffer name, ext;
    EXPECT_EQ(1, ParsePath(nullptr, name, nullptr, L"C:\\d\\a.txt"));
    EXPECT_STREQ(L"a.txt", name);
    EXPECT_EQ(1, ParsePath(nullptr, name, ext, L"C:\\d\\a.txt"));
    EXPECT_STREQ(L"a", name);
    EXPECT_EQ(1, ParsePath(nullptr, nullptr, nullptr, L"C:\\d\\a.txt"));
}

struct RootCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszRoot;    // GetRootPath; empty: 0
    const wchar_t* pszExtract; // ExtractRootPath; empty: 0
};

class RootPathsTest : public testing::TestWithParam<RootCase> {};
TEST_P(RootPathsTest, OfFullPathsOnly) {
    const RootCase& row = GetParam();
    PathBuffer out;
    EXPECT_EQ(*row.pszRoot != 0, GetRootPath(out, row.pszPath));
    EXPECT_STREQ(row.pszRoot, out);
    EXPECT_EQ(*row.pszExtract != 0, ExtractRootPath(out, row.pszPath));
    EXPECT_STREQ(row.pszExtract, out);
    out.Set(row.pszPath);
    GetRootPath(out, out);
    EXPECT_STREQ(row.pszRoot, out);
    out.Set(row.pszPath);
    ExtractRootPath(out, out);
    EXPECT_STREQ(row.pszExtract, out);
}
INSTANTIATE_TEST_SUITE_P(
    Paths, RootPathsTest,
    testing::Values(
        RootCase{"Empty", L"", L"", L""}, RootCase{"Name", L"a", L"", L""},
        RootCase{"Drive", L"C:", L"", L""}, RootCase{"NameOnADrive", L"C:a\\b", L"", L""},
        RootCase{"Digit", L"1:\\a", L"", L""}, RootCase{"Root", L"C:\\", L"C:\\", L"C:"},
        RootCase{"PathWithSlashes", L"c:/a/b", L"c:\\", L"c:"},
        RootCase{"Backslash", L"\\", L"", L""},
        RootCase{"PathBehindABackslash", L"\\a\\b", L"", L""},
        RootCase{"TwoBackslashes", L"\\\\", L"", L""},
        RootCase{"EmptyServer", L"\\\\\\x", L"", L""},
        RootCase{"Server", L"\\\\server", L"", L"\\\\server"},
        RootCase{"EmptyShare", L"\\\\server\\", L"", L"\\\\server"},
        RootCase{"EmptyShareAndMore", L"\\\\server\\\\x", L"", L"\\\\server"},
        RootCase{"Share", L"\\\\server\\share", L"\\\\server\\share\\", L"\\\\server"},
        RootCase{"PathOnAShare", L"\\\\server\\share\\a\\b", L"\\\\server\\share\\", L"\\\\server"},
        RootCase{"Slashes", L"//server/share/a", L"\\\\server\\share\\", L"\\\\server"}),
    kRowName);

TEST(RootPaths, NullHasNone) {
    PathBuffer out(L"x");
    EXPECT_EQ(0, GetRootPath(out, nullptr));
    EXPECT_STREQ(L"", out);
    out.Set(L"x");
    EXPECT_EQ(0, ExtractRootPath(out, nullptr));
    EXPECT_STREQ(L"", out);
}

TEST(RootPaths, ThatDoNotFitAreNone) {
    PathBuffer out;
    std::wstring str = L"\\\\" + std::wstring(100, L's') + L"\\" + std::wstring(155, L'n'); // 258
    EXPECT_EQ(1, GetRootPath(out, str.c_str()));
    EXPECT_EQ(str + L"\\", out.Str());
    str += L'n';
    EXPECT_EQ(0, GetRootPath(out, str.c_str()));
    EXPECT_STREQ(L"", out);
    str = L"\\\\" + std::wstring(257, L's');
    EXPECT_EQ(1, ExtractRootPath(out, str.c_str()));
    EXPECT_EQ(str, out.Str());
    str += L's';
    EXPECT_EQ(0, ExtractRootPath(out, str.c_str()));
    EXPECT_STREQ(L"", out);
}

// Random texts against a second telling of the rules

std::size_t NameAt(const std::wstring& str) { return str.find_last_of(L"\\/:") + 1; }

std::wstring CutAt(const std::wstring& str, std::size_t n) {
    bool bRoot = n > 0 && str[n - 1] == L':';
    return str.substr(0, bRoot ? n + 1 : n);
}

std::wstring WithoutEnd(std::wstring str) {
    if (str.empty() || !IsSep(str.back())) return str;
    std::wstring strRest = str.substr(0, str.size() - 1);
    bool bStays = !strRest.empty() && (IsSep(strRest.back()) || strRest.back() == L':');
    return bStays ? str : strRest;
}

void ExpectFound(const std::wstring& str, std::size_t nAt, const wchar_t* pszStart,
                 const wchar_t* pFound) {
    ASSERT_EQ(nAt == kNone ? nullptr : pszStart + nAt, pFound) << str;
}

TEST(SplitRandom, PointersLieWhereTheRulesSay) {
    RandomPaths paths(811);
    GuardedArea area(2 * 1024);
    for (int i = 0; i < kRandomInputs && !testing::Test::HasFatalFailure(); ++i) {
        std::wstring str = paths.Next();
        const wchar_t* psz = area.Put(str);
        std::size_t nName = NameAt(str), nSep = str.find_last_of(L"\\/"), nDot = str.rfind(L'.');
        ExpectFound(str, nName, psz, LocateFileName(psz));
        ExpectFound(str, nDot != kNone && nDot >= nName ? nDot : kNone, psz, LocateFileExt(psz));
        ExpectFound(str, nDot, psz, FindDotExt(psz));
        ExpectFound(str, nSep, psz, FindLastSeparator(psz));
        ExpectFound(str, nSep + 1 < str.size() ? nSep + 1 : kNone, psz, FindNameExt(psz));
    }
}

TEST(SplitRandom, CutsLeaveWhatTheRulesSay) {
    RandomPaths paths(812);
    GuardedArea area(2 * 1024);
    FrontGuardedPath front;
    for (int i = 0; i < kRandomInputs && !testing::Test::HasFatalFailure(); ++i) {
        std::wstring str = paths.Next();
        std::size_t nName = NameAt(str), nDot = str.rfind(L'.');
        wchar_t* psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileName(psz);
        ASSERT_EQ(str.substr(0, nName), psz);
        psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileNameAndBackslash(psz);
        bool bSep = nName > 0 && IsSep(str[nName - 1]);
        ASSERT_EQ(bSep ? CutAt(str, nName - 1) : str.substr(0, nName), psz) << str;
        psz = i % 2 ? area.Put(str) : front.Put(str);
        StripFileExt(psz);
        ASSERT_EQ(nDot != kNone && nDot >= nName ? str.substr(0, nDot) : str, psz);
        psz = i % 2 ? area.Put(str) : front.Put(str);
        std::wstring strCut = str;
        if (!str.empty() && IsSep(str.back())) strCut.pop_back();
        ASSERT_EQ(psz + NameAt(strCut), FindLastPathComponent(psz));
        ASSERT_EQ(strCut, psz);
    }
}

TEST(SplitRandom, CopiesHoldWhatTheRulesSay) {
    RandomPaths paths(813);
    GuardedArea area(2 * 1024);
    PathBuffer folder, name, ext;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        const wchar_t* psz = area.Put(str);
        std::wstring strCut = str.substr(0, 259);
        DirFromPath(folder, psz);
        ASSERT_EQ(WithoutEnd(strCut.substr(0, NameAt(strCut))), folder.Str());
        GetParentFolder(folder, psz);
        std::size_t nSep = strCut.find_last_of(L"\\/");
        ASSERT_EQ(nSep == kNone ? strCut : CutAt(strCut, nSep), folder.Str());

        ASSERT_EQ(1, ParsePath(folder, name, ext, psz));
        std::size_t nName = str.find_last_of(L"\\/") + 1, nDot = str.rfind(L'.');
        std::wstring strFolder = str.substr(0, nName).substr(0, 259);
        bool bRoot = nName == 3 && str[1] == L':' && std::isalpha(str[0]);
        if (nName && nName < 260 && !bRoot) strFolder.pop_back();
        ASSERT_EQ(strFolder, folder.Str()) << str;
        ASSERT_EQ(nDot == kNone ? L"" : str.substr(nDot).substr(0, 259), ext.Str());
        std::size_t cchName = nDot != kNone && nDot >= nName ? nDot - nName : 259;
        ASSERT_EQ(str.substr(nName, cchName).substr(0, 259), name.Str()) << str;
    }
}

/// The names between the separators of "\\server\share\rest".
std::wstring NameFrom(const std::wstring& str, std::size_t n) {
    return n < str.size() ? str.substr(n, str.find_first_of(L"\\/", n) - n) : L"";
}

TEST(SplitRandom, RootsAreWhatTheRulesSay) {
    RandomPaths paths(814);
    GuardedArea area(2 * 1024);
    PathBuffer root, extract;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next();
        if (i % 2) str = L"\\\\" + str;
        const wchar_t* psz = area.Put(str);
        std::wstring strRoot, strExtract;
        if (str.size() >= 3 && str[0] < 128 && std::isalpha(str[0]) && str[1] == L':' &&
            IsSep(str[2])) {
            strRoot = str.substr(0, 2) + L"\\";
            strExtract = str.substr(0, 2);
        } else if (str.size() >= 3 && IsSep(str[0]) && IsSep(str[1])) {
            std::wstring strServer = NameFrom(str, 2);
            std::wstring strShare = NameFrom(str, 3 + strServer.size());
            if (!strServer.empty()) strExtract = L"\\\\" + strServer;
            if (!strServer.empty() && !strShare.empty()) {
                strRoot = strExtract + L"\\" + strShare + L"\\";
            }
        }
        if (strRoot.size() >= 260) strRoot.clear();
        if (strExtract.size() >= 260) strExtract.clear();
        ASSERT_EQ(!strRoot.empty(), GetRootPath(root, psz)) << str;
        ASSERT_EQ(strRoot, root.Str());
        ASSERT_EQ(!strExtract.empty(), ExtractRootPath(extract, psz)) << str;
        ASSERT_EQ(strExtract, extract.Str());
    }
}
} // namespace
