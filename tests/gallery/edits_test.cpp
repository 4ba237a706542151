// The page "Edits and combos".

#include "gallery/gallery_test_support.h"

#include <filesystem>

namespace {
constexpr int kEditOfCombo = 1001; // the platform's id

class GalleryEdits : public Gallery {
  protected:
    GalleryEdits() { GoToPage(kEditsPage); }
    /// Of an edit of the page: start and end in characters.
    std::pair<int, int> Selection(int nId) {
        LRESULT nResult = ::SendMessageW(PageItem(nId), EM_GETSEL, 0, 0);
        return {LOWORD(nResult), HIWORD(nResult)};
    }
    std::vector<std::wstring> ListItems() {
        std::vector<std::wstring> items;
        auto nCount = ::SendMessageW(PageItem(IDC_LIST), CB_GETCOUNT, 0, 0);
        for (int n = 0; n < nCount; ++n) {
            wchar_t sz[64] = {};
            ::SendMessageW(PageItem(IDC_LIST), CB_GETLBTEXT, n, reinterpret_cast<LPARAM>(sz));
            items.push_back(sz);
        }
        return items;
    }
};
using Items = std::vector<std::wstring>;
} // namespace

TEST_F(GalleryEdits, SoftReadOnlyEditSwallowsTypingButLetsSelectAndCopy) {
    HWND hwndEdit = PageItem(IDC_SOFT_EDIT);
    const std::wstring strText = TextOf(hwndEdit);
    ASSERT_FALSE(strText.empty());
    ClickOn(PageItem(IDC_READ_ONLY));
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(IDC_READ_ONLY)); }));
    PressKeys(Main(), {L"alt+t"});
    EXPECT_TRUE(WaitForFocus(IDC_SOFT_EDIT));
    TypeText(Main(), L"swallowed");
    PressKeys(Main(), {L"Delete", L"BackSpace", L"ctrl+x", L"ctrl+v", L"Home", L"shift+End"});
    EXPECT_TRUE(WaitUntil([&] {
        return Selection(IDC_SOFT_EDIT) == std::pair(0, static_cast<int>(strText.size()));
    }));
    EXPECT_EQ(TextOf(hwndEdit), strText);

    ClickOn(PageItem(IDC_READ_ONLY));
    EXPECT_TRUE(WaitUntil([&] { return !IsChecked(PageItem(IDC_READ_ONLY)); }));
    PressKeys(Main(), {L"alt+t"});
    TypeText(Main(), L"typed");
    EXPECT_TRUE(WaitForText(hwndEdit, L"typed"));
}

TEST_F(GalleryEdits, SelectionIsKeptWhenTheKeyboardComesBackIfThatIsWanted) {
    const int nAll = static_cast<int>(TextOf(PageItem(IDC_SOFT_EDIT)).size());
    auto goAndReturn = [&] {
        PressKeys(Main(), {L"Home", L"Right", L"shift+Right", L"shift+Right", L"Tab"});
        EXPECT_TRUE(WaitForFocus(IDC_READ_ONLY));
        EXPECT_EQ(Selection(IDC_SOFT_EDIT), std::pair(1, 3));
        PressKeys(Main(), {L"shift+Tab"});
        EXPECT_TRUE(WaitForFocus(IDC_SOFT_EDIT));
        return Selection(IDC_SOFT_EDIT);
    };
    PressKeys(Main(), {L"alt+t"});
    EXPECT_EQ(goAndReturn(), std::pair(0, nAll));
    PressKeys(Main(), {L"alt+k", L"alt+t"});
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(IDC_KEEP_SELECTION)); }));
    EXPECT_EQ(goAndReturn(), std::pair(1, 3));
}

TEST_F(GalleryEdits, EditTakesTheChosenColour) {
    auto colour = [&] {
        RECT rc = RectOf(PageItem(IDC_SOFT_EDIT));
        return ColourAt({rc.right - 10, (rc.top + rc.bottom) / 2});
    };
    PressKeys(Main(), {L"alt+o", L"Down"});
    EXPECT_TRUE(WaitUntil([&] { return colour() == RGB(255, 255, 192); }));
    TakePicture(L"colour", {Main()});
    PressKeys(Main(), {L"Home"});
    EXPECT_TRUE(WaitUntil([&] { return colour() == ::GetSysColor(COLOR_WINDOW); }));
}

// The test platform has no balloons in edits, and says so.
TEST_F(GalleryEdits, BalloonIsShownOrSaidToBeMissing) {
    ClickOn(PageItem(IDC_BALLOON));
    EXPECT_TRUE(WaitUntil(
        [&] { return FindTip() || TextOf(PageItem(IDC_BALLOON_RESULT)) == L"No balloons here"; }));
}

TEST_F(GalleryEdits, DroppedFileShowsAsItsPathOrItsFolder) {
    const std::wstring strFolder = L"C:\\gallery drop";
    const std::wstring strFile = strFolder + L"\\Letter.txt";
    std::filesystem::create_directory(strFolder);
    ::CloseHandle(
        ::CreateFileW(strFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_TRUE(::GetWindowLongPtrW(PageItem(IDC_DROP_PATH), GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    EXPECT_FALSE(::GetWindowLongPtrW(PageItem(IDC_SOFT_EDIT), GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    DropFileOn(PageItem(IDC_DROP_PATH), strFile);
    EXPECT_TRUE(WaitForText(PageItem(IDC_DROP_PATH), strFile));
    DropFileOn(PageItem(IDC_DROP_FOLDER), strFile);
    EXPECT_TRUE(WaitForText(PageItem(IDC_DROP_FOLDER), strFolder));
    DropFileOn(PageItem(IDC_DROP_FOLDER), L"C:\\windows");
    EXPECT_TRUE(WaitForText(PageItem(IDC_DROP_FOLDER), L"C:\\windows"));
    std::filesystem::remove_all(strFolder);
}

TEST_F(GalleryEdits, ItemsMoveByTheButtons) {
    EXPECT_EQ(ListItems(), (Items{L"Apple", L"Cherry", L"Lemon", L"Plum"}));
    EXPECT_FALSE(::IsWindowEnabled(PageItem(IDC_UP)));
    ClickOn(PageItem(IDC_DOWN));
    EXPECT_TRUE(WaitUntil([&] { return ListItems()[0] == L"Cherry"; }));
    EXPECT_TRUE(WaitUntil([&] { return ::IsWindowEnabled(PageItem(IDC_UP)) != 0; }));
    PressKeys(Main(), {L"alt+w", L"alt+w"});
    EXPECT_TRUE(WaitUntil([&] { return ListItems()[3] == L"Apple"; }));
    EXPECT_EQ(ListItems(), (Items{L"Cherry", L"Lemon", L"Plum", L"Apple"}));
    EXPECT_EQ(::SendMessageW(PageItem(IDC_LIST), CB_GETCURSEL, 0, 0), 3);
    EXPECT_TRUE(WaitUntil([&] { return !::IsWindowEnabled(PageItem(IDC_DOWN)); }));
    EXPECT_TRUE(WaitForFocus(IDC_LIST)); // the button handed the keyboard on
    PressKeys(Main(), {L"alt+u"});
    EXPECT_TRUE(WaitUntil([&] { return ListItems()[2] == L"Apple"; }));
}

TEST_F(GalleryEdits, TypedTextSurvivesTheListUnlessAnItemIsChosen) {
    HWND hwndCombo = PageItem(IDC_TYPED), hwndEdit = ::GetDlgItem(hwndCombo, kEditOfCombo);
    PressKeys(Main(), {L"alt+y"});
    EXPECT_TRUE(WaitForFocus(IDC_TYPED));
    TypeText(Main(), L"Lem"); // the beginning of an item, which an open list would put in its place
    EXPECT_TRUE(WaitForText(PageItem(IDC_TYPED_TEXT), L"The text is \"Lem\"."));
    auto isOpen = [&] { return ::SendMessageW(hwndCombo, CB_GETDROPPEDSTATE, 0, 0) != 0; };
    PressKeys(Main(), {L"F4"});
    EXPECT_TRUE(WaitUntil(isOpen));
    EXPECT_EQ(TextOf(hwndEdit), L"Lem");
    TakePicture(L"typed", {Main()});
    PressKeys(Main(), {L"Escape"});
    EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
    EXPECT_EQ(TextOf(hwndEdit), L"Lem");
    EXPECT_TRUE(::IsWindow(Main())); // Escape was the list's

    PressKeys(Main(), {L"F4"});
    EXPECT_TRUE(WaitUntil(isOpen));
    PressKeys(Main(), {L"Down", L"Return"});
    EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
    std::wstring strChosen;
    EXPECT_TRUE(WaitUntil([&] { return (strChosen = TextOf(hwndEdit)) != L"Lem"; }));
    EXPECT_TRUE(WaitForText(PageItem(IDC_TYPED_TEXT), L"The text is \"" + strChosen + L"\"."));
}
