#include "files/disk/path_fs.h"
#include "files/fake_drives.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/shell_ear.h"
#include "files/short_names.h"
#include "runtime/base/ownership.h"
#include "runtime/system/system_facts.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cstring>
#include <random>
#include <thread>

namespace {
class PathFsTest : public testing::Test {
  protected:
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"file.txt", "abc");
    std::wstring strFolder = folder.Get();
    std::wstring strMissing = folder.File(L"missing");
};
using Attributes = PathFsTest;
using AltName = PathFsTest;
using FileInUse = PathFsTest;
using DirWritable = PathFsTest;

/// A file held open.
class OpenFile {
  public:
    OpenFile(const std::wstring& strPath, DWORD nAccess, DWORD nShare)
        : h(::CreateFileW(strPath.c_str(), nAccess, nShare, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~OpenFile() { ::CloseHandle(h); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

  private:
    HANDLE h;
};

// Attributes

TEST_F(Attributes, OfFilesAndFolders) {
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(GetFileAttributes2(strFile.c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(GetFileAttributes2(strFile.c_str()) & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(GetFileAttributes2(strFolder.c_str()) & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(strMissing.c_str()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2((strMissing + L"\\below").c_str()));
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(Attributes, OfAMaskAreThoseOfTheFirstThatFits) {
    std::wstring strMask = folder.File(L"fil?.*"), strNone = folder.File(L"x*");
    EXPECT_EQ(GetFileAttributes2(strFile.c_str()), GetFileAttributes2(strMask.c_str()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(strNone.c_str()));
    EXPECT_EQ(1, FileExists(strMask.c_str()));
    EXPECT_EQ(1, FileOrFolderExists(strMask.c_str()));
    EXPECT_EQ(0, IsFileExists(strMask.c_str()));
    EXPECT_EQ(0, IsFileOrFolderExists(strMask.c_str()));
    std::filesystem::create_directory(folder.File(L"inner"));
    EXPECT_EQ(1, FolderExists(folder.File(L"inn*").c_str()));
    EXPECT_EQ(0, IsFolderExists(folder.File(L"inn*").c_str()));
}

struct ExistsCase {
    const char* pszName;
    const wchar_t* pszBelow; // behind the folder's path
    int nFile, nFolder;
};
class ExistsTest : public testing::TestWithParam<ExistsCase> {};

TEST_P(ExistsTest, SameOfBothFamilies) {
    TempFolder folder;
    folder.MakeFile(L"file", "");
    std::wstring str = folder.Get() + GetParam().pszBelow;
    const ExistsCase& row = GetParam();
    EXPECT_EQ(row.nFile, FileExists(str.c_str()));
    EXPECT_EQ(row.nFile, IsFileExists(str.c_str()));
    EXPECT_EQ(row.nFolder, FolderExists(str.c_str()));
    EXPECT_EQ(row.nFolder, IsFolderExists(str.c_str()));
    EXPECT_EQ(row.nFile || row.nFolder, FileOrFolderExists(str.c_str()));
    EXPECT_EQ(row.nFile || row.nFolder, IsFileOrFolderExists(str.c_str()));
}
INSTANTIATE_TEST_SUITE_P(Paths, ExistsTest,
                         testing::Values(ExistsCase{"File", L"\\file", 1, 0},
                                         ExistsCase{"FileInOtherCase", L"\\FILE", 1, 0},
                                         ExistsCase{"FileBehindASlash", L"/file", 1, 0},
                                         ExistsCase{"Folder", L"", 0, 1},
                                         ExistsCase{"FolderWithASeparator", L"\\", 0, 1},
                                         ExistsCase{"Missing", L"\\none", 0, 0},
                                         ExistsCase{"BelowAFile", L"\\file\\x", 0, 0},
                                         ExistsCase{"BelowAMissingFolder", L"\\none\\x", 0, 0}),
                         kRowName);

TEST_F(Attributes, NothingIsFoundUnderNoPath) {
    for (const wchar_t* psz : {static_cast<const wchar_t*>(nullptr), L"", L"\\\\server\\share",
                               L"\\\\server\\share\\x", L"|"}) {
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(psz));
        EXPECT_EQ(0, FileExists(psz));
        EXPECT_EQ(0, FolderExists(psz));
        EXPECT_EQ(0, FileOrFolderExists(psz));
        EXPECT_EQ(0, IsFileExists(psz));
        EXPECT_EQ(0, IsFolderExists(psz));
        EXPECT_EQ(0, IsFileOrFolderExists(psz));
        EXPECT_EQ(0u, FileSize(psz));
    }
    EXPECT_EQ(1, FolderExists(L"."));
    EXPECT_EQ(1, FolderExists(L"\\"));
}

TEST_F(Attributes, LongestPathIsTakenAndLongerOnesAreNot) {
    LongestFile file(folder.Get());
    ASSERT_EQ(259u, file.Path(0).size());
    EXPECT_EQ(1, FileExists(file.Path(0).c_str()));
    EXPECT_EQ(1, IsFileExists(file.Path(0).c_str()));
    EXPECT_EQ(3u, FileSize(file.Path(0).c_str()));
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(file.Path(0).c_str()));
    EXPECT_EQ(1, IsFileOrFolderExists(file.Path(0).c_str()));
    for (std::size_t cchMore : {1u, 2u}) { // 260 and 261 characters, of the same file
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(file.Path(cchMore).c_str()));
        EXPECT_EQ(0, IsFileOrFolderExists(file.Path(cchMore).c_str()));
        EXPECT_EQ(0, FileExists(file.Path(cchMore).c_str()));
        EXPECT_EQ(0, IsFileExists(file.Path(cchMore).c_str()));
        EXPECT_EQ(0u, FileSize(file.Path(cchMore).c_str()));
        EXPECT_EQ(0, IsFileInUse(file.Path(cchMore).c_str()));
    }
}

TEST_F(Attributes, FileSize) {
    EXPECT_EQ(3u, FileSize(strFile.c_str()));
    EXPECT_EQ(0u, FileSize(strMissing.c_str()));
    HANDLE h = ::CreateFileW(strFile.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    LONG nHigh = 1;
    ::SetFilePointer(h, 5, &nHigh, FILE_BEGIN);
    ::SetEndOfFile(h);
    EXPECT_EQ(0x100000005u, FileSize(strFile.c_str())); // also of a file that is held
    ::CloseHandle(h);
}

// Alternate names

TEST_F(AltName, OfALongNameIsThePlatforms) {
    std::wstring strLong = folder.MakeFile(L"a rather long name.text", "");
    std::wstring strAlt = AltNameOf(strLong);
    ASSERT_FALSE(strAlt.empty());
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, strLong.c_str()));
    EXPECT_EQ(strAlt, sz);
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, strFolder.c_str(), L"a rather long name.text"));
    EXPECT_EQ(strAlt, sz);
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(1, GetShortFileName(strLong.c_str(), sz, &data));
    EXPECT_EQ(strAlt, sz);
    EXPECT_STREQ(L"a rather long name.text", data.cFileName);
    EXPECT_EQ(1, GetShortFileName(strLong.c_str(), nullptr, nullptr));
}

TEST_F(AltName, OfAShortNameAndOfAMissingFileIsEmpty) {
    for (const std::wstring& str : {strFile, strMissing, std::wstring()}) {
        wchar_t sz[MAX_PATH] = L"before";
        EXPECT_EQ(0, GetAltFileName(sz, MAX_PATH, str.c_str()));
        EXPECT_STREQ(L"", sz);
        std::wcscpy(sz, L"before");
        EXPECT_EQ(0, GetShortFileName(str.c_str(), sz, nullptr));
        EXPECT_STREQ(L"", sz);
    }
    wchar_t sz[MAX_PATH] = L"before";
    EXPECT_EQ(0, GetAltFileName(sz, MAX_PATH, nullptr));
    EXPECT_STREQ(L"", sz);
}

TEST_F(AltName, FindDataIsGivenForShortNamesAndZeroedForMissingFiles) {
    WIN32_FIND_DATAW data;
    std::memset(&data, 0x55, sizeof(data));
    EXPECT_EQ(0, GetShortFileName(strFile.c_str(), nullptr, &data));
    EXPECT_EQ(3u, data.nFileSizeLow);
    std::memset(&data, 0x55, sizeof(data));
    EXPECT_EQ(0, GetShortFileName(strMissing.c_str(), nullptr, &data));
    const auto* p = reinterpret_cast<const char*>(&data);
    EXPECT_EQ(std::string(sizeof(data), '\0'), std::string(p, sizeof(data)));
}

TEST_F(AltName, IsCutToItsBuffer) {
    std::wstring strLong = folder.MakeFile(L"a rather long name.text", "");
    wchar_t sz[4] = L"xyz";
    EXPECT_EQ(1, GetAltFileName(sz, 4, strLong.c_str()));
    EXPECT_EQ(AltNameOf(strLong).substr(0, 3), sz);
    EXPECT_EQ(0, GetAltFileName(sz, 1, strLong.c_str()));
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    EXPECT_EQ(0, GetAltFileName(sz, 0, strLong.c_str()));
    EXPECT_EQ(L'x', sz[0]);
    EXPECT_EQ(0, GetAltFileName(nullptr, 4, strLong.c_str()));
}

TEST_F(AltName, OfTheLongestPath) {
    LongestFile file(folder.Get());
    wchar_t sz[MAX_PATH];
    WIN32_FIND_DATAW data;
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, file.Path(0).c_str()));
    EXPECT_EQ(AltNameOf(file.Path(0)), sz);
    EXPECT_EQ(1, GetShortFileName(file.Path(0).c_str(), sz, &data));
    EXPECT_EQ(AltNameOf(file.Path(0)), sz);
    for (std::size_t cchMore : {1u, 2u}) {
        EXPECT_EQ(0, GetAltFileName(sz, MAX_PATH, file.Path(cchMore).c_str()));
        EXPECT_STREQ(L"", sz);
        EXPECT_EQ(0, GetShortFileName(file.Path(cchMore).c_str(), sz, &data));
        EXPECT_EQ(L'\0', data.cFileName[0]);
    }
}

TEST_F(AltName, OutputMayBeThePath) {
    wchar_t sz[MAX_PATH];
    std::wstring strLong = folder.MakeFile(L"a rather long name.text", "");
    std::wcscpy(sz, strLong.c_str());
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, sz));
    EXPECT_EQ(AltNameOf(strLong), sz);
    std::wcscpy(sz, strLong.c_str());
    EXPECT_EQ(1, GetShortFileName(sz, sz, nullptr));
    EXPECT_EQ(AltNameOf(strLong), sz);
}

TEST_F(AltName, OfAJoinThatIsTooLongIsEmpty) {
    wchar_t sz[MAX_PATH] = L"before";
    std::wstring strName(260 - folder.Get().size() - 1, L'n'); // 260 with the folder
    EXPECT_EQ(0, GetAltFileName(sz, MAX_PATH, strFolder.c_str(), strName.c_str()));
    EXPECT_STREQ(L"", sz);
    strName.pop_back();
    folder.MakeFile(strName, "");
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, strFolder.c_str(), strName.c_str()));
    EXPECT_EQ(AltNameOf(folder.File(strName)), sz);
}

TEST_F(AltName, FoldersEnvironmentStringsAreExpanded) {
    folder.MakeFile(L"a rather long name.text", "");
    ::SetEnvironmentVariableW(L"TESSALY_FS", strFolder.c_str());
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, GetAltFileName(sz, MAX_PATH, L"%TESSALY_FS%", L"a rather long name.text"));
    ::SetEnvironmentVariableW(L"TESSALY_FS", nullptr);
}

// Files in use

TEST_F(FileInUse, OneThatNobodyHasIsNot) { EXPECT_EQ(0, IsFileInUse(strFile.c_str())); }

TEST_F(FileInUse, OneThatIsOpenIsInUseWhateverItIsSharedFor) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    for (DWORD nShare : {DWORD{0}, DWORD{FILE_SHARE_READ}, kShareAll}) {
        OpenFile holder(strFile, GENERIC_READ, nShare);
        EXPECT_EQ(1, IsFileInUse(strFile.c_str()));
    }
    EXPECT_EQ(0, IsFileInUse(strFile.c_str()));
}

TEST_F(FileInUse, FoldersAndMissingFilesAreNot) {
    EXPECT_EQ(0, IsFileInUse(strFolder.c_str()));
    EXPECT_EQ(0, IsFileInUse(strMissing.c_str()));
    EXPECT_EQ(0, IsFileInUse(L""));
    EXPECT_EQ(0, IsFileInUse(nullptr));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributes2(strMissing.c_str()));
}

TEST_F(FileInUse, ReadOnlyFileCountsAsInUse) {
    ProtectedFile file(folder);
    SKIP_UNLESS_PROTECTED(file);
    EXPECT_EQ(1, IsFileInUse(file.Path().c_str()));
    EXPECT_EQ("old", file.Content());
}

TEST_F(FileInUse, TimesAndContentsStay) {
    constexpr FILETIME kAccess{0x11111110, 0x01D00000}, kWrite{0x22222220, 0x01D10000};
    HANDLE h = ::CreateFileW(strFile.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ::SetFileTime(h, nullptr, &kAccess, &kWrite);
    ::CloseHandle(h);
    EXPECT_EQ(0, IsFileInUse(strFile.c_str()));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    ::GetFileAttributesExW(strFile.c_str(), GetFileExInfoStandard, &data);
    EXPECT_EQ(0, ::CompareFileTime(&kAccess, &data.ftLastAccessTime));
    EXPECT_EQ(0, ::CompareFileTime(&kWrite, &data.ftLastWriteTime));
    EXPECT_EQ("abc", folder.ReadFile(L"file.txt"));
}

// Writable folders

std::wstring TestFileName(DWORD nTime) {
    wchar_t sz[16];
    std::swprintf(sz, 16, L"%08lu.tmp", nTime % 100000000);
    return sz;
}

TEST_F(DirWritable, LeavesNothingBehind) {
    EXPECT_EQ(1, IsDirWritable(strFolder.c_str()));
    EXPECT_EQ(1, IsDirWritable((strFolder + L"\\").c_str()));
    std::error_code ignored;
    int nFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(strFolder, ignored)) {
        ++nFiles;
        EXPECT_EQ(L"file.txt", entry.path().filename());
    }
    EXPECT_EQ(1, nFiles);
}

TEST_F(DirWritable, OnlyFoldersThatExistAre) {
    EXPECT_EQ(0, IsDirWritable(strFile.c_str()));
    EXPECT_EQ(0, IsDirWritable(strMissing.c_str()));
    EXPECT_EQ(0, IsDirWritable(L""));
    EXPECT_EQ(0, IsDirWritable(nullptr));
    EXPECT_EQ(0, IsDirWritable(L"\\\\server\\share"));
}

TEST_F(DirWritable, NotIfTheTestFileCannotBeMade) {
    // Folders in its way, under the names of this second and the next ones.
    DWORD nNow = GetCurTime();
    for (DWORD n = nNow; n < nNow + 30; ++n) {
        std::filesystem::create_directory(folder.File(TestFileName(n)));
    }
    EXPECT_EQ(0, IsDirWritable(strFolder.c_str()));
}

TEST_F(DirWritable, FileOfThatNameIsTakenAndDeleted) {
    DWORD nNow = GetCurTime();
    for (DWORD n = nNow; n < nNow + 30; ++n) folder.MakeFile(TestFileName(n), "old");
    EXPECT_EQ(1, IsDirWritable(strFolder.c_str()));
    int nLeft = 0;
    for (DWORD n = nNow; n < nNow + 30; ++n)
        nLeft += FileExists(folder.File(TestFileName(n)).c_str());
    EXPECT_EQ(29, nLeft);
}

TEST_F(DirWritable, FourBytesAreWritten) {
    // Another name of the file that is taken shows them when it is gone.
    std::wstring strKept = folder.MakeFile(L"kept", "before");
    DWORD nNow = GetCurTime();
    for (DWORD n = nNow; n < nNow + 30; ++n) {
        if (!::CreateHardLinkW(folder.File(TestFileName(n)).c_str(), strKept.c_str(), nullptr)) {
            GTEST_SKIP() << "no second name can be given to a file here";
        }
    }
    EXPECT_EQ(1, IsDirWritable(strFolder.c_str()));
    EXPECT_EQ("\x78\x56\x34\x12re", folder.ReadFile(L"kept"));
}

TEST_F(DirWritable, FolderThatLeavesNoRoomForTheNameIsNot) {
    // The test file's name has 12 characters, with the separator 13.
    for (auto [cchFolder, nExpected] : {std::pair{246u, 1}, {247u, 0}, {259u, 0}}) {
        std::wstring strDeep = MakeFolderOfLength(folder.Get(), cchFolder);
        ASSERT_EQ(1, FolderExists(strDeep.c_str()));
        EXPECT_EQ(nExpected, IsDirWritable(strDeep.c_str())) << cchFolder;
    }
    // With its own separator the folder may be one longer.
    for (auto [cchFolder, nExpected] : {std::pair{247u, 1}, {248u, 0}}) {
        std::wstring strDeep = MakeFolderOfLength(folder.Get(), cchFolder - 1) + L"/";
        EXPECT_EQ(nExpected, IsDirWritable(strDeep.c_str())) << cchFolder;
    }
}

// Folders

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
