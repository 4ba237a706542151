#include "runtime/threads/co_init.h"
#include "shell/folders/fake_shell.h"
#include "shell/folders/special_folders.h"
#include "support/guard_page.h"
#include "support/heap_count.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

namespace {
constexpr DWORD kFolder = SFGAO_FOLDER | SFGAO_FILESYSTEM;

class SpecialFoldersTest : public testing::Test {
  protected:
    SpecialFoldersTest() {
        GetSPEC_FOLDER_DATA(1);
        int nDisk = shell.Add(0, L"Disk", kFolder, L"C:\\");
        int nUser = shell.Add(nDisk, L"me", kFolder, L"C:\\me");
        nDocuments = shell.Add(nUser, L"My Papers", kFolder, L"C:\\me\\Docs");
        nNetwork = shell.Add(0, L"Net Around", SFGAO_FOLDER);
        shell.special = {
            {CSIDL_DESKTOPDIRECTORY, shell.Add(nUser, L"Desktop", kFolder, L"C:\\me\\Desktop")},
            {CSIDL_DESKTOP, 0},
            {CSIDL_NETHOOD, shell.Add(nUser, L"Hood", kFolder, L"C:\\me\\Hood")},
            {CSIDL_NETWORK, nNetwork},
            {CSIDL_PERSONAL, nDocuments}};
        shell[0].strAddress = L"Desk"; // called the same however it is asked
    }
    ~SpecialFoldersTest() override {
        GetSPEC_FOLDER_DATA(1);
        EXPECT_EQ(0, FakeShell::nFolders);
    }
    static std::wstring Simplified(const std::wstring& str, unsigned cch = MAX_PATH) {
        wchar_t sz[600];
        wcscpy(sz, str.c_str());
        SimplifyShellName(sz, cch);
        return sz;
    }
    static std::wstring UnSimplified(const std::wstring& str, unsigned cch = MAX_PATH) {
        wchar_t sz[600];
        wcscpy(sz, str.c_str());
        UnSimplifyShellName(sz, cch);
        return sz;
    }
    void Without(int nCsidl) {
        std::erase_if(shell.special, [&](const auto& row) { return row.first == nCsidl; });
    }
    FakeShell shell;
    int nDocuments, nNetwork;
};

TEST(SpecFolderData, HasItsLayout) {
    EXPECT_EQ(0u, offsetof(SPEC_FOLDER_DATA, nPathCsidl));
    EXPECT_EQ(4u, offsetof(SPEC_FOLDER_DATA, nNamespaceCsidl));
    EXPECT_EQ(8u, offsetof(SPEC_FOLDER_DATA, pszPath));
    EXPECT_EQ(16u, offsetof(SPEC_FOLDER_DATA, cchPath));
    EXPECT_EQ(24u, offsetof(SPEC_FOLDER_DATA, pszName));
    EXPECT_EQ(32u, sizeof(SPEC_FOLDER_DATA));
}

TEST_F(SpecialFoldersTest, ThreeRecordsInTheirOrder) {
    SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0);
    ASSERT_NE(nullptr, pp);
    const struct {
        int nPath, nNamespace;
        const wchar_t *pszPath, *pszName;
    } rows[] = {{16, 0, L"C:\\me\\Desktop\\", L"Desk"},
                {19, 18, L"C:\\me\\Hood\\", L"Net Around"},
                {5, 5, L"C:\\me\\Docs\\", L"My Papers"}};
    for (int n = 0; n < 3; ++n) {
        ASSERT_NE(nullptr, pp[n]);
        EXPECT_EQ(rows[n].nPath, pp[n]->nPathCsidl);
        EXPECT_EQ(rows[n].nNamespace, pp[n]->nNamespaceCsidl);
        EXPECT_STREQ(rows[n].pszPath, pp[n]->pszPath);
        EXPECT_EQ(wcslen(rows[n].pszPath), pp[n]->cchPath);
        EXPECT_STREQ(rows[n].pszName, pp[n]->pszName);
    }
    EXPECT_EQ(nullptr, pp[3]);
    EXPECT_EQ(pp, GetSPEC_FOLDER_DATA(0));
}

TEST_F(SpecialFoldersTest, AreMadeOnceAndAnewAfterTheirRelease) {
    SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0);
    SPEC_FOLDER_DATA* pFirst = pp[0];
    shell.special.clear();
    EXPECT_EQ(pFirst, GetSPEC_FOLDER_DATA(0)[0]);
    GetSPEC_FOLDER_DATA(1);
    GetSPEC_FOLDER_DATA(1);
    pp = GetSPEC_FOLDER_DATA(0);
    ASSERT_NE(nullptr, pp);
    for (int n = 0; n < 3; ++n) {
        ASSERT_NE(nullptr, pp[n]);
        EXPECT_EQ(nullptr, pp[n]->pszPath);
        EXPECT_EQ(0u, pp[n]->cchPath);
    }
}

TEST(SpecialFolders, OutOfMemoryAtEachBlockLeaksNothing) {
    CoInit com;
    GetSPEC_FOLDER_DATA(1);
    wchar_t szFolder[MAX_PATH];
    ASSERT_TRUE(::SHGetSpecialFolderPathW(nullptr, szFolder, CSIDL_PERSONAL, FALSE));
    long nBefore = CountLiveBlocks();
    for (int n = 1; n <= 12; ++n) {
        wchar_t sz[MAX_PATH];
        wcscpy(sz, szFolder);
        FailBlock(n);
        GetSPEC_FOLDER_DATA(0);
        SimplifyShellName(wcscat(sz, L"\\a"), MAX_PATH);
        FailBlock(0);
        GetSPEC_FOLDER_DATA(1);
        EXPECT_EQ(nBefore, CountLiveBlocks()) << n;
    }
}

TEST_F(SpecialFoldersTest, FindsTheRecordThatAPathIsBelow) {
    SPEC_FOLDER_DATA** pp = GetSPEC_FOLDER_DATA(0);
    EXPECT_EQ(pp[0], GetAnySpecialSubFolderData(L"C:\\me\\Desktop\\a"));
    EXPECT_EQ(pp[1], GetAnySpecialSubFolderData(L"c:\\ME\\hood\\a\\b"));
    EXPECT_EQ(pp[2], GetAnySpecialSubFolderData(L"C:/me/Docs/a"));
    for (const wchar_t* psz : {L"C:\\me\\Docs", L"C:\\me\\Docs\\", L"C:\\me\\Docs2\\a", L"C:\\me",
                               L"", L"Docs\\a", L"D:\\me\\Docs\\a"})
        EXPECT_EQ(nullptr, GetAnySpecialSubFolderData(psz)) << testing::PrintToString(psz);
    EXPECT_EQ(nullptr, GetAnySpecialSubFolderData(nullptr));
}

TEST_F(SpecialFoldersTest, NestedFoldersGiveTheFirstRecord) {
    shell[nDocuments].strPath = L"C:\\me\\Desktop\\Docs";
    EXPECT_EQ(GetSPEC_FOLDER_DATA(0)[0], GetAnySpecialSubFolderData(L"C:\\me\\Desktop\\Docs\\a"));
}

TEST_F(SpecialFoldersTest, WhatFollowsTheNeighbourhood) {
    const wchar_t* psz = L"C:\\me\\Hood\\place\\x";
    EXPECT_EQ(psz + 11, GetNetHoodSubFolder(psz));
    const wchar_t* pszCase = L"c:\\ME\\hOOD\\p";
    EXPECT_EQ(pszCase + 11, GetNetHoodSubFolder(pszCase));
    for (const wchar_t* pszNone : {L"C:\\me\\Hood", L"C:\\me\\Hood\\", L"C:\\me\\Docs\\x", L""})
        EXPECT_EQ(nullptr, GetNetHoodSubFolder(pszNone)) << testing::PrintToString(pszNone);
    EXPECT_EQ(nullptr, GetNetHoodSubFolder(nullptr));
    GetSPEC_FOLDER_DATA(1);
    Without(CSIDL_NETHOOD);
    EXPECT_EQ(nullptr, GetNetHoodSubFolder(psz));
}

TEST_F(SpecialFoldersTest, ShortFormAndBack) {
    const struct {
        const wchar_t *pszLong, *pszShort;
    } rows[] = {{L"C:\\me\\Docs\\letter.txt", L"My Papers\\letter.txt"},
                {L"C:\\me\\Docs\\a\\b\\c", L"My Papers\\a\\b\\c"},
                {L"C:\\me\\Desktop\\x", L"Desk\\x"},
                {L"C:\\me\\Hood\\place", L"Net Around\\place"},
                {L"C:\\me\\Docs\\\u0416\u65E5", L"My Papers\\\u0416\u65E5"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.pszShort, Simplified(row.pszLong));
        EXPECT_EQ(row.pszLong, UnSimplified(row.pszShort));
    }
    EXPECT_EQ(L"My Papers\\A", Simplified(L"c:\\ME\\docs\\A"));
}

TEST_F(SpecialFoldersTest, OtherTextsStay) {
    for (const wchar_t* psz :
         {L"C:\\me\\Docs", L"C:\\me\\other\\x", L"", L"x", L"C:\\me\\Docs2\\x"})
        EXPECT_EQ(psz, Simplified(psz));
    for (const wchar_t* psz :
         {L"My Papers", L"My Papers2\\x", L"My\\x", L"", L"\\x", L"C:\\x", L"x\\My Papers\\y"})
        EXPECT_EQ(psz, UnSimplified(psz));
    SimplifyShellName(nullptr, 10);
    UnSimplifyShellName(nullptr, 10);
}

TEST_F(SpecialFoldersTest, LongFormComparesWithoutCase) {
    EXPECT_EQ(L"C:\\me\\Docs\\x", UnSimplified(L"MY PAPERS\\x"));
    EXPECT_EQ(L"C:\\me\\Docs\\x", UnSimplified(L"my papers\\x"));
}

TEST_F(SpecialFoldersTest, RecordsWithoutPathOrNameAreNotUsed) {
    Without(CSIDL_PERSONAL);
    EXPECT_EQ(L"C:\\me\\Docs\\x", Simplified(L"C:\\me\\Docs\\x"));
    EXPECT_EQ(L"My Papers\\x", UnSimplified(L"My Papers\\x"));
    GetSPEC_FOLDER_DATA(1);
    Without(CSIDL_NETWORK);
    EXPECT_EQ(L"C:\\me\\Hood\\x", Simplified(L"C:\\me\\Hood\\x"));
    EXPECT_EQ(L"\\x", UnSimplified(L"\\x")); // a missing name is no empty one
}

TEST_F(SpecialFoldersTest, LongFormThatReaches260BecomesEmpty) {
    const std::size_t cchFolder = wcslen(L"C:\\me\\Docs\\");
    EXPECT_EQ(L"C:\\me\\Docs\\" + std::wstring(259 - cchFolder, L'n'),
              UnSimplified(L"My Papers\\" + std::wstring(259 - cchFolder, L'n')));
    EXPECT_EQ(L"", UnSimplified(L"My Papers\\" + std::wstring(260 - cchFolder, L'n')));
    EXPECT_EQ(L"", UnSimplified(L"My Papers\\" + std::wstring(300, L'n'), 600));
}

TEST_F(SpecialFoldersTest, FormsAreBoundedByTheSize) {
    shell[nDocuments].strName = L"A long name for documents"; // longer than the path
    const std::wstring strLong = L"C:\\me\\Docs\\x", strShort = L"A long name for documents\\x";
    for (unsigned cch = static_cast<unsigned>(strLong.size()) + 1; cch <= strShort.size() + 2;
         ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        wcscpy(psz, strLong.c_str());
        SimplifyShellName(psz, cch);
        EXPECT_EQ(cch > strShort.size() ? strShort : strLong, psz) << cch;
    }
    shell[nDocuments].strName = L"D";
    GetSPEC_FOLDER_DATA(1);
    for (unsigned cch = 4; cch <= strLong.size() + 2; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        wcscpy(psz, L"D\\x");
        UnSimplifyShellName(psz, cch);
        EXPECT_EQ(cch > strLong.size() ? strLong : L"", psz) << cch;
    }
}

// Paths by number

TEST_F(SpecialFoldersTest, PathOfAFolderThatIsThere) {
    TempFolder temp;
    shell[nDocuments].strPath = temp.Get();
    wchar_t sz[MAX_PATH + 2];
    EXPECT_EQ(1, GetSpecialFolderPath(nullptr, CSIDL_PERSONAL, sz));
    EXPECT_EQ(temp.Get(), sz);
    EXPECT_EQ(1, GetSpecialFolderPathQuoted(nullptr, CSIDL_PERSONAL, sz));
    EXPECT_EQ(L"\"" + temp.Get() + L"\"", sz);
}

TEST_F(SpecialFoldersTest, PathOfAFolderThatIsMissing) {
    wchar_t sz[MAX_PATH + 2] = L"old";
    EXPECT_EQ(0, GetSpecialFolderPath(nullptr, CSIDL_PERSONAL, sz));
    EXPECT_STREQ(L"C:\\me\\Docs", sz);
    EXPECT_EQ(0, GetSpecialFolderPathQuoted(nullptr, CSIDL_PERSONAL, sz));
    EXPECT_STREQ(L"", sz);
    for (int nCsidl : {static_cast<int>(CSIDL_NETWORK), 99, -1}) {
        wcscpy(sz, L"old");
        EXPECT_EQ(0, GetSpecialFolderPath(nullptr, nCsidl, sz));
        wcscpy(sz, L"old");
        EXPECT_EQ(0, GetSpecialFolderPathQuoted(nullptr, nCsidl, sz));
        EXPECT_STREQ(L"", sz);
    }
    EXPECT_EQ(0, GetSpecialFolderPath(nullptr, CSIDL_PERSONAL, nullptr));
    EXPECT_EQ(0, GetSpecialFolderPathQuoted(nullptr, CSIDL_PERSONAL, nullptr));
}

TEST_F(SpecialFoldersTest, FileIsNoFolder) {
    TempFolder temp;
    shell[nDocuments].strPath = temp.MakeFile(L"file", "x");
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(0, GetSpecialFolderPath(nullptr, CSIDL_PERSONAL, sz));
}

TEST_F(SpecialFoldersTest, LockScreenPicturesAreInTheLocalData) {
    TempFolder temp;
    const std::wstring strTail =
        L"\\Packages\\Microsoft.Windows.ContentDeliveryManager_cw5n1h2txyewy"
        L"\\LocalState\\Assets";
    int nLocal = shell.Add(0, L"Local", kFolder, temp.Get());
    shell.special.push_back({CSIDL_LOCAL_APPDATA, nLocal});
    wchar_t sz[MAX_PATH + 2];
    EXPECT_EQ(0, GetSpecialFolderPath(nullptr, 238, sz));
    EXPECT_EQ(temp.Get() + strTail, sz);
    std::filesystem::create_directories(temp.Get() + strTail);
    EXPECT_EQ(1, GetSpecialFolderPath(nullptr, 238, sz));
    EXPECT_EQ(1, GetSpecialFolderPathQuoted(nullptr, kLockScreenPictures, sz));
    EXPECT_EQ(L"\"" + temp.Get() + strTail + L"\"", sz);
    // What reaches 260 characters is no path, and nothing is written behind them.
    for (std::size_t cch = 259 - strTail.size() - 2; cch <= 259; ++cch) {
        shell[nLocal].strPath = L"C:\\" + std::wstring(cch - 3, L'n');
        GuardedMemory memory(MAX_PATH * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(0, GetSpecialFolderPath(nullptr, 238, psz));
        EXPECT_LT(wcslen(psz), static_cast<std::size_t>(MAX_PATH));
    }
}

TEST_F(SpecialFoldersTest, LongestPathIsQuotedWhole) {
    TempFolder temp;
    std::wstring strPath = temp.Get();
    while (strPath.size() < 245) {
        strPath += L"\\" + std::wstring(std::min<std::size_t>(100, 246 - strPath.size()), L'n');
        ASSERT_TRUE(::CreateDirectoryW(strPath.c_str(), nullptr));
    }
    shell[nDocuments].strPath = strPath;
    GuardedMemory memory((strPath.size() + 3) * sizeof(wchar_t));
    EXPECT_EQ(1, GetSpecialFolderPathQuoted(nullptr, CSIDL_PERSONAL,
                                            static_cast<wchar_t*>(memory.Get())));
    EXPECT_EQ(L"\"" + strPath + L"\"", static_cast<wchar_t*>(memory.Get()));
}

TEST(SpecialFolders, OfThePlatform) {
    CoInit com;
    GetSPEC_FOLDER_DATA(1);
    wchar_t sz[MAX_PATH + 2], szExpected[MAX_PATH];
    ::GetWindowsDirectoryW(szExpected, MAX_PATH);
    EXPECT_EQ(1, GetSpecialFolderPath(nullptr, CSIDL_WINDOWS, sz));
    EXPECT_EQ(0, ::lstrcmpiW(szExpected, sz));
    EXPECT_EQ(0, GetSpecialFolderPath(nullptr, CSIDL_DRIVES, sz));
    ASSERT_EQ(1, GetSpecialFolderPath(nullptr, CSIDL_PERSONAL, sz));
    std::wstring strFolder = sz;
    if (strFolder.back() == L'\\') strFolder.pop_back();
    const std::wstring strLong = strFolder + L"\\letter.txt";
    wcscpy(sz, strLong.c_str());
    SimplifyShellName(sz, MAX_PATH);
    SPEC_FOLDER_DATA* pData = GetSPEC_FOLDER_DATA(0)[2];
    ASSERT_NE(nullptr, pData->pszName);
    EXPECT_EQ(std::wstring(pData->pszName) + L"\\letter.txt", sz);
    UnSimplifyShellName(sz, MAX_PATH);
    EXPECT_EQ(0, ::lstrcmpiW(strLong.c_str(), sz));
    for (int n = 0; n < 3; ++n) {
        SPEC_FOLDER_DATA* p = GetSPEC_FOLDER_DATA(0)[n];
        ASSERT_NE(nullptr, p->pszPath);
        EXPECT_EQ(wcslen(p->pszPath), p->cchPath);
        EXPECT_EQ(L'\\', p->pszPath[p->cchPath - 1]);
        EXPECT_NE(L'\\', p->pszPath[p->cchPath - 2]);
    }
    GetSPEC_FOLDER_DATA(1);
}
} // namespace
