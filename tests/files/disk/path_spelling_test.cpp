#include "files/disk/path_spelling.h"
#include "files/disk/path_fs.h"
#include "files/fake_drives.h"
#include "files/path_support.h"
#include "files/path_tables.h"
#include "files/short_names.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace {
/// The result of a change in place, in a path buffer against a guard page.
template <class Fn>
std::wstring Changed(const std::wstring& str, Fn change) {
    GuardedMemory memory(260 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    std::wmemset(psz, L'\xEEEE', 260);
    std::wcscpy(psz, str.c_str());
    change(psz);
    return psz;
}
std::wstring Short(const std::wstring& str) {
    return Changed(str, [](wchar_t* psz) { ConvertToShortPath(psz, 260); });
}
std::wstring Long(const std::wstring& str) {
    return Changed(str, [](wchar_t* psz) { EXPECT_EQ(1, ShortToLFN(psz)); });
}
std::wstring Shown(const std::wstring& str) {
    return Changed(str, [](wchar_t* psz) { DosPathToShellPath(psz); });
}

class ShortTest : public testing::Test {
  protected:
    ShortTest() {
        std::filesystem::create_directory(strFolder);
        folder.MakeFile(L"A Long Folder\\A Long File.Text", "abc");
        strFolderAlt = folder.Get() + L"\\" + AltNameOf(strFolder);
        strFileAlt = strFolderAlt + L"\\" + AltNameOf(strFile);
        wchar_t sz[MAX_PATH] = L"";
        ::GetShortPathNameW(folder.Get().c_str(), sz, MAX_PATH);
        strBaseShort = sz;
    }
    static std::wstring Lower(std::wstring str) {
        for (wchar_t& ch : str) ch = static_cast<wchar_t>(std::towlower(ch));
        return str;
    }
    TempFolder folder;
    std::wstring strFolder = folder.File(L"A Long Folder");
    std::wstring strFile = strFolder + L"\\A Long File.Text";
    std::wstring strFolderAlt, strFileAlt; // the two names short
    std::wstring strBaseShort;             // the folder above, all short
};
using ConvertToShortPathTest = ShortTest;
using ShortToLFNTest = ShortTest;
using ConvertPathToLFNTest = ShortTest;
using DosPathToShellPathTest = ShortTest;

// To short names

TEST_F(ConvertToShortPathTest, EveryNameIsShortened) {
    ASSERT_FALSE(AltNameOf(strFolder).empty());
    std::wstring strExpected = strBaseShort + L"\\" + AltNameOf(strFolder);
    EXPECT_EQ(strExpected, Short(strFolder));
    EXPECT_EQ(strExpected + L"\\" + AltNameOf(strFile), Short(strFile));
    EXPECT_EQ(1, FileExists(Short(strFile).c_str()));
    EXPECT_EQ(Short(strFile), Short(Short(strFile)));
}

TEST_F(ConvertToShortPathTest, TailThatIsMissingStaysBehindWhatExists) {
    std::wstring strBelow = Short(strFolder);
    EXPECT_EQ(strBelow + L"\\no such name", Short(strFolder + L"\\no such name"));
    EXPECT_EQ(strBelow + L"\\no such\\name here", Short(strFolder + L"\\no such\\name here"));
    EXPECT_EQ(strBelow + L"\\no such\\name\\", Short(strFolder + L"/no such/name/"));
}

TEST_F(ConvertToShortPathTest, DriveRootGetsItsLetterInUpperCase) {
    EXPECT_EQ(L"C:\\", Short(L"c:\\"));
    EXPECT_EQ(L"C:", Short(L"c:"));
    EXPECT_EQ(L"Q:\\", Short(L"q:\\")); // there need be no such drive
}

TEST_F(ConvertToShortPathTest, NothingThatExistsLeavesThePathAlone) {
    for (const wchar_t* psz : {L"", L"x", L"no such name", L"no such/name", L"q:\\no such\\name",
                               L"\\\\server\\share\\a long name.text"}) {
        EXPECT_EQ(psz, Short(psz));
    }
    EXPECT_EQ(0, ConvertToShortPath(nullptr, 260));
    wchar_t sz[16] = L"no such name";
    EXPECT_EQ(0, ConvertToShortPath(sz, 16));
    EXPECT_STREQ(L"no such name", sz);
}

TEST_F(ConvertToShortPathTest, ShortFormHasToFit) {
    std::wstring strExpected = Short(strFile);
    std::vector<wchar_t> buffer(300);
    std::wcscpy(buffer.data(), strFile.c_str());
    auto cch = static_cast<unsigned>(strExpected.size());
    EXPECT_EQ(0, ConvertToShortPath(buffer.data(), cch));
    EXPECT_EQ(strFile, buffer.data());
    EXPECT_EQ(0, ConvertToShortPath(buffer.data(), 0));
    EXPECT_EQ(strFile, buffer.data());
    EXPECT_EQ(1, ConvertToShortPath(buffer.data(), cch + 1));
    EXPECT_EQ(strExpected, buffer.data());
}

TEST_F(ConvertToShortPathTest, ResultHasAtMost259Characters) {
    // A name of one letter gets longer by nothing, so that only the tail decides.
    std::wstring strTail = strFolder + L"\\" + std::wstring(259 - strFolder.size() - 1, L't');
    ASSERT_EQ(259u, strTail.size());
    std::wstring strResult = Short(strTail);
    EXPECT_EQ(Short(strFolder) + strTail.substr(strFolder.size()), strResult);
    std::wstring strTooLong = strTail + L"t";
    std::vector<wchar_t> buffer(strTooLong.begin(), strTooLong.end());
    buffer.push_back(0);
    EXPECT_EQ(0, ConvertToShortPath(buffer.data(), 300));
    EXPECT_EQ(strTooLong, buffer.data());
}

// To long names

TEST_F(ShortToLFNTest, EveryNameIsLong) {
    EXPECT_EQ(strFile, Long(strFileAlt));
    EXPECT_EQ(strFolder, Long(strFolderAlt));
    EXPECT_EQ(strFile, Long(Short(strFile)));
    EXPECT_EQ(strFile, Long(strFile));
    EXPECT_EQ(strFile, Long(Lower(strFile))); // in the case that the file system has
    EXPECT_EQ(strFolder + L"\\", Long(strFolderAlt + L"\\"));
}

TEST_F(ShortToLFNTest, SlashesBecomeBackslashes) {
    std::wstring str = strFileAlt;
    std::replace(str.begin(), str.end(), L'\\', L'/');
    EXPECT_EQ(strFile, Long(str));
    EXPECT_EQ(L"a\\b", Long(L"a/b"));
}

TEST_F(ShortToLFNTest, TailThatIsMissingStays) {
    EXPECT_EQ(strFolder + L"\\NOSUCH~1\\x", Long(strFolderAlt + L"\\NOSUCH~1\\x"));
    EXPECT_EQ(strFile + L"\\x", Long(strFileAlt + L"\\x"));
    EXPECT_EQ(strFolder + L"\\\\" + AltNameOf(strFile),
              Long(strFolderAlt + L"\\\\" + AltNameOf(strFile))); // no name between
}

TEST_F(ShortToLFNTest, DotsAreNoNames) {
    EXPECT_EQ(strFolder + L"\\.", Long(strFolderAlt + L"\\."));
    EXPECT_EQ(strFolder + L"\\..\\A Long Folder\\A Long File.Text",
              Long(strFolderAlt + L"\\..\\" + AltNameOf(strFolder) + L"\\" + AltNameOf(strFile)));
}

TEST_F(ShortToLFNTest, DriveRootGetsItsLetterInUpperCase) {
    EXPECT_EQ(L"C:\\", Long(L"c:\\"));
    EXPECT_EQ(L"C:\\", Long(L"c:/"));
    EXPECT_EQ(L"C:", Long(L"c:"));
    EXPECT_EQ(L"Q:\\", Long(L"q:\\"));
    EXPECT_EQ(L"Q:\\no\\such", Long(L"q:\\no\\such"));
}

TEST_F(ShortToLFNTest, PathsWithoutARootStay) {
    for (const wchar_t* psz : {L"", L"a", L"PROGRA~1", L"c:a", L"\\a", L"\\", L"\\\\"}) {
        EXPECT_EQ(psz, Long(psz));
    }
    EXPECT_EQ(0, ShortToLFN(nullptr));
}

TEST_F(ShortToLFNTest, NetworkRootIsCopied) {
    for (const wchar_t* psz : {L"\\\\server\\share\\FOLDER~1\\x", L"\\\\server\\share\\",
                               L"\\\\server\\share", L"\\\\server\\", L"\\\\server", L"\\\\s"}) {
        EXPECT_EQ(psz, Long(psz));
    }
    EXPECT_EQ(L"\\\\server\\share\\x", Long(L"//server/share/x"));
}

TEST_F(ShortToLFNTest, WhatDoesNotFitIsCut) {
    std::wstring strLong = MakeFolderOfLength(folder.Get(), 250);
    std::wstring strAlt = Short(strLong);
    ASSERT_LT(strAlt.size(), 200u);
    std::wstring strTail = L"\\0123456789abcdef"; // missing
    EXPECT_EQ((strLong + strTail).substr(0, 259), Long(strAlt + strTail));
}

TEST_F(ConvertPathToLFNTest, LeavesTheOutputAloneWithoutARoot) {
    for (const wchar_t* psz : {L"", L"a\\b", L"c:a", L"\\a", L"c:"}) {
        wchar_t szIn[64], szOut[260] = L"before";
        std::wcscpy(szIn, psz);
        ConvertPathToLFN(szOut, szIn, nullptr, nullptr);
        EXPECT_STREQ(L"before", szOut);
        EXPECT_STREQ(psz, szIn);
    }
}

TEST_F(ConvertPathToLFNTest, MendsItsInputAndWritesBackslashes) {
    std::wstring strIn = strFileAlt;
    std::replace(strIn.begin(), strIn.end(), L'\\', L'/');
    std::vector<wchar_t> in(strIn.begin(), strIn.end());
    in.push_back(0);
    wchar_t szOut[260] = L"before";
    ConvertPathToLFN(szOut, in.data(), nullptr, nullptr);
    EXPECT_EQ(strFile, szOut);
    EXPECT_EQ(strIn, in.data());
}

TEST_F(ConvertPathToLFNTest, GoesOnAtGivenPlaces) {
    std::vector<wchar_t> in(strFileAlt.begin(), strFileAlt.end());
    in.push_back(0);
    wchar_t szOut[260] = L"before it";
    ConvertPathToLFN(szOut, in.data(), szOut + 7, in.data() + strFolderAlt.size() + 1);
    EXPECT_STREQ(L"before A Long File.Text", szOut);
}

TEST_F(ConvertPathToLFNTest, NullTextsDoNothing) {
    wchar_t sz[260] = L"C:\\";
    ConvertPathToLFN(nullptr, sz, nullptr, nullptr);
    ConvertPathToLFN(sz, nullptr, nullptr, nullptr);
    EXPECT_STREQ(L"C:\\", sz);
}

// As the shell shows it

TEST_F(DosPathToShellPathTest, CaseAndLongNamesAreTheFileSystems) {
    EXPECT_EQ(strFile, Shown(Lower(strFile)));
    EXPECT_EQ(strFile, Shown(strFileAlt));
    EXPECT_EQ(strFile, Shown(Lower(Short(strFile))));
    std::wstring str = Lower(strFile);
    std::replace(str.begin(), str.end(), L'\\', L'/');
    EXPECT_EQ(strFile, Shown(str));
}

TEST_F(DosPathToShellPathTest, TailThatIsMissingStays) {
    EXPECT_EQ(strFolder + L"\\missing", Shown(Lower(strFolder) + L"\\missing"));
    EXPECT_EQ(strFolder + L"\\Missing\\x", Shown(strFolderAlt + L"\\Missing\\x"));
}

TEST_F(DosPathToShellPathTest, RootsGetTheirLetterInUpperCase) {
    EXPECT_EQ(L"C:\\", Shown(L"c:\\"));
    EXPECT_EQ(L"C:\\", Shown(L"c:/"));
    EXPECT_EQ(L"C:", Shown(L"c:"));
    EXPECT_EQ(L"Q:\\x", Shown(L"q:\\x"));
}

TEST_F(DosPathToShellPathTest, ShortTexts) {
    EXPECT_EQ(L"", Shown(L""));
    EXPECT_EQ(L"A", Shown(L"a"));
    EXPECT_EQ(L"Ab", Shown(L"ab"));
    EXPECT_EQ(L"\\", Shown(L"/"));
    EXPECT_EQ(L"\\a", Shown(L"/a"));
    EXPECT_EQ(L"\u00C4b", Shown(L"\u00E4b"));
    DosPathToShellPath(nullptr);
}

TEST_F(DosPathToShellPathTest, RelativeNamesStayRelative) {
    wchar_t szBefore[MAX_PATH];
    ::GetCurrentDirectoryW(MAX_PATH, szBefore);
    ASSERT_TRUE(::SetCurrentDirectoryW(folder.Get().c_str()));
    EXPECT_EQ(L"A Long Folder", Shown(L"a long folder"));
    EXPECT_EQ(L"A Long Folder\\A Long File.Text", Shown(L"a long folder/a long file.text"));
    EXPECT_EQ(L"c:A Long Folder", Shown(L"c:a long folder").replace(0, 1, L"c"));
    EXPECT_EQ(L"A Long Folder\\..\\A Long Folder", Shown(L"a long folder\\..\\a long folder"));
    EXPECT_EQ(L"no such", Shown(L"no such"));
    ::SetCurrentDirectoryW(szBefore);
}

TEST_F(DosPathToShellPathTest, PathBelowASingleSeparatorKeepsIt) {
    std::wstring strNoDrive = strFile.substr(2);
    wchar_t szBefore[MAX_PATH];
    ::GetCurrentDirectoryW(MAX_PATH, szBefore);
    ASSERT_TRUE(::SetCurrentDirectoryW(folder.Get().c_str()));
    EXPECT_EQ(strNoDrive, Shown(Lower(strNoDrive)));
    ::SetCurrentDirectoryW(szBefore);
}

TEST_F(DosPathToShellPathTest, OneOfTwoSeparatorsBeforeTheLastNameGoes) {
    EXPECT_EQ(strFolder, Shown(folder.Get() + L"\\/a long folder"));
    EXPECT_EQ(L"C:\\windows", Shown(L"c:\\\\WINDOWS"));
}

TEST_F(DosPathToShellPathTest, NetworkPathsStay) {
    EXPECT_EQ(L"\\\\server\\share\\x", Shown(L"\\\\server\\share\\x"));
    EXPECT_EQ(L"\\\\server", Shown(L"\\\\server"));
}

TEST_F(DosPathToShellPathTest, DevicesStay) {
    std::vector<std::wstring> names = {L"NUL",    L"con",     L"Aux",   L"PRN",
                                       L"CONIN$", L"conout$", L"clock$"};
    for (int n = 0; n < 10; ++n) {
        names.push_back(L"COM" + std::to_wstring(n));
        names.push_back(L"lpt" + std::to_wstring(n));
    }
    // Where the platform finds something it may spell that its own way.
    auto same = [](const std::wstring& strExpected, const std::wstring& str) {
        return Lower(strExpected) == Lower(Shown(str));
    };
    for (const std::wstring& strName : names) {
        std::wstring strDevice = strName + L":";
        EXPECT_EQ(strDevice, Shown(strDevice));
        EXPECT_EQ(strDevice + L":", Shown(strDevice + L":"));
        EXPECT_TRUE(same(strName, strName)) << strName;
        EXPECT_TRUE(same(strDevice + L"\\x", strDevice + L"/x")) << strName;
        for (const std::wstring& strBefore :
             {std::wstring(), std::wstring(L"C:\\"), strFolder + L"\\", std::wstring(L"C:"),
              std::wstring(L"x\\"), std::wstring(L"\\\\.\\"), std::wstring(L"\\")}) {
            for (const wchar_t* pszBehind :
                 {L"", L":", L":x", L":\\", L":\\x", L"\\x", L"::", L":.txt"}) {
                std::wstring str = Shown(strBefore + strName + pszBehind);
                EXPECT_NE(L"", str) << strBefore << strName << pszBehind;
                EXPECT_LT(str.size(), 260u);
            }
        }
    }
}

TEST_F(DosPathToShellPathTest, FolderThatLooksLikeAnEnvironmentString) {
    ASSERT_TRUE(::SetEnvironmentVariableW(L"TESSALY_CASE", L"other"));
    std::wstring strOdd = folder.File(L"%TESSALY_CASE%");
    std::filesystem::create_directory(strOdd);
    folder.MakeFile(L"%TESSALY_CASE%\\file", "");
    EXPECT_EQ(folder.File(L"other\\file"), Shown(strOdd + L"\\file"));
    EXPECT_EQ(strOdd, Shown(strOdd)); // the last name is not a folder above
    ::SetEnvironmentVariableW(L"TESSALY_CASE", nullptr);
}

TEST_F(DosPathToShellPathTest, ResultThatReachesTheLimitIsEmpty) {
    std::wstring strOdd = folder.File(L"%T%");
    std::filesystem::create_directory(strOdd);
    folder.MakeFile(L"%T%\\file", "");
    std::size_t cchOthers = folder.Get().size() + 1 + 5; // all but what %T% stands for
    for (auto [cchAll, bFits] : {std::pair{259u, true}, {260u, false}}) {
        std::wstring strValue(cchAll - cchOthers, L'v');
        ASSERT_TRUE(::SetEnvironmentVariableW(L"T", strValue.c_str()));
        EXPECT_EQ(bFits ? folder.File(strValue + L"\\file") : L"", Shown(strOdd + L"\\file"));
    }
    ASSERT_TRUE(::SetEnvironmentVariableW(L"T", std::wstring(300, L'v').c_str()));
    EXPECT_EQ(L"", Shown(strOdd + L"\\file"));
    ::SetEnvironmentVariableW(L"T", nullptr);
}

TEST_F(DosPathToShellPathTest, LongestPath) {
    LongestFile file(folder.Get());
    EXPECT_EQ(file.Path(0), Shown(Lower(file.Path(0))));
}

// Odd names

/// A file for the length of a block.
struct OddFile {
    explicit OddFile(const std::wstring& str) : strPath(str) {
        h = ::CreateFileW(str.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        ::CloseHandle(h);
    }
    OddFile(const OddFile&) = delete;
    OddFile& operator=(const OddFile&) = delete;
    ~OddFile() { ::DeleteFileW(strPath.c_str()); }
    std::wstring strPath;
    HANDLE h;
};

TEST_F(ShortTest, NameOf255Characters) {
    OddFile file(L"C:\\tessaly " + std::wstring(247, L'n'));
    if (file.h == INVALID_HANDLE_VALUE) GTEST_SKIP() << "no file can be made in the drive's root";
    std::wstring strAlt = L"C:\\" + AltNameOf(file.strPath);
    ASSERT_LT(strAlt.size(), 20u);
    EXPECT_EQ(strAlt, Short(file.strPath));
    EXPECT_EQ(file.strPath, Long(strAlt));
    EXPECT_EQ(file.strPath, Shown(Lower(strAlt)));
    // 255 and the root leave room for a separator, and for nothing behind it.
    EXPECT_EQ(file.strPath + L"\\", Long(strAlt + L"\\missing"));
}

TEST_F(ShortTest, NamesBeyondAscii) {
    for (const wchar_t* psz : {L"\u00C4 Long \u00D6 Name", L"\U0001F600 long \U00020000 name",
                               L"100% A Long Name", L"%%", L"a+b;c,d=[e] long"}) {
        std::wstring strOdd = folder.MakeFile(psz, "");
        ASSERT_EQ(1, FileExists(strOdd.c_str()));
        std::wstring strLower = strOdd;
        ::CharLowerW(strLower.data());
        std::wstring strShort = Short(strOdd);
        EXPECT_EQ(1, FileExists(strShort.c_str()));
        EXPECT_EQ(strOdd, Long(strShort));
        EXPECT_EQ(strOdd, Long(strLower));
        EXPECT_EQ(strOdd, Shown(strShort));
        EXPECT_EQ(strOdd, Shown(strLower));
    }
}

TEST_F(ShortTest, MaskBecomesTheFirstNameThatFits) {
    EXPECT_EQ(strFolder, Long(folder.Get() + L"\\A Lon*"));
    EXPECT_EQ(strFile, Shown(folder.Get() + L"\\a*\\*.t?xt"));
}

// Random paths: every call asks the file system, so there are fewer

TEST_F(ShortTest, RandomPaths) {
    RandomPaths random(8104);
    PathBuffer path;
    for (int i = 0; i < 300; ++i) {
        std::wstring str = random.Next(259);
        if (random.Below(2) == 0) str = strFolderAlt + L"\\" + str;
        str = str.substr(0, 259);
        path.Set(str);
        int bShort = ConvertToShortPath(path, MAX_PATH);
        ASSERT_LT(path.Str().size(), 260u);
        ASSERT_TRUE(bShort || path.Str() == str);
        path.Set(str);
        ASSERT_EQ(1, ShortToLFN(path));
        ASSERT_LT(path.Str().size(), 260u);
        ASSERT_EQ(std::wstring::npos, path.Str().find(L'/'));
        path.Set(str);
        DosPathToShellPath(path);
        ASSERT_LT(path.Str().size(), 260u);
        ASSERT_EQ(std::wstring::npos, path.Str().find(L'/'));
    }
}

TEST_F(ShortTest, RandomPathsBehindAGuardPage) {
    RandomPaths random(8105);
    FrontGuardedPath front;
    for (int i = 0; i < 300; ++i) {
        std::wstring str = random.Next();
        ConvertToShortPath(front.Put(str), MAX_PATH);
        DosPathToShellPath(front.Put(str.substr(0, 259)));
        // No guard page behind these: the platform here reads eight bytes of any text.
        const wchar_t* psz = str.c_str();
        ASSERT_EQ(FileOrFolderExists(psz), FileExists(psz) + FolderExists(psz));
        ASSERT_EQ(IsFileOrFolderExists(psz), IsFileExists(psz) + IsFolderExists(psz));
        ASSERT_LE(IsFileOrFolderExists(psz), FileOrFolderExists(psz));
        CanRecycle(psz);
        wchar_t szOut[8];
        int bAlt = GetAltFileName(szOut, 8, psz);
        ASSERT_EQ(bAlt, *szOut != 0);
    }
}

TEST_F(ShortTest, RandomFoldersAreMadeOrNot) {
    RandomPaths random(8106);
    GuardedArea in(600 * sizeof(wchar_t));
    constexpr std::wstring_view kPieces[] = {L"\\", L"/", L"a", L"b", L"file"};
    folder.MakeFile(L"file", "");
    int nMade = 0;
    for (int i = 0; i < 300; ++i) {
        std::wstring str = folder.Get() + L"\\";
        for (auto n = random.Below(8); n > 0; --n) str += kPieces[random.Below(std::size(kPieces))];
        if (random.Below(20) == 0) str.append(200 + random.Below(80), L'x');
        int bMade = CreateFolder(in.Put(str));
        ASSERT_EQ(bMade, FolderExists(in.Put(str))) << testing::PrintToString(str);
        nMade += bMade;
    }
    EXPECT_GT(nMade, 100);
}

// Mix paths

const wchar_t* kNull = nullptr;

std::wstring Mix(const std::wstring& strPath, int nExpected = 1) {
    PathBuffer out(L"before", 600);
    EXPECT_EQ(nExpected, MakeMixPath(out, 600, strPath.c_str()));
    return out.Str();
}
std::wstring Level(const std::wstring& strPath) {
    std::wstring strName = strPath.substr(strPath.find_last_of(L'\\') + 1);
    std::wstring strAlt = AltNameOf(strPath);
    return L"|" + strName + (strAlt.empty() ? L"" : L">" + strAlt);
}

class MakeMixPathTest : public testing::Test {
  protected:
    MakeMixPathTest() {
        std::filesystem::create_directory(strFolder);
        folder.MakeFile(L"A Long Folder\\short.txt", "");
        // "C:\users\..." level by level
        strBase = folder.Get().substr(0, 2);
        for (std::size_t n = folder.Get().find(L'\\', 3);; n = folder.Get().find(L'\\', n + 1)) {
            strBase += Level(folder.Get().substr(0, n));
            if (n == std::wstring::npos) break;
        }
    }
    TempFolder folder;
    std::wstring strFolder = folder.File(L"A Long Folder");
    std::wstring strBase; // the mix path of folder
};

// Making

TEST_F(MakeMixPathTest, HoldsLongAndShortNamesOfEachLevel) {
    ASSERT_FALSE(AltNameOf(strFolder).empty());
    EXPECT_EQ(strBase, Mix(folder.Get()));
    EXPECT_EQ(strBase + Level(strFolder), Mix(strFolder));
    std::wstring strExpected = strBase + Level(strFolder) + L"|short.txt";
    EXPECT_EQ(strExpected, Mix(strFolder + L"\\short.txt"));
    // however it is written
    std::wstring strAlt = folder.Get() + L"/" + AltNameOf(strFolder) + L"//SHORT.TXT";
    strAlt[0] = L'c';
    EXPECT_EQ(strExpected, Mix(strAlt));
    EXPECT_EQ(strBase + Level(strFolder), Mix(strFolder + L"\\"));
}

TEST_F(MakeMixPathTest, RootIsOneLevel) {
    EXPECT_EQ(L"C:", Mix(L"c:\\"));
    EXPECT_EQ(L"C:", Mix(L"C:"));
    EXPECT_EQ(L"Q:", Mix(L"q:/"));
    EXPECT_EQ(L"\\\\server\\share", Mix(L"\\\\server\\share"));
    EXPECT_EQ(L"\\\\server\\share", Mix(L"\\\\server\\share\\"));
    EXPECT_EQ(L"\\\\server", Mix(L"\\\\server"));
}

TEST_F(MakeMixPathTest, ConnectedDriveHasTheConnectionsNameToo) {
    FakeDrives drives;
    drives.Connect(L"X:", L"\\\\Server\\Share");
    EXPECT_EQ(L"X:>\\\\Server\\Share", Mix(L"x:\\"));
    drives.types[L'C'] = DRIVE_REMOTE; // remote, but with no name
    EXPECT_EQ(L"C:", Mix(L"C:\\"));
    drives.connections.push_back({L"C:", L"\\\\s\\c\\"});
    EXPECT_EQ(L"C:>\\\\s\\c" + strBase.substr(2), Mix(folder.Get()));
    drives.types[L'C'] = DRIVE_FIXED; // with a name, but not remote
    EXPECT_EQ(strBase, Mix(folder.Get()));
}

TEST_F(MakeMixPathTest, LevelThatIsMissingMakesItEmpty) {
    EXPECT_EQ(L"", Mix(folder.Get() + L"\\missing", 0));
    EXPECT_EQ(L"", Mix(folder.Get() + L"\\missing\\x", 0));
    EXPECT_EQ(L"", Mix(strFolder + L"\\short.txt\\x", 0));
    EXPECT_EQ(L"", Mix(L"q:\\x", 0));
    EXPECT_EQ(L"", Mix(L"\\\\server\\share\\x", 0));
}

TEST_F(MakeMixPathTest, PathWithoutARootIsEmpty) {
    for (const wchar_t* psz : {L"", L"x", L"C:x", L"\\", L"\\windows", L"1:\\", L"\\\\"}) {
        EXPECT_EQ(L"", Mix(psz, 0));
    }
    PathBuffer out(L"before");
    EXPECT_EQ(0, MakeMixPath(out, MAX_PATH, nullptr));
    EXPECT_EQ(L"", out.Str());
    EXPECT_EQ(0, MakeMixPath(nullptr, MAX_PATH, L"C:\\"));
}

TEST_F(MakeMixPathTest, HasToFit) {
    std::wstring strExpected = Mix(strFolder);
    PathBuffer exact(L"before", strExpected.size() + 1);
    EXPECT_EQ(1,
              MakeMixPath(exact, static_cast<unsigned>(strExpected.size() + 1), strFolder.c_str()));
    EXPECT_EQ(strExpected, exact.Str());
    for (std::size_t cch = strExpected.size(); cch > 0; --cch) {
        PathBuffer small(L"", cch);
        ASSERT_EQ(0, MakeMixPath(small, static_cast<unsigned>(cch), strFolder.c_str()));
        ASSERT_EQ(L"", small.Str());
    }
    exact.Set(L"abc");
    EXPECT_EQ(0, MakeMixPath(exact, 0, strFolder.c_str()));
    EXPECT_EQ(L"abc", exact.Str());
}

TEST_F(MakeMixPathTest, LongestPath) {
    LongestFile file(folder.Get());
    std::wstring strMix = Mix(file.Path(0));
    EXPECT_EQ(1, IsMixPath(strMix.c_str(), file.Path(0).c_str()));
    EXPECT_EQ(L"", Mix(file.Path(1), 0)); // 260 characters
    EXPECT_EQ(L"", Mix(file.Path(0) + L"\\", 0));
}

TEST_F(MakeMixPathTest, NamesBeyondAscii) {
    for (const wchar_t* psz : {L"\u00C4 Long Name", L"\U0001F600 long name", L"%TEMP% long"}) {
        std::wstring strOdd = folder.MakeFile(psz, ""), strMix = Mix(strOdd);
        EXPECT_EQ(strBase + Level(strOdd), strMix);
        EXPECT_EQ(1, IsMixPath(strMix.c_str(), strOdd.c_str()));
        std::wstring strOther = strOdd;
        strOther.back() = L'x';
        EXPECT_EQ(0, IsMixPath(strMix.c_str(), strOther.c_str()));
    }
    std::wstring strMix = Mix(folder.MakeFile(L"\u00C4", ""));
    EXPECT_EQ(0, IsMixPath(strMix.c_str(), folder.File(L"\u00E4").c_str())); // case counts
}

TEST_F(MakeMixPathTest, OutputMayBeThePath) {
    PathBuffer path(strFolder, 600);
    EXPECT_EQ(1, MakeMixPath(path, 600, path));
    EXPECT_EQ(strBase + Level(strFolder), path.Str());
}

TEST_F(MakeMixPathTest, EverySpellingOfThePathIsRecognised) {
    std::wstring strMix = Mix(strFolder + L"\\short.txt");
    std::wstring strAlt = folder.Get() + L"\\" + AltNameOf(strFolder);
    wchar_t szShort[MAX_PATH];
    ::GetShortPathNameW(strFolder.c_str(), szShort, MAX_PATH);
    for (const std::wstring& str : {strFolder, strAlt, std::wstring(szShort)}) {
        EXPECT_EQ(1, IsMixPath(strMix.c_str(), (str + L"\\short.txt").c_str()));
        EXPECT_EQ(1, IsUnderMixPath(strMix.c_str(), (str + L"\\short.txt").c_str()));
        EXPECT_EQ(0, IsMixPath(strMix.c_str(), str.c_str()));
        EXPECT_EQ(0, IsUnderMixPath(strMix.c_str(), str.c_str()));
        EXPECT_EQ(1, IsUnderMixPath(Mix(strFolder).c_str(), (str + L"\\any\\thing").c_str()));
    }
}

// Recognising

struct MatchCase {
    const char* pszName;
    const wchar_t* pszMixPath;
    const wchar_t* pszPath;
    int nIs, nUnder;
};
class MixMatchTest : public testing::TestWithParam<MatchCase> {};

TEST_P(MixMatchTest, Result) {
    GuardedText mix(GetParam().pszMixPath), path(GetParam().pszPath);
    EXPECT_EQ(GetParam().nIs, IsMixPath(mix.Get(), path.Get()));
    EXPECT_EQ(GetParam().nUnder, IsUnderMixPath(mix.Get(), path.Get()));
}
constexpr const wchar_t* kMix = L"C:>\\\\srv\\c|Program Files>PROGRA~1|App";
INSTANTIATE_TEST_SUITE_P(
    Paths, MixMatchTest,
    testing::Values(MatchCase{"LongNames", kMix, L"C:\\Program Files\\App", 1, 1},
                    MatchCase{"ShortName", kMix, L"C:\\PROGRA~1\\App", 1, 1},
                    MatchCase{"NetworkName", kMix, L"\\\\srv\\c\\PROGRA~1\\App", 1, 1},
                    MatchCase{"Slashes", kMix, L"C:/Program Files/App", 1, 1},
                    MatchCase{"SeparatorAtTheEnd", kMix, L"C:\\PROGRA~1\\App\\", 1, 1},
                    MatchCase{"TwoSeparators", kMix, L"C:\\\\PROGRA~1//App", 1, 1},
                    MatchCase{"CaseOfTheDrive", kMix, L"c:\\PROGRA~1\\App", 0, 0},
                    MatchCase{"CaseOfAName", kMix, L"C:\\progra~1\\App", 0, 0},
                    MatchCase{"NetworkNameWithSlashes", kMix, L"//srv/c/PROGRA~1/App", 0, 0},
                    MatchCase{"Below", kMix, L"C:\\PROGRA~1\\App\\x", 0, 1},
                    MatchCase{"DeepBelow", kMix, L"C:\\PROGRA~1\\App\\x\\y", 0, 1},
                    MatchCase{"Above", kMix, L"C:\\PROGRA~1", 0, 0},
                    MatchCase{"AboveWithASeparator", kMix, L"C:\\PROGRA~1\\", 0, 0},
                    MatchCase{"Root", kMix, L"C:\\", 0, 0},
                    MatchCase{"LongerName", kMix, L"C:\\PROGRA~1\\App2", 0, 0},
                    MatchCase{"ShorterName", kMix, L"C:\\PROGRA~1\\Ap", 0, 0},
                    MatchCase{"DriveOnly", L"C:", L"C:\\", 1, 1},
                    MatchCase{"DriveWithoutSeparator", L"C:", L"C:", 1, 1},
                    MatchCase{"DriveAndName", L"C:", L"C:x", 0, 0},
                    MatchCase{"OneSpellingBeginsAnother", L"C:|ab>abc|d", L"C:\\abc\\d", 1, 1},
                    MatchCase{"OneSpellingBeginsAnotherTurned", L"C:|abc>ab|d", L"C:\\ab\\d", 1, 1},
                    MatchCase{"SpellingOfAnotherLevel", L"C:|a>b|c", L"C:\\c", 0, 0},
                    MatchCase{"EmptyPath", kMix, L"", 0, 0}, MatchCase{"BothEmpty", L"", L"", 1, 1},
                    MatchCase{"EmptySpelling", L">C:|a", L"C:\\a", 1, 1},
                    MatchCase{"SpellingsMarkInThePath", L"C:|a>b", L"C:\\a>b", 0, 0}),
    kRowName);

TEST(IsMixPath, NullTextsGiveZero) {
    EXPECT_EQ(0, IsMixPath(kNull, L"C:"));
    EXPECT_EQ(0, IsMixPath(L"C:", kNull));
    EXPECT_EQ(0, IsUnderMixPath(kNull, L"C:"));
    EXPECT_EQ(0, IsUnderMixPath(L"", kNull));
}

TEST(IsUnderMixPath, EveryPathLiesUnderTheEmptyMixPath) {
    EXPECT_EQ(1, IsUnderMixPath(L"", L"C:\\x"));
    EXPECT_EQ(0, IsMixPath(L"", L"C:\\x"));
}

/// What the two functions say, told another way: the path's levels against each level's spellings.
struct Reference {
    static std::vector<std::wstring> Split(const std::wstring& str, wchar_t ch) {
        std::vector<std::wstring> parts(1);
        for (wchar_t c : str) {
            if (c == ch) {
                parts.emplace_back();
            } else {
                parts.back() += c;
            }
        }
        return parts;
    }
    static std::pair<int, int> Match(const std::wstring& strMix, std::wstring strPath) {
        auto levels = Split(strMix, L'|');
        if (levels.back().empty()) levels.pop_back(); // nothing behind the last mark
        for (const std::wstring& strLevel : levels) {
            bool bFound = false;
            for (const std::wstring& str : Split(strLevel, L'>')) {
                if (!strPath.starts_with(str)) continue;
                std::wstring strRest = strPath.substr(str.size());
                if (!strRest.empty() && strRest[0] != L'\\' && strRest[0] != L'/') continue;
                strPath =
                    strRest.substr(std::min(strRest.find_first_not_of(L"\\/"), strRest.size()));
                bFound = true;
                break;
            }
            if (!bFound) return {0, 0};
        }
        return {strPath.empty(), 1};
    }
};

TEST(IsMixPath, RandomTexts) {
    std::mt19937 random(104);
    constexpr std::wstring_view kMixPieces[] = {L"|",  L"|", L">",  L"a",
                                                L"ab", L"A", L"C:", L"\\\\s"};
    constexpr std::wstring_view kPathPieces[] = {L"\\", L"\\", L"/",     L"a", L"ab",
                                                 L"A",  L"C:", L"\\\\s", L">", L"|"};
    auto make = [&](auto& pieces) {
        std::wstring str;
        for (auto n = random() % 8; n > 0; --n) str += pieces[random() % std::size(pieces)];
        return str;
    };
    GuardedArea mixArea(100), pathArea(100);
    int nMatches = 0;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring strMix = make(kMixPieces), strPath = make(kPathPieces);
        const wchar_t *pszMix = mixArea.Put(strMix), *pszPath = pathArea.Put(strPath);
        auto [nIs, nUnder] = Reference::Match(strMix, strPath);
        ASSERT_EQ(nIs, IsMixPath(pszMix, pszPath))
            << testing::PrintToString(strMix) << testing::PrintToString(strPath);
        ASSERT_EQ(nUnder, IsUnderMixPath(pszMix, pszPath))
            << testing::PrintToString(strMix) << testing::PrintToString(strPath);
        nMatches += nUnder;
    }
    EXPECT_GT(nMatches, kRandomInputs / 100);
}

TEST_F(MakeMixPathTest, RandomPaths) {
    RandomPaths random(105);
    GuardedArea in(300 * sizeof(wchar_t));
    for (int i = 0; i < 3000; ++i) {
        std::wstring str = random.Next();
        if (random.Below(2) == 0) str = folder.Get() + L"\\" + str;
        std::size_t cch = 1 + random.Below(300);
        GuardedMemory out(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(out.Get());
        std::memset(psz, 0xEE, cch * sizeof(wchar_t));
        int nResult = MakeMixPath(psz, static_cast<unsigned>(cch), in.Put(str));
        ASSERT_EQ(nResult, *psz != 0);
        ASSERT_LT(std::wcslen(psz), cch);
    }
}
} // namespace
