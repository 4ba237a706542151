#include "files/read_only.h"
#include "files/shell_ear.h"
#include "files/stream/core_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace {
class CoreFilePathTest : public testing::Test {
  protected:
    std::wstring Path(const wchar_t* pszName = L"file") const { return folder.File(pszName); }
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"file", "abc");
    std::wstring strMissing = Path(L"missing");
};
using CoreFileStatic = CoreFilePathTest;

constexpr FILETIME kTime{0x12345680, 0x01D00000};

// Facts

TEST_F(CoreFileStatic, GetInfo) {
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(1, CoreFile::GetInfo(strFile.c_str(), &data));
    EXPECT_STREQ(L"file", data.cFileName);
    EXPECT_EQ(3u, data.nFileSizeLow);
    EXPECT_EQ(1, CoreFile::GetInfo(folder.Get().c_str(), &data));
    EXPECT_TRUE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(1, CoreFile::GetInfo(strFile.c_str(), nullptr));
    data.nFileSizeLow = 77;
    EXPECT_EQ(0, CoreFile::GetInfo(strMissing.c_str(), &data));
    EXPECT_EQ(77u, data.nFileSizeLow);
    EXPECT_EQ(0, CoreFile::GetInfo(L"", &data));
    EXPECT_EQ(0, CoreFile::GetInfo(nullptr, &data));
}

TEST_F(CoreFileStatic, GetSize) {
    DWORD nHigh = 9;
    EXPECT_EQ(3u, CoreFile::GetSize(strFile.c_str(), &nHigh));
    EXPECT_EQ(0u, nHigh);
    EXPECT_EQ(3u, CoreFile::GetSize(strFile.c_str(), nullptr));
    nHigh = 9;
    EXPECT_EQ(0u, CoreFile::GetSize(strMissing.c_str(), &nHigh));
    EXPECT_EQ(0u, nHigh);
    EXPECT_EQ(3u, CoreFile::GetSize64(strFile.c_str()));
    EXPECT_EQ(0u, CoreFile::GetSize64(strMissing.c_str()));
    EXPECT_EQ(0u, CoreFile::GetSize64(nullptr));
}

TEST_F(CoreFileStatic, SizeIsToldOfAFileThatIsHeld) {
    CoreFile holder(strFile.c_str(), 1);
    EXPECT_EQ(3u, CoreFile::GetSize64(strFile.c_str()));
}

TEST_F(CoreFileStatic, SetAndGetTime) {
    FILETIME ftCreation{}, ftAccess{}, ftWrite{}, ftOther{0x22222220, 0x01D10000};
    EXPECT_EQ(1, CoreFile::SetTime(strFile.c_str(), nullptr, &ftOther, &kTime));
    EXPECT_EQ(1, CoreFile::GetTime(strFile.c_str(), &ftCreation, &ftAccess, &ftWrite));
    EXPECT_EQ(0, ::CompareFileTime(&kTime, &ftWrite));
    EXPECT_EQ(0, ::CompareFileTime(&ftOther, &ftAccess));
    EXPECT_NE(0u, ftCreation.dwHighDateTime);
    EXPECT_EQ(1, CoreFile::GetTime(strFile.c_str(), nullptr, nullptr, nullptr));
    EXPECT_EQ("abc", folder.ReadFile(L"file"));
}

TEST_F(CoreFileStatic, GetTimeOfAMissingFileGivesZeroAndChangesNothing) {
    FILETIME ft{1, 2};
    EXPECT_EQ(0, CoreFile::GetTime(strMissing.c_str(), &ft, &ft, &ft));
    EXPECT_EQ(1u, ft.dwLowDateTime);
}

TEST_F(CoreFileStatic, SetTimeCreatesAMissingFile) {
    EXPECT_EQ(1, CoreFile::SetTime(strMissing.c_str(), nullptr, nullptr, &kTime));
    FILETIME ft{};
    EXPECT_EQ(1, CoreFile::GetTime(strMissing.c_str(), nullptr, nullptr, &ft));
    EXPECT_EQ(0, ::CompareFileTime(&kTime, &ft));
    EXPECT_EQ(0u, CoreFile::GetSize64(strMissing.c_str()));
}

TEST_F(CoreFileStatic, SetTimeGivesZeroWhereItCannotOpen) {
    EXPECT_EQ(0, CoreFile::SetTime(folder.Get().c_str(), nullptr, nullptr, &kTime));
    CoreFile holder(strFile.c_str(), 0);
    EXPECT_EQ(0, CoreFile::SetTime(strFile.c_str(), nullptr, nullptr, &kTime));
}

TEST_F(CoreFileStatic, GetAttrib) {
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(CoreFile::GetAttrib(strFile.c_str()) & FILE_ATTRIBUTE_READONLY);
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_FALSE(CoreFile::GetAttrib(strFile.c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(CoreFile::GetAttrib(folder.Get().c_str()) & FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, CoreFile::GetAttrib(strMissing.c_str()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, CoreFile::GetAttrib(nullptr));
}

TEST_F(CoreFileStatic, CanFind) {
    EXPECT_EQ(1, CoreFile::CanFind(strFile.c_str()));
    EXPECT_EQ(1, CoreFile::CanFind(folder.Get().c_str()));
    ::SetLastError(ERROR_ACCESS_DENIED); // what was there before does not count
    EXPECT_EQ(0, CoreFile::CanFind(strMissing.c_str()));
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(1, CoreFile::CanFind((strMissing + L"\\below").c_str()));
    EXPECT_EQ(1, CoreFile::CanFind(Path(L"a?b").c_str()));
    EXPECT_EQ(1, CoreFile::CanFind(L""));
}

// Deleting and renaming

TEST_F(CoreFileStatic, Delete) {
    EXPECT_EQ(1, CoreFile::Delete(strFile.c_str(), 0));
    EXPECT_FALSE(std::filesystem::exists(strFile));
    EXPECT_EQ(0, CoreFile::Delete(strFile.c_str(), 0));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_EQ(0, CoreFile::Delete(folder.Get().c_str(), 1));
}

TEST_F(CoreFileStatic, DeleteRefusesReadOnlyAndHeldFiles) {
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(0, CoreFile::Delete(strFile.c_str(), 1));
    ::SetFileAttributesW(strFile.c_str(), FILE_ATTRIBUTE_NORMAL);
    CoreFile holder(strFile.c_str(), 0);
    EXPECT_EQ(0, CoreFile::Delete(strFile.c_str(), 1));
    EXPECT_TRUE(std::filesystem::exists(strFile));
}

TEST_F(CoreFileStatic, RenameFile) {
    EXPECT_EQ(1, CoreFile::RenameFile(strFile.c_str(), strMissing.c_str(), 0));
    EXPECT_EQ("abc", folder.ReadFile(L"missing"));
    EXPECT_EQ(0, CoreFile::RenameFile(strFile.c_str(), Path(L"third").c_str(), 1));
}

TEST_F(CoreFileStatic, RenameFileOverwritesNothing) {
    folder.MakeFile(L"other", "xyz");
    EXPECT_EQ(0, CoreFile::RenameFile(strFile.c_str(), Path(L"other").c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), ::GetLastError());
    EXPECT_EQ("abc", folder.ReadFile(L"file"));
    EXPECT_EQ("xyz", folder.ReadFile(L"other"));
}

TEST_F(CoreFileStatic, TheShellIsToldWhenAskedFor) {
    ShellEar ear(folder.Get());
    folder.MakeFile(L"quiet", "");
    EXPECT_EQ(1, CoreFile::RenameFile(Path(L"quiet").c_str(), Path(L"quiet2").c_str(), 0));
    EXPECT_EQ(1, CoreFile::Delete(Path(L"quiet2").c_str(), 0));
    EXPECT_EQ(1, CoreFile::RenameFile(strFile.c_str(), strMissing.c_str(), 1));
    EXPECT_EQ(1, CoreFile::Delete(strMissing.c_str(), 1));
    EXPECT_EQ((std::vector<std::wstring>{L"rename file missing", L"delete missing"}), ear.Hear(2));
}

// Whole contents

TEST_F(CoreFileStatic, ReadFileReadsExactly) {
    char sz[8] = {};
    EXPECT_EQ(1, CoreFile::ReadFile(strFile.c_str(), sz, 3));
    EXPECT_STREQ("abc", sz);
    EXPECT_EQ(1, CoreFile::ReadFile(strFile.c_str(), sz, 2)); // the start of it
    EXPECT_EQ(0, CoreFile::ReadFile(strFile.c_str(), sz, 4));
    EXPECT_EQ(1, CoreFile::ReadFile(strFile.c_str(), nullptr, 0));
    EXPECT_EQ(0, CoreFile::ReadFile(strMissing.c_str(), nullptr, 0));
    EXPECT_EQ(0, CoreFile::ReadFile(strMissing.c_str(), sz, 1));
}

TEST_F(CoreFileStatic, ReadFileSharesWithReaders) {
    char sz[4] = {};
    CoreFile reader(strFile.c_str(), 0);
    EXPECT_EQ(1, CoreFile::ReadFile(strFile.c_str(), sz, 3));
    reader.Close();
    CoreFile writer(strFile.c_str(), 1);
    EXPECT_EQ(0, CoreFile::ReadFile(strFile.c_str(), sz, 3));
}

TEST_F(CoreFileStatic, WriteFileMakesTheContents) {
    EXPECT_EQ(1, CoreFile::WriteFile(strMissing.c_str(), "hello", 5));
    EXPECT_EQ("hello", folder.ReadFile(L"missing"));
    EXPECT_EQ(1, CoreFile::WriteFile(strMissing.c_str(), "hi", 2));
    EXPECT_EQ("hi", folder.ReadFile(L"missing"));
    EXPECT_EQ(1, CoreFile::WriteFile(strMissing.c_str(), nullptr, 0));
    EXPECT_EQ(0u, std::filesystem::file_size(strMissing));
}

TEST_F(CoreFileStatic, WriteFileLeavesTheFileAfterAFailedWrite) {
    EXPECT_EQ(0, CoreFile::WriteFile(strFile.c_str(), nullptr, 5)); // nothing can be read there
    EXPECT_EQ("abc", folder.ReadFile(L"file"));
}

TEST_F(CoreFileStatic, WriteFileRefusesHeldFilesAndFolders) {
    CoreFile holder(strFile.c_str(), 0);
    EXPECT_EQ(0, CoreFile::WriteFile(strFile.c_str(), "new", 3));
    EXPECT_EQ("abc", folder.ReadFile(L"file"));
    EXPECT_EQ(0, CoreFile::WriteFile(folder.Get().c_str(), "new", 3));
    EXPECT_EQ(0, CoreFile::WriteFile(nullptr, "new", 3));
}

TEST_F(CoreFileStatic, WriteFileGivesZeroOnAFullDisk) {
    std::wstring strFull = FullDiskFile();
    if (strFull.empty()) GTEST_SKIP() << "no file here whose disk is full";
    EXPECT_EQ(0, CoreFile::WriteFile(strFull.c_str(), "new", 3));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
}

TEST_F(CoreFileStatic, WriteFileThatFillsTheDiskLeavesTheFileAsItStands) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    std::wstring strOnDisk = disk.MakeFile(L"file", std::string(SmallDisk::kCluster, 'o') + "old");
    ASSERT_TRUE(disk.Fill());
    // The old file has two clusters: so much is written anew, the third finds no room.
    std::string str(3 * SmallDisk::kCluster, 'n');
    EXPECT_EQ(
        0, CoreFile::WriteFile(strOnDisk.c_str(), str.data(), static_cast<unsigned>(str.size())));
    EXPECT_EQ(str.substr(0, 2 * SmallDisk::kCluster), disk.ReadFile(L"file"));
    EXPECT_EQ(0, CoreFile::WriteFile(disk.File(L"other").c_str(), "new", 3));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
    EXPECT_EQ("", disk.ReadFile(L"other"));
    EXPECT_EQ(1, CoreFile::WriteFile(strOnDisk.c_str(), "new", 3)); // this still fits
    EXPECT_EQ("new", disk.ReadFile(L"file"));
}

TEST_F(CoreFileStatic, WriteFileRefusesWhatTheSystemProtects) {
    std::wstring strProtected = UnwritableFile();
    if (strProtected.empty()) GTEST_SKIP() << "no file here that nobody may write";
    EXPECT_EQ(0, CoreFile::WriteFile(strProtected.c_str(), "new", 3));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_EQ(0, CoreFile::SetTime(strProtected.c_str(), nullptr, nullptr, &kTime));
}

TEST_F(CoreFileStatic, WriteFileRefusesReadOnlyFiles) {
    ProtectedFile file(folder);
    SKIP_UNLESS_PROTECTED(file);
    EXPECT_EQ(0, CoreFile::WriteFile(file.Path().c_str(), "new", 3));
    EXPECT_EQ("old", file.Content());
}
} // namespace
