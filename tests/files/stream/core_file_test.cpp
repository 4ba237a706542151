#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/stream/core_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

static_assert(!std::is_copy_constructible_v<CoreFile> && !std::is_copy_assignable_v<CoreFile>);
static_assert(std::is_base_of_v<CoreIOObj, CoreFile>);

namespace {
using namespace std::string_literals;

struct OpenFile : CoreFile {
    using CoreFile::CoreFile;
    using CoreFile::hFile;
};

class CoreFileTest : public testing::Test {
  protected:
    std::wstring Path(const wchar_t* pszName = L"file") const { return folder.File(pszName); }
    std::string Content(const wchar_t* pszName = L"file") const { return folder.ReadFile(pszName); }
    /// Makes the file with that content, opened for writing.
    void Make(CoreFile& file, const std::string& strContent = "") const {
        folder.MakeFile(L"file", strContent);
        ASSERT_EQ(1, file.Open(Path().c_str(), 1));
    }
    TempFolder folder;
};
using CoreFileOpen = CoreFileTest;
using CoreFileMove = CoreFileTest;
using CoreFileSize = CoreFileTest;
using CoreFileTime = CoreFileTest;
using CoreFileTransfer = CoreFileTest;
using CoreFileCompression = CoreFileTest;
using CoreFileMarker = CoreFileTest;
using CoreFilePuts = CoreFileTest;
using CoreFileAttribTest = CoreFileTest;

// Opening

TEST(CoreFile, StartsClosed) {
    CoreFile file;
    EXPECT_EQ(0, file.IsReady());
    EXPECT_EQ(0, file.IsToWrite());
}

TEST(CoreFile, ClosedFileGivesZeros) {
    CoreFile file;
    DWORD nHigh = 7, cbDone = 9;
    char ch = 'x';
    EXPECT_EQ(0, file.Flush());
    EXPECT_EQ(0, file.SetEndOfFile());
    EXPECT_EQ(INVALID_SET_FILE_POINTER, file.MoveTo(0, FILE_BEGIN, 0));
    EXPECT_EQ(-1, file.MoveTo64(0, FILE_BEGIN));
    EXPECT_EQ(-1, file.GetFilePos64());
    EXPECT_EQ(INVALID_SET_FILE_POINTER, file.MoveToEnd());
    EXPECT_EQ(0u, file.GetSize(&nHigh));
    EXPECT_EQ(0u, nHigh);
    EXPECT_EQ(0u, file.GetSize(nullptr));
    EXPECT_EQ(0u, file.GetSize64());
    EXPECT_EQ(0, file.GetTime(nullptr, nullptr, nullptr));
    EXPECT_EQ(0, file.SetTime(nullptr, nullptr, nullptr));
    EXPECT_EQ(0, file.ReadBin(&ch, 1, &cbDone));
    EXPECT_EQ(0u, cbDone);
    EXPECT_EQ(0, file.WriteBin(&ch, 1, nullptr));
    EXPECT_EQ(0, file.GetCompression());
    EXPECT_EQ(0, file.SetCompression(0));
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    EXPECT_EQ(0, file.WriteUTF8Marker());
    EXPECT_EQ(0, file.puts(L"a"));
    EXPECT_EQ(0, file.puts("a"));
    file.Close();
}

TEST_F(CoreFileOpen, ForWritingMakesAMissingFile) {
    CoreFile file;
    EXPECT_EQ(1, file.Open(Path().c_str(), 1));
    EXPECT_EQ(1, file.IsReady());
    EXPECT_EQ(1, file.IsToWrite());
    EXPECT_EQ(0u, file.GetSize64());
}

TEST_F(CoreFileOpen, ForWritingKeepsTheContents) {
    CoreFile file;
    Make(file, "abcdef");
    EXPECT_EQ(0, file.GetFilePos64());
    EXPECT_EQ(1, file.WriteBin("XY", 2, nullptr));
    file.Close();
    EXPECT_EQ("XYcdef", Content());
    ASSERT_EQ(1, file.Open(Path().c_str(), 1));
    EXPECT_EQ(2, file.Skip(2));
    EXPECT_EQ(1, file.SetEndOfFile());
    file.Close();
    EXPECT_EQ("XY", Content());
}

TEST_F(CoreFileOpen, ForWritingReadsToo) {
    CoreFile file;
    Make(file, "abc");
    char sz[4] = {};
    EXPECT_EQ(1, file.ReadBin(sz, 3, nullptr));
    EXPECT_STREQ("abc", sz);
}

TEST_F(CoreFileOpen, ForReadingNeedsTheFile) {
    CoreFile file;
    EXPECT_EQ(0, file.Open(Path().c_str(), 0));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    EXPECT_EQ(0, file.IsReady());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), CoreIOObj::GetLastHRESULT());
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

TEST_F(CoreFileOpen, ForReadingDoesNotWrite) {
    folder.MakeFile(L"file", "abc");
    CoreFile file(Path().c_str(), 0);
    EXPECT_EQ(1, file.IsReady());
    EXPECT_EQ(0, file.IsToWrite());
    EXPECT_EQ(0, file.WriteBin("x", 1, nullptr));
    EXPECT_EQ("abc", Content());
}

TEST_F(CoreFileOpen, AnyNonzeroFlagMeansWriting) {
    CoreFile file(Path().c_str(), -2);
    EXPECT_EQ(1, file.IsToWrite());
}

TEST_F(CoreFileOpen, ReadersShareAndWritersDoNot) {
    folder.MakeFile(L"file", "abc");
    CoreFile reader(Path().c_str(), 0);
    CoreFile second(Path().c_str(), 0);
    EXPECT_EQ(1, second.IsReady());
    CoreFile writer(Path().c_str(), 1);
    EXPECT_EQ(0, writer.IsReady());
    EXPECT_EQ(1, writer.IsToWrite()); // as asked
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION), CoreIOObj::GetLastHRESULT());
    reader.Close();
    second.Close();
    EXPECT_EQ(1, writer.Open(Path().c_str(), 1));
    EXPECT_EQ(0, reader.Open(Path().c_str(), 0));
    EXPECT_EQ(0, second.Open(Path().c_str(), 1));
}

TEST_F(CoreFileOpen, ForWritingOfAnExistingFileLeavesAlreadyExists) {
    CoreFile file;
    Make(file);
    EXPECT_EQ(static_cast<long>(0x800700B7), CoreIOObj::GetLastHRESULT());
    EXPECT_EQ(static_cast<long>(0x800700B7), CoreFile::GetLastHRESULT());
    CoreFile fresh(Path(L"fresh").c_str(), 1);
    EXPECT_EQ(0, CoreIOObj::GetLastHRESULT());
}

TEST_F(CoreFileOpen, ForWritingRefusesAReadOnlyFile) {
    folder.MakeFile(L"file", "abc");
    ReadOnlyFile readOnly(Path());
    CoreFile file;
    EXPECT_EQ(1, file.Open(Path().c_str(), 0));
    file.Close();
    ProtectedFile protectedFile(folder);
    SKIP_UNLESS_PROTECTED(protectedFile);
    EXPECT_EQ(0, file.Open(protectedFile.Path().c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_EQ(0, file.IsReady());
    EXPECT_EQ(1, file.Open(protectedFile.Path().c_str(), 0));
}

TEST_F(CoreFileOpen, ForWritingRefusesWhatTheSystemProtects) {
    std::wstring strFile = UnwritableFile();
    if (strFile.empty()) GTEST_SKIP() << "no file here that nobody may write";
    CoreFile file;
    EXPECT_EQ(0, file.Open(strFile.c_str(), 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED), CoreIOObj::GetLastHRESULT());
    EXPECT_EQ(1, file.Open(strFile.c_str(), 0));
}

TEST_F(CoreFileOpen, FolderNullAndEmptyPathGiveZero) {
    for (int bToWrite : {0, 1}) {
        CoreFile file;
        EXPECT_EQ(0, file.Open(folder.Get().c_str(), bToWrite));
        EXPECT_EQ(0, file.Open(nullptr, bToWrite));
        EXPECT_EQ(0, file.Open(L"", bToWrite));
    }
}

TEST_F(CoreFileOpen, PassesValuesUnchanged) {
    CoreFile file;
    EXPECT_EQ(0, file.Open(Path().c_str(), GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0));
    EXPECT_EQ(1, file.Open(Path().c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE));
    EXPECT_EQ(1, file.IsToWrite());
    EXPECT_TRUE(::GetFileAttributesW(Path().c_str()) & FILE_ATTRIBUTE_HIDDEN);
    CoreFile second(Path().c_str(), GENERIC_WRITE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING, 0);
    EXPECT_EQ(1, second.IsReady());
    second.Close();
    file.Close();
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

struct AccessCase {
    const char* pszName;
    DWORD nAccess;
    int bExpected;
};
class CoreFileAccess : public CoreFileTest, public testing::WithParamInterface<AccessCase> {};
TEST_P(CoreFileAccess, ToWriteIsTheGenericWriteBit) {
    folder.MakeFile(L"file", "abc");
    CoreFile file(Path().c_str(), GetParam().nAccess, FILE_SHARE_READ | FILE_SHARE_WRITE,
                  OPEN_EXISTING, 0);
    EXPECT_EQ(1, file.IsReady());
    EXPECT_EQ(GetParam().bExpected, file.IsToWrite());
}
INSTANTIATE_TEST_SUITE_P(
    Accesses, CoreFileAccess,
    testing::Values(AccessCase{"Read", GENERIC_READ, 0}, AccessCase{"Write", GENERIC_WRITE, 1},
                    AccessCase{"All", GENERIC_ALL, 0}, AccessCase{"WriteData", FILE_WRITE_DATA, 0},
                    AccessCase{"ReadAndWrite", GENERIC_READ | GENERIC_WRITE, 1}),
    kRowName);

TEST_F(CoreFileOpen, DoesNotCloseTheHandleThatIsHeld) {
    OpenFile file;
    Make(file);
    HANDLE hFirst = file.hFile;
    ASSERT_EQ(1, file.Open(Path(L"other").c_str(), 1));
    EXPECT_NE(hFirst, file.hFile);
    EXPECT_EQ(0, CoreFile(Path().c_str(), 0).IsReady()); // still open, shared with nobody
    EXPECT_TRUE(::CloseHandle(hFirst));
    EXPECT_EQ(1, CoreFile(Path().c_str(), 0).IsReady());
}

TEST_F(CoreFileOpen, InitForgetsTheHandle) {
    OpenFile file;
    Make(file);
    HANDLE h = file.hFile;
    file.InitCoreFile();
    EXPECT_EQ(0, file.IsReady());
    EXPECT_EQ(0, file.IsToWrite());
    EXPECT_TRUE(::CloseHandle(h));
}

TEST_F(CoreFileOpen, CloseAndDestructorGiveTheFileFree) {
    folder.MakeFile(L"file", "abc");
    CoreFile file(Path().c_str(), 1);
    file.Close();
    EXPECT_EQ(0, file.IsReady());
    EXPECT_EQ(1, file.IsToWrite());
    file.Close();
    { EXPECT_EQ(1, CoreFile(Path().c_str(), 1).IsReady()); }
    EXPECT_EQ(1, file.Open(Path().c_str(), 1));
}

TEST_F(CoreFileOpen, CreateObjectGivesAnObjectInEveryCase) {
    folder.MakeFile(L"file", "abc");
    std::unique_ptr<CoreFile> pFile(CoreFile::CreateObject(Path().c_str(), 0));
    ASSERT_TRUE(pFile);
    EXPECT_EQ(1, pFile->IsReady());
    EXPECT_EQ(0, pFile->IsToWrite());
    std::unique_ptr<CoreFile> pMissing(CoreFile::CreateObject(Path(L"missing").c_str(), 0));
    ASSERT_TRUE(pMissing);
    EXPECT_EQ(0, pMissing->IsReady());
}

// Positions and sizes

TEST_F(CoreFileMove, MovesFromAllThreePlaces) {
    CoreFile file;
    Make(file, "0123456789");
    EXPECT_EQ(3, file.MoveTo64(3, FILE_BEGIN));
    EXPECT_EQ(5, file.MoveTo64(2, FILE_CURRENT));
    EXPECT_EQ(4, file.MoveTo64(-1, FILE_CURRENT));
    EXPECT_EQ(7, file.MoveTo64(-3, FILE_END));
    EXPECT_EQ(7, file.GetFilePos64());
    EXPECT_EQ(9, file.Skip(2));
    EXPECT_EQ(-1, file.MoveTo64(-1, FILE_BEGIN));
    EXPECT_EQ(9, file.GetFilePos64());
    EXPECT_EQ(10u, file.MoveToEnd());
}

TEST_F(CoreFileMove, PositionsBeyond32Bits) {
    CoreFile file;
    Make(file);
    constexpr __int64 kFar = 0x100000005;
    EXPECT_EQ(kFar, file.MoveTo64(kFar, FILE_BEGIN));
    EXPECT_EQ(kFar, file.GetFilePos64());
    EXPECT_EQ(0xFFFFFFFF, file.MoveTo64(0xFFFFFFFF, FILE_BEGIN)); // not a failure
    EXPECT_EQ(0x1FFFFFFFF, file.MoveTo64(0x100000000, FILE_CURRENT));
    EXPECT_EQ(0, file.MoveTo64(-0x1FFFFFFFF, FILE_CURRENT));
}

TEST_F(CoreFileMove, MoveToTakesTheHighPartOnlyIfNotZero) {
    CoreFile file;
    Make(file, "0123456789");
    EXPECT_EQ(4u, file.MoveTo(4, FILE_BEGIN, 0));
    EXPECT_EQ(2u, file.MoveTo(-2, FILE_CURRENT, 0));
    EXPECT_EQ(2, file.GetFilePos64());
    EXPECT_EQ(7u, file.MoveTo(7, FILE_BEGIN, 2));
    EXPECT_EQ(0x200000007, file.GetFilePos64());
    EXPECT_EQ(1u, file.MoveTo(-6, FILE_CURRENT, -1));
    EXPECT_EQ(0x200000001, file.GetFilePos64());
    EXPECT_EQ(INVALID_SET_FILE_POINTER, file.MoveTo(-1, FILE_BEGIN, 0));
}

TEST_F(CoreFileSize, BothHalves) {
    CoreFile file;
    Make(file, "abc");
    DWORD nHigh = 9;
    EXPECT_EQ(3u, file.GetSize(&nHigh));
    EXPECT_EQ(0u, nHigh);
    EXPECT_EQ(3u, file.GetSize(nullptr));
    EXPECT_EQ(3u, file.GetSize64());
    file.MoveTo64(0x200000001, FILE_BEGIN);
    ASSERT_EQ(1, file.SetEndOfFile()); // sparse
    EXPECT_EQ(1u, file.GetSize(&nHigh));
    EXPECT_EQ(2u, nHigh);
    EXPECT_EQ(0x200000001u, file.GetSize64());
    EXPECT_EQ(0x200000001u, CoreFile::GetSize64(Path().c_str()));
    EXPECT_EQ(1u, CoreFile::GetSize(Path().c_str(), &nHigh));
    EXPECT_EQ(2u, nHigh);
}

TEST_F(CoreFileSize, LowHalfOfAllOnesReadsAsZero) {
    CoreFile file;
    Make(file);
    file.MoveTo64(0x1FFFFFFFF, FILE_BEGIN);
    ASSERT_EQ(1, file.SetEndOfFile());
    DWORD nHigh = 9;
    EXPECT_EQ(0u, file.GetSize(&nHigh));
    EXPECT_EQ(1u, nHigh);
    EXPECT_EQ(0x100000000u, file.GetSize64());
}

TEST_F(CoreFileSize, FlushWritesThrough) {
    CoreFile file;
    Make(file);
    EXPECT_EQ(1, file.WriteBin("abc", 3, nullptr));
    EXPECT_EQ(1, file.Flush());
}

// Times

TEST_F(CoreFileTime, SetAndGet) {
    CoreFile file;
    Make(file);
    FILETIME ftAccess{0x12345680, 0x01D00000}, ftWrite{0x87654320, 0x01D10000};
    ASSERT_EQ(1, file.SetTime(nullptr, &ftAccess, &ftWrite));
    FILETIME ftCreation{}, ftGotAccess{}, ftGotWrite{};
    EXPECT_EQ(1, file.GetTime(&ftCreation, &ftGotAccess, &ftGotWrite));
    EXPECT_EQ(0, ::CompareFileTime(&ftAccess, &ftGotAccess));
    EXPECT_EQ(0, ::CompareFileTime(&ftWrite, &ftGotWrite));
    EXPECT_NE(0u, ftCreation.dwHighDateTime);
    EXPECT_EQ(1, file.GetTime(nullptr, nullptr, nullptr));
}

// Reading and writing

TEST_F(CoreFileTransfer, NoBytesGiveOneOnAClosedFile) {
    CoreFile file, other;
    DWORD cbDone = 77;
    EXPECT_EQ(1, file.ReadBin(nullptr, 0, &cbDone));
    EXPECT_EQ(1, file.WriteBin(nullptr, 0, &cbDone));
    EXPECT_EQ(77u, cbDone);
    EXPECT_EQ(1, file.CopyBinFrom(other, nullptr, 0));
}

TEST_F(CoreFileTransfer, ReadAtTheEndGivesZeroAndCountsNothing) {
    CoreFile file;
    Make(file, "abc");
    char sz[8] = {};
    DWORD cbDone = 77;
    EXPECT_EQ(0, file.ReadBin(sz, 5, &cbDone));
    EXPECT_EQ(3u, cbDone);
    EXPECT_STREQ("abc", sz);
    EXPECT_EQ(0, file.ReadBin(sz, 1, &cbDone));
    EXPECT_EQ(0u, cbDone);
    EXPECT_EQ(0, file.ReadBin(sz, 1, nullptr));
}

TEST_F(CoreFileTransfer, CountsWhatMoved) {
    CoreFile file;
    Make(file);
    DWORD cbDone = 0;
    EXPECT_EQ(1, file.WriteBin("abcd", 4, &cbDone));
    EXPECT_EQ(4u, cbDone);
    file.MoveTo64(1, FILE_BEGIN);
    char sz[3] = {};
    EXPECT_EQ(1, file.ReadBin(sz, 2, &cbDone));
    EXPECT_EQ(2u, cbDone);
    EXPECT_STREQ("bc", sz);
}

TEST_F(CoreFileTransfer, NullBufferGivesZero) {
    CoreFile file;
    Make(file, "abc");
    EXPECT_EQ(0, file.ReadBin(nullptr, 2, nullptr));
    EXPECT_EQ(0, file.WriteBin(nullptr, 2, nullptr));
    file.Close();
    EXPECT_EQ("abc", Content());
}

TEST_F(CoreFileTransfer, FullDiskGivesZeroAndCountsNothing) {
    std::wstring strFull = FullDiskFile();
    if (strFull.empty()) GTEST_SKIP() << "no file here whose disk is full";
    CoreFile file(strFull.c_str(), 1);
    ASSERT_EQ(1, file.IsReady());
    DWORD cbDone = 77;
    EXPECT_EQ(0, file.WriteBin("abc", 3, &cbDone));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
    EXPECT_EQ(0u, cbDone);
    EXPECT_EQ(1, file.WriteBin("abc", 0, nullptr));
    EXPECT_EQ(0, file.puts("x"));
    EXPECT_EQ(0, file.puts(L"x"));
    folder.MakeFile(L"source", "0123456789");
    CoreFile source(Path(L"source").c_str(), 0);
    char buffer[8];
    EXPECT_EQ(0, file.CopyBinFrom(source, buffer, 3));
    file.Close();
    CoreIO io(CoreIO::CreateFileObject(strFull.c_str(), 1));
    EXPECT_EQ(1, io.IsReady());
    EXPECT_EQ(0, io.Write(5));
    EXPECT_EQ(0, io.WriteStr("abc"));
}

TEST_F(CoreFileTransfer, DiskThatFillsUpTakesWhatFitsAndGivesZero) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    CoreFile file(disk.File(L"file").c_str(), 1);
    ASSERT_TRUE(disk.Fill(1));
    std::string str(SmallDisk::kCluster + 10, 'x');
    DWORD cbDone = 77;
    EXPECT_EQ(0, file.WriteBin(str.data(), static_cast<DWORD>(str.size()), &cbDone));
    EXPECT_EQ(SmallDisk::kCluster, cbDone);
    EXPECT_EQ(SmallDisk::kCluster, file.GetSize(nullptr));
    cbDone = 77;
    EXPECT_EQ(0, file.WriteBin("y", 1, &cbDone));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
    EXPECT_EQ(0u, cbDone);
    EXPECT_EQ(0, file.puts("y"));
    EXPECT_EQ(0, file.puts(L"y"));
    // What is there already takes no new room.
    EXPECT_EQ(0, file.MoveTo64(0, FILE_BEGIN));
    EXPECT_EQ(1, file.WriteBin("new", 3, &cbDone));
    EXPECT_EQ(3u, cbDone);
    file.Close();
    EXPECT_EQ("new" + str.substr(3, SmallDisk::kCluster - 3), disk.ReadFile(L"file"));
}

TEST_F(CoreFileTransfer, TypedWritesGiveZeroOnAFullDisk) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    CoreIO io(CoreIO::CreateFileObject(disk.File(L"file").c_str(), 1));
    ASSERT_EQ(1, io.IsReady());
    ASSERT_TRUE(disk.Fill());
    EXPECT_EQ(0, io.Write(static_cast<unsigned char>(5)));
    EXPECT_EQ(0, io.Write(static_cast<unsigned short>(5)));
    EXPECT_EQ(0, io.Write(5));
    EXPECT_EQ(0, io.WriteStr("abc"));
    EXPECT_EQ(0u, io.GetSize64());
}

TEST_F(CoreFileTransfer, MarkersGiveZeroOnAFullDisk) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    CoreFile file(disk.File(L"file").c_str(), 1);
    ASSERT_TRUE(disk.Fill());
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    EXPECT_EQ(0, file.WriteUTF8Marker());
    EXPECT_EQ(0u, file.GetSize64());
}

TEST_F(CoreFileTransfer, CopyBinFromMovesWholeSizes) {
    folder.MakeFile(L"source", "0123456789");
    CoreFile source(Path(L"source").c_str(), 0), file;
    Make(file);
    char buffer[8];
    source.MoveTo64(2, FILE_BEGIN);
    EXPECT_EQ(1, file.CopyBinFrom(source, buffer, 3));
    EXPECT_EQ(0, file.CopyBinFrom(source, buffer, 8)); // short read: nothing is written
    file.Close();
    EXPECT_EQ("234", Content());
    source.MoveTo64(0, FILE_BEGIN);
    EXPECT_EQ(0, file.CopyBinFrom(source, buffer, 3)); // the write fails
    CoreFile readOnly(Path().c_str(), 0);
    source.MoveTo64(0, FILE_BEGIN);
    EXPECT_EQ(0, readOnly.CopyBinFrom(source, buffer, 3));
}

// Compression

TEST_F(CoreFileCompression, NewFileIsNotCompressed) {
    CoreFile file;
    Make(file, "abc");
    EXPECT_EQ(0, file.GetCompression());
}

TEST_F(CoreFileCompression, SetAndGet) {
    CoreFile file;
    Make(file, "abc");
    if (!file.SetCompression(COMPRESSION_FORMAT_DEFAULT)) {
        EXPECT_EQ(0, file.GetCompression());
        GTEST_SKIP() << "this file system has no compression";
    }
    EXPECT_EQ(1, file.GetCompression());
    EXPECT_EQ(1, file.SetCompression(0x10000)); // only the low half counts
    EXPECT_EQ(0, file.GetCompression());
}

// Markers

TEST_F(CoreFileMarker, OpensAFile) {
    CoreFile file;
    Make(file);
    EXPECT_EQ(1, file.WriteUnicodeMarker());
    EXPECT_EQ(2, file.GetFilePos64());
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    EXPECT_EQ(0, file.WriteUTF8Marker());
    file.Close();
    EXPECT_EQ("\xFF\xFE", Content());
    CoreFile utf8(Path(L"utf8").c_str(), 1);
    EXPECT_EQ(1, utf8.WriteUTF8Marker());
    EXPECT_EQ(0, utf8.WriteUTF8Marker());
    utf8.Close();
    EXPECT_EQ("\xEF\xBB\xBF", Content(L"utf8"));
}

TEST_F(CoreFileMarker, BehindOneByteGivesZeroAndWritesNothing) {
    CoreFile file;
    Make(file);
    ASSERT_EQ(1, file.WriteBin("a", 1, nullptr));
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    EXPECT_EQ(0, file.WriteUTF8Marker());
    file.Close();
    EXPECT_EQ("a", Content());
}

TEST_F(CoreFileMarker, IsAboutThePositionNotTheSize) {
    CoreFile file;
    Make(file, "abcd");
    EXPECT_EQ(1, file.WriteUnicodeMarker());
    file.MoveTo64(0x100000000, FILE_BEGIN); // the low half is 0
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    file.Close();
    EXPECT_EQ("\xFF\xFE"s + "cd", Content());
}

TEST_F(CoreFileMarker, FailedWriteGivesZero) {
    folder.MakeFile(L"file", "abc");
    CoreFile file(Path().c_str(), 0);
    EXPECT_EQ(0, file.WriteUnicodeMarker());
    EXPECT_EQ(0, file.WriteUTF8Marker());
}

// Formatted text

std::string Wide(const std::string& strNarrow) {
    std::string str;
    for (char ch : strNarrow) str += {ch, '\0'};
    return str;
}

struct PutsCase {
    const char* pszName;
    std::string strText;
    std::string strExpected;
};
class CoreFilePutsLine : public testing::TestWithParam<PutsCase> {};
TEST_P(CoreFilePutsLine, CompletesTheLineEnd) {
    TempFolder folder;
    std::wstring strText(GetParam().strText.begin(), GetParam().strText.end());
    CoreFile narrow(folder.File(L"narrow").c_str(), 1), wide(folder.File(L"wide").c_str(), 1);
    EXPECT_EQ(1, narrow.puts("%s", GetParam().strText.c_str()));
    EXPECT_EQ(1, wide.puts(L"%s", strText.c_str()));
    narrow.Close();
    wide.Close();
    EXPECT_EQ(GetParam().strExpected, folder.ReadFile(L"narrow"));
    EXPECT_EQ(Wide(GetParam().strExpected), folder.ReadFile(L"wide"));
}
INSTANTIATE_TEST_SUITE_P(
    CoreFilePuts, CoreFilePutsLine,
    testing::Values(PutsCase{"Empty", "", ""}, PutsCase{"OneCharacter", "a", "a"},
                    PutsCase{"LineFeedAlone", "\n", "\n"}, PutsCase{"ReturnAlone", "\r", "\r"},
                    PutsCase{"LineFeed", "a\n", "a\r\n"}, PutsCase{"Complete", "a\r\n", "a\r\n"},
                    PutsCase{"TwoLineFeeds", "\n\n", "\n\r\n"},
                    PutsCase{"OnlyReturnAndLineFeed", "\r\n", "\r\n"},
                    PutsCase{"InnerStay", "a\nb", "a\nb"},
                    PutsCase{"OnlyTheLast", "a\nb\n", "a\nb\r\n"},
                    PutsCase{"LongestLine", std::string(1022, 'x') + "\n",
                             std::string(1022, 'x') + "\r\n"},
                    PutsCase{"Longest", std::string(1023, 'x'), std::string(1023, 'x')},
                    PutsCase{"CutAt1023", std::string(1023, 'x') + "\n", std::string(1023, 'x')},
                    PutsCase{"CutToALineFeed", std::string(1022, 'x') + "\nmore",
                             std::string(1022, 'x') + "\r\n"},
                    PutsCase{"FarTooLong", std::string(5000, 'x'), std::string(1023, 'x')}),
    kRowName);

TEST_F(CoreFilePuts, Formats) {
    CoreFile file;
    Make(file);
    EXPECT_EQ(1, file.puts("%d-%s-%c-%04X\n", -5, "text", 'c', 0xAB));
    EXPECT_EQ(1, file.puts(L"%d %s", 7, L"\x20AC"));
    file.Close();
    EXPECT_EQ("-5-text-c-00AB\r\n" + Wide("7 ") + "\xAC\x20", Content());
}

TEST_F(CoreFilePuts, HostileFormatsArePrintedAsTheyStand) {
    CoreFile file;
    Make(file);
    int n = 5;
    EXPECT_EQ(1, file.puts("a%n%", &n));
    EXPECT_EQ(1, file.puts(L"b%n", &n));
    EXPECT_EQ(5, n);
    file.Close();
    EXPECT_EQ("a%n%" + Wide("b%n"), Content());
}

TEST_F(CoreFilePuts, NullFormatIsAnEmptyText) {
    CoreFile file;
    EXPECT_EQ(1, file.puts(static_cast<const char*>(nullptr)));
    EXPECT_EQ(1, file.puts(static_cast<const wchar_t*>(nullptr)));
}

TEST_F(CoreFilePuts, FailedWriteGivesZero) {
    folder.MakeFile(L"file", "abc");
    CoreFile file(Path().c_str(), 0);
    EXPECT_EQ(0, file.puts("x"));
    EXPECT_EQ(0, file.puts(L"x"));
    EXPECT_EQ(1, file.puts(""));
}

// Attributes for a while

TEST_F(CoreFileAttribTest, SetsAndPutsBack) {
    std::wstring strPath = folder.MakeFile(L"file", "abc");
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    DWORD nBefore = ::GetFileAttributesW(strPath.c_str());
    ASSERT_TRUE(nBefore & FILE_ATTRIBUTE_READONLY);
    {
        CoreFileAttrib attrib(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
        EXPECT_EQ(1, attrib.IsValid());
        EXPECT_FALSE(::GetFileAttributesW(strPath.c_str()) & FILE_ATTRIBUTE_READONLY);
        EXPECT_EQ(1, CoreFile::WriteFile(strPath.c_str(), "new", 3));
    }
    EXPECT_EQ(nBefore, ::GetFileAttributesW(strPath.c_str()));
    EXPECT_EQ("new", Content());
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(CoreFileAttribTest, LeavesAloneWhatCannotBeQueried) {
    {
        CoreFileAttrib attrib(Path().c_str(), FILE_ATTRIBUTE_READONLY);
        EXPECT_EQ(0, attrib.IsValid());
        folder.MakeFile(L"file", "abc");
    }
    EXPECT_FALSE(::GetFileAttributesW(Path().c_str()) & FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(0, CoreFileAttrib(nullptr, 0).IsValid());
}
} // namespace
