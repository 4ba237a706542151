#include "files/disk/path_home.h"
#include "files/disk/path_spelling.h"
#include "files/module_copy.h"
#include "files/path_support.h"
#include "runtime/base/current_product.h"
#include "store/reg_tree.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <functional>

namespace {
constexpr const wchar_t* kSetup = L"Tessaly\\Setup";

std::wstring ModulePath(HINSTANCE hinst) {
    wchar_t sz[MAX_PATH] = L"";
    ::GetModuleFileNameW(hinst, sz, MAX_PATH);
    return sz;
}
std::wstring FolderOf(const std::wstring& strPath) {
    return strPath.substr(0, strPath.find_last_of(L'\\'));
}
std::wstring NameOf(const std::wstring& strPath) {
    return strPath.substr(strPath.find_last_of(L'\\') + 1);
}

/// What a function writes to a path buffer; its result has to agree.
std::wstring Given(const std::function<int(wchar_t*)>& fn) {
    std::vector<wchar_t> buffer(MAX_PATH, L'#');
    int nResult = fn(buffer.data());
    EXPECT_EQ(nResult, buffer[0] != 0);
    return buffer.data();
}
std::wstring HomeDir() { return Given(GetHomeDir); }
std::wstring LocalPath(const wchar_t* pszName, HINSTANCE hinst = nullptr) {
    return Given([&](wchar_t* psz) { return GetLocalPath(psz, pszName, hinst); });
}
std::wstring LocalQuoted(const wchar_t* pszName, HINSTANCE hinst = nullptr) {
    return Given([&](wchar_t* psz) { return GetLocalFileNameQuoted(psz, pszName, hinst); });
}
std::wstring Satellite(const wchar_t* pszName, HINSTANCE hinst = nullptr) {
    return Given([&](wchar_t* psz) { return GetSatellitePath(psz, pszName, hinst); });
}
std::wstring SatelliteQuoted(const wchar_t* pszName, HINSTANCE hinst = nullptr) {
    return Given([&](wchar_t* psz) { return GetSatellitePathQuoted(psz, pszName, hinst); });
}

class PathHomeTest : public testing::Test {
  protected:
    ~PathHomeTest() override { SetLibraryInstance(hinstBefore); }
    std::wstring Stored() const {
        auto bytes = maker.Dump(kSetup).values[L"Home"].bytes;
        std::wstring str(bytes.size() / sizeof(wchar_t), 0);
        std::memcpy(str.data(), bytes.data(), str.size() * sizeof(wchar_t));
        return str.c_str();
    }
    void Store(const std::wstring& str) const { maker.PutStr(L"Home", str, kSetup); }

    RegTree maker{HKEY_LOCAL_MACHINE, L"Software\\Orvanta"};
    RegTree former{HKEY_LOCAL_MACHINE, L"Software\\Quenby"};
    HINSTANCE hinstBefore = GetLibraryInstance();
    HINSTANCE hinstUser = ::GetModuleHandleW(L"user32.dll");
    std::wstring strProgram = ModulePath(nullptr);
    std::wstring strSystem = FolderOf(ModulePath(hinstUser));
};
using HomeDirTest = PathHomeTest;
using LocalPathTest = PathHomeTest;
using SatelliteTest = PathHomeTest;

// The home folder

TEST_F(HomeDirTest, IsTheStoredOneAsItStands) {
    for (const wchar_t* psz : {L"C:\\Some\\Folder", L"c:\\windows", L"%TEMP%\\x", L"x", L"D:\\"}) {
        Store(psz);
        EXPECT_EQ(psz, HomeDir());
    }
}

TEST_F(HomeDirTest, StoredOneLosesASeparatorAtItsEnd) {
    Store(L"C:\\Some\\Folder\\");
    EXPECT_EQ(L"C:\\Some\\Folder", HomeDir());
    Store(L"\\\\server\\share/");
    EXPECT_EQ(L"\\\\server\\share", HomeDir());
}

TEST_F(HomeDirTest, IsReadAnewWithEachCall) {
    Store(L"C:\\One");
    EXPECT_EQ(L"C:\\One", HomeDir());
    Store(L"C:\\Two");
    EXPECT_EQ(L"C:\\Two", HomeDir());
}

TEST_F(HomeDirTest, IsReadFromTheFormerMakersKeyToo) {
    former.PutStr(L"Home", L"C:\\Old", kSetup);
    EXPECT_EQ(L"C:\\Old", HomeDir());
}

TEST_F(HomeDirTest, IsTheModulesFolderIfNoneIsStored) {
    std::wstring strExpected = FolderOf(strProgram);
    DosPathToShellPath(strExpected.data());
    EXPECT_EQ(strExpected.c_str(), HomeDir());
    Store(L"");
    EXPECT_EQ(strExpected.c_str(), HomeDir());
    SetLibraryInstance(hinstUser);
    EXPECT_EQ(L"C:\\windows\\system32", HomeDir()); // in the case that the file system has
    EXPECT_EQ(0, GetHomeDir(nullptr));
}

TEST_F(HomeDirTest, ModulesFolderIsAsTheShellShowsIt) {
    TempFolder folder;
    std::wstring strShown = folder.File(L"A Long Folder"), strLower = folder.File(L"a long folder");
    std::filesystem::create_directory(strShown);
    ModuleCopy copy(strLower + L"\\copy.dll");
    ASSERT_TRUE(copy.Get());
    if (FolderOf(ModulePath(copy.Get())) == strShown) {
        GTEST_SKIP() << "the platform knows its modules by their true names";
    }
    SetLibraryInstance(copy.Get());
    EXPECT_EQ(strShown, HomeDir());
    SetLibraryInstance(hinstBefore);
}

TEST_F(HomeDirTest, ModulesFolderIsAsItIsWhereTheShellsFormIsTooLong) {
    TempFolder folder;
    std::wstring strOdd = folder.File(L"%T%\\inner");
    std::filesystem::create_directories(strOdd);
    ModuleCopy copy(strOdd + L"\\copy.dll");
    ASSERT_TRUE(copy.Get());
    SetLibraryInstance(copy.Get());
    std::size_t cchRest = folder.Get().size() + 1 + 6; // all but what %T% stands for
    for (auto [cchAll, bFits] : {std::pair{259u, true}, {260u, false}}) {
        std::wstring strValue(cchAll - cchRest, L't');
        ::SetEnvironmentVariableW(L"T", strValue.c_str());
        EXPECT_EQ(bFits ? folder.File(strValue + L"\\inner") : strOdd, HomeDir());
    }
    ::SetEnvironmentVariableW(L"T", nullptr);
    SetLibraryInstance(hinstBefore);
}

TEST_F(HomeDirTest, LongestStoredFolder) {
    std::wstring str = L"C:\\" + std::wstring(256, L'x');
    Store(str);
    EXPECT_EQ(str, HomeDir());
}

TEST_F(HomeDirTest, SetStoresTheModulesFolder) {
    SetLibraryInstance(hinstUser);
    EXPECT_EQ(1, SetHomeDir());
    EXPECT_EQ(L"C:\\windows\\system32", Stored());
    EXPECT_EQ(L"C:\\windows\\system32", HomeDir());
}

TEST_F(HomeDirTest, SetKeepsOneThatIsStored) {
    Store(L"D:\\x");
    EXPECT_EQ(1, SetHomeDir());
    EXPECT_EQ(L"D:\\x", Stored());
}

TEST_F(HomeDirTest, SetFillsAnEmptyOne) {
    Store(L"");
    SetLibraryInstance(hinstUser);
    EXPECT_EQ(1, SetHomeDir());
    EXPECT_EQ(L"C:\\windows\\system32", Stored());
}

// Files in the home folder

TEST_F(LocalPathTest, JoinsTheHomeFolderToTheName) {
    Store(L"C:\\Home");
    EXPECT_EQ(L"C:\\Home\\a.txt", LocalPath(L"a.txt"));
    EXPECT_EQ(L"C:\\Home\\a.txt", LocalPath(L"\\a.txt"));
    EXPECT_EQ(L"C:\\Home\\a\\b", LocalPath(L"a\\b"));
    EXPECT_EQ(L"C:\\Home", LocalPath(L""));
    EXPECT_EQ(L"C:\\Home\\a.txt", LocalPath(L"a.txt", hinstUser)); // the module does not count
    Store(L"C:\\");
    EXPECT_EQ(L"C:\\a.txt", LocalPath(L"a.txt"));
}

TEST_F(LocalPathTest, TakesTheModulesFileNameWithoutAName) {
    Store(L"C:\\Home");
    EXPECT_EQ(L"C:\\Home\\" + NameOf(strProgram), LocalPath(nullptr));
    EXPECT_EQ(L"C:\\Home\\user32.dll", LocalPath(nullptr, hinstUser));
}

TEST_F(LocalPathTest, ExpandsTheHomeFolder) {
    ::SetEnvironmentVariableW(L"TESSALY_HOME", L"D:\\There");
    Store(L"%TESSALY_HOME%\\x");
    EXPECT_EQ(L"D:\\There\\x\\%TESSALY_HOME%", LocalPath(L"%TESSALY_HOME%"));
    ::SetEnvironmentVariableW(L"TESSALY_HOME", nullptr);
}

TEST_F(LocalPathTest, Limits) {
    Store(L"C:\\Home");
    for (auto [cchName, bFits] : {std::pair{251u, true}, {252u, false}, {253u, false}}) {
        std::wstring strName(cchName, L'n'); // 259, 260 and 261 in all
        EXPECT_EQ(bFits ? L"C:\\Home\\" + strName : L"", LocalPath(strName.c_str()));
        EXPECT_EQ(L"", LocalQuoted(strName.c_str()));
    }
    for (auto [cchName, bFits] : {std::pair{249u, true}, {250u, false}}) { // with two quotes
        std::wstring strName(cchName, L'n');
        EXPECT_EQ(bFits ? L"\"C:\\Home\\" + strName + L"\"" : L"", LocalQuoted(strName.c_str()));
    }
}

TEST_F(LocalPathTest, QuotedAlwaysHasQuotes) {
    Store(L"C:\\Home");
    EXPECT_EQ(L"\"C:\\Home\\a\"", LocalQuoted(L"a"));
    EXPECT_EQ(L"\"C:\\Home\\a b\"", LocalQuoted(L"a b"));
    EXPECT_EQ(L"\"C:\\Home\\user32.dll\"", LocalQuoted(nullptr, hinstUser));
}

TEST_F(LocalPathTest, FileNameOfModules) {
    auto name = [](HINSTANCE hinst) {
        return Given([&](wchar_t* psz) { return GetModuleFNameExt(hinst, psz); });
    };
    EXPECT_EQ(L"user32.dll", name(hinstUser));
    EXPECT_EQ(NameOf(strProgram), name(nullptr));
    EXPECT_EQ(L"", name(reinterpret_cast<HINSTANCE>(0x123450000)));
    EXPECT_EQ(L"", LocalPath(nullptr, reinterpret_cast<HINSTANCE>(0x123450000)));
}

TEST_F(LocalPathTest, LocalFileExists) {
    TempFolder folder;
    folder.MakeFile(L"here", "");
    Store(folder.Get());
    EXPECT_EQ(1, LocalFileExists(L"here"));
    EXPECT_EQ(0, LocalFileExists(L"missing"));
    EXPECT_EQ(0, LocalFileExists(L"")); // that is the folder
    EXPECT_EQ(0, LocalFileExists(nullptr));
    folder.MakeFile(NameOf(strProgram), "");
    EXPECT_EQ(1, LocalFileExists(nullptr));
    EXPECT_EQ(0, LocalFileExists(std::wstring(260, L'x').c_str()));
}

TEST_F(LocalPathTest, NameMayBeTheOutput) {
    Store(L"C:\\Home");
    auto inPlace = [](int (*get)(wchar_t*, const wchar_t*, HINSTANCE), HINSTANCE hinst) {
        wchar_t sz[MAX_PATH] = L"a.txt";
        EXPECT_EQ(1, get(sz, sz, hinst));
        return std::wstring(sz);
    };
    EXPECT_EQ(L"C:\\Home\\a.txt", inPlace(GetLocalPath, nullptr));
    EXPECT_EQ(L"\"C:\\Home\\a.txt\"", inPlace(GetLocalFileNameQuoted, nullptr));
    EXPECT_EQ(strSystem + L"\\a.txt", inPlace(GetSatellitePath, hinstUser));
    EXPECT_EQ(L"\"" + strSystem + L"\\a.txt\"", inPlace(GetSatellitePathQuoted, hinstUser));
}

TEST_F(LocalPathTest, NullOutputsGiveZero) {
    EXPECT_EQ(0, GetLocalPath(nullptr, L"a", nullptr));
    EXPECT_EQ(0, GetLocalFileNameQuoted(nullptr, L"a", nullptr));
    EXPECT_EQ(0, GetSatellitePath(nullptr, L"a", nullptr));
    EXPECT_EQ(0, GetSatellitePathQuoted(nullptr, L"a", nullptr));
    EXPECT_EQ(0, GetModuleFNameExt(nullptr, nullptr));
    EXPECT_EQ(0, GetLocalFolder(nullptr, MAX_PATH));
}

// Files beside a module

TEST_F(SatelliteTest, IsWhereTheModuleReallyIs) {
    Store(L"C:\\Home");
    EXPECT_EQ(strSystem + L"\\a.txt", Satellite(L"a.txt", hinstUser));
    EXPECT_EQ(strSystem, Satellite(nullptr, hinstUser));
    EXPECT_EQ(strSystem, Satellite(L"", hinstUser));
    EXPECT_EQ(FolderOf(strProgram) + L"\\a.txt", Satellite(L"a.txt"));
    SetLibraryInstance(hinstUser);
    EXPECT_EQ(strSystem + L"\\a.txt", Satellite(L"a.txt"));
    EXPECT_EQ(L"\"" + strSystem + L"\\a b.txt\"", SatelliteQuoted(L"a b.txt"));
    EXPECT_EQ(L"\"" + strSystem + L"\\a\"", SatelliteQuoted(L"a", hinstUser));
    EXPECT_EQ(L"", Satellite(L"a", reinterpret_cast<HINSTANCE>(0x123450000)));
}

TEST_F(SatelliteTest, Limits) {
    std::size_t cchRoom = 259 - strSystem.size() - 1;
    EXPECT_EQ(259u, Satellite(std::wstring(cchRoom, L'n').c_str(), hinstUser).size());
    EXPECT_EQ(L"", Satellite(std::wstring(cchRoom + 1, L'n').c_str(), hinstUser));
    EXPECT_EQ(259u, SatelliteQuoted(std::wstring(cchRoom - 2, L'n').c_str(), hinstUser).size());
    EXPECT_EQ(L"", SatelliteQuoted(std::wstring(cchRoom - 1, L'n').c_str(), hinstUser));
}

TEST_F(SatelliteTest, ModulesFolderIsNotExpanded) {
    ::SetEnvironmentVariableW(L"TESSALY_SAT", L"other");
    TempFolder folder;
    std::wstring strOdd = folder.File(L"%TESSALY_SAT%");
    std::filesystem::create_directory(strOdd);
    ModuleCopy copy(strOdd + L"\\copy.dll");
    ASSERT_TRUE(copy.Get());
    EXPECT_EQ(strOdd + L"\\a", Satellite(L"a", copy.Get()));
    ::SetEnvironmentVariableW(L"TESSALY_SAT", nullptr);
}

// The running program

TEST(LocalFolder, IsThatOfTheRunningProgram) {
    std::wstring strProgram = ModulePath(nullptr);
    wchar_t szFull[MAX_PATH], szFolder[MAX_PATH];
    EXPECT_EQ(1, GetLocalPathDir(szFull, szFolder, MAX_PATH));
    EXPECT_EQ(strProgram, szFull);
    EXPECT_EQ(FolderOf(strProgram), szFolder);
    szFull[0] = szFolder[0] = L'#';
    EXPECT_EQ(1, GetLocalPathDir(szFull, nullptr, MAX_PATH));
    EXPECT_EQ(1, GetLocalPathDir(nullptr, szFolder, MAX_PATH));
    EXPECT_EQ(strProgram, szFull);
    EXPECT_EQ(FolderOf(strProgram), szFolder);
    EXPECT_EQ(1, GetLocalPathDir(nullptr, nullptr, 0));
    szFolder[0] = L'#';
    EXPECT_EQ(1, GetLocalFolder(szFolder, MAX_PATH));
    EXPECT_EQ(FolderOf(strProgram), szFolder);
}

TEST(LocalFolder, HasToFit) {
    std::wstring strProgram = ModulePath(nullptr), strFolder = FolderOf(strProgram);
    wchar_t szFull[MAX_PATH], szFolder[MAX_PATH];
    auto cchFolder = static_cast<unsigned>(strFolder.size());
    EXPECT_EQ(1, GetLocalFolder(szFolder, cchFolder + 1));
    EXPECT_EQ(strFolder, szFolder);
    EXPECT_EQ(0, GetLocalFolder(szFolder, cchFolder));
    EXPECT_STREQ(L"", szFolder);
    szFolder[0] = L'#';
    EXPECT_EQ(0, GetLocalFolder(szFolder, 0));
    EXPECT_EQ(L'#', szFolder[0]);
    EXPECT_EQ(0, GetLocalPathDir(szFull, szFolder, cchFolder + 1)); // the folder alone fits
    EXPECT_STREQ(L"", szFull);
    EXPECT_EQ(strFolder, szFolder);
}

// Canonical paths

class CanonicalTest : public testing::Test {
  protected:
    CanonicalTest() {
        wchar_t sz[MAX_PATH];
        ::GetSystemDirectoryW(sz, MAX_PATH);
        strSystem = sz;
        ::GetWindowsDirectoryW(sz, MAX_PATH);
        strWindows = sz;
        StoreHome(L"D:\\The Home");
    }
    void StoreHome(const std::wstring& str) const { maker.PutStr(L"Home", str, kSetup); }
    static std::wstring Make(const std::wstring& str) {
        PathBuffer out;
        MakeCanonicalPath(str.c_str(), out);
        return out.Str();
    }
    static std::wstring Back(const std::wstring& str, int nExpected = 1) {
        PathBuffer out(L"before");
        EXPECT_EQ(nExpected, GetPathFromCanonical(str.c_str(), out));
        return out.Str();
    }
    static std::wstring Upper(std::wstring str) {
        ::CharUpperW(str.data());
        return str;
    }
    RegTree maker{HKEY_LOCAL_MACHINE, L"Software\\Orvanta"};
    RegTree former{HKEY_LOCAL_MACHINE, L"Software\\Quenby"};
    std::wstring strSystem, strWindows;
};
using MakeCanonicalPathTest = CanonicalTest;
using GetPathFromCanonicalTest = CanonicalTest;

TEST_F(MakeCanonicalPathTest, FilesInTheThreeFolders) {
    EXPECT_EQ(L"%S\\a.dll", Make(strSystem + L"\\a.dll"));
    EXPECT_EQ(L"%W\\notepad.exe", Make(strWindows + L"\\notepad.exe"));
    EXPECT_EQ(L"%_\\a b.txt", Make(L"D:\\The Home\\a b.txt"));
    EXPECT_EQ(L"%W\\a", Make(Upper(strWindows) + L"/a"));
    EXPECT_EQ(L"%_\\a", Make(L"d:\\THE HOME\\a"));
    // Behind two separators it is another folder's text.
    EXPECT_EQ(strWindows + L"\\\\a", Make(strWindows + L"\\\\a"));
}

TEST_F(MakeCanonicalPathTest, FirstHitCounts) {
    StoreHome(strWindows);
    EXPECT_EQ(L"%W\\a", Make(strWindows + L"\\a"));
    StoreHome(strSystem + L"\\"); // with a separator it is the same folder
    EXPECT_EQ(L"%S\\a", Make(strSystem + L"\\a"));
    StoreHome(L"D:\\x\\");
    EXPECT_EQ(L"%_\\a", Make(L"D:\\x\\a"));
    StoreHome(L"D:\\");
    EXPECT_EQ(L"%_\\a", Make(L"D:\\a"));
}

TEST_F(MakeCanonicalPathTest, OtherPathsAreCopied) {
    for (const std::wstring& str :
         {std::wstring(), std::wstring(L"a"), std::wstring(L"C:"), std::wstring(L"C:\\x"),
          std::wstring(L"D:\\The Home"), std::wstring(L"D:\\The Home\\x\\y"), strWindows + L"x\\a",
          std::wstring(L"%S\\a"), std::wstring(L"\\\\server\\share\\a"), strWindows}) {
        EXPECT_EQ(str, Make(str));
    }
}

TEST_F(MakeCanonicalPathTest, FolderInTheWindowsFolderIsAFileThere) {
    // A path's own folder is asked for, so that the system folder's name lies in the Windows one.
    EXPECT_EQ(L"%W\\system32", Make(strSystem));
}

TEST_F(MakeCanonicalPathTest, NameAloneLiesInNoHomeThatIsUnknown) {
    StoreHome(L"");
    HINSTANCE hinstBefore = GetLibraryInstance();
    SetLibraryInstance(reinterpret_cast<HINSTANCE>(0x123450000)); // no module: no folder either
    EXPECT_EQ(L"a", Make(L"a"));
    EXPECT_EQ(L"\\a", Back(L"%_\\a"));
    SetLibraryInstance(hinstBefore);
}

TEST_F(MakeCanonicalPathTest, FolderWithASeparatorLiesInItself) {
    EXPECT_EQ(L"%W\\windows", Make(L"C:\\windows\\"));
    EXPECT_EQ(L"%_\\The Home", Make(L"D:\\The Home\\"));
    EXPECT_EQ(L"%_\\The Home", Make(L"D:\\The Home/"));
}

TEST_F(MakeCanonicalPathTest, NullsAndInPlace) {
    PathBuffer out(L"before");
    MakeCanonicalPath(nullptr, out);
    EXPECT_EQ(L"", out.Str());
    MakeCanonicalPath(L"x", nullptr);
    out.Set(strWindows + L"\\x");
    MakeCanonicalPath(out, out);
    EXPECT_EQ(L"%W\\x", out.Str());
}

TEST_F(MakeCanonicalPathTest, Limits) {
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring str = strWindows + L"\\" + std::wstring(cch - strWindows.size() - 1, L'n');
        EXPECT_EQ(L"%W\\" + str.substr(0, 259).substr(strWindows.size() + 1), Make(str));
        std::wstring strOther = L"Q:\\" + std::wstring(cch - 3, L'n');
        EXPECT_EQ(strOther.substr(0, 259), Make(strOther));
    }
}

TEST_F(GetPathFromCanonicalTest, TheThreeFolders) {
    EXPECT_EQ(strSystem + L"\\a.dll", Back(L"%S\\a.dll"));
    EXPECT_EQ(strWindows + L"\\notepad.exe", Back(L"%W\\notepad.exe"));
    EXPECT_EQ(L"D:\\The Home\\a b", Back(L"%_\\a b"));
    EXPECT_EQ(strWindows + L"\\a", Back(L"%W/a"));
    EXPECT_EQ(strWindows + L"\\a", Back(L"%Wa"));
    EXPECT_EQ(strWindows + L"\\\\a", Back(L"%W\\\\a")); // one separator is passed over
    EXPECT_EQ(strWindows + L"\\", Back(L"%W"));
    EXPECT_EQ(strWindows + L"\\", Back(L"%W\\"));
}

TEST_F(GetPathFromCanonicalTest, HomeThatIsARootHasItsSeparator) {
    StoreHome(L"D:\\");
    EXPECT_EQ(L"D:\\a", Back(L"%_\\a"));
}

TEST_F(GetPathFromCanonicalTest, OtherLettersStandForNothing) {
    EXPECT_EQ(L"\\a", Back(L"%X\\a"));
    EXPECT_EQ(L"\\a", Back(L"%s\\a")); // case counts
    EXPECT_EQ(L"\\a", Back(L"%wa"));
    EXPECT_EQ(L"\\TEMP%", Back(L"%%TEMP%"));
    EXPECT_EQ(L"\\", Back(L"%"));
    EXPECT_EQ(L"\\", Back(L"%X"));
}

TEST_F(GetPathFromCanonicalTest, OtherTextsAreCopied) {
    for (const wchar_t* psz : {L"C:\\x", L"", L"a%W\\b", L"x", L" %W\\a"})
        EXPECT_EQ(psz, Back(psz, 0));
    PathBuffer out(L"before");
    EXPECT_EQ(0, GetPathFromCanonical(nullptr, out));
    EXPECT_EQ(L"", out.Str());
    EXPECT_EQ(0, GetPathFromCanonical(L"%W\\x", nullptr));
}

TEST_F(GetPathFromCanonicalTest, WorksInPlaceAndTurnsBack) {
    PathBuffer text(L"%S\\x.dll");
    EXPECT_EQ(1, GetPathFromCanonical(text, text));
    EXPECT_EQ(strSystem + L"\\x.dll", text.Str());
    MakeCanonicalPath(text, text);
    EXPECT_EQ(L"%S\\x.dll", text.Str());
}

TEST_F(GetPathFromCanonicalTest, WhatDoesNotFitIsCut) {
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring strName(cch - strWindows.size() - 1, L'n');
        EXPECT_EQ((strWindows + L"\\" + strName).substr(0, 259), Back(L"%W\\" + strName));
        EXPECT_EQ(std::wstring(259, L'x'), Back(std::wstring(cch, L'x'), 0));
    }
}

// Random texts. Each call that may name the home folder reads the registry, so there are fewer.

TEST_F(GetPathFromCanonicalTest, RandomTexts) {
    RandomPaths random(8101);
    GuardedArea in(300 * sizeof(wchar_t));
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = random.Next();
        if (random.Below(4) == 0) str = L"%" + str;
        if (random.Below(8) == 0) str = (random.Below(2) ? L"%W" : L"%S") + str;
        out.Set(L"before");
        int nResult = GetPathFromCanonical(in.Put(str), out);
        std::wstring strOut = out.Str();
        ASSERT_LT(strOut.size(), 260u);
        ASSERT_EQ(!str.empty() && str[0] == L'%', nResult);
        if (!nResult) {
            ASSERT_EQ(str.substr(0, 259), strOut);
        } else {
            ASSERT_NE(std::wstring::npos, strOut.find(L'\\'));
        }
    }
}

TEST_F(MakeCanonicalPathTest, RandomPaths) {
    RandomPaths random(8102);
    GuardedArea in(300 * sizeof(wchar_t));
    PathBuffer out;
    for (int i = 0; i < 3000; ++i) {
        std::wstring str = random.Next();
        if (random.Below(3) == 0) str = strWindows + L"\\" + str;
        out.Set(L"before");
        MakeCanonicalPath(in.Put(str), out);
        std::wstring strOut = out.Str();
        ASSERT_LT(strOut.size(), 260u);
        if (strOut.substr(0, 3) == L"%W\\" && str.substr(0, 3) != L"%W\\") {
            ASSERT_TRUE(str.starts_with(strWindows));
            ASSERT_EQ(std::wstring::npos, strOut.find_first_of(L"\\/:", 3));
        } else {
            ASSERT_EQ(str.substr(0, 259), strOut);
        }
    }
}
} // namespace
