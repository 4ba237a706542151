// The page "Texts".

#include "gallery/gallery_test_support.h"
#include "support/message_box_driver.h"

namespace {
class GalleryTexts : public Gallery {
  protected:
    GalleryTexts() { GoToPage(kTextsPage); }
    /// The box that tells of the missing help file; its text.
    std::wstring AnswerHelpBox() {
        HWND hwndBox = nullptr;
        if (!WaitUntil(
                [&] { return (hwndBox = FindMessageBox(ProcessId(), L"Tessaly")) != nullptr; }))
            return L"";
        std::wstring strText = ReadMessageBox(hwndBox).strText;
        PressKeys(hwndBox, {L"Return"});
        EXPECT_TRUE(WaitUntilGone(hwndBox));
        return strText;
    }
    /// Rests with the pointer on a control and gives the tooltip that comes up.
    std::wstring TipOf(int nId, const wchar_t* pszPicture) {
        mouse::MoveTo(MiddleOf(PageItem(nId)));
        HWND hwndTip = nullptr;
        if (!WaitUntil([&] { return (hwndTip = FindTip()) != nullptr; })) return L"none";
        TakePicture(pszPicture, {Main(), hwndTip});
        return TextOf(hwndTip);
    }
};
} // namespace

TEST_F(GalleryTexts, HelpRequestClimbsToTheMainWindowWhichNamesThePage) {
    HWND hwndNamed = PageItem(IDC_HELP_PAGE);
    EXPECT_TRUE(WaitForText(hwndNamed, L"It named: nothing yet"));
    PressKeys(Main(), {L"alt+e"}); // an edit of the page has the keyboard
    EXPECT_TRUE(WaitForFocus(IDC_SECONDS));
    PressKeys(Main(), {L"F1"});
    EXPECT_NE(AnswerHelpBox().find(L"help file"), std::wstring::npos);
    EXPECT_TRUE(WaitForText(hwndNamed, L"It named: texts.htm"));
    TakePicture(L"help", {Main()});
    PressKeys(Main(), {L"alt+h"});
    EXPECT_NE(AnswerHelpBox(), L"");
    EXPECT_TRUE(WaitForFocus(IDHELP));
}

TEST_F(GalleryTexts, TooltipsComeFromATextAndFromAString) {
    RECT rcPage = RectOf(Page());
    EXPECT_EQ(TipOf(IDC_TIP_TEXT, L"tip-text"),
              L"This page is " + std::to_wstring(WidthOf(rcPage)) + L" pixels wide.");
    mouse::MoveTo({rcPage.right - 30, rcPage.bottom - 6});
    EXPECT_TRUE(WaitUntil([&] { return !FindTip(); }));
    EXPECT_EQ(TipOf(IDC_TIP_STRING, L"tip-string"),
              L"This text is a string of the program's resources.");
}

TEST_F(GalleryTexts, WaitCursorStandsAsLongAsTheWork) {
    mouse::MoveTo(MiddleOf(PageItem(IDC_WORK)));
    HCURSOR hcurBefore = nullptr;
    EXPECT_TRUE(WaitUntil([&] { return (hcurBefore = CursorNow()) != nullptr; }));
    PressKeys(Main(), {L"alt+w"});
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() != hcurBefore; }));
    EXPECT_TRUE(WaitUntil([&] { return CursorNow() == hcurBefore; }));
}

TEST_F(GalleryTexts, FittedTextShowsMoreInAWiderWindow) {
    HWND hwndText = PageItem(IDC_FITTED);
    const std::wstring strNarrow = TextOf(hwndText);
    const int nWidth = WidthOf(RectOf(Main()));
    EXPECT_NE(strNarrow.find(L"..."), std::wstring::npos);
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    DragCorner(Main(), 80, 0);
    std::wstring strWider;
    EXPECT_TRUE(WaitUntil([&] { return (strWider = TextOf(hwndText)).size() > strNarrow.size(); }));
    EXPECT_NE(strWider.find(L"..."), std::wstring::npos);
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    TakePicture(L"fitted", {Main()});
    DragCorner(Main(), 150, 0);
    EXPECT_EQ(WidthOf(RectOf(Main())), nWidth + 230);
    EXPECT_TRUE(WaitUntil([&] { return TextOf(hwndText).find(L"...") == std::wstring::npos; }));
    DragCorner(Main(), -230, 0);
    EXPECT_EQ(WidthOf(RectOf(Main())), nWidth);
    EXPECT_TRUE(WaitForText(hwndText, strNarrow));
}

TEST_F(GalleryTexts, TimeRemainingFollowsTheSecondsInBothForms) {
    HWND hwndLong = PageItem(IDC_TIME_LONG), hwndShort = PageItem(IDC_TIME_SHORT);
    EXPECT_TRUE(WaitForText(hwndLong, L"Long form: 1 hour(s) 2 minutes"));
    EXPECT_TRUE(WaitForText(hwndShort, L"Short form: 1 h 2 m"));
    PressKeys(Main(), {L"alt+e"});
    TypeText(Main(), L"61");
    EXPECT_TRUE(WaitForText(hwndLong, L"Long form: 1 minute(s) 1 seconds"));
    EXPECT_TRUE(WaitForText(hwndShort, L"Short form: 1 m 1 s"));
    RECT rcSpin = RectOf(PageItem(IDC_SECONDS_SPIN));
    mouse::Click({(rcSpin.left + rcSpin.right) / 2, rcSpin.bottom - 4});
    EXPECT_TRUE(WaitForText(hwndShort, L"Short form: 1 m 0 s"));
    PressKeys(Main(), {L"alt+c"}); // one second after the other
    EXPECT_TRUE(WaitForText(hwndShort, L"Short form: 59 s"));
    EXPECT_TRUE(WaitForText(hwndShort, L"Short form: 58 s"));
}
