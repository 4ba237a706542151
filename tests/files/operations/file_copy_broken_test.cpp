// Copies that are interrupted: they fail, what was written by then stands in the target, and the
// source is never touched.
#include "files/operations/file_copy.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/text/cs_file.h"
#include "support/heap_count.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr DWORD kSize = 3 * kFileCopyChunk + 100;

class InterruptedCopy : public testing::Test {
  protected:
    InterruptedCopy() {
        SetWriteTime(strSource, kOldTime);
        ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_HIDDEN);
    }
    /// The source is as it was, and has not lent its times and attributes.
    void ExpectSourceKept() const {
        EXPECT_TRUE(strBytes == folder.ReadFile(L"source"));
        EXPECT_EQ(kOldTime, WriteTime(strSource));
        EXPECT_NE(kOldTime, WriteTime(strTarget));
        EXPECT_FALSE(::GetFileAttributesW(strTarget.c_str()) & FILE_ATTRIBUTE_HIDDEN);
        // Nobody holds them open any more.
        EXPECT_TRUE(OpenElsewhere(strSource).IsOpen());
        EXPECT_TRUE(OpenElsewhere(strTarget).IsOpen());
    }
    /// So much of the source stands in the target, and behind it what was there before.
    void ExpectCopied(std::size_t cb) const {
        EXPECT_TRUE(strBytes.substr(0, cb) + strOld.substr(cb) == folder.ReadFile(L"target"));
        ExpectSourceKept();
    }
    int Copy(DWORD nFlags = 0) const {
        return CSFile::Copy(strTarget.c_str(), strSource.c_str(), nFlags);
    }
    TempFolder folder;
    std::string strBytes = MadeBytes(kSize);
    std::string strOld = std::string(kSize + 50, 'o');
    std::wstring strSource = folder.MakeFile(L"source", strBytes);
    std::wstring strTarget = folder.MakeFile(L"target", strOld);
};

struct BreakCase {
    const char* pszName;
    int BrokenDisk::*pWhat;
    int nAt;
    DWORD cbCopied;
    DWORD dwError; // 0: the platform tells none
};
class CopyBreak : public InterruptedCopy, public testing::WithParamInterface<BreakCase> {};
TEST_P(CopyBreak, LeavesWhatWasWrittenByThen) {
    const auto& [pszName, pWhat, nAt, cbCopied, dwError] = GetParam();
    DWORD dwAfter = 0;
    {
        BrokenDisk disk;
        disk.*pWhat = nAt;
        ::SetLastError(0);
        EXPECT_EQ(0, Copy());
        dwAfter = ::GetLastError();
        EXPECT_EQ(0, disk.nCuts);
    }
    if (dwError) {
        EXPECT_EQ(dwError, dwAfter);
    }
    ExpectCopied(cbCopied);
}
constexpr DWORD kHalf = kFileCopyChunk / 2;
INSTANTIATE_TEST_SUITE_P(
    Copy, CopyBreak,
    testing::Values(
        BreakCase{"FirstWriteFails", &BrokenDisk::nFailWrite, 0, 0, ERROR_DISK_FULL},
        BreakCase{"AWriteFails", &BrokenDisk::nFailWrite, 1, kFileCopyChunk, ERROR_DISK_FULL},
        BreakCase{"LastWriteFails", &BrokenDisk::nFailWrite, 3, 3 * kFileCopyChunk,
                  ERROR_DISK_FULL},
        BreakCase{"FirstWriteIsShort", &BrokenDisk::nShortWrite, 0, kHalf, 0},
        BreakCase{"AWriteIsShort", &BrokenDisk::nShortWrite, 2, 2 * kFileCopyChunk + kHalf, 0},
        BreakCase{"LastWriteIsShort", &BrokenDisk::nShortWrite, 3, 3 * kFileCopyChunk + 50, 0},
        BreakCase{"FirstReadFails", &BrokenDisk::nFailRead, 0, 0, ERROR_CRC},
        BreakCase{"AReadFails", &BrokenDisk::nFailRead, 2, 2 * kFileCopyChunk, ERROR_CRC},
        BreakCase{"FirstReadIsShort", &BrokenDisk::nShortRead, 0, 0, 0},
        BreakCase{"AReadIsShort", &BrokenDisk::nShortRead, 1, kFileCopyChunk, 0},
        BreakCase{"LastReadIsShort", &BrokenDisk::nShortRead, 3, 3 * kFileCopyChunk, 0}),
    kRowName);

TEST_F(InterruptedCopy, AMadeTargetStaysInPart) {
    ::DeleteFileW(strTarget.c_str());
    {
        BrokenDisk disk;
        disk.nFailWrite = 1;
        EXPECT_EQ(0, Copy());
    }
    EXPECT_TRUE(strBytes.substr(0, kFileCopyChunk) == folder.ReadFile(L"target"));
    ExpectSourceKept();
}

TEST_F(InterruptedCopy, ATargetThatCannotBeCutIsNotRight) {
    {
        BrokenDisk disk;
        disk.bCannotCut = true;
        EXPECT_EQ(0, Copy());
    }
    EXPECT_TRUE(strBytes + strOld.substr(kSize) == folder.ReadFile(L"target"));
    EXPECT_TRUE(strBytes == folder.ReadFile(L"source"));
    folder.MakeFile(L"empty", "");
    BrokenDisk disk;
    disk.bCannotCut = true;
    EXPECT_EQ(0, CSFile::Copy(strTarget.c_str(), folder.File(L"empty").c_str(), 0));
}

TEST_F(InterruptedCopy, ASourceThatShrinksIsKept) {
    // Nobody can write a file that is open to readers alone; through a handle that was there before
    // its sharing was asked for it can happen on a network. Here the handle itself is the way.
    struct Shrink {
        static BOOL WINAPI Read(HANDLE h, LPVOID, DWORD, LPDWORD pcb, LPOVERLAPPED) {
            ::SetFilePointer(h, 0, nullptr, FILE_END);
            *pcb = 0;
            return TRUE; // the end of the file
        }
    };
    {
        ReplaceImport replaced(__imp_ReadFile, &Shrink::Read);
        EXPECT_EQ(0, Copy());
    }
    ExpectCopied(0);
}

TEST_F(InterruptedCopy, VerifyingEndsWithABrokenRead) {
    folder.MakeFile(L"target", strBytes);
    for (int n = 0; n < 8; ++n) { // source and target in turn
        for (auto pWhat : {&BrokenDisk::nFailRead, &BrokenDisk::nShortRead}) {
            BrokenDisk disk;
            disk.*pWhat = n;
            EXPECT_EQ(0, Copy(kCopyVerifyOnly)) << n;
            EXPECT_EQ(n / 2 * 2 + 1 + n % 2, static_cast<int>(disk.reads.size()));
        }
    }
    EXPECT_EQ(1, Copy(kCopyVerifyOnly));
    EXPECT_TRUE(strBytes == folder.ReadFile(L"target"));
}

TEST_F(InterruptedCopy, WithoutMemoryNothingIsLost) {
    int nResult = 0;
    for (int n = 1; n < 10 && !nResult; ++n) {
        FailBlock(n);
        nResult = CSFile::Copy(strTarget.c_str(), strSource.c_str(), 0);
        FailBlock(0);
        EXPECT_TRUE(strBytes == folder.ReadFile(L"source"));
        EXPECT_TRUE((nResult ? strBytes : strOld) == folder.ReadFile(L"target"));
    }
    EXPECT_EQ(1, nResult);
}

TEST_F(InterruptedCopy, WithoutMemoryNoTargetIsMade) {
    ::DeleteFileW(strTarget.c_str());
    FailBlock(1);
    int nResult = CSFile::Copy(strTarget.c_str(), strSource.c_str(), 0);
    FailBlock(0);
    EXPECT_EQ(0, nResult);
    EXPECT_FALSE(IsThere(strTarget));
    EXPECT_EQ(1, Copy());
}

TEST_F(InterruptedCopy, LeavesNoBlockBehind) {
    long nBefore = CountLiveBlocks();
    for (int n = 0; n < 3; ++n) {
        BrokenDisk disk;
        disk.reads.reserve(20);
        disk.writes.reserve(20);
        disk.nFailWrite = n;
        EXPECT_EQ(0, CSFile::Copy(strTarget.c_str(), strSource.c_str(), 0));
    }
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST(CopyToAFullDisk, LeavesWhatWentOntoIt) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    TempFolder folder;
    std::string strBytes = MadeBytes(3 * kFileCopyChunk);
    std::wstring strSource = folder.MakeFile(L"source", strBytes);
    ASSERT_TRUE(disk.Fill(kFileCopyChunk / SmallDisk::kCluster + 1));
    EXPECT_EQ(0, CSFile::Copy(disk.File(L"target").c_str(), strSource.c_str(), 0));
    std::string strCopied = disk.ReadFile(L"target");
    EXPECT_GE(strCopied.size(), kFileCopyChunk);
    EXPECT_LT(strCopied.size(), strBytes.size());
    EXPECT_TRUE(strBytes.substr(0, strCopied.size()) == strCopied);
    EXPECT_TRUE(strBytes == folder.ReadFile(L"source"));
}

TEST(CopyOntoAProtectedFile, LeavesIt) {
    TempFolder folder;
    ProtectedFile target(folder);
    SKIP_UNLESS_PROTECTED(target);
    std::wstring strSource = folder.MakeFile(L"source", "new");
    EXPECT_EQ(0, CSFile::Copy(target.Path().c_str(), strSource.c_str(), 0));
    EXPECT_EQ("old", target.Content());
    EXPECT_EQ("new", folder.ReadFile(L"source"));
    EXPECT_EQ(1, CSFile::Copy(target.Path().c_str(), strSource.c_str(), kCopyKeepTarget));
}
} // namespace
