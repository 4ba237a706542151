#include "shell/folders/shell_folder_support.h"
#include "shell/namespace/pidl.h"
#include "support/guard_page.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
void ExpectKind(const iShellFolder& folder, int bFolder, int bFileSystem, int bBrowsable,
                int bPlain) {
    EXPECT_EQ(bFolder, folder.IsFolder());
    EXPECT_EQ(bFileSystem, folder.IsInFileSystem());
    EXPECT_EQ(bBrowsable, folder.IsBrowsable());
    EXPECT_EQ(bPlain, folder.IsPlainFolder());
}

TEST(ShellFolder, IsEmptyAtFirst) {
    iShellFolder folder;
    EXPECT_EQ(nullptr, static_cast<IShellFolder*>(folder));
    EXPECT_EQ(0, folder.IsReady());
    ExpectKind(folder, 0, 0, 0, 0);
}

TEST(ShellFolder, WithoutAFolderEverythingFails) {
    iShellFolder folder;
    MadeList item{{4, 0, 1, 2, 0, 0}};
    IShellFolder* pFolder = nullptr;
    IShellItem* pItem = nullptr;
    IShellView* pView = reinterpret_cast<IShellView*>(&folder);
    void *p = &folder, *pOne = &folder;
    const ITEMIDLIST* pidl = item;
    wchar_t sz[8] = L"old";
    int nResult = 77;
    EXPECT_EQ(0, folder.BindToObject(item, &pFolder));
    EXPECT_EQ(0, folder.BindToObject(item, &pItem));
    EXPECT_EQ(0, folder.CreateShellViewObject(nullptr, &pView));
    EXPECT_EQ(0u, folder.GetAttributesOf(item, 0xFFFFFFFF));
    EXPECT_EQ(0, folder.GetUIObjectOf(nullptr, 1, &pidl, IID_IDataObject, &p));
    EXPECT_EQ(0, folder.GetItemObj(nullptr, item, IID_IDataObject, &pOne));
    EXPECT_EQ(0, folder.GetDisplayNameOf(item, 0, sz, 8));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(nullptr, folder.ParseDisplayName(L"C:\\", nullptr));
    EXPECT_EQ(0, folder.GetDataFromIDList(item, SHGDFIL_FINDDATA, sz, sizeof(sz)));
    EXPECT_EQ(0, folder.Compare(item, item, 0, nResult, 0));
    EXPECT_EQ(77, nResult);
    folder.SetupAttributes(item);
    ExpectKind(folder, 0, 0, 0, 0);
    EXPECT_EQ(nullptr, pFolder);
    EXPECT_EQ(nullptr, pItem);
    EXPECT_EQ(nullptr, pView);
    EXPECT_EQ(nullptr, p);
    EXPECT_EQ(nullptr, pOne);
}

TEST_F(ShellFolderTest, WithoutAParentIsTheDesktopWhateverTheItemIs) {
    iShellFolder folder(nullptr, nullptr);
    EXPECT_EQ(1, folder.IsReady());
    EXPECT_TRUE(Knows(folder, nDrives));
    MadeList item = shell.Item(nFolder);
    iShellFolder other(nullptr, item);
    EXPECT_TRUE(Knows(other, nDrives));
    ExpectKind(other, 0, 0, 0, 0);
}

TEST_F(ShellFolderTest, DesktopThatIsRefusedLeavesItEmptyAndTellsWhy) {
    shell.hrDesktop = E_ACCESSDENIED;
    iShellFolder folder(nullptr, nullptr);
    EXPECT_EQ(0, folder.IsReady());
    EXPECT_EQ(E_ACCESSDENIED, folder.GetLastResult());
}

TEST_F(ShellFolderTest, OfAParentRecordsTheItemAndTheResultInTheParent) {
    iShellFolder desktop(nullptr, nullptr);
    MadeList item = shell.Item(nDrives);
    iShellFolder drives(&desktop, item);
    EXPECT_EQ(1, drives.IsReady());
    EXPECT_EQ(S_OK, desktop.GetLastResult());
    ExpectKind(desktop, 1, 0, 0, 0);
    ExpectKind(drives, 0, 0, 0, 0);
    MadeList drive = shell.Item(nDrive);
    iShellFolder root(&drives, drive);
    ExpectKind(drives, 1, 1, 0, 1);
    EXPECT_TRUE(Knows(root, nFolder));
}

TEST_F(ShellFolderTest, OfAParentThatRefusesIsEmpty) {
    iShellFolder desktop(nullptr, nullptr);
    MadeList item = shell.Item(nFile); // not on the desktop
    iShellFolder folder(&desktop, item);
    EXPECT_EQ(0, folder.IsReady());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), desktop.GetLastResult());
    iShellFolder empty;
    iShellFolder ofEmpty(&empty, item);
    EXPECT_EQ(0, ofEmpty.IsReady());
}

TEST_F(ShellFolderTest, SetupAttributesRecordsEveryKind) {
    for (int n = 0; n < 8; ++n) {
        DWORD nAttributes = (n & 1 ? SFGAO_FOLDER : 0) | (n & 2 ? SFGAO_FILESYSTEM : 0) |
                            (n & 4 ? SFGAO_BROWSABLE : 0);
        int nNode = shell.Add(0, L"kind", nAttributes | SFGAO_CANCOPY);
        iShellFolder desktop(nullptr, nullptr);
        desktop.SetupAttributes(shell.Item(nNode));
        SCOPED_TRACE(n);
        ExpectKind(desktop, n & 1, n >> 1 & 1, n >> 2 & 1, n == 3);
        EXPECT_EQ(L"Attributes " + std::to_wstring(nNode) + L" 68000000", shell.calls.back());
    }
}

TEST_F(ShellFolderTest, SetupAttributesOfNothingClears) {
    iShellFolder desktop(nullptr, nullptr);
    int nPlain = shell.Add(0, L"plain", SFGAO_FOLDER | SFGAO_FILESYSTEM);
    desktop.SetupAttributes(shell.Item(nPlain));
    ExpectKind(desktop, 1, 1, 0, 1);
    desktop.SetupAttributes(nullptr);
    EXPECT_EQ(0, desktop.IsFolder());
    EXPECT_EQ(0, desktop.IsInFileSystem());
    EXPECT_EQ(0, desktop.IsBrowsable());
}

TEST_F(ShellFolderTest, SetupAttributesThatFailsCountsAsNone) {
    iShellFolder desktop(nullptr, nullptr);
    int nPlain = shell.Add(0, L"plain", SFGAO_FOLDER | SFGAO_FILESYSTEM);
    MadeList item = shell.Item(nPlain);
    desktop.SetupAttributes(item);
    shell[nPlain].bGone = 1; // the fake leaves the mask as it was
    desktop.SetupAttributes(item);
    ExpectKind(desktop, 0, 0, 0, 0);
}

TEST_F(ShellFolderTest, BindToObjectAsksForTheKindFirst) {
    iShellFolder desktop(nullptr, nullptr);
    IShellFolder* pFolder = nullptr;
    shell.calls.clear();
    ASSERT_EQ(1, desktop.BindToObject(shell.Item(nDrives), &pFolder));
    ASSERT_NE(nullptr, pFolder);
    pFolder->Release();
    std::vector<std::wstring> expected{L"Attributes 1 68000000", L"Bind 1"};
    EXPECT_EQ(expected, shell.calls);
    ExpectKind(desktop, 1, 0, 0, 0);
}

TEST_F(ShellFolderTest, BindToObjectAsAShellItemAsksForThat) {
    iShellFolder desktop(nullptr, nullptr);
    IShellItem* pItem = reinterpret_cast<IShellItem*>(&desktop);
    EXPECT_EQ(0, desktop.BindToObject(shell.Item(nDrives), &pItem));
    EXPECT_EQ(nullptr, pItem);
    EXPECT_EQ(E_NOINTERFACE, desktop.GetLastResult());
    EXPECT_EQ(1, shell.CountOf(L"BindOther 1"));
    ExpectKind(desktop, 1, 0, 0, 0);
}

TEST_F(ShellFolderTest, BindToGoesDownAndStaysOnFailure) {
    iShellFolder folder(nullptr, nullptr);
    EXPECT_EQ(1, folder.BindTo(shell.Item(nDrives)));
    EXPECT_EQ(1, folder.BindTo(shell.Item(nDrive)));
    ExpectKind(folder, 1, 1, 0, 1);
    EXPECT_TRUE(Knows(folder, nFolder));
    IShellFolder* pBefore = folder;
    EXPECT_EQ(0, folder.BindTo(shell.Item(nFile)));
    EXPECT_EQ(pBefore, static_cast<IShellFolder*>(folder));
    EXPECT_TRUE(Knows(folder, nFolder));
    EXPECT_EQ(1, FakeShell::nFolders);
}

TEST_F(ShellFolderTest, BindToWithNoneHeldTakesTheDesktopAndClears) {
    iShellFolder folder(nullptr, nullptr);
    ASSERT_EQ(1, folder.BindTo(shell.Item(nDrives)));
    ASSERT_EQ(1, folder.BindTo(shell.Item(nDrive)));
    folder.Detach();
    ExpectKind(folder, 1, 1, 0, 1);
    EXPECT_EQ(1, folder.BindTo(shell.Item(nFile)));
    ExpectKind(folder, 0, 0, 0, 0);
    EXPECT_TRUE(Knows(folder, nDrives));
    folder.Detach();
    shell.hrDesktop = E_FAIL;
    EXPECT_EQ(0, folder.BindTo(nullptr));
    EXPECT_EQ(0, folder.IsReady());
}

TEST_F(ShellFolderTest, BindToAbsGoesDownItemByItem) {
    iShellFolder folder;
    EXPECT_EQ(1, folder.BindToAbs(shell.List(nFolder)));
    EXPECT_TRUE(Knows(folder, nFile));
    EXPECT_EQ(1, shell.CountOf(L"Bind 1"));
    EXPECT_EQ(1, shell.CountOf(L"Bind 2"));
    EXPECT_EQ(1, shell.CountOf(L"Bind 3"));
    EXPECT_EQ(1, folder.BindToAbs(shell.List(nDrive))); // from the desktop again
    EXPECT_TRUE(Knows(folder, nFolder));
    EXPECT_EQ(1, FakeShell::nFolders);
}

TEST_F(ShellFolderTest, BindToAbsOfNothingEndsOnTheDesktop) {
    iShellFolder folder;
    EXPECT_EQ(1, folder.BindToAbs(nullptr));
    EXPECT_TRUE(Knows(folder, nDrives));
    ASSERT_EQ(1, folder.BindToAbs(shell.List(nFolder)));
    EXPECT_EQ(1, folder.BindToAbs(shell.List(0)));
    EXPECT_TRUE(Knows(folder, nDrives));
    shell.hrDesktop = E_FAIL;
    EXPECT_EQ(0, folder.BindToAbs(nullptr));
    EXPECT_EQ(0, folder.IsReady());
    EXPECT_EQ(0, folder.BindToAbs(shell.List(nFolder)));
}

TEST_F(ShellFolderTest, BindToAbsThroughAFolderThatVanishesHoldsTheLastOneReached) {
    shell[nFolder].bGone = 1;
    iShellFolder folder;
    EXPECT_EQ(1, folder.BindToAbs(shell.List(nOther)));
    shell[nFolder].bGone = 0;
    EXPECT_TRUE(Knows(folder, nFolder)); // the drive
}

TEST_F(ShellFolderTest, AsksForAViewWithItsWindow) {
    iShellFolder folder(nullptr, nullptr);
    IShellView* pView = reinterpret_cast<IShellView*>(&folder);
    EXPECT_EQ(0, folder.CreateShellViewObject(reinterpret_cast<HWND>(42), &pView));
    EXPECT_EQ(nullptr, pView);
    EXPECT_EQ(E_NOTIMPL, folder.GetLastResult());
    EXPECT_EQ(1, shell.CountOf(L"View 1 42"));
}

TEST_F(ShellFolderTest, AttributesAreTheFoldersAnswer) {
    iShellFolder folder;
    ASSERT_EQ(1, folder.BindToAbs(shell.List(nFolder)));
    EXPECT_EQ(kKinds, folder.GetAttributesOf(shell.Item(nZip), 0xFFFFFFFF));
    EXPECT_EQ(static_cast<DWORD>(SFGAO_FOLDER),
              folder.GetAttributesOf(shell.Item(nZip), SFGAO_FOLDER | SFGAO_LINK));
    EXPECT_EQ(0u, folder.GetAttributesOf(shell.Item(nDrives), 0xFFFFFFFF));
    EXPECT_EQ(E_INVALIDARG, folder.GetLastResult());
}

TEST_F(ShellFolderTest, ObjectsForManyItemsAndForOne) {
    iShellFolder folder;
    ASSERT_EQ(1, folder.BindToAbs(shell.List(nFolder)));
    MadeList a = shell.Item(nZip), b = shell.Item(nFile), c = shell.Item(nOther);
    const ITEMIDLIST* items[] = {a, b, c};
    void* p = nullptr;
    HWND hwnd = reinterpret_cast<HWND>(5);
    EXPECT_EQ(1, folder.GetUIObjectOf(hwnd, 3, items, IID_IShellFolder, &p));
    ASSERT_NE(nullptr, p);
    static_cast<IUnknown*>(p)->Release();
    EXPECT_EQ(1, shell.CountOf(L"UI 3 4 6 5"));
    EXPECT_EQ(1, folder.GetItemObj(hwnd, b, IID_IShellFolder, &p));
    static_cast<IUnknown*>(p)->Release();
    EXPECT_EQ(1, shell.CountOf(L"UI 1 5 5 5"));
    EXPECT_EQ(0, folder.GetItemObj(hwnd, b, IID_IDataObject, &p));
    EXPECT_EQ(nullptr, p);
    EXPECT_EQ(E_NOINTERFACE, folder.GetLastResult());
}

TEST_F(ShellFolderTest, DisplayNameInEveryKindAndSize) {
    iShellFolder folder;
    ASSERT_EQ(1, folder.BindToAbs(shell.List(nFolder)));
    const std::wstring strName = L"f.txt";
    for (UINT nKind : {STRRET_WSTR, STRRET_OFFSET, STRRET_CSTR}) {
        shell[nFile].nKind = nKind;
        MadeList item = shell.Item(nFile);
        for (unsigned cch = 1; cch <= strName.size() + 3; ++cch) {
            SCOPED_TRACE(testing::Message() << "kind " << nKind << " size " << cch);
            GuardedMemory memory(cch * sizeof(wchar_t));
            auto* psz = static_cast<wchar_t*>(memory.Get());
            std::fill_n(psz, cch, L'#');
            EXPECT_EQ(1, folder.GetDisplayNameOf(item, SHGDN_INFOLDER, psz, cch));
            EXPECT_EQ(strName.substr(0, cch - 1), psz);
            EXPECT_EQ(0, psz[cch - 1]);
        }
    }
}

TEST_F(ShellFolderTest, DisplayNameWithoutASizeWritesNothing) {
    iShellFolder folder(nullptr, nullptr);
    wchar_t sz[2] = {L'#', L'#'};
    for (UINT nKind : {STRRET_WSTR, STRRET_OFFSET, STRRET_CSTR}) {
        shell[nDrives].nKind = nKind;
        folder.GetDisplayNameOf(shell.Item(nDrives), 0, sz, 0);
        EXPECT_EQ(L'#', sz[0]);
        EXPECT_EQ(L'#', sz[1]);
    }
}

TEST_F(ShellFolderTest, DisplayNameThatCannotBeHadIsEmpty) {
    iShellFolder folder(nullptr, nullptr);
    wchar_t sz[8] = L"old";
    EXPECT_EQ(0, folder.GetDisplayNameOf(shell.Item(nFile), 0, sz, 8));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(E_INVALIDARG, folder.GetLastResult());
    wcscpy(sz, L"old");
    shell[nDrives].nKind = 9;
    folder.GetDisplayNameOf(shell.Item(nDrives), 0, sz, 8);
    EXPECT_STREQ(L"", sz);
}

TEST_F(ShellFolderTest, DisplayNameHandsTheFlagsOn) {
    iShellFolder folder(nullptr, nullptr);
    wchar_t sz[32];
    for (DWORD nFlags : {0ul, 1ul, 0x8000ul, 0x4001ul}) {
        folder.GetDisplayNameOf(shell.Item(nDrives), nFlags, sz, 32);
        EXPECT_EQ(1, shell.CountOf(L"Name 1 " + std::to_wstring(nFlags)));
    }
}

TEST_F(ShellFolderTest, ParseDisplayNameGivesAListAndAttributes) {
    iShellFolder folder(nullptr, nullptr);
    DWORD nAttributes = SFGAO_FOLDER | SFGAO_LINK;
    ITEMIDLIST* pidl = folder.ParseDisplayName(L"C:\\a\\sub", &nAttributes);
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(nOther, FakeShell::FindAbs(pidl));
    EXPECT_EQ(static_cast<DWORD>(SFGAO_FOLDER), nAttributes);
    PIDL::Free(pidl);
    EXPECT_EQ(nullptr, folder.ParseDisplayName(L"C:\\nowhere", nullptr));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), folder.GetLastResult());
}
} // namespace
