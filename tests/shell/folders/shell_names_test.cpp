#include "runtime/threads/co_init.h"
#include "shell/folders/fake_shell.h"
#include "shell/folders/shell_names.h"
#include "shell/folders/shortcuts.h"
#include "shell/folders/special_folders.h"
#include "shell/namespace/pidl.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

namespace {
constexpr DWORD kFolder = SFGAO_FOLDER | SFGAO_FILESYSTEM;

/// C:\a with a zip file that is shown as a folder, with folders in it; a folder that no file system
/// has, with things in it.
class ShellNamesTest : public testing::Test {
  protected:
    ShellNamesTest() {
        GetSPEC_FOLDER_DATA(1);
        nDrives = shell.Add(0, L"Drives", SFGAO_FOLDER);
        nDrive = shell.Add(nDrives, L"Disk (C:)", kFolder, L"C:\\");
        nFolder = shell.Add(nDrive, L"a", kFolder, L"C:\\a");
        nZip = shell.Add(nFolder, L"b.zip", kFolder | SFGAO_BROWSABLE, L"C:\\a\\b.zip");
        nInZip = shell.Add(nZip, L"c", SFGAO_FOLDER);
        nDeep = shell.Add(nInZip, L"d", 0);
        nDeepest = shell.Add(shell.Add(nInZip, L"e", SFGAO_FOLDER), L"f.txt", 0);
        nFile = shell.Add(nFolder, L"f.txt", SFGAO_FILESYSTEM, L"C:\\a\\f.txt");
        nPanel = shell.Add(nDrives, L"Panel", SFGAO_FOLDER);
        nApplet = shell.Add(nPanel, L"Applet", 0);
        nGuid = shell.Add(nDrives, L"Thing", SFGAO_FOLDER, L"::{1234}");
        shell[nGuid].strAddress = L"Address of Thing";
    }
    ~ShellNamesTest() override {
        GetSPEC_FOLDER_DATA(1);
        EXPECT_EQ(0, FakeShell::nFolders);
    }
    std::wstring Name(int n, int bFull) {
        wchar_t sz[MAX_PATH] = L"old";
        int nResult = GetShellNameOf(shell.List(n), sz, MAX_PATH, bFull);
        EXPECT_EQ(sz[0] != 0, nResult != 0);
        return sz;
    }
    FakeShell shell;
    int nDrives, nDrive, nFolder, nZip, nInZip, nDeep, nDeepest, nFile, nPanel, nApplet, nGuid;
};

TEST_F(ShellNamesTest, PathOfFileSystemObjectsAlone) {
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(1, GetPathOf(shell.List(nFile), sz, MAX_PATH, 0, 0));
    EXPECT_STREQ(L"C:\\a\\f.txt", sz);
    EXPECT_EQ(0, GetPathOf(shell.List(nPanel), sz, MAX_PATH, 0, 0));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, GetPathOf(shell.List(nDeep), sz, MAX_PATH, 1, 1));
    EXPECT_STREQ(L"", sz);
}

TEST_F(ShellNamesTest, PathOfTheDesktopOnlyWhenAskedFor) {
    shell.special = {
        {CSIDL_DESKTOPDIRECTORY, shell.Add(nFolder, L"Desktop", kFolder, L"C:\\a\\Desktop")}};
    wchar_t sz[MAX_PATH];
    MadeList empty = shell.List(0);
    for (const ITEMIDLIST* pidl :
         {static_cast<const ITEMIDLIST*>(nullptr), static_cast<const ITEMIDLIST*>(empty)}) {
        wcscpy(sz, L"old");
        EXPECT_EQ(0, GetPathOf(pidl, sz, MAX_PATH, 0, 0));
        EXPECT_STREQ(L"", sz);
        EXPECT_EQ(1, GetPathOf(pidl, sz, MAX_PATH, 1, 0));
        EXPECT_STREQ(L"C:\\a\\Desktop", sz);
    }
    shell.special.clear();
    EXPECT_EQ(0, GetPathOf(nullptr, sz, MAX_PATH, 1, 0));
    EXPECT_STREQ(L"", sz);
}

TEST_F(ShellNamesTest, SizeOfOneStillGivesTheWholePath) {
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(1, GetPathOf(shell.List(nFile), sz, 1, 0, 0));
    EXPECT_STREQ(L"C:\\a\\f.txt", sz);
    EXPECT_EQ(1, GetShellNameOf(shell.List(nFile), sz, 1, 1));
    EXPECT_STREQ(L"C:\\a\\f.txt", sz);
}

TEST_F(ShellNamesTest, EmptyListAndNullAreTheDesktop) {
    for (int bFull : {0, 1}) {
        wchar_t sz[MAX_PATH];
        EXPECT_EQ(1, GetShellNameOf(nullptr, sz, MAX_PATH, bFull));
        EXPECT_STREQ(L"Desk of all", sz);
        EXPECT_EQ(L"Desk of all", Name(0, bFull));
    }
    wchar_t sz[5];
    EXPECT_EQ(1, GetShellNameOf(nullptr, sz, 5, 0));
    EXPECT_STREQ(L"Desk", sz);
}

TEST_F(ShellNamesTest, NameInItsFolder) {
    EXPECT_EQ(L"Drives", Name(nDrives, 0));
    EXPECT_EQ(L"Disk (C:)", Name(nDrive, 0));
    EXPECT_EQ(L"f.txt", Name(nFile, 0));
    EXPECT_EQ(L"d", Name(nDeep, 0));
    EXPECT_EQ(L"Applet", Name(nApplet, 0));
    EXPECT_EQ(L"Thing", Name(nGuid, 0));
}

TEST_F(ShellNamesTest, FullNameIsThePath) {
    EXPECT_EQ(L"C:\\", Name(nDrive, 1));
    EXPECT_EQ(L"C:\\a\\f.txt", Name(nFile, 1));
    EXPECT_EQ(L"C:\\a\\b.zip", Name(nZip, 1));
}

TEST_F(ShellNamesTest, FullNameOfAClassIdIsTheDesktopsAddress) {
    EXPECT_EQ(L"Address of Thing", Name(nGuid, 1));
    EXPECT_EQ(1, shell.CountOf(L"Name " + std::to_wstring(nGuid) + L" 0"));
}

TEST_F(ShellNamesTest, InsideAnExtensionThePathGoesOnWithSlashes) {
    EXPECT_EQ(L"C:\\a\\b.zip/c", Name(nInZip, 1));
    EXPECT_EQ(L"C:\\a\\b.zip/c/d", Name(nDeep, 1));
    EXPECT_EQ(L"C:\\a\\b.zip/c/e/f.txt", Name(nDeepest, 1));
}

TEST_F(ShellNamesTest, ListThatRunsOutGivesNothing) {
    EXPECT_EQ(L"", Name(nPanel, 1));
    EXPECT_EQ(L"", Name(nApplet, 1));
    EXPECT_EQ(L"", Name(nDrives, 1));
}

TEST_F(ShellNamesTest, BuiltPathIsBoundedAtEverySize) {
    const std::wstring strPath = L"C:\\a\\b.zip", strWhole = strPath + L"/c/e/f.txt";
    for (unsigned cch = 0; cch <= strWhole.size() + 2; ++cch) {
        SCOPED_TRACE(cch);
        wchar_t sz[MAX_PATH + 8];
        std::fill_n(sz, MAX_PATH + 8, L'#');
        GetShellNameOf(shell.List(nDeepest), sz, cch, 1);
        if (!cch) continue;
        std::wstring str = sz;
        EXPECT_EQ(0u, strWhole.find(str)); // its beginning
        if (cch > strWhole.size()) {
            EXPECT_EQ(strWhole, str);
        } else {
            EXPECT_LT(str.size(), std::max<std::size_t>(cch, strPath.size() + 1));
        }
        for (std::size_t n = MAX_PATH; n < MAX_PATH + 8; ++n) EXPECT_EQ(L'#', sz[n]);
    }
}

TEST_F(ShellNamesTest, NamesInTheirFolderAreBoundedAtEverySize) {
    for (unsigned cch = 0; cch <= 7; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        GetShellNameOf(shell.List(nFile), psz, cch, 0);
        if (cch) {
            EXPECT_EQ(std::wstring(L"f.txt").substr(0, cch - 1), psz);
        }
    }
}

TEST_F(ShellNamesTest, VeryLongNamesInsideAnExtensionDoNotOverflow) {
    int n = nInZip;
    for (int nLevel = 0; nLevel < 6; ++nLevel)
        n = shell.Add(n, std::wstring(300, static_cast<wchar_t>(L'0' + nLevel)), SFGAO_FOLDER);
    wchar_t sz[1000];
    std::fill_n(sz, 1000, L'#');
    GetShellNameOf(shell.List(n), sz, MAX_PATH, 1);
    EXPECT_LT(wcsnlen(sz, 1000), static_cast<std::size_t>(MAX_PATH));
    for (int nAt = MAX_PATH; nAt < 1000; ++nAt) ASSERT_EQ(L'#', sz[nAt]) << nAt;
}

TEST_F(ShellNamesTest, FolderThatVanishesInTheMiddleEnds) {
    shell[nInZip].bGone = 1;
    wchar_t sz[MAX_PATH] = L"old";
    GetShellNameOf(shell.List(nDeepest), sz, MAX_PATH, 1);
    EXPECT_STREQ(L"C:\\a\\b.zip/", sz); // names that cannot be had are empty
    GetShellNameOf(shell.List(nDeepest), sz, MAX_PATH, 0);
    EXPECT_STREQ(L"C:\\a\\b.zip/", sz);
}

TEST_F(ShellNamesTest, NoDesktopNoName) {
    shell.hrDesktop = E_FAIL;
    for (int bFull : {0, 1}) {
        wchar_t sz[MAX_PATH] = L"old";
        EXPECT_EQ(0, GetShellNameOf(nullptr, sz, MAX_PATH, bFull));
        EXPECT_STREQ(L"", sz);
        GetShellNameOf(shell.List(nDeep), sz, MAX_PATH, bFull);
        EXPECT_STREQ(L"", sz);
        wcscpy(sz, L"old");
        EXPECT_EQ(0, GetShellPathOf(L"C:\\a", sz, MAX_PATH, bFull));
        EXPECT_STREQ(L"", sz);
    }
}

TEST_F(ShellNamesTest, ShellPathOfAText) {
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(1, GetShellPathOf(L"c:\\A\\F.TXT", sz, MAX_PATH, 1));
    EXPECT_STREQ(L"C:\\a\\f.txt", sz);
    EXPECT_EQ(1, GetShellPathOf(L"C:\\a\\f.txt", sz, MAX_PATH, 0));
    EXPECT_STREQ(L"f.txt", sz);
    EXPECT_EQ(0, GetShellPathOf(L"C:\\nowhere", sz, MAX_PATH, 1));
    EXPECT_STREQ(L"", sz);
    wcscpy(sz, L"old");
    EXPECT_EQ(0, GetShellPathOf(nullptr, sz, MAX_PATH, 1));
    EXPECT_STREQ(L"", sz);
    wchar_t szNone[2] = {L'#', L'#'};
    GetShellPathOf(L"C:\\nowhere", szNone, 0, 1);
    EXPECT_EQ(L'#', szNone[0]);
}

// Zip folders

TEST_F(ShellNamesTest, ZipFolderIsKnownByItsExtension) {
    const struct {
        const wchar_t* pszPath;
        int bZip;
    } rows[] = {{L"C:\\x.ZIP", 1},     {L"C:\\x.zip", 1},     {L"C:\\x.ZiP", 1},
                {L"C:\\x.zip\\y", 0},  {L"C:\\x.zipx", 0},    {L"C:\\x.zi", 0},
                {L"C:\\zip", 0},       {L"C:\\.zip", 1},      {L"C:\\x.zip.txt", 0},
                {L"C:\\x.txt.zip", 1}, {L"C:\\a.zip\\zip", 0}};
    for (const auto& row : rows) {
        int n = shell.Add(nDrive, L"x", SFGAO_FILESYSTEM, row.pszPath);
        EXPECT_EQ(row.bZip, IsZipFolder(shell.List(n))) << testing::PrintToString(row.pszPath);
    }
    EXPECT_EQ(0, IsZipFolder(shell.List(nPanel)));
    EXPECT_EQ(0, IsZipFolder(shell.List(nInZip)));
    EXPECT_EQ(0, IsZipFolder(nullptr));
}

TEST_F(ShellNamesTest, EmptyListIsTheDesktopsFolderForZips) {
    shell.special = {{CSIDL_DESKTOPDIRECTORY, shell.Add(nFolder, L"D", kFolder, L"C:\\d.zip")}};
    EXPECT_EQ(1, IsZipFolder(nullptr));
    EXPECT_EQ(1, IsZipFolder(shell.List(0)));
}

TEST_F(ShellNamesTest, ParentZipFolder) {
    for (int n : {nZip, nInZip, nDeep, nDeepest}) {
        ITEMIDLIST* pidl = GetParentZipFolder(shell.List(n));
        ASSERT_NE(nullptr, pidl);
        EXPECT_EQ(nZip, FakeShell::FindAbs(pidl));
        PIDL::Free(pidl);
    }
    for (int n : {0, nDrives, nDrive, nFolder, nFile, nPanel, nApplet})
        EXPECT_EQ(nullptr, GetParentZipFolder(shell.List(n))) << n;
    EXPECT_EQ(nullptr, GetParentZipFolder(nullptr));
}

// The network neighbourhood and the platform's own

class RealNames : public testing::Test {
  protected:
    CoInit com;
    TempFolder temp;
};

TEST_F(RealNames, DrivesFoldersAndFiles) {
    const std::wstring strFile = temp.MakeFile(L"One.txt", "x");
    wchar_t sz[MAX_PATH], szExpected[MAX_PATH];
    EXPECT_EQ(1, GetShellPathOf(strFile.c_str(), sz, MAX_PATH, 1));
    EXPECT_EQ(0, ::lstrcmpiW(strFile.c_str(), sz));
    EXPECT_EQ(1, GetShellPathOf(L"C:\\", sz, MAX_PATH, 1));
    EXPECT_STREQ(L"C:\\", sz);
    EXPECT_EQ(1, GetShellPathOf(temp.Get().c_str(), sz, MAX_PATH, 0));
    EXPECT_EQ(0, ::lstrcmpiW(std::filesystem::path(temp.Get()).filename().c_str(), sz));
    EXPECT_EQ(1, GetShellNameOf(nullptr, sz, MAX_PATH, 1));
    ITEMIDLIST empty{};
    EXPECT_EQ(1, GetShellNameOf(&empty, szExpected, MAX_PATH, 0));
    EXPECT_STREQ(szExpected, sz);
}

TEST_F(RealNames, ComputersNameIsTheDrivesFolders) {
    SHFILEINFOW info{};
    PIDL drives;
    ASSERT_EQ(1, drives.Attach(CSIDL_DRIVES));
    ::SHGetFileInfoW(reinterpret_cast<LPCWSTR>(static_cast<ITEMIDLIST*>(drives)), 0, &info,
                     sizeof(info), SHGFI_PIDL | SHGFI_DISPLAYNAME);
    wchar_t sz[MAX_PATH] = L"";
    const wchar_t* psz = GetComputerFolderName(sz, MAX_PATH);
    EXPECT_STREQ(info.szDisplayName, psz);
    EXPECT_STREQ(info.szDisplayName, sz);
    EXPECT_EQ(psz, GetComputerFolderName(nullptr, 0));
    for (unsigned cch : {1u, 2u, 4u}) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* pszOut = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(psz, GetComputerFolderName(pszOut, cch));
        EXPECT_EQ(std::wstring(psz).substr(0, cch - 1), pszOut);
    }
    EXPECT_EQ(psz, GetComputerFolderName(sz, 0));
    FakeShell shell; // is not asked again
    EXPECT_STREQ(info.szDisplayName, GetComputerFolderName(nullptr, 0));
    EXPECT_TRUE(shell.calls.empty());
}

TEST_F(RealNames, LinkOfTheNetworkNeighbourhoodGivesItsTarget) {
    wchar_t szNet[MAX_PATH] = L"";
    ASSERT_TRUE(::SHGetSpecialFolderPathW(nullptr, szNet, CSIDL_NETHOOD, TRUE));
    GetSPEC_FOLDER_DATA(1);
    const std::wstring strLink = std::wstring(szNet) + L"\\place.lnk";
    ASSERT_EQ(1, CreateLink(temp.Get().c_str(), strLink.c_str(), nullptr));
    ITEMIDLIST* pidl = GetPidlOf(strLink.c_str());
    ASSERT_NE(nullptr, pidl);
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, GetPathOf(pidl, sz, MAX_PATH, 0, 0));
    EXPECT_EQ(0, ::lstrcmpiW(strLink.c_str(), sz));
    EXPECT_EQ(1, GetPathOf(pidl, sz, MAX_PATH, 0, 1));
    EXPECT_EQ(0, ::lstrcmpiW(temp.Get().c_str(), sz)) << testing::PrintToString(std::wstring(sz));
    PIDL::Free(pidl);
    ::DeleteFileW(strLink.c_str());
    GetSPEC_FOLDER_DATA(1);
}

TEST_F(RealNames, LinkElsewhereStays) {
    const std::wstring strLink = temp.File(L"place.lnk");
    ASSERT_EQ(1, CreateLink(temp.Get().c_str(), strLink.c_str(), nullptr));
    ITEMIDLIST* pidl = GetPidlOf(strLink.c_str());
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, GetPathOf(pidl, sz, MAX_PATH, 0, 1));
    EXPECT_EQ(0, ::lstrcmpiW(strLink.c_str(), sz));
    PIDL::Free(pidl);
    GetSPEC_FOLDER_DATA(1);
}

TEST_F(RealNames, ZipFileOfThePlatform) {
    // An archive with nothing in it: its end record alone.
    std::string strZip("PK\5\6", 4);
    strZip.resize(22);
    const std::wstring strPath = temp.MakeFile(L"Archive.Zip", strZip);
    ITEMIDLIST* pidl = GetPidlOf(strPath.c_str());
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(1, IsZipFolder(pidl));
    ITEMIDLIST* pidlZip = GetParentZipFolder(pidl);
    EXPECT_EQ(0, PIDL::CompareAbs(pidl, pidlZip));
    PIDL::Free(pidlZip);
    PIDL::Free(pidl);
    pidl = GetPidlOf(temp.Get().c_str());
    EXPECT_EQ(0, IsZipFolder(pidl));
    EXPECT_EQ(nullptr, GetParentZipFolder(pidl));
    PIDL::Free(pidl);
}
} // namespace
