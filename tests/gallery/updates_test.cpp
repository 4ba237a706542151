// The page "Updates".

#include "gallery/gallery_test_support.h"

namespace {
// Controls of the library's two dialogs.
constexpr int kDaysLine = 21503, kYes = 21536, kNo = 21537, kRemind = 21543, kAutomatic = 1008;
constexpr int kProceed = 1, kClose = 2;
// They have no caption; this is the text that names them to the taskbar.
constexpr const wchar_t* kQuestion = L"Would you like to check for updates to Tessaly?";
constexpr const wchar_t* kOffer = L"An update is available:";

class GalleryUpdates : public Gallery {
  protected:
    GalleryUpdates() { GoToPage(kUpdatesPage); }
    HWND Open(int nButton, const wchar_t* pszTitle) {
        ClickOn(PageItem(nButton));
        return WaitForDialog(pszTitle);
    }
    bool WaitForAnswer(const std::wstring& strText) {
        return WaitForText(PageItem(IDC_UPDATE_ANSWER), L"Last answer: " + strText);
    }
    static bool WaitForCheck(HWND hwndDlg, int nId) {
        return WaitUntil([&] { return IsChecked(::GetDlgItem(hwndDlg, nId)); });
    }
    static int Selection(HWND hwndDlg) {
        return static_cast<int>(::SendMessageW(::GetDlgItem(hwndDlg, kRemind), CB_GETCURSEL, 0, 0));
    }
};
} // namespace

TEST_F(GalleryUpdates, QuestionShowsTheDaysAndTellsWhatWasChosen) {
    EXPECT_TRUE(WaitForAnswer(L"none yet"));
    HWND hwnd = Open(IDC_ASK, kQuestion);
    ASSERT_TRUE(hwnd);
    EXPECT_FALSE(::IsWindowEnabled(Main()));
    EXPECT_EQ(
        TextOf(::GetDlgItem(hwnd, kDaysLine)).find(L"Last check for updates was 12 days ago."), 0u);
    EXPECT_TRUE(IsChecked(::GetDlgItem(hwnd, kYes)));
    EXPECT_EQ(Selection(hwnd), 1);
    TakePicture(L"question", {Main(), hwnd});
    ClickOn(::GetDlgItem(hwnd, kNo));
    EXPECT_TRUE(WaitForCheck(hwnd, kNo));
    ClickOn(::GetDlgItem(hwnd, kAutomatic));
    EXPECT_TRUE(WaitForCheck(hwnd, kAutomatic));
    ClickOn(::GetDlgItem(hwnd, kProceed));
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForAnswer(L"Question: no, Weekly, automatic"));
    EXPECT_TRUE(::IsWindowEnabled(Main()));
}

TEST_F(GalleryUpdates, QuestionHidesTheDaysIfThereAreNone) {
    PressKeys(Main(), {L"alt+l"});
    EXPECT_TRUE(WaitForFocus(IDC_DAYS));
    TypeText(Main(), L"0");
    HWND hwnd = Open(IDC_ASK, kQuestion);
    ASSERT_TRUE(hwnd);
    EXPECT_FALSE(::IsWindowVisible(::GetDlgItem(hwnd, kDaysLine)));
    ClickOn(::GetDlgItem(hwnd, kClose));
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForAnswer(L"Question: canceled"));
}

TEST_F(GalleryUpdates, OfferIsAnsweredByTheKeyboardAlone) {
    PressKeys(Main(), {L"alt+m", L"Home"}); // the list's own key
    EXPECT_TRUE(WaitForFocus(IDC_REMINDER));
    PressKeys(Main(), {L"alt+o"});
    HWND hwnd = WaitForDialog(kOffer);
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(Selection(hwnd), 0);
    TakePicture(L"offer", {Main(), hwnd});
    EXPECT_TRUE(WaitForFocus(kYes));
    PressKeys(hwnd, {L"Down"});
    EXPECT_TRUE(WaitForCheck(hwnd, kNo));
    PressKeys(hwnd, {L"Up"});
    EXPECT_TRUE(WaitForCheck(hwnd, kYes));
    for (int n = 0; n < 6 && FocusId() != kRemind; ++n) {
        const int nBefore = FocusId();
        PressKeys(hwnd, {L"Tab"});
        EXPECT_TRUE(WaitUntil([&] { return FocusId() != nBefore; }));
    }
    PressKeys(hwnd, {L"Down", L"Down"});
    EXPECT_TRUE(WaitUntil([&] { return Selection(hwnd) == 2; }));
    PressKeys(hwnd, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForAnswer(L"Offer: yes, Monthly"));
}

TEST_F(GalleryUpdates, EscapeAndAltF4CancelBoth) {
    for (int nButton : {IDC_ASK, IDC_OFFER}) {
        for (const wchar_t* pszKey : {L"Escape", L"alt+F4"}) {
            HWND hwnd = Open(nButton, nButton == IDC_ASK ? kQuestion : kOffer);
            ASSERT_TRUE(hwnd);
            PressKeys(hwnd, {pszKey});
            EXPECT_TRUE(WaitUntilGone(hwnd)) << pszKey;
            EXPECT_TRUE(
                WaitForAnswer(nButton == IDC_ASK ? L"Question: canceled" : L"Offer: canceled"));
            ClickOn(PageItem(IDC_OFFER_GROUP)); // the page goes on
            EXPECT_TRUE(::IsWindowEnabled(Main()));
        }
    }
}

TEST_F(GalleryUpdates, OfferDrawsTheDescriptionThatWasTyped) {
    constexpr int kDescription = 1009;
    constexpr COLORREF kRed = RGB(128, 0, 0);
    PressKeys(Main(), {L"alt+d", L"ctrl+a"});
    EXPECT_TRUE(WaitForFocus(IDC_DESCRIPTION));
    TypeText(Main(), L"<red><b>Heavy type in red</b></red>");
    HWND hwnd = Open(IDC_OFFER, kOffer);
    ASSERT_TRUE(hwnd);
    EXPECT_TRUE(WaitUntil([&] {
        for (COLORREF cr : PixelsOf(RectOf(::GetDlgItem(hwnd, kDescription))))
            if (cr == kRed) return true;
        return false;
    }));
    PressKeys(hwnd, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
}
