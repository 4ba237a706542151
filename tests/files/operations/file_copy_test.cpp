#include "files/operations/file_copy.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/text/cs_file.h"
#include "files/version_module.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <optional>
#include <string>

namespace {
using Content = std::optional<std::string>; // nothing: no file

constexpr DWORD kDeciding =
    kCopyKeepTarget | kCopyKeepIfNoSource | kCopyMissingIsEmpty | kCopyVerifyOnly | kCopyAnyVersion;

class CopyTest : public testing::Test {
  protected:
    std::wstring Put(const wchar_t* pszName, const Content& content) const {
        std::wstring strPath = folder.File(pszName);
        ::DeleteFileW(strPath.c_str());
        if (content) folder.MakeFile(pszName, *content);
        return strPath;
    }
    Content Get(const wchar_t* pszName) const {
        if (!IsThere(folder.File(pszName))) return std::nullopt;
        return folder.ReadFile(pszName);
    }
    int Copy(const wchar_t* pszTarget, const wchar_t* pszSource, DWORD nFlags) const {
        return CSFile::Copy(folder.File(pszTarget).c_str(), folder.File(pszSource).c_str(), nFlags);
    }
    /// Copies between two files with these contents, and looks at what is there afterwards.
    void ExpectCopy(const Content& source, const Content& target, DWORD nFlags, int nResult,
                    const Content& after, const wchar_t* pszSource = L"source.txt",
                    const wchar_t* pszTarget = L"target.txt") const {
        std::wstring strSource = Put(pszSource, source), strTarget = Put(pszTarget, target);
        if (source) SetWriteTime(strSource, kOldTime);
        if (target) SetWriteTime(strTarget, kOlderTime);
        EXPECT_EQ(nResult, Copy(pszTarget, pszSource, nFlags));
        EXPECT_TRUE(after == Get(pszTarget));
        EXPECT_TRUE(source == Get(pszSource));
        if (source) {
            EXPECT_EQ(kOldTime, WriteTime(strSource));
        }
        bool bUntouched = nFlags & kCopyVerifyOnly;
        if (target && after && bUntouched) {
            EXPECT_EQ(kOlderTime, WriteTime(strTarget));
        }
    }
    TempFolder folder;
};

// The decisions, for any flags: each row of contents with each of the 32 sets of flags. What comes
// out is told here a second time, in the order in which the rules hold.

struct Outcome {
    int nResult;
    Content target;
};

Outcome Decide(const Content& source, const Content& target, DWORD nFlags) {
    bool bVerify = nFlags & kCopyVerifyOnly;
    if (target && nFlags & kCopyKeepTarget && !bVerify) return {1, target};
    if (!source) {
        bool bEmpty = nFlags & kCopyMissingIsEmpty;
        if (!target) return {1, bVerify || !bEmpty ? Content() : ""};
        if ((bEmpty && target->empty()) || nFlags & kCopyKeepIfNoSource) return {1, target};
        if (bVerify) return {0, target};
        return {1, Content()}; // deleted
    }
    if (bVerify) return {source == target, target};
    return {1, source};
}

class CopyDecision : public CopyTest, public testing::WithParamInterface<DWORD> {};
TEST_P(CopyDecision, DependsOnWhatIsThere) {
    DWORD nFlags = 0; // the five bits that decide, out of the row's number
    DWORD nBit = 0;
    for (DWORD nMask = 1; nMask; nMask <<= 1)
        if (kDeciding & nMask && GetParam() >> nBit++ & 1) nFlags |= nMask;
    const Content contents[] = {{}, "", "a", "the text", "tha text", "the text and more", "the te"};
    for (const Content& source : contents) {
        for (const Content& target : contents) {
            SCOPED_TRACE(source.value_or("(none)") + " onto " + target.value_or("(none)") +
                         ", flags " + std::to_string(nFlags));
            Outcome outcome = Decide(source, target, nFlags);
            ExpectCopy(source, target, nFlags, outcome.nResult, outcome.target);
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Exhaustive, CopyDecision, testing::Range(DWORD{0}, DWORD{32}));

using FileCopy = CopyTest;

TEST_F(FileCopy, OtherFlagsDecideNothing) {
    const DWORD others = ~kDeciding;
    ExpectCopy("new", "old", others, 1, "new");
    ExpectCopy("new", {}, others, 1, "new");
    ExpectCopy({}, "old", others, 1, {});
    ExpectCopy("same", "same", others | kCopyVerifyOnly, 1, "same");
}

TEST_F(FileCopy, KeepsATargetThatExists) {
    ExpectCopy("new", "old", kCopyKeepTarget, 1, "old");
    EXPECT_EQ(kOlderTime, WriteTime(folder.File(L"target.txt")));
    ExpectCopy({}, "old", kCopyKeepTarget, 1, "old");
    ExpectCopy("new", {}, kCopyKeepTarget, 1, "new");
}

TEST_F(FileCopy, ATargetThatCannotBeReadCountsAsThere) {
    Put(L"source.txt", "new");
    EXPECT_EQ(1, Copy(L"no folder\\target", L"source.txt", kCopyKeepTarget));
    EXPECT_EQ(0, Copy(L"no folder\\target", L"source.txt", 0));
    EXPECT_EQ(0, Copy(L"no folder\\target", L"source.txt", kCopyKeepTarget | kCopyVerifyOnly));
}

TEST_F(FileCopy, OnlyAPlainlyMissingSourceIsMissing) {
    Put(L"target.txt", "old");
    EXPECT_EQ(0, Copy(L"target.txt", L"no folder\\source", 0));
    EXPECT_EQ(0, Copy(L"target.txt", L"no folder\\source", kCopyKeepIfNoSource));
    EXPECT_EQ(Content("old"), Get(L"target.txt"));
}

TEST_F(FileCopy, AnEmptyTargetThatCannotBeMadeIsAFailure) {
    std::filesystem::create_directory(folder.File(L"sub"));
    EXPECT_EQ(1, Copy(L"sub\\made", L"missing", kCopyMissingIsEmpty));
    EXPECT_EQ(Content(""), Get(L"sub\\made"));
    std::wstring strDisk = MadeDisk(L"TESSALY_READ_ONLY_DISK");
    if (strDisk.empty()) GTEST_SKIP() << "this user can mount no read-only disk";
    EXPECT_EQ(0, CSFile::Copy((strDisk + L"\\new").c_str(), folder.File(L"missing").c_str(),
                              kCopyMissingIsEmpty));
}

TEST_F(FileCopy, ATargetThatCannotBeDeletedIsAFailure) {
    std::wstring strTarget = Put(L"target.txt", "old");
    {
        OpenElsewhere other(strTarget, FILE_SHARE_READ);
        EXPECT_EQ(0, Copy(L"target.txt", L"missing", 0));
    }
    EXPECT_EQ(Content("old"), Get(L"target.txt"));
}

TEST_F(FileCopy, FoldersAreNotCopied) {
    std::filesystem::create_directory(folder.File(L"sub"));
    Put(L"source.txt", "new");
    EXPECT_EQ(0, Copy(L"sub", L"source.txt", 0));
    EXPECT_EQ(0, Copy(L"target.txt", L"sub", 0));
    EXPECT_FALSE(Get(L"target.txt")) << "the source is opened first";
    EXPECT_EQ(0, Copy(L"sub", L"missing", 0)) << "a folder is not deleted";
    EXPECT_TRUE(IsThere(folder.File(L"sub")));
    EXPECT_EQ(0, Copy(L"sub", L"sub", kCopyVerifyOnly));
}

TEST_F(FileCopy, NoPathIsNoMissingFile) { // for want of which something would be deleted
    std::wstring strFile = Put(L"file.txt", "text");
    const wchar_t* nothings[] = {nullptr, L""};
    for (const wchar_t* psz : nothings) {
        for (DWORD nFlags : {DWORD{0}, kCopyKeepIfNoSource, kCopyMissingIsEmpty, kCopyVerifyOnly}) {
            EXPECT_EQ(0, CSFile::Copy(psz, strFile.c_str(), nFlags));
            EXPECT_EQ(0, CSFile::Copy(strFile.c_str(), psz, nFlags));
            EXPECT_EQ(Content("text"), Get(L"file.txt"));
        }
    }
}

// Sizes at the end of what 32 bits hold

class CopyLargeSize : public CopyTest {
  protected:
    /// A file of that size without bytes of its own.
    std::wstring PutSparse(const wchar_t* pszName, __int64 cb) const {
        std::wstring strPath = Put(pszName, "");
        CoreFile file(strPath.c_str(), 1);
        file.MoveTo64(cb, FILE_BEGIN);
        EXPECT_EQ(1, file.SetEndOfFile());
        return strPath;
    }
};

TEST_F(CopyLargeSize, TheLargestIsNotTakenForEmpty) {
    PutSparse(L"source.bin", 0xFFFFFFFF);
    Put(L"target.bin", "old");
    {
        BrokenDisk disk;
        disk.nFailRead = 1; // all of it would take a while
        EXPECT_EQ(0, Copy(L"target.bin", L"source.bin", 0));
        EXPECT_EQ(2u, disk.reads.size());
    }
    EXPECT_TRUE(std::string(0x10000, 0) == Get(L"target.bin"));
    Put(L"target.bin", "");
    EXPECT_EQ(0, Copy(L"target.bin", L"source.bin", kCopyVerifyOnly));
    PutSparse(L"target.bin", 0xFFFFFFFF);
    BrokenDisk disk;
    disk.nFailRead = 3;
    EXPECT_EQ(0, Copy(L"target.bin", L"source.bin", kCopyVerifyOnly));
    EXPECT_EQ(4u, disk.reads.size());
}

extern "C" FARPROC __imp_SetFilePointer;
DWORD WINAPI NoPlace(HANDLE, LONG, PLONG, DWORD) {
    ::SetLastError(ERROR_INVALID_FUNCTION);
    return INVALID_SET_FILE_POINTER;
}

TEST_F(CopyLargeSize, ASourceThatTellsNoSizeIsNotTakenForEmpty) {
    Put(L"source.bin", "new");
    Put(L"target.bin", "old");
    {
        ReplaceImport replaced(__imp_SetFilePointer, &NoPlace);
        EXPECT_EQ(0, Copy(L"target.bin", L"source.bin", 0));
        EXPECT_EQ(0, Copy(L"target.bin", L"source.bin", kCopyVerifyOnly));
    }
    EXPECT_EQ(Content("old"), Get(L"target.bin"));
}

TEST_F(FileCopy, AFileOntoItselfStays) {
    Put(L"source.txt", "text");
    EXPECT_EQ(0, Copy(L"source.txt", L"source.txt", 0));
    EXPECT_EQ(Content("text"), Get(L"source.txt"));
    EXPECT_EQ(1, Copy(L"source.txt", L"source.txt", kCopyVerifyOnly));
}

// Files that others have open

TEST_F(FileCopy, ASourceThatSomebodyWritesIsNotCopied) {
    std::wstring strSource = Put(L"source.txt", "new");
    OpenElsewhere other(strSource, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ASSERT_TRUE(other.IsOpen());
    EXPECT_EQ(0, Copy(L"target.txt", L"source.txt", 0));
    EXPECT_FALSE(Get(L"target.txt"));
}

TEST_F(FileCopy, ATargetThatIsOpenIsNotWritten) {
    Put(L"source.txt", "new");
    std::wstring strTarget = Put(L"target.txt", "old");
    {
        OpenElsewhere other(strTarget, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        EXPECT_EQ(0, Copy(L"target.txt", L"source.txt", 0));
    }
    EXPECT_EQ(Content("old"), Get(L"target.txt"));
}

TEST_F(FileCopy, VerifyingSharesWithReaders) {
    std::wstring strSource = Put(L"source.txt", "text"), strTarget = Put(L"target.txt", "text");
    CoreFile reader(strSource.c_str(), 0), other(strTarget.c_str(), 0);
    EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", kCopyVerifyOnly));
    EXPECT_EQ(0, Copy(L"target.txt", L"source.txt", 0)) << "for writing it is shared with nobody";
    EXPECT_EQ(Content("text"), Get(L"target.txt"));
}

// What goes along

extern "C" FARPROC __imp_SetFileTime;
int nTimesSet;
BOOL WINAPI NoteSetTime(HANDLE, const FILETIME* pCreation, const FILETIME* pAccess,
                        const FILETIME* pWrite) {
    nTimesSet += (pCreation && pCreation->dwHighDateTime) + (pAccess && pAccess->dwHighDateTime) +
                 (pWrite && pWrite->dwHighDateTime);
    return TRUE;
}

TEST_F(FileCopy, TimesAndAttributesGoAlong) {
    std::wstring strSource = Put(L"source.txt", "text"), strTarget = folder.File(L"target.txt");
    SetWriteTime(strSource, kOldTime);
    constexpr DWORD kAttributes =
        FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    ::SetFileAttributesW(strSource.c_str(), kAttributes);
    EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", 0));
    EXPECT_EQ(kOldTime, WriteTime(strTarget));
    EXPECT_EQ(::GetFileAttributesW(strSource.c_str()), ::GetFileAttributesW(strTarget.c_str()));
    EXPECT_EQ(kAttributes, ::GetFileAttributesW(strTarget.c_str()) & kAttributes);
    ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_NORMAL);
    ::SetFileAttributesW(strTarget.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FileCopy, AllThreeTimesGoAlong) {
    Put(L"source.txt", "text");
    nTimesSet = 0;
    ReplaceImport replaced(__imp_SetFileTime, &NoteSetTime); // this platform keeps but two
    EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", 0));
    EXPECT_EQ(3, nTimesSet);
}

TEST_F(FileCopy, NothingGoesAlongWithAnEmptySource) {
    std::wstring strSource = Put(L"source.txt", ""), strTarget = Put(L"target.txt", "old");
    SetWriteTime(strSource, kOldTime);
    SetWriteTime(strTarget, kOlderTime);
    ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", 0));
    EXPECT_EQ(Content(""), Get(L"target.txt"));
    EXPECT_NE(kOldTime, WriteTime(strTarget));
    EXPECT_FALSE(::GetFileAttributesW(strTarget.c_str()) & FILE_ATTRIBUTE_HIDDEN);
}

TEST_F(FileCopy, VerifyingChangesNoTime) {
    std::wstring strSource = Put(L"source.txt", "text"), strTarget = Put(L"target.txt", "text");
    SetWriteTime(strSource, kOldTime);
    SetWriteTime(strTarget, kOlderTime);
    ::SetFileAttributesW(strSource.c_str(), FILE_ATTRIBUTE_HIDDEN);
    BrokenDisk disk;
    EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", kCopyVerifyOnly));
    EXPECT_TRUE(disk.writes.empty());
    EXPECT_EQ(0, disk.nCuts);
    EXPECT_EQ(kOldTime, WriteTime(strSource));
    EXPECT_EQ(kOlderTime, WriteTime(strTarget));
    EXPECT_FALSE(::GetFileAttributesW(strTarget.c_str()) & FILE_ATTRIBUTE_HIDDEN);
}

// Chunks

struct ChunkCase {
    const char* pszName;
    DWORD cb;
    std::vector<DWORD> chunks;
};
class CopyChunkSizes : public CopyTest, public testing::WithParamInterface<ChunkCase> {};
TEST_P(CopyChunkSizes, AreAtMost64KiB) {
    const auto& [pszName, cb, chunks] = GetParam();
    std::string str = MadeBytes(cb);
    Put(L"source.txt", str);
    Put(L"target.txt", str + "the old rest");
    {
        BrokenDisk disk;
        EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", 0));
        EXPECT_EQ(chunks, disk.reads);
        EXPECT_EQ(chunks, disk.writes);
        EXPECT_EQ(1, disk.nCuts);
    }
    EXPECT_TRUE(str == Get(L"target.txt"));
    {
        BrokenDisk disk;
        EXPECT_EQ(1, Copy(L"target.txt", L"source.txt", kCopyVerifyOnly));
        std::vector<DWORD> twice;
        for (DWORD n : chunks) twice.insert(twice.end(), 2, n);
        EXPECT_EQ(twice, disk.reads);
    }
    if (str.empty()) return;
    str.back() ^= 1; // the last byte counts as well
    Put(L"target.txt", str);
    EXPECT_EQ(0, Copy(L"target.txt", L"source.txt", kCopyVerifyOnly));
}
INSTANTIATE_TEST_SUITE_P(Sizes, CopyChunkSizes,
                         testing::Values(ChunkCase{"Empty", 0, {}}, ChunkCase{"OneByte", 1, {1}},
                                         ChunkCase{"OneLess", 0xFFFF, {0xFFFF}},
                                         ChunkCase{"Exactly", 0x10000, {0x10000}},
                                         ChunkCase{"OneMore", 0x10001, {0x10000, 1}},
                                         ChunkCase{"Two", 0x20000, {0x10000, 0x10000}},
                                         ChunkCase{
                                             "TwoAndRest", 0x2ABCD, {0x10000, 0x10000, 0xABCD}}),
                         kRowName);

TEST_F(FileCopy, VerifyingStopsAtTheFirstDifference) {
    std::string str = MadeBytes(0x30000);
    Put(L"source.txt", str);
    str[0x10000] ^= 1;
    Put(L"target.txt", str);
    BrokenDisk disk;
    EXPECT_EQ(0, Copy(L"target.txt", L"source.txt", kCopyVerifyOnly));
    EXPECT_EQ(4u, disk.reads.size());
}

// Versions of program files

constexpr unsigned __int64 kVersion1 = 0x0001000200030004, kVersion2 = 0x0001000200030005;

class CopyVersions : public CopyTest, public testing::WithParamInterface<DWORD> {};
TEST_P(CopyVersions, AnOlderOneIsNotCopied) {
    DWORD nFlags = GetParam();
    bool bVerify = nFlags & kCopyVerifyOnly;
    struct File {
        unsigned __int64 nVersion;
        std::string strBytes;
    };
    const File files[] = {{0, "no module"},
                          {kVersion1, ModuleOfVersion(kVersion1) + "a"},
                          {kVersion1, ModuleOfVersion(kVersion1) + "b"},
                          {kVersion2, ModuleOfVersion(kVersion2)}};
    for (const File& source : files) {
        for (const File& target : files) {
            SCOPED_TRACE(std::to_string(&source - files) + " onto " +
                         std::to_string(&target - files) + ", flags " + std::to_string(nFlags));
            bool bCompared = !(nFlags & kCopyAnyVersion) && source.nVersion && target.nVersion;
            if (bCompared && source.nVersion < target.nVersion)
                ExpectCopy(source.strBytes, target.strBytes, nFlags, 1, target.strBytes, L"s.dll");
            else if (bVerify)
                ExpectCopy(source.strBytes, target.strBytes, nFlags,
                           source.strBytes == target.strBytes, target.strBytes, L"s.dll");
            else
                ExpectCopy(source.strBytes, target.strBytes, nFlags, 1, source.strBytes, L"s.dll");
        }
        ExpectCopy(source.strBytes, {}, nFlags, bVerify ? 0 : 1,
                   bVerify ? Content() : source.strBytes, L"s.dll");
    }
}
INSTANTIATE_TEST_SUITE_P(Flags, CopyVersions,
                         testing::Values(DWORD{0}, kCopyVerifyOnly, kCopyAnyVersion,
                                         kCopyVerifyOnly | kCopyAnyVersion));

TEST_F(FileCopy, ANewerSourceFailsToVerifyUnread) {
    Put(L"s.dll", ModuleOfVersion(kVersion2));
    Put(L"t.dll", ModuleOfVersion(kVersion1));
    BrokenDisk disk;
    EXPECT_EQ(0, Copy(L"t.dll", L"s.dll", kCopyVerifyOnly));
    EXPECT_TRUE(disk.reads.empty());
}

TEST_F(FileCopy, AVersionCountsInAllItsParts) {
    const unsigned __int64 versions[] = {0x0000000000000001, 0x000000000000FFFF, 0x0000000000010000,
                                         0x00000000FFFFFFFF, 0x0000000100000000, 0x0001000000000000,
                                         0x8000000000000000, 0xFFFFFFFFFFFFFFFF};
    for (std::size_t i = 1; i < std::size(versions); ++i) {
        std::string strOlder = ModuleOfVersion(versions[i - 1]),
                    strNewer = ModuleOfVersion(versions[i]);
        ExpectCopy(strOlder, strNewer, 0, 1, strNewer, L"s.dll");
        ExpectCopy(strNewer, strOlder, 0, 1, strNewer, L"s.dll");
    }
}

struct ExtensionCase {
    const char* pszName;
    const wchar_t* pszSource;
    bool bCompared;
};
class CopyExtension : public CopyTest, public testing::WithParamInterface<ExtensionCase> {};
TEST_P(CopyExtension, OfTheSourceTellsWhetherItIsAProgram) {
    std::string strOlder = ModuleOfVersion(kVersion1), strNewer = ModuleOfVersion(kVersion2);
    ExpectCopy(strOlder, strNewer, 0, 1, GetParam().bCompared ? strNewer : strOlder,
               GetParam().pszSource, L"target.txt");
    if (!GetParam().bCompared)
        ExpectCopy(strOlder, strNewer, 0, 1, strOlder, GetParam().pszSource, L"target.dll");
}
INSTANTIATE_TEST_SUITE_P(
    Extensions, CopyExtension,
    testing::Values(ExtensionCase{"Exe", L"a.exe", true}, ExtensionCase{"Dll", L"a.dll", true},
                    ExtensionCase{"Sys", L"a.sys", true}, ExtensionCase{"Upper", L"a.DLL", true},
                    ExtensionCase{"Mixed", L"a.eXe", true}, ExtensionCase{"OnlyDot", L".sys", true},
                    ExtensionCase{"Ocx", L"a.ocx", false}, ExtensionCase{"None", L"a", false},
                    ExtensionCase{"NotTheLast", L"a.dll.bak", false},
                    ExtensionCase{"Longer", L"a.dllx", false},
                    ExtensionCase{"Shorter", L"a.dl", false}, ExtensionCase{"NoDot", L"dll", false},
                    ExtensionCase{"Text", L"a.txt", false}),
    kRowName);
} // namespace
