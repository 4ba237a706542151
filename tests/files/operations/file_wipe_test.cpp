#include "files/operations/file_wipe.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/short_names.h"
#include "files/text/cs_file.h"
#include "support/guard_page.h"
#include "support/heap_count.h"

#include <gtest/gtest.h>
#include <climits>
#include <string>

extern "C" FARPROC __imp_FlushFileBuffers, __imp_MoveFileW, __imp_DeleteFileW;

namespace {
constexpr wchar_t kFirst = 0x5555, kSecond = 0xAAAA;

std::wstring WipedName(const std::wstring& strFolder, wchar_t ch) {
    return strFolder + L"\\" + std::wstring(258 - strFolder.size(), ch);
}

/// Looks on while a file is wiped: what each pass left in it, read through the wipe's own handle,
/// as nobody else may open the file; and how it is renamed and deleted. Any of it may fail.
class WipeWatch {
  public:
    WipeWatch() { pCurrent = this; }
    ~WipeWatch() { pCurrent = nullptr; }
    WipeWatch(const WipeWatch&) = delete;
    WipeWatch& operator=(const WipeWatch&) = delete;

    std::vector<std::string> passes; // the file's bytes at the end of each
    std::vector<std::pair<std::wstring, std::wstring>> renames;
    std::vector<std::wstring> deleted;
    int nFailRename = -1, nFailRenameToo = -1; // the renaming with this number fails
    bool bCannotDelete = false;

  private:
    static inline WipeWatch* pCurrent = nullptr;
    static BOOL WINAPI Flush(HANDLE h) {
        LARGE_INTEGER nPos{}, cb{}, nStart{};
        ::SetFilePointerEx(h, {}, &nPos, FILE_CURRENT);
        ::GetFileSizeEx(h, &cb);
        std::string str(static_cast<std::size_t>(cb.QuadPart), '?');
        ::SetFilePointerEx(h, nStart, nullptr, FILE_BEGIN);
        DWORD cbDone = 0;
        ::ReadFile(h, str.data(), static_cast<DWORD>(str.size()), &cbDone, nullptr);
        str.resize(cbDone);
        ::SetFilePointerEx(h, nPos, nullptr, FILE_BEGIN);
        pCurrent->passes.push_back(str);
        return pCurrent->flush.Original<decltype(::FlushFileBuffers)>()(h);
    }
    static BOOL WINAPI Move(LPCWSTR pszOld, LPCWSTR pszNew) {
        int n = static_cast<int>(pCurrent->renames.size());
        pCurrent->renames.emplace_back(pszOld, pszNew);
        if (n != pCurrent->nFailRename && n != pCurrent->nFailRenameToo)
            return pCurrent->move.Original<decltype(::MoveFileW)>()(pszOld, pszNew);
        ::SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    static BOOL WINAPI Delete(LPCWSTR pszPath) {
        pCurrent->deleted.emplace_back(pszPath);
        if (!pCurrent->bCannotDelete)
            return pCurrent->remove.Original<decltype(::DeleteFileW)>()(pszPath);
        ::SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    ReplaceImport flush{__imp_FlushFileBuffers, &Flush};
    ReplaceImport move{__imp_MoveFileW, &Move};
    ReplaceImport remove{__imp_DeleteFileW, &Delete};
};

struct Progress {
    std::vector<std::pair<int, unsigned __int64>> calls;
    int nCancelAt = -1; // the call with this number says 0
    static int Tell(void* pContext, int nPass, unsigned __int64 cbWritten) {
        auto* pThis = static_cast<Progress*>(pContext);
        int n = static_cast<int>(pThis->calls.size());
        pThis->calls.emplace_back(nPass, cbWritten);
        return n == pThis->nCancelAt ? 0 : 7; // anything but 0 goes on
    }
};

class WipeTest : public testing::Test {
  protected:
    static int Wipe(const std::wstring& strPath, int nMethod, int bNotify = 0,
                    Progress* pProgress = nullptr) {
        return CSFile::WipeDelete(strPath.c_str(), static_cast<WipeMethod>(nMethod), bNotify,
                                  pProgress ? &Progress::Tell : nullptr, pProgress);
    }
    bool IsEmpty() const { return std::filesystem::is_empty(folder.Get()); }
    TempFolder folder;
};
using WipeDelete = WipeTest;
using WipeRename = WipeTest;

TEST(WipePasses, OfEachMethod) {
    EXPECT_EQ(1, GetWipePasses(wipeZeros));
    EXPECT_EQ(3, GetWipePasses(wipeThreePasses));
    for (int n : {0, 3, 4, -1, -2, INT_MAX, INT_MIN, 257}) EXPECT_EQ(0, GetWipePasses(n)) << n;
}

struct NameCase {
    const char* pszName;
    const wchar_t* pszText;
    int nResult;
};
class WipedNames : public testing::TestWithParam<NameCase> {};
TEST_P(WipedNames, AreOfTwoCharacters) {
    GuardedText text(GetParam().pszText);
    EXPECT_EQ(GetParam().nResult, CSFile::IsWipedName(text.Get()));
}
INSTANTIATE_TEST_SUITE_P(
    Names, WipedNames,
    testing::Values(NameCase{"Empty", L"", 1}, NameCase{"First", L"\x5555", 1},
                    NameCase{"Second", L"\xAAAA", 1}, NameCase{"Both", L"\x5555\xAAAA\x5555", 1},
                    NameCase{"Other", L"a", 0},
                    NameCase{"OtherAtTheEnd",
                             L"\x5555\xAAAA"
                             L"b",
                             0},
                    NameCase{"OtherAtTheStart", L"b\x5555", 0},
                    NameCase{"Neighbours", L"\x5554", 0}, NameCase{"Above", L"\xAAAB", 0},
                    NameCase{"Byte", L"\x55", 0}, NameCase{"Path", L"\\\x5555", 0},
                    NameCase{"Dot", L"\x5555.", 0}),
    kRowName);
TEST(WipedNamesEdges, NullIsEmpty) { EXPECT_EQ(1, CSFile::IsWipedName(nullptr)); }

// What is written

struct PassCase {
    const char* pszName;
    int nMethod;
    std::vector<char> bytes;
};
class WipeMethods : public WipeTest, public testing::WithParamInterface<PassCase> {};
TEST_P(WipeMethods, OverwriteTheWholeFileInEachPass) {
    for (DWORD cb : {DWORD{1}, DWORD{100}, kWipeChunk - 1, kWipeChunk, kWipeChunk + 1,
                     2 * kWipeChunk, 3 * kWipeChunk - 7}) {
        SCOPED_TRACE(cb);
        std::wstring strPath = folder.MakeFile(L"secret", MadeBytes(cb));
        WipeWatch watch;
        BrokenDisk disk;
        EXPECT_EQ(1, Wipe(strPath, GetParam().nMethod));
        ASSERT_EQ(GetParam().bytes.size(), watch.passes.size());
        for (std::size_t i = 0; i < watch.passes.size(); ++i)
            EXPECT_TRUE(std::string(cb, GetParam().bytes[i]) == watch.passes[i]) << i;
        std::vector<DWORD> chunks;
        for (std::size_t n = 0; n < GetParam().bytes.size(); ++n) {
            for (DWORD nAt = 0; nAt < cb; nAt += kWipeChunk)
                chunks.push_back(std::min(kWipeChunk, cb - nAt));
        }
        EXPECT_EQ(chunks, disk.writes);
        EXPECT_TRUE(IsEmpty());
    }
}
INSTANTIATE_TEST_SUITE_P(Methods, WipeMethods,
                         testing::Values(PassCase{"None", 0, {}}, PassCase{"Zeros", 1, {0}},
                                         PassCase{"Three", 2, {0x55, '\xAA', 0}},
                                         PassCase{"Unknown", 3, {}}, PassCase{"Negative", -1, {}}),
                         kRowName);

TEST_F(WipeDelete, AnEmptyFileAndAMissingOneAreDone) {
    for (int nMethod : {0, 1, 2}) {
        Progress progress;
        EXPECT_EQ(1, Wipe(folder.MakeFile(L"empty", ""), nMethod, 0, &progress));
        EXPECT_EQ(1, Wipe(folder.File(L"missing"), nMethod, 0, &progress)) << "made first";
        EXPECT_TRUE(progress.calls.empty());
        EXPECT_TRUE(IsEmpty());
    }
    EXPECT_EQ(0, Wipe(folder.File(L"no folder\\file"), 1));
    EXPECT_EQ(0, Wipe(L"", 1));
    EXPECT_EQ(0, CSFile::WipeDelete(nullptr, wipeZeros, 0, nullptr, nullptr));
}

// The callback

TEST_F(WipeDelete, TellsOfEachPiece) {
    constexpr DWORD kSize = 2 * kWipeChunk + 5;
    Progress progress;
    EXPECT_EQ(1, Wipe(folder.MakeFile(L"a", MadeBytes(kSize)), 2, 0, &progress));
    std::vector<std::pair<int, unsigned __int64>> expected;
    for (int n = 0; n < 3; ++n) {
        for (DWORD cb : {kWipeChunk, 2 * kWipeChunk, kSize}) expected.emplace_back(n, cb);
    }
    EXPECT_EQ(expected, progress.calls);
}

class WipeCancel : public WipeTest, public testing::WithParamInterface<int> {};
TEST_P(WipeCancel, EndsThePassAndKeepsTheFile) {
    constexpr DWORD kSize = 2 * kWipeChunk;
    std::string strBytes = MadeBytes(kSize);
    std::wstring strPath = folder.MakeFile(L"a", strBytes);
    Progress progress;
    progress.nCancelAt = GetParam();
    WipeWatch watch;
    ToldShell shell;
    EXPECT_EQ(0, Wipe(strPath, 2, 1, &progress));
    // The passes behind run whole; the one that was cancelled has one call less, if it was not its
    // last.
    EXPECT_EQ(GetParam() % 2 ? 6u : 5u, progress.calls.size());
    ASSERT_EQ(3u, watch.passes.size()) << "each pass is flushed";
    std::string strExpected = strBytes;
    const char bytes[] = {0x55, '\xAA', 0};
    for (int n = 0; n < 3; ++n) {
        bool bCut = GetParam() == 2 * n;
        strExpected.replace(0, bCut ? kWipeChunk : kSize, bCut ? kWipeChunk : kSize, bytes[n]);
        EXPECT_TRUE(strExpected == watch.passes[n]) << n;
    }
    EXPECT_TRUE(strExpected == folder.ReadFile(L"a"));
    EXPECT_TRUE(watch.renames.empty() && watch.deleted.empty() && shell.events.empty());
}
INSTANTIATE_TEST_SUITE_P(Calls, WipeCancel, testing::Range(0, 6));

// What fails

TEST_F(WipeDelete, AWriteThatFailsEndsIt) {
    constexpr DWORD kSize = 2 * kWipeChunk;
    std::string strBytes = MadeBytes(kSize);
    for (bool bShort : {false, true}) {
        for (int n = 0; n < 6; ++n) {
            std::wstring strPath = folder.MakeFile(L"a", strBytes);
            WipeWatch watch;
            BrokenDisk disk;
            (bShort ? disk.nShortWrite : disk.nFailWrite) = n;
            EXPECT_EQ(0, Wipe(strPath, 2));
            EXPECT_EQ(n + 1, static_cast<int>(disk.writes.size()));
            EXPECT_TRUE(watch.renames.empty() && watch.deleted.empty());
            EXPECT_EQ(kSize, folder.ReadFile(L"a").size());
            EXPECT_TRUE(OpenElsewhere(strPath).IsOpen()) << "it is closed";
        }
    }
}

TEST_F(WipeDelete, WithoutMemoryTheFileStays) {
    std::wstring strPath = folder.MakeFile(L"a", "secret");
    const wchar_t* pszPath = strPath.c_str();
    int nResult = 0, nFailed = 0;
    for (int n = 1; n < 10 && !nResult; ++n) {
        FailBlock(n);
        nResult = CSFile::WipeDelete(pszPath, wipeZeros, 0, nullptr, nullptr);
        FailBlock(0);
        if (nResult) break;
        ++nFailed;
        EXPECT_EQ("secret", folder.ReadFile(L"a"));
    }
    EXPECT_EQ(1, nResult);
    EXPECT_GT(nFailed, 0) << "the buffer is asked for";
}

TEST_F(WipeDelete, AFileThatIsOpenElsewhereStays) {
    std::wstring strPath = folder.MakeFile(L"a", "secret");
    {
        OpenElsewhere other(strPath, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        WipeWatch watch;
        EXPECT_EQ(0, Wipe(strPath, 2));
        EXPECT_EQ(0, Wipe(strPath, 0));
        EXPECT_TRUE(watch.passes.empty() && watch.renames.empty() && watch.deleted.empty());
    }
    EXPECT_EQ("secret", folder.ReadFile(L"a"));
    CoreFile reader(strPath.c_str(), 0);
    EXPECT_EQ(0, Wipe(strPath, 2)) << "a reader is enough";
    reader.Close();
    EXPECT_EQ("secret", folder.ReadFile(L"a"));
}

TEST_F(WipeDelete, AFolderStays) {
    std::filesystem::create_directory(folder.File(L"sub"));
    folder.MakeFile(L"sub\\a", "kept");
    WipeWatch watch;
    EXPECT_EQ(0, Wipe(folder.File(L"sub"), 2));
    EXPECT_EQ(0, Wipe(folder.File(L"sub\\"), 1));
    EXPECT_EQ("kept", folder.ReadFile(L"sub\\a"));
    EXPECT_TRUE(watch.renames.empty() && watch.deleted.empty());
}

TEST_F(WipeDelete, AReadOnlyFileStaysAsItIs) {
    std::wstring strPath = folder.MakeFile(L"a", "kept");
    ReadOnlyFile readOnly(strPath);
    WipeWatch watch;
    EXPECT_EQ(0, Wipe(strPath, 2));
    EXPECT_EQ("kept", folder.ReadFile(L"a"));
    EXPECT_TRUE(watch.passes.empty() && watch.renames.empty());
    EXPECT_TRUE(::GetFileAttributesW(strPath.c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_F(WipeDelete, HiddenAndSystemFilesGoAsWell) {
    std::wstring strPath = folder.MakeFile(L"a", "secret");
    ::SetFileAttributesW(strPath.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    WipeWatch watch;
    EXPECT_EQ(1, Wipe(strPath, 1));
    EXPECT_EQ(1u, watch.passes.size());
    EXPECT_TRUE(IsEmpty());
}

// Links. The platform here follows them all by itself, so what it says of a file is the test's.

extern "C" FARPROC __imp_GetFileInformationByHandle, __imp_DeviceIoControl, __imp_CreateFileW;

class LinkTeller {
  public:
    explicit LinkTeller(DWORD nLinkTag) {
        nTag = nLinkTag;
        openFlags.clear();
        pCurrent = this;
    }
    static inline std::vector<DWORD> openFlags;

  private:
    static inline DWORD nTag; // 0: the file does not tell
    static inline LinkTeller* pCurrent;
    static BOOL WINAPI Inform(HANDLE h, LPBY_HANDLE_FILE_INFORMATION pInfo) {
        BOOL bDone = pCurrent->inform.Original<decltype(::GetFileInformationByHandle)>()(h, pInfo);
        pInfo->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
        return bDone;
    }
    static BOOL WINAPI Control(HANDLE, DWORD nCode, LPVOID, DWORD, LPVOID pOut, DWORD cbOut,
                               LPDWORD pcb, LPOVERLAPPED) {
        EXPECT_EQ(0x900A8u, nCode); // FSCTL_GET_REPARSE_POINT
        EXPECT_GE(cbOut, 16u * 1024);
        if (!nTag) return FALSE;
        std::memcpy(pOut, &nTag, sizeof(nTag));
        *pcb = 8;
        return TRUE;
    }
    static HANDLE WINAPI Open(LPCWSTR psz, DWORD nAccess, DWORD nShare, LPSECURITY_ATTRIBUTES p,
                              DWORD nHow, DWORD nFlags, HANDLE h) {
        openFlags.push_back(nFlags);
        return pCurrent->open.Original<decltype(::CreateFileW)>()(psz, nAccess, nShare, p, nHow,
                                                                  nFlags, h);
    }
    ReplaceImport inform{__imp_GetFileInformationByHandle, &Inform};
    ReplaceImport control{__imp_DeviceIoControl, &Control};
    ReplaceImport open{__imp_CreateFileW, &Open};
};

TEST_F(WipeDelete, ALinkIsDeletedAndNotFollowed) {
    constexpr DWORD kSymlink = 0xA000000C, kMountPoint = 0xA0000003;
    for (DWORD nTag : {kSymlink, kMountPoint}) {
        std::wstring strPath = folder.MakeFile(L"link", "what it leads to");
        Progress progress;
        WipeWatch watch;
        {
            BrokenDisk disk;
            LinkTeller link(nTag);
            EXPECT_EQ(1, Wipe(strPath, 2, 0, &progress));
            EXPECT_TRUE(disk.writes.empty());
            ASSERT_EQ(1u, link.openFlags.size());
            EXPECT_TRUE(link.openFlags[0] & FILE_FLAG_OPEN_REPARSE_POINT);
        }
        EXPECT_TRUE(progress.calls.empty());
        EXPECT_EQ(2u, watch.renames.size());
        EXPECT_TRUE(IsEmpty());
    }
}

TEST_F(WipeDelete,
       WhatMayBeALinkStays) { // it is not followed, nor deleted with its bytes as they are
    std::wstring strPath = folder.MakeFile(L"untold", "secret");
    WipeWatch watch;
    LinkTeller link(0);
    EXPECT_EQ(0, Wipe(strPath, 2));
    EXPECT_TRUE(watch.passes.empty() && watch.renames.empty() && watch.deleted.empty());
    EXPECT_EQ("secret", folder.ReadFile(L"untold"));
}

TEST_F(WipeDelete, WithoutMemoryALinkIsNotTold) {
    constexpr DWORD kDedup = 0x80000013;
    std::wstring strPath = folder.MakeFile(L"packed", "secret");
    int nResult = 1;
    {
        LinkTeller link(kDedup);
        link.openFlags.reserve(4);
        FailBlock(1);
        nResult = CSFile::WipeDelete(strPath.c_str(), wipeZeros, 0, nullptr, nullptr);
        FailBlock(0);
    }
    EXPECT_EQ(0, nResult);
    EXPECT_EQ("secret", folder.ReadFile(L"packed"));
}

TEST_F(WipeDelete, WhatOnlyLiesElsewhereIsOverwritten) {
    constexpr DWORD kDedup = 0x80000013; // tells where the file's own bytes lie
    std::wstring strPath = folder.MakeFile(L"packed", "secret");
    WipeWatch watch;
    LinkTeller link(kDedup);
    EXPECT_EQ(1, Wipe(strPath, 1));
    ASSERT_EQ(1u, watch.passes.size());
    EXPECT_EQ(std::string(6, 0), watch.passes[0]);
    ASSERT_EQ(2u, link.openFlags.size()) << "once more, as a file";
    EXPECT_FALSE(link.openFlags[1] & FILE_FLAG_OPEN_REPARSE_POINT);
    EXPECT_TRUE(IsEmpty());
}

TEST_F(WipeDelete, AnotherNameOfTheFileHasTheOverwrittenBytes) {
    std::wstring strPath = folder.MakeFile(L"a", "secret");
    ASSERT_TRUE(::CreateHardLinkW(folder.File(L"b").c_str(), strPath.c_str(), nullptr));
    EXPECT_EQ(1, Wipe(strPath, 1));
    EXPECT_FALSE(IsThere(strPath));
    EXPECT_EQ(std::string(6, 0), folder.ReadFile(L"b"));
}

// The name

TEST_F(WipeDelete, OverwritesTheNameTwice) {
    std::wstring strPath = folder.MakeFile(L"secret", "abc");
    std::wstring strFirst = WipedName(folder.Get(), kFirst),
                 strSecond = WipedName(folder.Get(), kSecond);
    WipeWatch watch;
    ToldShell shell;
    EXPECT_EQ(1, Wipe(strPath, 0, 1));
    std::vector<std::pair<std::wstring, std::wstring>> renames = {{strPath, strFirst},
                                                                  {strFirst, strSecond}};
    EXPECT_TRUE(renames == watch.renames);
    EXPECT_TRUE(std::vector{strSecond} == watch.deleted);
    std::vector<ToldShell::Event> events = {{SHCNE_DELETE, strPath}, {SHCNE_DELETE, strSecond}};
    EXPECT_TRUE(events == shell.events);
}

TEST_F(WipeDelete, TellsNobodyUnlessAsked) {
    ToldShell shell;
    EXPECT_EQ(1, Wipe(folder.MakeFile(L"secret", "abc"), 2));
    EXPECT_TRUE(shell.events.empty());
}

TEST_F(WipeDelete, AFileThatCannotBeRenamedHasItsNameAgain) {
    for (int n : {0, 1}) {
        std::wstring strPath = folder.MakeFile(L"secret", "abc");
        WipeWatch watch;
        ToldShell shell;
        watch.nFailRename = n;
        EXPECT_EQ(0, Wipe(strPath, 1, 1));
        EXPECT_TRUE(watch.deleted.empty() && shell.events.empty());
        EXPECT_EQ(std::string(3, 0), folder.ReadFile(L"secret"));
        EXPECT_EQ(n ? 3u : 1u, watch.renames.size());
    }
}

TEST_F(WipeDelete, AFileThatCannotBeDeletedKeepsItsWipedName) {
    std::wstring strPath = folder.MakeFile(L"secret", "abc");
    std::wstring strSecond = WipedName(folder.Get(), kSecond);
    WipeWatch watch;
    ToldShell shell;
    watch.bCannotDelete = true;
    EXPECT_EQ(0, Wipe(strPath, 1, 1));
    EXPECT_TRUE(std::vector{strSecond} == watch.deleted);
    EXPECT_FALSE(IsThere(strPath));
    std::vector<ToldShell::Event> events = {{SHCNE_DELETE, strPath}}; // the old name is gone
    EXPECT_TRUE(events == shell.events);
}

TEST_F(WipeRename, GivesTheFinalName) {
    std::wstring strPath = folder.MakeFile(L"a.txt", "abc");
    GuardedArea area(260 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(area.Put(260 * sizeof(wchar_t)));
    std::wcscpy(psz, strPath.c_str());
    WipeWatch watch;
    EXPECT_EQ(1, CSFile::WipeRename(psz));
    EXPECT_EQ(WipedName(folder.Get(), kSecond), psz);
    EXPECT_EQ(259u, std::wcslen(psz));
    EXPECT_FALSE(IsThere(strPath));
    EXPECT_EQ(1, CSFile::IsWipedName(psz + folder.Get().size() + 1));
    ::DeleteFileW(psz);
}

TEST_F(WipeRename, GivesTheNameThatTheFileBearsWhenItFails) {
    std::wstring strPath = folder.MakeFile(L"a.txt", "abc");
    wchar_t szPath[260];
    WipeWatch watch;
    watch.nFailRename = 0;
    std::wcscpy(szPath, strPath.c_str());
    EXPECT_EQ(0, CSFile::WipeRename(szPath));
    EXPECT_EQ(strPath, szPath);
    EXPECT_TRUE(IsThere(strPath));
    watch.renames.clear();
    watch.nFailRename = 1;
    EXPECT_EQ(0, CSFile::WipeRename(szPath));
    EXPECT_EQ(WipedName(folder.Get(), kFirst), szPath);
    EXPECT_FALSE(IsThere(strPath));
    watch.renames.clear();
    watch.nFailRename = -1;
    ::DeleteFileW(szPath);
}

TEST_F(WipeRename, AMissingFileAndNoPathFail) {
    wchar_t szPath[260] = L"";
    EXPECT_EQ(0, CSFile::WipeRename(szPath));
    EXPECT_STREQ(L"", szPath);
    std::wstring strMissing = folder.File(L"missing");
    std::wcscpy(szPath, strMissing.c_str());
    EXPECT_EQ(0, CSFile::WipeRename(szPath));
    EXPECT_EQ(strMissing, szPath);
    EXPECT_EQ(0, CSFile::WipeRename(nullptr));
}

TEST_F(WipeRename, FillsThePathWhateverTheFoldersLength) {
    // The longest folder has room for a name of one character.
    for (std::size_t cchFolder : {100u, 200u, 250u, 256u, 257u}) {
        SCOPED_TRACE(cchFolder);
        std::wstring strFolder = MakeFolderOfLength(folder.Get(), cchFolder);
        ASSERT_EQ(cchFolder, strFolder.size());
        wchar_t szPath[260];
        std::wcscpy(szPath, (strFolder + L"\\f").c_str());
        { std::ofstream(std::filesystem::path(szPath)) << "abc"; }
        WipeWatch watch;
        EXPECT_EQ(1, CSFile::WipeRename(szPath));
        EXPECT_EQ(WipedName(strFolder, kSecond), szPath);
        ASSERT_EQ(2u, watch.renames.size());
        EXPECT_EQ(WipedName(strFolder, kFirst), watch.renames[0].second);
        EXPECT_TRUE(::DeleteFileW(szPath));
    }
}

TEST_F(WipeDelete, LeavesNoBlockBehind) {
    std::wstring strPath = folder.MakeFile(L"a", "secret");
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(0, CSFile::WipeDelete(folder.Get().c_str(), wipeZeros, 0, nullptr, nullptr));
    EXPECT_EQ(1, CSFile::WipeDelete(strPath.c_str(), wipeThreePasses, 0, nullptr, nullptr));
    EXPECT_EQ(nBefore, CountLiveBlocks());
}
} // namespace
