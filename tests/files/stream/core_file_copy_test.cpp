#include "files/memory_stream.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/shell_ear.h"
#include "files/stream/core_file.h"
#include "files/stream/core_file_copy.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
class CopyTest : public testing::Test {
  protected:
    std::wstring Path(const wchar_t* pszName) const { return folder.File(pszName); }
    std::string Content(const wchar_t* pszName) const { return folder.ReadFile(pszName); }
    static bool Exists(const std::wstring& strPath) { return std::filesystem::exists(strPath); }
    int Copy(int bNotify = 0) const {
        return CoreFile::CopyFileW(strSource.c_str(), strTarget.c_str(), bNotify);
    }
    int CopySafe() const { return CoreFile::CopyFileSafe(strSource.c_str(), strTarget.c_str()); }
    TempFolder folder;
    std::wstring strSource = Path(L"source");
    std::wstring strTarget = Path(L"target");
    std::wstring strBackup = Path(L"target.temp");
};
using CoreFileCopy = CopyTest;
using CoreFileCopySafe = CopyTest;

/// A file of the system that tells a size and gives less: reading it is cut short. Empty if this
/// machine has none.
std::wstring ShortFile() {
    std::wstring strPath = L"Z:\\sys\\devices\\system\\cpu\\online";
    std::string strRead(4096, 0);
    CoreFile file(strPath.c_str(), 0);
    if (!file.IsReady() || file.GetSize64() < 2) return L"";
    return file.ReadBin(strRead.data(), file.GetSize(nullptr), nullptr) ? L"" : strPath;
}

std::string Pattern(std::size_t cb) {
    std::string str(cb, 0);
    unsigned n = 12345;
    for (char& ch : str) ch = static_cast<char>((n = n * 1664525 + 1013904223) >> 24);
    return str;
}

// The loop over chunks

struct ChunkCase {
    const char* pszName;
    DWORD cbBuffer;
    DWORD cb;
    std::vector<DWORD> expected;
};
class CopyChunksSizes : public testing::TestWithParam<ChunkCase> {};
TEST_P(CopyChunksSizes, NeverMoreThanTheBufferHolds) {
    MemoryStream source(Pattern(100)), target;
    std::string strBuffer(GetParam().cbBuffer, 0);
    EXPECT_EQ(1, CopyChunks(source, target, strBuffer.data(), GetParam().cbBuffer, GetParam().cb));
    EXPECT_EQ(source.str.substr(0, GetParam().cb), target.str);
    EXPECT_EQ(GetParam().expected, source.reads);
    EXPECT_EQ(GetParam().expected, target.writes);
}
INSTANTIATE_TEST_SUITE_P(
    CopyChunks, CopyChunksSizes,
    testing::Values(ChunkCase{"Nothing", 8, 0, {}}, ChunkCase{"NothingWithoutBuffer", 0, 0, {}},
                    ChunkCase{"OneByte", 8, 1, {1}}, ChunkCase{"Exactly", 8, 8, {8}},
                    ChunkCase{"OneMore", 8, 9, {8, 1}}, ChunkCase{"Twice", 8, 16, {8, 8}},
                    ChunkCase{"TwiceAndRest", 8, 21, {8, 8, 5}}),
    kRowName);

TEST(CopyChunks, StopsAtAFailedRead) {
    MemoryStream source(Pattern(20)), target;
    source.nFailReadAt = 1;
    char buffer[8];
    EXPECT_EQ(0, CopyChunks(source, target, buffer, 8, 20));
    EXPECT_EQ(source.str.substr(0, 8), target.str);
    EXPECT_EQ(2u, source.reads.size());
}

TEST(CopyChunks, StopsAtAShortRead) {
    MemoryStream source(Pattern(12)), target;
    char buffer[8];
    EXPECT_EQ(0, CopyChunks(source, target, buffer, 8, 20));
    EXPECT_EQ(8u, target.str.size());
}

TEST(CopyChunks, StopsWhenTheDiskIsFull) {
    MemoryStream source(Pattern(20)), target;
    target.cbCapacity = 10;
    char buffer[8];
    EXPECT_EQ(0, CopyChunks(source, target, buffer, 8, 20));
    EXPECT_EQ(10u, target.str.size());
    EXPECT_EQ(2u, source.reads.size());
}

TEST(CopyChunks, EveryPlaceWhereADiskIsFullGivesZero) {
    for (std::size_t cbCapacity = 0; cbCapacity <= 20; ++cbCapacity) {
        MemoryStream source(Pattern(20)), target("old");
        target.cbCapacity = cbCapacity;
        char buffer[6];
        EXPECT_EQ(cbCapacity == 20, CopyChunks(source, target, buffer, 6, 20)) << cbCapacity;
        EXPECT_EQ(source.str.substr(0, cbCapacity), target.str.substr(0, cbCapacity));
    }
}

TEST(CopyChunks, WithoutABufferNothingMoves) {
    MemoryStream source("abc"), target;
    EXPECT_EQ(0, CopyChunks(source, target, nullptr, 0, 3));
    EXPECT_TRUE(source.reads.empty());
}

TEST(CopyContents, FillsTheTargetFromItsStartAndCutsItThere) {
    for (DWORD cb : {0u, 5u}) {
        MemoryStream source("abcde"), target("old contents");
        target.nPos = 3;
        char buffer[8];
        EXPECT_EQ(1, CopyContents(source, target, buffer, 8, cb));
        EXPECT_EQ(cb, target.nPos);
        EXPECT_EQ(source.str.substr(0, cb), target.str.substr(0, cb));
        EXPECT_TRUE(target.bCut);
    }
}

TEST(CopyContents, TargetThatCannotBeFilledIsNotCut) {
    MemoryStream source("abcde"), target("old contents");
    char buffer[8];
    target.cbCapacity = 4;
    EXPECT_EQ(0, CopyContents(source, target, buffer, 8, 5));
    EXPECT_FALSE(target.bCut);
    source.nFailReadAt = static_cast<int>(source.reads.size());
    target.cbCapacity = 100;
    EXPECT_EQ(0, CopyContents(source, target, buffer, 8, 5));
    EXPECT_FALSE(target.bCut);
}

TEST(CopyContents, TargetThatCannotBeCutGivesZero) {
    MemoryStream source("abcde"), target("old contents");
    char buffer[8];
    target.bCannotCut = true;
    EXPECT_EQ(0, CopyContents(source, target, buffer, 8, 5));
}

// Copying files

TEST_F(CoreFileCopy, MakesAndOverwritesTheTarget) {
    for (std::size_t cb : {1u, 4096u, 100000u}) {
        std::string strContent = Pattern(cb);
        folder.MakeFile(L"source", strContent);
        EXPECT_EQ(1, Copy());
        EXPECT_EQ(strContent, Content(L"target"));
        EXPECT_EQ(strContent, Content(L"source"));
    }
}

TEST_F(CoreFileCopy, CutsALongerTarget) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "much older");
    EXPECT_EQ(1, Copy());
    EXPECT_EQ("new", Content(L"target"));
}

TEST_F(CoreFileCopy, EmptySourceGivesAnEmptyTarget) {
    folder.MakeFile(L"source", "");
    EXPECT_EQ(1, Copy());
    EXPECT_EQ(0u, std::filesystem::file_size(strTarget));
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(1, Copy());
    EXPECT_EQ(0u, std::filesystem::file_size(strTarget));
}

TEST_F(CoreFileCopy, AboveTheBufferGoesInChunks) {
    constexpr std::size_t kCeiling = 32 * 1024 * 1024;
    static_assert(kCopyBufferSize <= kCeiling);
    for (std::size_t cb : {std::size_t{kCopyBufferSize}, std::size_t{kCopyBufferSize} + 1, kCeiling,
                           kCeiling + 12345}) {
        std::string strContent = Pattern(cb);
        folder.MakeFile(L"source", strContent);
        EXPECT_EQ(1, Copy());
        EXPECT_TRUE(strContent == Content(L"target")) << cb; // too long to be printed
    }
}

constexpr __int64 kHigh = 0x100000000;
struct HighCase {
    const char* pszName;
    __int64 cbSource;
    const char* pszCopied;
};
class CoreFileCopyHigh : public CopyTest, public testing::WithParamInterface<HighCase> {};
TEST_P(CoreFileCopyHigh, OnlyTheLowHalfOfTheSizeCounts) {
    folder.MakeFile(L"source", "abcdefgh");
    folder.MakeFile(L"target", "old contents");
    CoreFile source(strSource.c_str(), 1);
    source.MoveTo64(GetParam().cbSource, FILE_BEGIN);
    ASSERT_EQ(1, source.SetEndOfFile()); // sparse
    source.Close();
    EXPECT_EQ(1, Copy());
    EXPECT_EQ(GetParam().pszCopied, Content(L"target"));
}
INSTANTIATE_TEST_SUITE_P(Sizes, CoreFileCopyHigh,
                         testing::Values(HighCase{"LowHalfOfFive", kHigh + 5, "abcde"},
                                         HighCase{"LowHalfOfZero", kHigh, ""},
                                         HighCase{"TwiceAndOne", 2 * kHigh + 1, "a"},
                                         HighCase{"AllOnes", kHigh - 1, ""},
                                         HighCase{"TwiceAllOnes", 2 * kHigh - 1, ""}),
                         kRowName);

TEST_F(CoreFileCopy, TimesAndAttributesAreNotCarriedOver) {
    folder.MakeFile(L"source", "abc");
    FILETIME ftOld{0, 0x01C00000}, ft{};
    ASSERT_EQ(1, CoreFile::SetTime(strSource.c_str(), nullptr, nullptr, &ftOld));
    ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(1, Copy());
    EXPECT_EQ(1, CoreFile::GetTime(strTarget.c_str(), nullptr, nullptr, &ft));
    EXPECT_NE(0, ::CompareFileTime(&ftOld, &ft));
    EXPECT_FALSE(CoreFile::GetAttrib(strTarget.c_str()) &
                 (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
    ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(CoreFileCopy, MissingSourceTouchesNothing) {
    folder.MakeFile(L"target", "old");
    CoreIOObj::SetLastHRESULT(5);
    EXPECT_EQ(0, Copy());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), CoreIOObj::GetLastHRESULT());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_EQ(0, CoreFile::CopyFileW(nullptr, strTarget.c_str(), 1));
    EXPECT_EQ(0, CoreFile::CopyFileW(L"", strTarget.c_str(), 1));
    EXPECT_EQ("old", Content(L"target"));
}

TEST_F(CoreFileCopy, SourceIsSharedWithReadersOnly) {
    folder.MakeFile(L"source", "abc");
    CoreFile holder(strSource.c_str(), 0);
    EXPECT_EQ(1, Copy());
    holder.Close();
    ASSERT_EQ(1, holder.Open(strSource.c_str(), 1));
    EXPECT_EQ(0, Copy());
}

TEST_F(CoreFileCopy, TargetThatCannotBeOpenedStaysAsItIs) {
    folder.MakeFile(L"source", "abc");
    folder.MakeFile(L"target", "old");
    CoreFile holder(strTarget.c_str(), 0);
    EXPECT_EQ(0, Copy());
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_EQ(0, CoreFile::CopyFileW(strSource.c_str(), folder.Get().c_str(), 1));
    EXPECT_EQ(0, CoreFile::CopyFileW(strSource.c_str(), nullptr, 1));
}

TEST_F(CoreFileCopy, ReadOnlyTargetStaysAsItIs) {
    folder.MakeFile(L"source", "abc");
    ProtectedFile target(folder, L"target");
    SKIP_UNLESS_PROTECTED(target);
    strTarget = target.Path();
    EXPECT_EQ(0, Copy());
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_EQ("old", target.Content());
}

TEST_F(CoreFileCopy, TargetThatTheSystemProtectsStaysAsItIs) {
    strTarget = UnwritableFile();
    if (strTarget.empty()) GTEST_SKIP() << "no file here that nobody may write";
    folder.MakeFile(L"source", "abc");
    EXPECT_EQ(0, Copy(1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED), CoreIOObj::GetLastHRESULT());
    EXPECT_TRUE(Exists(strTarget));
}

TEST_F(CoreFileCopy, DiskThatFillsUpKeepsNoPartOfTheTarget) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    folder.MakeFile(L"source", Pattern(SmallDisk::kSize + 1));
    strTarget = disk.File(L"target");
    EXPECT_EQ(0, Copy(1));
    EXPECT_FALSE(Exists(strTarget));
    disk.MakeFile(L"target", "old");
    ASSERT_TRUE(disk.Fill(2));
    EXPECT_EQ(0, Copy(1));
    EXPECT_FALSE(Exists(strTarget)); // an old target too
    folder.MakeFile(L"source", Pattern(2 * SmallDisk::kCluster));
    EXPECT_EQ(1, Copy()); // fits exactly
    EXPECT_EQ(Pattern(2 * SmallDisk::kCluster), disk.ReadFile(L"target"));
}

TEST_F(CoreFileCopy, OntoItselfIsRefused) {
    folder.MakeFile(L"source", "abc");
    EXPECT_EQ(0, CoreFile::CopyFileW(strSource.c_str(), strSource.c_str(), 1));
    EXPECT_EQ("abc", Content(L"source"));
}

TEST_F(CoreFileCopy, ShortReadDeletesTheTarget) {
    strSource = ShortFile();
    if (strSource.empty()) GTEST_SKIP() << "no file here that gives less than its size";
    EXPECT_EQ(0, Copy(1));
    EXPECT_FALSE(Exists(strTarget));
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(0, Copy(1));
    EXPECT_FALSE(Exists(strTarget));
}

TEST_F(CoreFileCopy, TargetThatCannotBeCutIsAFailure) {
    folder.MakeFile(L"source", "abc");
    folder.MakeFile(L"target", "a longer one");
    HANDLE hFile = ::CreateFileW(strTarget.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                 OPEN_EXISTING, 0, nullptr);
    HANDLE hMapping = ::CreateFileMappingW(hFile, nullptr, PAGE_READWRITE, 0, 0, nullptr);
    void* pView = ::MapViewOfFile(hMapping, FILE_MAP_WRITE, 0, 0, 0);
    ::CloseHandle(hFile);
    CoreFile probe(strTarget.c_str(), 1);
    int bCanCut = probe.SetEndOfFile() || !probe.IsReady();
    probe.Close();
    int bDone = Copy();
    ::UnmapViewOfFile(pView);
    ::CloseHandle(hMapping);
    if (bCanCut) GTEST_SKIP() << "a mapped file can be cut here, or not be opened";
    EXPECT_EQ(0, bDone);
}

TEST_F(CoreFileCopy, TheShellIsToldWhenAskedFor) {
    folder.MakeFile(L"source", "abc");
    ShellEar ear(folder.Get());
    EXPECT_EQ(1, CoreFile::CopyFileW(strSource.c_str(), Path(L"quiet").c_str(), 0));
    EXPECT_EQ(1, Copy(1));
    EXPECT_EQ((std::vector<std::wstring>{L"create target"}), ear.Hear(1));
}

// Copying over a target that must survive

TEST_F(CoreFileCopySafe, ReplacesTheTarget) {
    folder.MakeFile(L"source", "new");
    EXPECT_EQ(1, CopySafe());
    EXPECT_EQ("new", Content(L"target"));
    folder.MakeFile(L"target", "much older");
    EXPECT_EQ(1, CopySafe());
    EXPECT_EQ("new", Content(L"target"));
    EXPECT_EQ("new", Content(L"source"));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, FailedCopyLeavesTheOldTargetWithTheCopysError) {
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_FALSE(Exists(strBackup));
    folder.MakeFile(L"source", "new");
    CoreFile holder(strSource.c_str(), 1);
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
    EXPECT_EQ("old", Content(L"target"));
}

TEST_F(CoreFileCopySafe, CopyThatBreaksOffLeavesTheOldTarget) {
    strSource = ShortFile();
    if (strSource.empty()) GTEST_SKIP() << "no file here that gives less than its size";
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, DiskThatFillsUpLeavesTheOldTargetWithTheCopysError) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    folder.MakeFile(L"source", "new");
    strTarget = disk.MakeFile(L"target", "old");
    ASSERT_TRUE(disk.Fill());
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
    EXPECT_EQ("old", disk.ReadFile(L"target"));
    EXPECT_FALSE(Exists(disk.File(L"target.temp")));
}

TEST_F(CoreFileCopySafe, FailedCopyWithoutATargetLeavesNone) {
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_FALSE(Exists(strTarget));
    EXPECT_FALSE(Exists(strBackup));
    // A backup that an earlier run left behind is deleted before, and is no target.
    folder.MakeFile(L"target.temp", "left over");
    EXPECT_EQ(0, CopySafe());
    EXPECT_FALSE(Exists(strTarget));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, FailedCopyTellsTheShellOnlyOfTheOldBackup) {
    folder.MakeFile(L"target", "old");
    folder.MakeFile(L"target.temp", "left over");
    folder.MakeFile(L"last", "");
    ShellEar ear(folder.Get());
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_EQ(1, CoreFile::Delete(Path(L"last").c_str(), 1)); // all before it has been heard then
    EXPECT_EQ((std::vector<std::wstring>{L"delete target.temp", L"delete last"}), ear.Hear(2));
}

TEST_F(CoreFileCopySafe, OldBackupIsDeletedFirst) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "old");
    folder.MakeFile(L"target.temp", "left over");
    EXPECT_EQ(1, CopySafe());
    EXPECT_EQ("new", Content(L"target"));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, BackupThatCannotBeDeletedGivesZero) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "old");
    folder.MakeFile(L"target.temp", "left over");
    CoreFile holder(strBackup.c_str(), 0);
    EXPECT_EQ(0, CopySafe());
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_EQ("left over", Content(L"target.temp"));
    ASSERT_EQ(1, CoreFile::Delete(strTarget.c_str(), 0));
    EXPECT_EQ(0, CopySafe()); // without a target, which could not be renamed, as well
    EXPECT_FALSE(Exists(strTarget));
}

TEST_F(CoreFileCopySafe, TargetThatCannotBeRenamedGivesZero) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "old");
    CoreFile holder(strTarget.c_str(), 0);
    EXPECT_EQ(0, CopySafe());
    holder.Close();
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, ReadOnlyTargetIsReplacedAndStaysAsBackup) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "old");
    ::SetFileAttributesW(strTarget.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(1, CopySafe()); // whether or not the backup can be deleted
    EXPECT_EQ("new", Content(L"target"));
    EXPECT_EQ("old", Content(L"target.temp"));
    ::SetFileAttributesW(strBackup.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(CoreFileCopySafe, FolderAtTheBackupNameIsLeftAlone) {
    folder.MakeFile(L"source", "new");
    std::filesystem::create_directory(strBackup);
    EXPECT_EQ(1, CopySafe());
    EXPECT_EQ("new", Content(L"target"));
    EXPECT_TRUE(std::filesystem::is_directory(strBackup));
    folder.MakeFile(L"source", "newer");
    EXPECT_EQ(0, CopySafe()); // now there is a target, which cannot get that name
    EXPECT_EQ("new", Content(L"target"));
    EXPECT_TRUE(std::filesystem::is_directory(strBackup));
}

TEST_F(CoreFileCopySafe, FolderAtTheTargetIsNotRenamed) {
    folder.MakeFile(L"source", "new");
    std::filesystem::create_directory(strTarget);
    EXPECT_EQ(0, CopySafe());
    EXPECT_TRUE(std::filesystem::is_directory(strTarget));
    EXPECT_FALSE(Exists(strBackup));
}

TEST_F(CoreFileCopySafe, SourceAtTheBackupNameSurvives) {
    folder.MakeFile(L"target", "old");
    folder.MakeFile(L"target.temp", "source");
    EXPECT_EQ(0, CoreFile::CopyFileSafe(strBackup.c_str(), strTarget.c_str()));
    EXPECT_EQ(0, CoreFile::CopyFileSafe(Path(L"TARGET.Temp").c_str(), strTarget.c_str()));
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_EQ("source", Content(L"target.temp"));
}

TEST_F(CoreFileCopySafe, SourceAtTheBackupNameSurvivesHoweverItIsSpelled) {
    std::wstring strOther = Path(L"\u00C4.TEMP"), strSlashes = strOther;
    std::replace(strSlashes.begin(), strSlashes.end(), L'\\', L'/');
    folder.MakeFile(L"\u00E4", "old");
    folder.MakeFile(L"\u00E4.temp", "source");
    for (const auto& str :
         {strOther, strSlashes, Path(L".\\\u00E4.temp"), L"\\\\?\\" + Path(L"\u00E4.temp")}) {
        EXPECT_EQ(0, CoreFile::CopyFileSafe(str.c_str(), Path(L"\u00E4").c_str()));
        EXPECT_EQ("old", Content(L"\u00E4"));
        ASSERT_EQ("source", Content(L"\u00E4.temp")) << testing::PrintToString(str);
    }
}

TEST_F(CoreFileCopySafe, OntoItselfIsRefused) {
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(0, CoreFile::CopyFileSafe(strTarget.c_str(), strTarget.c_str()));
    EXPECT_EQ("old", Content(L"target"));
    EXPECT_FALSE(Exists(strBackup));
}

struct BackupCase {
    const char* pszName;
    std::size_t cchTarget;
    int bDone;
};
// From 258 characters on the cut name is the target's own, and nothing may be touched.
class CoreFileBackup : public CopyTest, public testing::WithParamInterface<BackupCase> {};
TEST_P(CoreFileBackup, NameIsCutAt259Characters) {
    folder.MakeFile(L"source", "new");
    std::wstring strName(GetParam().cchTarget - Path(L"").size(), L'x');
    strTarget = folder.MakeFile(strName, "old");
    ASSERT_EQ(GetParam().cchTarget, strTarget.size());
    EXPECT_EQ(GetParam().bDone, CopySafe());
    EXPECT_EQ(GetParam().bDone ? "new" : "old", Content(strName.c_str()));
    std::filesystem::remove(strTarget);
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.Get()),
                               std::filesystem::directory_iterator()));
}
INSTANTIATE_TEST_SUITE_P(Lengths, CoreFileBackup,
                         testing::Values(BackupCase{"RoomForAll", 254, 1},
                                         BackupCase{"OneIsCut", 255, 1},
                                         BackupCase{"ThreeAreCut", 257, 1},
                                         BackupCase{"FourAreCut", 258, 0},
                                         BackupCase{"AllAreCut", 259, 0}),
                         kRowName);

TEST_F(CoreFileCopySafe, NullAndEmptyPathsGiveZero) {
    folder.MakeFile(L"target", "old");
    EXPECT_EQ(0, CoreFile::CopyFileSafe(nullptr, strTarget.c_str()));
    EXPECT_EQ(0, CoreFile::CopyFileSafe(L"", strTarget.c_str()));
    EXPECT_EQ(0, CoreFile::CopyFileSafe(strTarget.c_str(), nullptr));
    EXPECT_EQ(0, CoreFile::CopyFileSafe(strTarget.c_str(), L""));
    EXPECT_EQ("old", Content(L"target"));
}

TEST_F(CoreFileCopySafe, TheShellIsToldOfTheCopyAndTheDeletions) {
    folder.MakeFile(L"source", "new");
    folder.MakeFile(L"target", "old");
    folder.MakeFile(L"target.temp", "left over");
    ShellEar ear(folder.Get());
    EXPECT_EQ(1, CopySafe());
    EXPECT_EQ(
        (std::vector<std::wstring>{L"delete target.temp", L"create target", L"delete target.temp"}),
        ear.Hear(3));
}
} // namespace
