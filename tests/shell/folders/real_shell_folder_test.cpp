#include "runtime/threads/co_init.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"
#include "support/test_window.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace {
class RealShell : public testing::Test {
  protected:
    CoInit com;
    TempFolder temp;
};

TEST_F(RealShell, DesktopDrivesAndADrive) {
    iShellFolder desktop(nullptr, nullptr);
    ASSERT_EQ(1, desktop.IsReady());
    PIDL drives;
    ASSERT_EQ(1, drives.Attach(CSIDL_DRIVES));
    iShellFolder folder;
    ASSERT_EQ(1, folder.BindToAbs(drives));
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, desktop.GetDisplayNameOf(drives, SHGDN_FORPARSING, sz, MAX_PATH));
    EXPECT_EQ(0, ::lstrcmpiW(L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}", sz));
    desktop.SetupAttributes(drives);
    EXPECT_EQ(1, desktop.IsFolder());
    EXPECT_EQ(0, desktop.IsInFileSystem());
    EXPECT_EQ(0, desktop.IsPlainFolder());
    ITEMIDLIST* pidl = folder.ParseDisplayName(L"C:\\", nullptr);
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(1, folder.BindTo(pidl));
    EXPECT_EQ(1, folder.IsInFileSystem());
    PIDL::Free(pidl);
}

TEST_F(RealShell, ConstructedFromAPathWalksTheSameAsTheDesktopsList) {
    std::filesystem::create_directories(temp.File(L"one\\two"));
    const std::wstring strPath = temp.File(L"one\\two");
    PIDL list;
    iShellFolder folder(strPath.c_str(), list);
    ASSERT_EQ(1, folder.IsReady());
    wchar_t sz[MAX_PATH];
    ASSERT_TRUE(::SHGetPathFromIDListW(list, sz));
    EXPECT_EQ(0, ::lstrcmpiW(strPath.c_str(), sz));
    ITEMIDLIST* pidl = GetPidlOf(strPath.c_str());
    EXPECT_EQ(0, PIDL::CompareAbs(list, pidl));
    PIDL::Free(pidl);
    temp.MakeFile(L"one\\two\\three.txt", "3");
    pidl = folder.ParseDisplayName(const_cast<wchar_t*>(L"three.txt"), nullptr);
    EXPECT_NE(nullptr, pidl);
    PIDL::Free(pidl);
}

TEST_F(RealShell, NamesOfEveryScriptComeThrough) {
    const wchar_t* names[] = {L"plain.txt",
                              L"\u00C4\u00D6\u00DC\u00DF.txt",
                              L"\u0416\u0443\u043A.txt",
                              L"\u65E5\u672C\u8A9E.txt",
                              L"\u05E9\u05DC\u05D5\u05DD.txt",
                              L"\u0645\u0631\u062D\u0628\u0627.txt",
                              L"\u0E2A\u0E27\u0E31.txt",
                              L"\xD83D\xDE00.txt",
                              L"e\u0301 combined.txt",
                              L"two  blanks.txt"};
    std::set<std::wstring> expected, seen;
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ASSERT_EQ(1, folder.IsReady());
    for (const wchar_t* psz : names) {
        temp.MakeFile(psz, "x");
        ITEMIDLIST* pidl = folder.ParseDisplayName(psz, nullptr);
        ASSERT_NE(nullptr, pidl) << testing::PrintToString(std::wstring(psz));
        wchar_t sz[MAX_PATH];
        EXPECT_EQ(1,
                  folder.GetDisplayNameOf(pidl, SHGDN_INFOLDER | SHGDN_FORPARSING, sz, MAX_PATH));
        EXPECT_STREQ(psz, sz);
        PIDL::Free(pidl);
        expected.insert(psz);
    }
    iEnumIDList walk(folder, nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS);
    while (ITEMIDLIST* pidl = walk.Next()) {
        wchar_t sz[MAX_PATH];
        folder.GetDisplayNameOf(pidl, SHGDN_INFOLDER | SHGDN_FORPARSING, sz, MAX_PATH);
        seen.insert(sz);
        PIDL::Free(pidl);
    }
    EXPECT_EQ(expected, seen);
}

TEST_F(RealShell, ComparesByNameAndThenByTheFoldersRules) {
    temp.MakeFile(L"b.txt", "x");
    temp.MakeFile(L"a.txt", "x");
    std::filesystem::create_directories(temp.File(L"z"));
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ITEMIDLIST* pidlA = folder.ParseDisplayName(L"a.txt", nullptr);
    ITEMIDLIST* pidlUpper = folder.ParseDisplayName(L"A.TXT", nullptr);
    ITEMIDLIST* pidlB = folder.ParseDisplayName(L"b.txt", nullptr);
    ITEMIDLIST* pidlZ = folder.ParseDisplayName(L"z", nullptr);
    int n = 77;
    EXPECT_EQ(1, folder.Compare(pidlA, pidlUpper, 0, n, 0));
    EXPECT_EQ(0, n);
    EXPECT_EQ(1, folder.Compare(pidlA, pidlB, 0, n, 0));
    EXPECT_LT(n, 0);
    EXPECT_EQ(1, folder.Compare(pidlB, pidlA, 0, n, 0));
    EXPECT_GT(n, 0);
    EXPECT_EQ(1, folder.Compare(pidlZ, pidlA, 0, n, 0)); // folders go first
    EXPECT_LT(n, 0);
    for (ITEMIDLIST* pidl : {pidlA, pidlUpper, pidlB, pidlZ}) PIDL::Free(pidl);
}

TEST_F(RealShell, FolderThatVanishesInTheMiddleIsAFailure) {
    std::filesystem::create_directories(temp.File(L"outer\\inner"));
    const std::wstring strInner = temp.File(L"outer\\inner");
    ITEMIDLIST* pidl = GetPidlOf(strInner.c_str());
    ASSERT_NE(nullptr, pidl);
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ITEMIDLIST* pidlOuter = folder.ParseDisplayName(L"outer", nullptr);
    ASSERT_NE(nullptr, pidlOuter);
    std::filesystem::remove_all(temp.File(L"outer"));
    PIDL gone;
    iShellFolder none(strInner.c_str(), gone);
    EXPECT_EQ(0, none.IsReady());
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(gone));
    EXPECT_EQ(nullptr, folder.ParseDisplayName(L"outer", nullptr));
    iShellFolder reached;
    EXPECT_EQ(1, reached.BindToAbs(pidl)); // at least the desktop
    PIDL::Free(pidlOuter);
    PIDL::Free(pidl);
}

TEST_F(RealShell, LongestPathHasAFolder) {
    // 259 characters are the longest a path may have; a name has room for 255.
    std::wstring strPath = temp.Get();
    while (strPath.size() < 245) {
        strPath += L"\\" + std::wstring(std::min<std::size_t>(100, 246 - strPath.size()), L'n');
        ASSERT_TRUE(::CreateDirectoryW(strPath.c_str(), nullptr)) << strPath.size();
    }
    PIDL list;
    iShellFolder folder(strPath.c_str(), list);
    EXPECT_EQ(1, folder.IsReady());
    wchar_t sz[MAX_PATH];
    ASSERT_TRUE(::SHGetPathFromIDListW(list, sz));
    EXPECT_EQ(0, ::lstrcmpiW(strPath.c_str(), sz));
}

TEST_F(RealShell, OverlongPathHasNone) {
    std::wstring strPath = L"C:";
    for (int n = 0; n < 400; ++n) strPath += L"\\" + std::wstring(100, L'n');
    PIDL list;
    iShellFolder folder(strPath.c_str(), list);
    EXPECT_EQ(0, folder.IsReady());
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
}

TEST_F(RealShell, FindDataOfAFile) {
    temp.MakeFile(L"data.txt", "12345");
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ITEMIDLIST* pidl = folder.ParseDisplayName(L"data.txt", nullptr);
    ASSERT_NE(nullptr, pidl);
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(1, folder.GetDataFromIDList(pidl, SHGDFIL_FINDDATA, &data, sizeof(data)));
    EXPECT_STREQ(L"data.txt", data.cFileName);
    EXPECT_EQ(5u, data.nFileSizeLow);
    EXPECT_EQ(0, folder.GetDataFromIDList(pidl, SHGDFIL_FINDDATA, &data, 4));
    EXPECT_EQ(0, folder.GetDataFromIDList(pidl, 99, &data, sizeof(data)));
    EXPECT_LT(folder.GetLastResult(), 0);
    PIDL::Free(pidl);
}

TEST_F(RealShell, ItemObjectsAndAView) {
    temp.MakeFile(L"one.txt", "x");
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ITEMIDLIST* pidl = folder.ParseDisplayName(L"one.txt", nullptr);
    void* p = nullptr;
    EXPECT_EQ(1, folder.GetItemObj(nullptr, pidl, IID_IDataObject, &p));
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(0u, static_cast<IDataObject*>(p)->Release());
    TestWindow window;
    IShellView* pView = nullptr;
    EXPECT_EQ(1, folder.CreateShellViewObject(window, &pView));
    ASSERT_NE(nullptr, pView);
    pView->Release();
    PIDL::Free(pidl);
}

TEST_F(RealShell, FolderAsAShellItem) {
    std::filesystem::create_directories(temp.File(L"sub"));
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    ITEMIDLIST* pidl = folder.ParseDisplayName(L"sub", nullptr);
    IShellItem* pItem = nullptr;
    int bDone = folder.BindToObject(pidl, &pItem);
    PIDL::Free(pidl);
    EXPECT_EQ(bDone, pItem != nullptr);
    if (!bDone) GTEST_SKIP() << "folders bind to no shell items here";
    pItem->Release();
}
} // namespace
