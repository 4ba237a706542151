#include "files/path/path_command.h"
#include "files/path/path_join.h"
#include "files/path/path_split.h"
#include "files/path_tables.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cctype>
#include <optional>

namespace {
class SetEnv {
  public:
    explicit SetEnv(const std::wstring& strValue) {
        ::SetEnvironmentVariableW(L"TSLY_TEST", strValue.c_str());
    }
    SetEnv(const SetEnv&) = delete;
    SetEnv& operator=(const SetEnv&) = delete;
    ~SetEnv() { ::SetEnvironmentVariableW(L"TSLY_TEST", nullptr); }
};

/// The current directory, put back at the end.
class CurrentFolder {
  public:
    explicit CurrentFolder(const wchar_t* pszFolder) {
        ::GetCurrentDirectoryW(MAX_PATH, szBefore);
        bSet = ::SetCurrentDirectoryW(pszFolder);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() { ::SetCurrentDirectoryW(szBefore); }
    int bSet = 0;

  private:
    wchar_t szBefore[MAX_PATH] = {};
};

struct AppendCase {
    const char* pszName;
    const wchar_t* pszFolder;
    const wchar_t* pszFileName;
    const wchar_t* pszResult;
};
class AppendFileNameTest : public testing::TestWithParam<AppendCase> {};
TEST_P(AppendFileNameTest, PutsASeparatorBetween) {
    FrontGuardedPath front;
    wchar_t* psz = front.Put(GetParam().pszFolder);
    AppendFileName(psz, GetParam().pszFileName);
    EXPECT_STREQ(GetParam().pszResult, psz);
}
INSTANTIATE_TEST_SUITE_P(Paths, AppendFileNameTest,
                         testing::Values(AppendCase{"Drive", L"C:", L"a", L"C:\\a"},
                                         AppendCase{"Root", L"C:\\", L"a", L"C:\\a"},
                                         AppendCase{"RootWithASlash", L"C:/", L"a", L"C:/a"},
                                         AppendCase{"SeparatorBeforeTheName", L"a", L"\\b",
                                                    L"a\\\\b"},
                                         AppendCase{"EmptyFolder", L"", L"a", L"\\a"},
                                         AppendCase{"BothEmpty", L"", L"", L"\\"},
                                         AppendCase{"EmptyName", L"a", L"", L"a\\"},
                                         AppendCase{"Backslash", L"\\", L"a", L"\\a"},
                                         AppendCase{"NullName", L"a", nullptr, L"a\\"}),
                         kRowName);

TEST(AppendFileName, NullFolderDoesNothing) { AppendFileName(nullptr, L"a"); }

TEST(AppendFileName, StopsAt260Characters) {
    for (std::size_t cchFolder : {0u, 1u, 100u, 257u, 258u, 259u}) {
        for (std::size_t cchName : {0u, 1u, 2u, 257u, 258u, 259u, 260u, 500u}) {
            PathBuffer path(std::wstring(cchFolder, L'f'));
            AppendFileName(path, std::wstring(cchName, L'n').c_str());
            std::wstring str = std::wstring(cchFolder, L'f') + L"\\" + std::wstring(cchName, L'n');
            EXPECT_EQ(str.substr(0, 259), path.Str());
        }
    }
}

// Joining

struct MakeCase {
    const char* pszName;
    const wchar_t* pszFolder;
    const wchar_t* pszFileName;
    const wchar_t* pszExt;
    const wchar_t* pszResult;
};

class MakePathTest : public testing::TestWithParam<MakeCase> {
  protected:
    SetEnv env{L"D:\\env"};
    const MakeCase& row = GetParam();
    PathBuffer out{L"before"};
};
TEST_P(MakePathTest, JoinsWithAndWithoutCutting) {
    for (int bCut : {0, 1}) {
        out.Set(L"before");
        EXPECT_EQ(1, MakePath(out, row.pszFolder, row.pszFileName, row.pszExt, bCut));
        EXPECT_STREQ(row.pszResult, out);
    }
}
TEST_P(MakePathTest, JoinsStepByStep) {
    EXPECT_EQ(1, MakePathEx(out, MAX_PATH, row.pszFolder, row.pszFileName, row.pszExt));
    EXPECT_STREQ(row.pszResult, out);
}
TEST_P(MakePathTest, JoinsForThisPlatform) {
    EXPECT_EQ(1, MakePathForOS(out, row.pszFolder, row.pszFileName, row.pszExt));
    EXPECT_STREQ(row.pszResult, out);
}
INSTANTIATE_TEST_SUITE_P(
    Paths, MakePathTest,
    testing::Values(MakeCase{"Extension", L"C:\\d", L"a", L"txt", L"C:\\d\\a.txt"},
                    MakeCase{"ExtensionWithItsDot", L"C:\\d", L"a", L".txt", L"C:\\d\\a.txt"},
                    MakeCase{"NoExtension", L"C:\\d", L"a", nullptr, L"C:\\d\\a"},
                    MakeCase{"FolderWithASeparator", L"C:\\d\\", L"a", nullptr, L"C:\\d\\a"},
                    MakeCase{"FolderWithASlash", L"C:/d/", L"a", nullptr, L"C:/d/a"},
                    MakeCase{"NameWithASeparator", L"C:\\d", L"\\a", nullptr, L"C:\\d\\a"},
                    MakeCase{"NameWithASlash", L"C:\\d", L"/a", nullptr, L"C:\\d\\a"},
                    MakeCase{"NameWithTwoSeparators", L"C:\\d", L"\\\\a", nullptr,
                             L"C:\\d\\\\a"}, // one is dropped
                    MakeCase{"SeparatorForAName", L"C:\\d", L"\\", L"x", L"C:\\d\\.x"},
                    MakeCase{"NullName", L"C:\\d", nullptr, L"x", L"C:\\d"},
                    MakeCase{"EmptyName", L"C:\\d", L"", L"x", L"C:\\d"},
                    MakeCase{"EmptyFolder", L"", L"a", L"x", L"a.x"},
                    MakeCase{"EmptyFolderAndASeparator", L"", L"\\a", nullptr, L"a"},
                    MakeCase{"NullFolder", nullptr, L"a", nullptr, L"a"},
                    MakeCase{"AllNull", nullptr, nullptr, nullptr, L""},
                    MakeCase{"EnvironmentString", L"%TSLY_TEST%", L"a", nullptr, L"D:\\env\\a"},
                    MakeCase{"EnvironmentStringWithoutAName", L"%TSLY_TEST%\\x", nullptr, nullptr,
                             L"D:\\env\\x"},
                    MakeCase{"UnknownEnvironmentString", L"%TSLY_NONE%", L"a", nullptr,
                             L"%TSLY_NONE%\\a"},
                    MakeCase{"EnvironmentStringInTheName", L"C:\\d", L"%TSLY_TEST%", nullptr,
                             L"C:\\d\\%TSLY_TEST%"} // the name is as it is
                    ),
    kRowName);

TEST(MakePath, NullOutputGivesZero) {
    EXPECT_EQ(0, MakePath(nullptr, L"a", L"b", nullptr, 1));
    EXPECT_EQ(0, MakePathEx(nullptr, MAX_PATH, L"a", L"b", nullptr));
    EXPECT_EQ(0, MakePathForOS(nullptr, L"a", L"b", nullptr));
}

TEST(MakePath, EmptyExtensionGivesADot) {
    PathBuffer out;
    EXPECT_EQ(1, MakePath(out, L"C:\\d", L"a", L"", 0));
    EXPECT_STREQ(L"C:\\d\\a.", out);
    EXPECT_EQ(1, MakePathEx(out, MAX_PATH, L"C:\\d", L"a", L""));
    EXPECT_STREQ(L"C:\\d\\a.", out);
}

TEST(MakePath, FolderThatIsTheOutputStaysAsItIs) {
    SetEnv env(L"D:\\env");
    PathBuffer out(L"%TSLY_TEST%");
    EXPECT_EQ(1, MakePath(out, out, L"a", nullptr, 0));
    EXPECT_STREQ(L"%TSLY_TEST%\\a", out);
    out.Set(L"%TSLY_TEST%");
    EXPECT_EQ(1, MakePathEx(out, MAX_PATH, out, L"a", nullptr));
    EXPECT_STREQ(L"%TSLY_TEST%\\a", out);
}

TEST(MakePath, FolderMayLieInTheOutput) {
    SetEnv env(L"D:\\env");
    PathBuffer out(L"xx%TSLY_TEST%");
    EXPECT_EQ(1, MakePath(out, out + 2, L"a", nullptr, 0));
    EXPECT_STREQ(L"D:\\env\\a", out);
    out.Set(L"xxC:\\d");
    EXPECT_EQ(1, MakePathEx(out, MAX_PATH, out + 2, L"a", nullptr));
    EXPECT_STREQ(L"C:\\d\\a", out);
}

TEST(MakePath, LongNameIsCutOrEmptiesTheOutput) {
    PathBuffer out;
    std::wstring strName(300, L'n');
    EXPECT_EQ(0, MakePath(out, L"C:\\d", strName.c_str(), L"txt", 1));
    EXPECT_EQ(L"C:\\d\\" + std::wstring(254, L'n'), out.Str());
    EXPECT_EQ(0, MakePath(out, L"C:\\d", strName.c_str(), L"txt", 0));
    EXPECT_STREQ(L"", out);
}

TEST(MakePath, Takes259CharactersAndNotOneMore) {
    PathBuffer out;
    for (const wchar_t* pszExt : {L".txt", L"txt"}) { // the "." counts where it is added
        std::wstring strName(259 - 5 - 4, L'n');
        EXPECT_EQ(1, MakePath(out, L"C:\\d", strName.c_str(), pszExt, 0));
        EXPECT_EQ(L"C:\\d\\" + strName + L".txt", out.Str());
        strName += L'n';
        EXPECT_EQ(0, MakePath(out, L"C:\\d", strName.c_str(), pszExt, 1));
        EXPECT_EQ(L"C:\\d\\" + strName, out.Str()); // the whole name, and no extension
        EXPECT_EQ(0, MakePath(out, L"C:\\d", strName.c_str(), pszExt, 0));
        EXPECT_STREQ(L"", out);
    }
}

TEST(MakePath, FolderThatFillsTheBufferTakesNoName) {
    for (std::size_t cch : {257u, 258u, 259u, 260u, 300u}) {
        std::wstring strFolder(cch, L'f');
        PathBuffer out;
        std::wstring strFull = strFolder.substr(0, 259) + L"\\n";
        EXPECT_EQ(cch <= 257, MakePath(out, strFolder.c_str(), L"n", nullptr, 1));
        EXPECT_EQ(strFull.substr(0, 259), out.Str());
        EXPECT_EQ(1, MakePath(out, strFolder.c_str(), nullptr, nullptr, 0));
        EXPECT_EQ(strFolder.substr(0, 259), out.Str());
    }
}

TEST(MakePath, ExpansionThatIsTooLongTakesNoName) {
    for (std::size_t cch : {258u, 259u, 260u, 300u}) {
        std::wstring strValue(cch, L'e');
        SetEnv env(strValue);
        PathBuffer out;
        EXPECT_EQ(0, MakePath(out, L"%TSLY_TEST%", L"a", nullptr, 0)) << cch;
        EXPECT_STREQ(L"", out);
        EXPECT_EQ(0, MakePath(out, L"%TSLY_TEST%", L"a", nullptr, 1)) << cch;
        EXPECT_EQ((strValue + L"\\a").substr(0, 259), out.Str());
        EXPECT_EQ(0, MakePathForOS(out, L"%TSLY_TEST%", L"a", nullptr)) << cch;
        EXPECT_STREQ(L"", out);
        EXPECT_EQ(0, MakePathEx(out, MAX_PATH, L"%TSLY_TEST%", L"a", nullptr)) << cch;
        EXPECT_EQ(std::wstring::npos, out.Str().find(L'%'));
    }
}

TEST(MakePathEx, StopsBeforeThePieceThatDoesNotFit) {
    const wchar_t* const stages[] = {L"", L"dd", L"dd\\", L"dd\\nn", L"dd\\nn.", L"dd\\nn.x"};
    for (unsigned cch = 1; cch < 10; ++cch) {
        const wchar_t* pszExpected = L"";
        for (const wchar_t* psz : stages) {
            if (std::wcslen(psz) < cch) pszExpected = psz;
        }
        PathBuffer out(L"", cch);
        EXPECT_EQ(cch > 7, MakePathEx(out, cch, L"dd", L"nn", L"x")) << cch;
        EXPECT_STREQ(pszExpected, out) << cch;
    }
    EXPECT_EQ(0, MakePathEx(PathBuffer(L"x", 2), 0, L"d", L"n", nullptr));
}

TEST(MakePathEx, LargeBufferStopsBehindTheStageThatReaches260) {
    PathBuffer out(L"", 1000);
    std::wstring str259(259, L'f'), str260(260, L'f');
    EXPECT_EQ(1, MakePathEx(out, 1000, str259.c_str(), nullptr, nullptr));
    EXPECT_EQ(0, MakePathEx(out, 1000, str260.c_str(), nullptr, nullptr));
    EXPECT_EQ(str260, out.Str());
    EXPECT_EQ(0, MakePathEx(out, 1000, str259.c_str(), L"n", nullptr));
    EXPECT_EQ(str259 + L"\\", out.Str());
    EXPECT_EQ(0, MakePathEx(out, 1000, L"f", str259.c_str(), L"x"));
    EXPECT_EQ(L"f\\" + str259, out.Str());
    EXPECT_EQ(0, MakePathEx(out, 1000, L"f", std::wstring(257, L'n').c_str(), L"x"));
    EXPECT_EQ(L"f\\" + std::wstring(257, L'n') + L".", out.Str());
    EXPECT_EQ(0, MakePathEx(out, 1000, L"f", std::wstring(256, L'n').c_str(), L"x"));
    EXPECT_EQ(L"f\\" + std::wstring(256, L'n') + L".x", out.Str());
    EXPECT_EQ(1, MakePathEx(out, 1000, L"f", std::wstring(255, L'n').c_str(), L"x"));
}

struct PlatformCase {
    const char* pszName;
    const wchar_t* pszFileName;
    int nResult;
    const wchar_t* pszPath;
};
class MakePathForOSTest : public testing::TestWithParam<PlatformCase> {};
TEST_P(MakePathForOSTest, NamesForOnePlatform) {
    GuardedText name(GetParam().pszFileName);
    PathBuffer out(L"before");
    EXPECT_EQ(GetParam().nResult, MakePathForOS(out, L"d", name.Get(), nullptr));
    EXPECT_STREQ(GetParam().pszPath, out);
}
INSTANTIATE_TEST_SUITE_P(Names, MakePathForOSTest,
                         testing::Values(PlatformCase{"ThisPlatform", L":NT:a", 1, L"d\\a"},
                                         PlatformCase{"SmallLetters", L":nt:a", 1, L"d\\a"},
                                         PlatformCase{"SeparatorBehind", L":Nt:\\a", 1, L"d\\a"},
                                         PlatformCase{"NoName", L":NT:", 1, L"d"},
                                         PlatformCase{"OtherPlatform", L":95:a", 0, L""},
                                         PlatformCase{"ColonAlone", L":", 0, L""},
                                         PlatformCase{"MarkWithoutAnEnd", L":NT", 0, L""},
                                         PlatformCase{"MarkWithin", L"a:NT:b", 1, L"d\\a:NT:b"}),
                         kRowName);

TEST(MakePathForOS, CutsNothing) {
    PathBuffer out;
    EXPECT_EQ(0, MakePathForOS(out, L"d", (L":NT:" + std::wstring(258, L'n')).c_str(), nullptr));
    EXPECT_STREQ(L"", out);
    EXPECT_EQ(1, MakePathForOS(out, L"d", (L":NT:" + std::wstring(257, L'n')).c_str(), nullptr));
}

// Full paths

std::wstring FullOf(std::wstring_view str, const wchar_t* pszBase) {
    PathBuffer path(str);
    MakeFullPathName(path, pszBase);
    return path.Str();
}

struct FullCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszBase;
    const wchar_t* pszResult;
};
class MakeFullPathNameTest : public testing::TestWithParam<FullCase> {};
TEST_P(MakeFullPathNameTest, FullPathsAndBasesAskNothing) {
    EXPECT_EQ(GetParam().pszResult, FullOf(GetParam().pszPath, GetParam().pszBase));
}
INSTANTIATE_TEST_SUITE_P(
    Paths, MakeFullPathNameTest,
    testing::Values(FullCase{"Empty", L"", L"C:\\d", L"C:\\d"},
                    FullCase{"EmptyAndNoFullBase", L"", L"d", L"d"}, // whatever it is
                    FullCase{"EmptyWithoutABase", L"", nullptr, L""},
                    FullCase{"FullPath", L"X:\\a", L"C:\\d", L"X:\\a"},
                    FullCase{"FullPathWithSlashes", L"X:/a/b", L"C:\\d", L"X:\\a\\b"},
                    FullCase{"BlanksAndQuotes", L" \t\"X:\\a b\" ", L"C:\\d", L"X:\\a b"},
                    FullCase{"NetworkPath", L"\\\\s\\x", L"C:\\d", L"\\\\s\\x"},
                    FullCase{"NetworkPathWithSlashes", L"//s/x", L"C:\\d", L"\\\\s\\x"},
                    FullCase{"BehindABackslash", L"\\a", L"X:\\d", L"X:\\a"},
                    FullCase{"BehindASlash", L"/a", L"x:/d", L"x:\\a"},
                    FullCase{"BehindABackslashOnAShare", L"\\a", L"\\\\s\\x\\d", L"\\\\s\\a"},
                    FullCase{"Name", L"a", L"X:\\d", L"X:\\d\\a"},
                    FullCase{"NameInARoot", L"a", L"X:\\", L"X:\\a"},
                    FullCase{"BaseWithASeparator", L"a", L"X:/d/", L"X:/d/a"},
                    FullCase{"BaseOnAShare", L"a/b", L"\\\\s\\x", L"\\\\s\\x\\a\\b"},
                    FullCase{"NameOnADrive", L"C:a", L"X:\\d", L"X:\\d\\C:a"},
                    FullCase{"QuotesAlone", L"\"\"", L"X:\\d",
                             L"X:\\d\\"}, // empty only once its quotes are gone
                    FullCase{"BaseWithoutADrive", L"a", L"\\d", L"\\d\\a"}),
    kRowName);

TEST(MakeFullPathName, NullDoesNothing) { MakeFullPathName(nullptr, L"C:\\d"); }

TEST(MakeFullPathName, WithoutAFullBaseTheCurrentDirectoryCompletes) {
    CurrentFolder current(L"C:\\windows");
    ASSERT_TRUE(current.bSet);
    EXPECT_EQ(L"C:\\windows\\a", FullOf(L"a", nullptr));
    EXPECT_EQ(L"C:\\a", FullOf(L"../a", L"d"));
    EXPECT_EQ(L"C:\\windows\\a b", FullOf(L" \"a b\"", L""));
}

TEST(MakeFullPathName, WhatCannotBeCompletedStays) {
    CurrentFolder current(L"C:\\windows");
    EXPECT_EQ(L"", FullOf(L"\"\"", nullptr));
    std::wstring str(259 - 11, L'n');
    EXPECT_EQ(L"C:\\windows\\" + str, FullOf(str, nullptr));
    str += L'n';
    EXPECT_EQ(str, FullOf(str, nullptr));
}

TEST(MakeFullPathName, SingleSeparatorTakesTheDriveBehindTheCurrentOne) {
    CurrentFolder current(L"C:\\windows");
    ASSERT_TRUE(current.bSet);
    EXPECT_EQ(L"D:\\a", FullOf(L"\\a", nullptr));
    EXPECT_EQ(L"D:\\a", FullOf(L"/a", L"d"));
    EXPECT_EQ(L"D:\\a", FullOf(L"\\a", L"\\d"));
    EXPECT_EQ(L"D:\\", FullOf(L"\\", L""));
}

TEST(MakeFullPathName, BehindZNoLetterIsLeft) {
    CurrentFolder current(L"Z:\\");
    if (!current.bSet) GTEST_SKIP() << "this machine has no drive Z:";
    EXPECT_EQ(L"[:\\a", FullOf(L"\\a", nullptr));
}

TEST(MakeFullPathName, WhatDoesNotFitIsCut) {
    std::wstring str(257, L'n');
    EXPECT_EQ(L"X:\\" + str.substr(0, 256), FullOf(str, L"X:\\"));
    EXPECT_EQ(L"X:\\" + str.substr(0, 256), FullOf(L"\\" + str, L"X:\\d"));
    EXPECT_EQ(L"X:\\" + str.substr(0, 256), FullOf(L"", (L"X:\\" + str).c_str()));
    std::wstring strBase = L"X:\\" + std::wstring(300, L'd');
    EXPECT_EQ(strBase.substr(0, 259), FullOf(L"a", strBase.c_str()));
}

TEST(AppendSecondTermZero, IfTheSizeAllows) {
    for (unsigned cch = 0; cch < 7; ++cch) {
        PathBuffer text(L"", 7);
        std::wmemcpy(text, L"abc\0xyz", 7);
        AppendSecondTermZero(text, cch);
        EXPECT_EQ(cch >= 5 ? L'\0' : L'x', text[4]) << cch;
        EXPECT_EQ(L'y', text[5]);
    }
    PathBuffer full(L"", 3); // no terminator within its size
    std::wmemcpy(full, L"abc", 3);
    AppendSecondTermZero(full, 3);
    EXPECT_EQ(L'c', full[2]);
    PathBuffer list(L"", 2);
    AppendSecondTermZero(list, 2);
    EXPECT_EQ(L'\0', list[1]);
    AppendSecondTermZero(nullptr, 2);
}

// Random texts against a second telling of the rules

TEST(JoinRandom, AppendFileName) {
    RandomPaths paths(832);
    GuardedArea area(2 * 1024);
    PathBuffer path;
    FrontGuardedPath front;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strFolder = paths.Next(259), strName = paths.Next();
        path.Set(strFolder);
        wchar_t* psz = i % 2 ? static_cast<wchar_t*>(path) : front.Put(strFolder);
        AppendFileName(psz, area.Put(strName));
        if (strFolder.empty() || !IsSep(strFolder.back())) strFolder += L"\\";
        ASSERT_EQ((strFolder + strName).substr(0, 259), psz);
    }
}

/// What the platform makes of it where room is no matter.
std::wstring Expanded(const std::wstring& str) {
    static wchar_t sz[8192];
    DWORD cch = ::ExpandEnvironmentStringsW(str.c_str(), sz, std::size(sz));
    return cch && *sz ? std::wstring(sz) : str;
}

TEST(JoinRandom, MakePath) {
    SetEnv env(L"D:\\environment");
    RandomPaths paths(833);
    GuardedArea area1(2 * 1024), area2(2 * 1024), area3(2 * 1024);
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strFolder = paths.Next(), strName = paths.Next(), strExt = paths.Next();
        int bCut = i % 2, bExt = i % 3 != 0;
        int nResult = MakePath(out, area1.Put(strFolder), area2.Put(strName),
                               bExt ? area3.Put(strExt) : nullptr, bCut);
        std::wstring str = Expanded(strFolder).substr(0, 259);
        int nExpected = 1;
        if (!strName.empty()) {
            if (!str.empty() && !IsSep(str.back())) str += L"\\";
            if (IsSep(strName[0])) strName.erase(0, 1);
            if (!bExt)
                strExt.clear();
            else if (strExt.empty() || strExt[0] != L'.')
                strExt = L"." + strExt;
            nExpected = (str + strName + strExt).size() < 260;
            str += strName;
            str = nExpected ? str + strExt : bCut ? str.substr(0, 259) : L"";
        }
        ASSERT_EQ(nExpected, nResult) << strFolder << L" + " << strName << L" + " << strExt;
        ASSERT_EQ(str, out.Str()) << strFolder << L" + " << strName << L" + " << strExt;
    }
}

TEST(JoinRandom, MakePathEx) {
    SetEnv env(L"D:\\environment");
    RandomPaths paths(834);
    GuardedArea area1(2 * 1024), area2(2 * 1024), area3(2 * 1024), areaOut(2 * 1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strFolder = paths.Next(), strName = paths.Next(), strExt = paths.Next();
        std::size_t cch = 1 + paths.Below(i % 4 ? 40 : 600);
        auto* pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        int nResult = MakePathEx(pszOut, static_cast<unsigned>(cch), area1.Put(strFolder),
                                 area2.Put(strName), area3.Put(strExt));
        std::wstring str = Expanded(strFolder);
        bool bFits = str.size() < cch;
        if (!bFits) str.clear();
        int nExpected = bFits && str.size() < 260;
        auto add = [&](const std::wstring& strMore) {
            nExpected = nExpected && str.size() + strMore.size() < cch;
            if (nExpected) str += strMore;
            nExpected = nExpected && str.size() < 260;
        };
        if (nExpected && !strName.empty()) {
            if (!str.empty() && !IsSep(str.back())) add(L"\\");
            add(strName.substr(IsSep(strName[0])));
            if (strExt.empty() || strExt[0] != L'.') add(L".");
            add(strExt);
        }
        ASSERT_EQ(nExpected, nResult) << strFolder << L" + " << strName << L" + " << strExt;
        ASSERT_EQ(str, pszOut) << strFolder << L" + " << strName << L" + " << strExt;
    }
}

TEST(JoinRandom, MakePathForOS) {
    RandomPaths paths(835);
    GuardedArea area(2 * 1024);
    PathBuffer out, outPlain;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strName = paths.Next();
        if (i % 4 == 0) strName = L":nT:" + strName;
        int nResult = MakePathForOS(out, L"d", area.Put(strName), nullptr);
        bool bMark =
            strName.size() >= 4 && ::CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE,
                                                    strName.c_str(), 4, L":NT:", 4) == CSTR_EQUAL;
        if (!bMark && !strName.empty() && strName[0] == L':') {
            ASSERT_EQ(0, nResult);
            ASSERT_EQ(L"", out.Str());
            continue;
        }
        if (bMark) strName.erase(0, 4);
        ASSERT_EQ(MakePath(outPlain, L"d", strName.c_str(), nullptr, 0), nResult);
        ASSERT_EQ(outPlain.Str(), out.Str());
    }
}

bool IsFull(const std::wstring& str) {
    if (!str.empty() && IsSep(str[0])) return true;
    return str.size() >= 3 && str[0] < 128 && std::isalpha(str[0]) && str[1] == L':' &&
           IsSep(str[2]);
}

/// What a path becomes, by the rules; the platform alone knows its current directory.
std::wstring FullByTheRules(std::wstring str, const std::optional<std::wstring>& base) {
    const std::wstring strBase = base.value_or(L"").substr(0, 259);
    if (str.empty()) return strBase;
    wchar_t clean[MAX_PATH];
    str.copy(clean, str.size());
    clean[str.size()] = 0;
    RemoveWhiteSpacesAndQuotes(clean, nullptr);
    str = clean;
    std::replace(str.begin(), str.end(), L'/', L'\\');
    bool bOne = str.starts_with(L"\\") && !str.starts_with(L"\\\\");
    if (IsFull(str) && !bOne) return str;
    wchar_t root[MAX_PATH] = L"D:";
    if (bOne) {
        if (!base || !ExtractRootPath(root, base->c_str())) ::lstrcpyW(root, L"D:");
        return (root + str).substr(0, 259);
    }
    if (IsFull(strBase)) {
        return (strBase + (IsSep(strBase.back()) ? L"" : L"\\") + str).substr(0, 259);
    }
    wchar_t sz[1024];
    DWORD cch = ::GetFullPathNameW(str.c_str(), 1024, sz, nullptr);
    return cch > 0 && cch < 260 ? std::wstring(sz) : str;
}

TEST(JoinRandom, MakeFullPathName) {
    CurrentFolder current(L"C:\\windows");
    ASSERT_TRUE(current.bSet);
    RandomPaths paths(836);
    GuardedArea area(2 * 1024), areaPath(MAX_PATH * sizeof(wchar_t));
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = paths.Next(259);
        std::optional<std::wstring> base;
        if (i % 8) base = paths.Below(2) ? paths.Next() : paths.Below(2) ? L"X:\\d" : L"\\\\s\\x";
        auto* psz = static_cast<wchar_t*>(areaPath.Put(MAX_PATH * sizeof(wchar_t)));
        std::wmemcpy(psz, str.c_str(), str.size() + 1);
        MakeFullPathName(psz, base ? area.Put(*base) : nullptr);
        ASSERT_EQ(FullByTheRules(str, base), psz) << str << L" " << base.value_or(L"(null)");
    }
}
} // namespace
