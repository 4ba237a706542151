// The page "Shell".

#include "gallery/gallery_test_support.h"

#include <commctrl.h>
#include <shlobj.h>
#include <filesystem>
#include <fstream>

namespace {
constexpr int kDesktop = 0, kComputer = 1, kDocuments = 2, kRecent = 3, kNetwork = 4;

/// A folder among the user's documents, with a folder and a file; all gone in the end.
class GalleryShell : public Gallery {
  protected:
    GalleryShell() {
        wchar_t sz[MAX_PATH] = L"";
        ::SHGetFolderPathW(nullptr, CSIDL_PERSONAL | CSIDL_FLAG_CREATE, nullptr, 0, sz);
        path = std::filesystem::path(sz) / L"!gallery walk"; // the first of all
        std::filesystem::create_directories(path / L"inner");
        std::ofstream(path / L"one.txt") << "x";
        GoToPage(kShellPage);
    }
    ~GalleryShell() override {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    void GoToRoot(int nRoot) {
        PressKeys(Main(), {L"alt+r", L"Home"});
        for (int n = 0; n < nRoot; ++n) PressKeys(Main(), {L"Down"});
        EXPECT_TRUE(WaitUntil(
            [&] { return ::SendMessageW(PageItem(IDC_SHELL_ROOT), CB_GETCURSEL, 0, 0) == nRoot; }));
    }
    LRESULT CountItems() {
        return ::SendMessageW(PageItem(IDC_SHELL_LIST), LVM_GETITEMCOUNT, 0, 0);
    }
    std::wstring Path() { return TextOf(PageItem(IDC_SHELL_PATH)); }
    static bool EndsWith(const std::wstring& str, const std::wstring& strEnd) {
        return str.size() >= strEnd.size() &&
               !::lstrcmpiW(str.c_str() + (str.size() - strEnd.size()), strEnd.c_str());
    }
    /// Goes down the items by keys until the name of the chosen one ends like that.
    bool Choose(const std::wstring& strEnd) {
        PressKeys(Main(), {L"alt+i", L"Home"});
        for (LRESULT n = CountItems(); n > 0; --n) {
            if (WaitUntil([&] { return EndsWith(TextOf(PageItem(IDC_OBJECT_NAME)), strEnd); }, 300))
                return true;
            PressKeys(Main(), {L"Down"});
        }
        return false;
    }
    bool WaitForPathEnd(const std::wstring& strEnd) {
        return WaitUntil([&] { return EndsWith(Path(), strEnd); });
    }
    /// Into the test's own folder.
    void GoToWalk() {
        GoToRoot(kDocuments);
        ASSERT_TRUE(Choose(L"\\!gallery walk"));
        PressKeys(Main(), {L"alt+o"});
        ASSERT_TRUE(WaitForPathEnd(L" \u00BB !gallery walk"));
        ASSERT_EQ(2, CountItems());
    }
    std::filesystem::path path;
};
} // namespace

TEST_F(GalleryShell, RootsAreThePlatforms) {
    const std::wstring strDesktop = Path();
    EXPECT_NE(L"", strDesktop);
    EXPECT_GT(CountItems(), 0);
    EXPECT_FALSE(::IsWindowEnabled(PageItem(IDC_SHELL_UP)));
    for (int nRoot : {kComputer, kDocuments, kRecent, kNetwork}) {
        const std::wstring strBefore = Path();
        GoToRoot(nRoot);
        EXPECT_TRUE(WaitUntil([&] { return Path() != strBefore; })) << nRoot;
        EXPECT_TRUE(::IsWindowEnabled(PageItem(IDC_SHELL_UP)));
        if (nRoot == kComputer) TakePicture(L"shell-computer", {Main()});
    }
    GoToRoot(kComputer);
    EXPECT_TRUE(Choose(L" C:\\"));
    EXPECT_EQ(L"Kind: folder, in the file system", TextOf(PageItem(IDC_OBJECT_KIND)));
    PressKeys(Main(), {L"alt+u"});
    EXPECT_TRUE(WaitUntil([&] { return Path() == strDesktop; }));
}

TEST_F(GalleryShell, FolderIsOpenedAndLeft) {
    GoToWalk();
    EXPECT_TRUE(Choose(L"\\inner"));
    EXPECT_TRUE(WaitForText(PageItem(IDC_OBJECT_KIND), L"Kind: folder, in the file system"));
    PressKeys(Main(), {L"alt+o"});
    EXPECT_TRUE(WaitForPathEnd(L"!gallery walk \u00BB inner"));
    EXPECT_EQ(0, CountItems());
    EXPECT_TRUE(WaitForText(PageItem(IDC_OBJECT_NAME), L"Name: nothing"));
    PressKeys(Main(), {L"alt+u"});
    EXPECT_TRUE(WaitForPathEnd(L" \u00BB !gallery walk"));
    EXPECT_TRUE( // where it came from is chosen
        WaitUntil([&] { return EndsWith(TextOf(PageItem(IDC_OBJECT_NAME)), L"\\inner"); }));
}

TEST_F(GalleryShell, LinkIsMadeShownAndFollowed) {
    GoToWalk();
    ASSERT_TRUE(Choose(L"\\one.txt"));
    EXPECT_FALSE(::IsWindowEnabled(PageItem(IDC_OBJECT_FOLLOW)));
    EXPECT_FALSE(::IsWindowEnabled(PageItem(IDC_OBJECT_OPEN)));
    PressKeys(Main(), {L"alt+l"});
    HWND hwndTarget = PageItem(IDC_OBJECT_TARGET), hwndName = PageItem(IDC_OBJECT_NAME);
    EXPECT_TRUE(WaitUntil([&] { return EndsWith(TextOf(hwndName), L"one.txt (link).lnk"); }));
    EXPECT_TRUE(std::filesystem::exists(path / L"one.txt (link).lnk"));
    EXPECT_TRUE(WaitUntil([&] { return EndsWith(TextOf(hwndTarget), L"\\one.txt"); }));
    EXPECT_TRUE(WaitForText(PageItem(IDC_OBJECT_KIND), L"Kind: in the file system, link"));
    EXPECT_EQ(3, CountItems());
    TakePicture(L"shell-link", {Main()});
    PressKeys(Main(), {L"alt+f"});
    EXPECT_TRUE(WaitUntil([&] { return EndsWith(TextOf(hwndName), L"\\one.txt"); }));
}

TEST_F(GalleryShell, LinkToNothingIsTold) {
    GoToWalk();
    ASSERT_TRUE(Choose(L"\\one.txt"));
    PressKeys(Main(), {L"alt+l"});
    HWND hwndTarget = PageItem(IDC_OBJECT_TARGET);
    EXPECT_TRUE(WaitUntil([&] { return EndsWith(TextOf(hwndTarget), L"\\one.txt"); }));
    std::filesystem::remove(path / L"one.txt");
    PressKeys(Main(), {L"alt+f"});
    EXPECT_TRUE(WaitForText(hwndTarget, L"Target: it leads to nothing"));
}
