#include "files/disk/path_fs.h"
#include "files/fake_drives.h"
#include "files/read_only.h"
#include "files/shell_ear.h"
#include "files/short_names.h"
#include "runtime/base/ownership.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <atomic>
#include <random>
#include <thread>

namespace {
const wchar_t* kNull = nullptr;

class PathFolderTest : public testing::Test {
  protected:
    std::wstring Path(const wchar_t* pszName) const { return folder.File(pszName); }
    TempFolder folder;
};
using CreateFolderTest = PathFolderTest;
using CreateFolderOther = PathFolderTest;
using RenameTest = PathFolderTest;
using RecycleTest = PathFolderTest;

// CreateFolder

TEST_F(CreateFolderTest, MakesTheWholeChain) {
    EXPECT_EQ(1, CreateFolder(Path(L"a\\b\\c").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"a\\b\\c").c_str()));
    EXPECT_EQ(1, CreateFolder(Path(L"a\\b\\c").c_str())); // it is there
    EXPECT_EQ(1, CreateFolder(Path(L"a\\b\\d\\").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"a\\b\\d").c_str()));
}

TEST_F(CreateFolderTest, TakesSlashesAndDoubledSeparators) {
    std::wstring str = folder.Get();
    std::replace(str.begin(), str.end(), L'\\', L'/');
    EXPECT_EQ(1, CreateFolder((str + L"/e/f").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"e\\f").c_str()));
    EXPECT_EQ(1, CreateFolder((folder.Get() + L"\\\\g\\\\h\\\\").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"g\\h").c_str()));
}

TEST_F(CreateFolderTest, DoesNotChangeItsInput) {
    std::wstring str = folder.Get() + L"/i";
    std::wstring strBefore = str;
    EXPECT_EQ(1, CreateFolder(str.c_str()));
    EXPECT_EQ(strBefore, str);
}

TEST_F(CreateFolderTest, FileInTheWayGivesZeroAndStays) {
    folder.MakeFile(L"file", "abc");
    EXPECT_EQ(0, CreateFolder(Path(L"file").c_str()));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), ::GetLastError());
    EXPECT_EQ(0, CreateFolder(Path(L"file\\below").c_str()));
    EXPECT_EQ(0, CreateFolder(Path(L"file\\below\\deeper\\").c_str()));
    EXPECT_EQ("abc", folder.ReadFile(L"file"));
}

TEST_F(CreateFolderTest, WhatWasMadeBeforeAFailureStays) {
    EXPECT_EQ(0, CreateFolder(Path(L"made\\a?b\\c").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"made").c_str()));
}

TEST_F(CreateFolderTest, RootsAreThere) {
    EXPECT_EQ(1, CreateFolder(L"C:\\"));
    EXPECT_EQ(1, CreateFolder(L"c:/"));
    // Nobody asks for the drive of a root alone.
    EXPECT_EQ(1, CreateFolder(L"Q:\\"));
    EXPECT_EQ(0, CreateFolder(L"Q:\\x"));
}

TEST_F(CreateFolderTest, ShareAndLessGiveOneWithoutAQuestion) {
    for (const wchar_t* psz : {L"\\\\server\\share", L"\\\\server\\share\\", L"\\\\server",
                               L"\\\\server\\", L"\\\\s", L"//server/share", L"\\\\server\\\\"}) {
        ::SetLastError(12345);
        EXPECT_EQ(1, CreateFolder(psz)) << testing::PrintToString(std::wstring(psz));
        EXPECT_EQ(12345u, ::GetLastError()); // no call of the file system left its mark
    }
    EXPECT_EQ(0, CreateFolder(L"\\\\server\\share\\folder")); // there is no such server
}

TEST_F(CreateFolderTest, PathWithoutARootGivesZero) {
    for (const wchar_t* psz : {kNull, L"", L"a", L"a\\b", L"C:", L"C:a", L"\\", L"/", L"\\a",
                               L"\\\\", L"\\a\\b", L"1:\\a"}) {
        EXPECT_EQ(0, CreateFolder(psz));
    }
    EXPECT_EQ(0, FileOrFolderExists(L"\\a"));
}

TEST_F(CreateFolderTest, LongestPathIsTakenAndLongerOnesAreNot) {
    std::wstring strBase = MakeFolderOfLength(folder.Get(), 200);
    // 247 is the platform's own limit for folders; here it takes more.
    for (std::size_t cch : {247u, 258u, 259u}) {
        std::wstring str = strBase + L"\\" + std::wstring(cch - 201, L'x');
        bool bPlatform = ::CreateDirectoryW(str.c_str(), nullptr);
        ::RemoveDirectoryW(str.c_str());
        EXPECT_EQ(bPlatform, CreateFolder(str.c_str())) << cch;
        EXPECT_EQ(bPlatform, FolderExists(str.c_str())) << cch;
    }
    for (std::size_t cch : {260u, 261u, 400u}) {
        std::wstring str = strBase + L"\\" + std::wstring(cch - 201, L'y');
        EXPECT_EQ(0, CreateFolder(str.c_str())) << cch;
        EXPECT_FALSE(std::filesystem::exists(str)) << cch;
    }
}

TEST_F(CreateFolderTest, CursorIsTheSameAfterwardsOnEveryWayOut) {
    folder.MakeFile(L"file", "");
    HCURSOR hcurMine = ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_CROSS));
    HCURSOR hcurBefore = ::SetCursor(hcurMine);
    for (const std::wstring& str : {Path(L"a\\b"), Path(L"file\\x"), std::wstring(L"\\a"),
                                    std::wstring(L"a"), std::wstring(L"\\\\server\\share")}) {
        CreateFolder(str.c_str());
        EXPECT_EQ(hcurMine, ::GetCursor());
    }
    ::SetCursor(hcurBefore);
}

TEST_F(CreateFolderTest, WaitCursorIsShownMeanwhile) {
    std::wstring strDeep = MakeFolderOfLength(folder.Get(), 250);
    const HCURSOR hcurWait = ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT));
    ::SetCursor(nullptr);
    ASSERT_NE(hcurWait, ::GetCursor());
    // Another thread that shares this one's input looks on while folders are made over and over.
    std::atomic<bool> bAttached{false}, bSeen{false}, bOver{false};
    std::thread watcher([&, nMain = ::GetCurrentThreadId()] {
        MSG msg;
        ::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE); // makes the thread's queue
        bAttached = ::AttachThreadInput(::GetCurrentThreadId(), nMain, TRUE) != 0;
        while (bAttached && !bSeen && !bOver) bSeen = ::GetCursor() == hcurWait;
        ::AttachThreadInput(::GetCurrentThreadId(), nMain, FALSE);
    });
    ScopeExit end([&] {
        bOver = true;
        watcher.join();
    });
    EXPECT_TRUE(WaitUntil([&] {
        for (int i = 0; i < 20 && !bSeen; ++i) CreateFolder(strDeep.c_str());
        return bSeen.load();
    })) << "attached: "
        << bAttached;
}

// The other ways to make and remove folders

TEST_F(CreateFolderOther, ExMakesTheChainAndGivesZeroForOneThatIsThere) {
    EXPECT_EQ(1, CreateFolderEx(nullptr, Path(L"a\\b").c_str()));
    EXPECT_EQ(1, FolderExists(Path(L"a\\b").c_str()));
    EXPECT_EQ(0, CreateFolderEx(nullptr, Path(L"a\\b").c_str()));
    EXPECT_EQ(0, CreateFolderEx(nullptr, L"relative\\x"));
    EXPECT_EQ(0, CreateFolderEx(nullptr, nullptr));
}

TEST_F(CreateFolderOther, DirectoryExIsCreateFolder) {
    EXPECT_EQ(1, ::CreateDirectoryExW(Path(L"c\\d").c_str(), 0));
    EXPECT_EQ(1, ::CreateDirectoryExW(Path(L"c\\d").c_str(), 1));
    EXPECT_EQ(1, FolderExists(Path(L"c\\d").c_str()));
    EXPECT_EQ(0, ::CreateDirectoryExW(L"c", 1));
    EXPECT_EQ(0, ::CreateDirectoryExW(nullptr, 1));
}

TEST_F(CreateFolderOther, RemoveDirectoryExTakesEmptyFoldersOnly) {
    ASSERT_EQ(1, CreateFolder(Path(L"a\\b").c_str()));
    EXPECT_EQ(0, RemoveDirectoryEx(Path(L"a").c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DIR_NOT_EMPTY), ::GetLastError());
    EXPECT_EQ(1, RemoveDirectoryEx(Path(L"a\\b").c_str(), 0));
    EXPECT_EQ(1, RemoveDirectoryEx(Path(L"a").c_str(), 1));
    EXPECT_EQ(0, FileOrFolderExists(Path(L"a").c_str()));
    EXPECT_EQ(0, RemoveDirectoryEx(Path(L"a").c_str(), 1));
    folder.MakeFile(L"file", "");
    EXPECT_EQ(0, RemoveDirectoryEx(Path(L"file").c_str(), 1));
    EXPECT_EQ(0, RemoveDirectoryEx(nullptr, 1));
}

// Renaming

/// A path that nobody else uses in a folder outside this environment, where other runs of the tests
/// may be at work; nothing is left there.
class OutsidePath {
  public:
    explicit OutsidePath(const std::wstring& strFolder)
        : str(strFolder + L"\\tessaly_rename_" + std::to_wstring(std::random_device()())) {}
    OutsidePath(const OutsidePath&) = delete;
    OutsidePath& operator=(const OutsidePath&) = delete;
    ~OutsidePath() {
        std::error_code ignored;
        std::filesystem::remove(str, ignored);
    }
    const wchar_t* Get() const { return str.c_str(); }

  private:
    std::wstring str;
};

TEST_F(RenameTest, FileGetsItsNewName) {
    folder.MakeFile(L"old", "abc");
    EXPECT_EQ(1, RenameFile(Path(L"old").c_str(), Path(L"new").c_str(), 0));
    EXPECT_EQ("abc", folder.ReadFile(L"new"));
    EXPECT_EQ(0, FileExists(Path(L"old").c_str()));
    EXPECT_EQ(0, RenameFile(Path(L"old").c_str(), Path(L"third").c_str(), 1));
}

TEST_F(RenameTest, FileGoesToAnotherDrive) {
    wchar_t szOther[MAX_PATH];
    // The Unix side of the same folder's file system is another drive here.
    ::GetCurrentDirectoryW(MAX_PATH, szOther);
    if (szOther[0] == folder.Get()[0]) GTEST_SKIP() << "the tests run on the drive of their folder";
    OutsidePath target(szOther);
    folder.MakeFile(L"old", "abc");
    EXPECT_EQ(1, RenameFile(Path(L"old").c_str(), target.Get(), 0));
    EXPECT_EQ(1, FileExists(target.Get()));
    EXPECT_EQ(0, FileExists(Path(L"old").c_str()));
    EXPECT_EQ(1, RenameFile(target.Get(), Path(L"back").c_str(), 0));
    EXPECT_EQ("abc", folder.ReadFile(L"back"));
}

TEST_F(RenameTest, NothingIsOverwrittenOrDeleted) {
    folder.MakeFile(L"old", "abc");
    folder.MakeFile(L"other", "xyz");
    EXPECT_EQ(0, RenameFile(Path(L"old").c_str(), Path(L"other").c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), ::GetLastError());
    EXPECT_EQ(0, RenameFile(Path(L"old").c_str(), nullptr, 1));
    EXPECT_EQ(0, RenameFolder(Path(L"old").c_str(), nullptr, 1));
    EXPECT_EQ(0, RenameFile(nullptr, Path(L"other2").c_str(), 1));
    EXPECT_EQ(0, RenameFolder(nullptr, Path(L"other2").c_str(), 1));
    EXPECT_EQ("abc", folder.ReadFile(L"old"));
    EXPECT_EQ("xyz", folder.ReadFile(L"other"));
}

TEST_F(RenameTest, FileThatIsHeldStays) {
    folder.MakeFile(L"old", "abc");
    HANDLE h = ::CreateFileW(Path(L"old").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                             OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(0, RenameFile(Path(L"old").c_str(), Path(L"new").c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
    ::CloseHandle(h);
    EXPECT_EQ("abc", folder.ReadFile(L"old"));
}

TEST_F(RenameTest, ReadOnlyFileKeepsItsAttribute) {
    folder.MakeFile(L"old", "abc");
    ::SetFileAttributesW(Path(L"old").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(1, RenameFile(Path(L"old").c_str(), Path(L"new").c_str(), 0));
    EXPECT_TRUE(GetFileAttributes2(Path(L"new").c_str()) & FILE_ATTRIBUTE_READONLY);
    ::SetFileAttributesW(Path(L"new").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(RenameTest, FolderTakesItsFilesAlong) {
    ASSERT_EQ(1, CreateFolder(Path(L"old").c_str()));
    folder.MakeFile(L"old\\file", "abc");
    EXPECT_EQ(1, RenameFolder(Path(L"old").c_str(), Path(L"new").c_str(), 0));
    EXPECT_EQ("abc", folder.ReadFile(L"new\\file"));
    EXPECT_EQ(0, RenameFolder(Path(L"old").c_str(), Path(L"x").c_str(), 1));
}

TEST_F(RenameTest, TheShellIsToldWhenAskedFor) {
    ShellEar ear(folder.Get());
    folder.MakeFile(L"file", "");
    EXPECT_EQ(1, ::CreateDirectoryExW(Path(L"quiet").c_str(), 0));
    EXPECT_EQ(1, RenameFolder(Path(L"quiet").c_str(), Path(L"quiet2").c_str(), 0));
    EXPECT_EQ(1, RemoveDirectoryEx(Path(L"quiet2").c_str(), 0));
    EXPECT_EQ(1, RenameFile(Path(L"file").c_str(), Path(L"file2").c_str(), 0));
    EXPECT_EQ(1, ::CreateDirectoryExW(Path(L"a").c_str(), 1));
    EXPECT_EQ(1, RenameFolder(Path(L"a").c_str(), Path(L"b").c_str(), 1));
    EXPECT_EQ(1, RenameFile(Path(L"file2").c_str(), Path(L"file3").c_str(), 1));
    EXPECT_EQ(1, RemoveDirectoryEx(Path(L"b").c_str(), 1));
    EXPECT_EQ((std::vector<std::wstring>{L"mkdir a", L"rename folder a b", L"rename file2 file3",
                                         L"rmdir b"}),
              ear.Hear(4));
}

TEST_F(RenameTest, LongestPathsAreTakenAndLongerOnesAreNot) {
    LongestFile file(folder.Get());
    for (std::size_t cchMore : {1u, 2u}) { // 260 and 261 characters, of the same file
        std::wstring strLong = file.Path(cchMore);
        EXPECT_EQ(0, RenameFile(strLong.c_str(), Path(L"new").c_str(), 1));
        EXPECT_EQ(0, RenameFolder(strLong.c_str(), Path(L"new").c_str(), 1));
        EXPECT_EQ(0, Recycle(nullptr, strLong.c_str()));
        EXPECT_EQ(1, FileExists(file.Path(0).c_str()));
    }
    EXPECT_EQ(1, RenameFile(file.Path(0).c_str(), Path(L"new").c_str(), 0));
    for (std::size_t cchMore : {1u, 2u}) {
        EXPECT_EQ(0, RenameFile(Path(L"new").c_str(), file.Path(cchMore).c_str(), 1));
        EXPECT_EQ(0, RenameFolder(Path(L"new").c_str(), file.Path(cchMore).c_str(), 1));
        EXPECT_EQ(0, CreateFolderEx(nullptr, file.Path(cchMore).c_str()));
        EXPECT_EQ(0, FileOrFolderExists(file.Path(0).c_str()));
    }
    EXPECT_EQ(1, RenameFile(Path(L"new").c_str(), file.Path(0).c_str(), 0));
    std::filesystem::remove(file.Path(0));
    std::filesystem::create_directory(file.Path(0));
    for (std::size_t cchMore : {1u, 2u}) {
        EXPECT_EQ(0, RemoveDirectoryEx(file.Path(cchMore).c_str(), 1));
    }
    EXPECT_EQ(1, RemoveDirectoryEx(file.Path(0).c_str(), 0));
}

TEST_F(RenameTest, OnlyFilesGoToAnotherFileSystem) {
    OutsidePath other(L"Z:\\dev\\shm");
    ASSERT_EQ(1, CreateFolder(Path(L"old").c_str()));
    if (::MoveFileExW(Path(L"old").c_str(), other.Get(), 0)) {
        GTEST_SKIP() << "this machine has no second file system that folders cannot be moved to";
    }
    EXPECT_EQ(0, RenameFolder(Path(L"old").c_str(), other.Get(), 1));
    EXPECT_EQ(1, FolderExists(Path(L"old").c_str()));
    folder.MakeFile(L"file", "abc");
    EXPECT_EQ(1, RenameFile(Path(L"file").c_str(), other.Get(), 0));
    EXPECT_EQ(0, FileExists(Path(L"file").c_str()));
    EXPECT_EQ(1, RenameFile(other.Get(), Path(L"back").c_str(), 0));
    EXPECT_EQ("abc", folder.ReadFile(L"back"));
}

// The recycle bin

TEST_F(RecycleTest, OnlyFixedDrivesHaveOne) {
    FakeDrives drives;
    drives.types = {{L'A', DRIVE_REMOVABLE}, {L'C', DRIVE_FIXED}, {L'R', DRIVE_REMOTE}};
    EXPECT_EQ(1, CanRecycle(L"C:\\x\\y"));
    EXPECT_EQ(1, CanRecycle(L"c:/"));
    for (const wchar_t* psz : {kNull, L"", L"x", L"C:", L"C:x", L"\\x", L"A:\\x", L"R:\\x",
                               L"Q:\\x", L"\\\\server\\share\\x", L"\\\\C\\D"}) {
        EXPECT_EQ(0, CanRecycle(psz));
    }
}

TEST_F(RecycleTest, TakesFilesAndFoldersAway) {
    std::wstring strFile = folder.MakeFile(L"file", "abc");
    ASSERT_EQ(1, CanRecycle(strFile.c_str()));
    EXPECT_EQ(1, Recycle(nullptr, strFile.c_str()));
    EXPECT_EQ(0, FileExists(strFile.c_str()));
    ASSERT_EQ(1, CreateFolder(Path(L"a\\b").c_str()));
    EXPECT_EQ(1, Recycle(nullptr, Path(L"a").c_str()));
    EXPECT_EQ(0, FileOrFolderExists(Path(L"a").c_str()));
}

TEST_F(RecycleTest, WhatIsTakenAwayLiesInTheBin) {
    wchar_t szHome[MAX_PATH] = L"";
    ::GetEnvironmentVariableW(L"WINEHOMEDIR", szHome, MAX_PATH);
    std::wstring strBin = szHome, strName = std::filesystem::path(folder.Get()).filename();
    if (!strBin.starts_with(L"\\??\\")) GTEST_SKIP() << "only here it is known where the bin lies";
    strBin = strBin.substr(4) + L"\\.local\\share\\Trash\\";
    std::wstring strInfo = strBin + L"info\\" + strName + L".trashinfo";
    strBin += L"files\\" + strName;
    ::DeleteFileW(strInfo.c_str()); // one that is left from another run would take the name
    EXPECT_EQ(0, FileOrFolderExists(strBin.c_str()));
    std::wstring strFile = folder.MakeFile(strName, "abc");
    EXPECT_EQ(1, Recycle(nullptr, strFile.c_str()));
    EXPECT_EQ(1, FileExists(strBin.c_str()));
    ::DeleteFileW(strBin.c_str());
    ::DeleteFileW(strInfo.c_str());
}

TEST_F(RecycleTest, MissingFileGivesZero) {
    EXPECT_EQ(0, Recycle(nullptr, Path(L"missing").c_str()));
    EXPECT_EQ(0, Recycle(nullptr, L""));
    EXPECT_EQ(0, Recycle(nullptr, nullptr));
    EXPECT_EQ(0, Recycle(nullptr, std::wstring(260, L'x').c_str()));
}
} // namespace
