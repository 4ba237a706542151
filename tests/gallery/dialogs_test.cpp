// The page "Dialogs".

#include "gallery/gallery_test_support.h"
#include "support/message_box_driver.h"
#include "support/rect.h"

namespace {
class GalleryDialogs : public Gallery {
  protected:
    /// Opens a dialog by its button.
    HWND Open(int nButton, const wchar_t* pszTitle) {
        ClickOn(PageItem(nButton));
        return WaitForDialog(pszTitle);
    }
    /// Enters a name and presses Enter.
    void Accept(HWND hwnd, const wchar_t* pszName) {
        EXPECT_TRUE(WaitForFocus(IDC_NAME));
        TypeText(hwnd, pszName);
        PressKeys(hwnd, {L"Return"});
    }
    HWND Result() { return PageItem(IDC_RESULT); }
    /// In time, and then still.
    static void ExpectLaidOut(HWND hwnd) {
        WaitUntil([&] { return FaultsOfLayout(hwnd).empty(); });
        EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    }
};
} // namespace

TEST_F(GalleryDialogs, ModalOneDisablesTheOthersAndReturnsItsResult) {
    EXPECT_TRUE(WaitForText(Result(), L"Last result: none yet"));
    PressKeys(Main(), {L"alt+m"}); // the button's own key
    HWND hwnd = WaitForDialog(L"Modal");
    ASSERT_TRUE(hwnd);
    EXPECT_FALSE(::IsWindowEnabled(Main()));
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    EXPECT_TRUE(WaitForFocus(IDC_NAME));
    TakePicture(L"modal", {Main(), hwnd});

    PressKeys(hwnd, {L"Return"}); // without a name it stays open
    HWND hwndBox = nullptr;
    ASSERT_TRUE(
        WaitUntil([&] { return (hwndBox = FindMessageBox(ProcessId(), L"Tessaly")) != nullptr; }));
    EXPECT_EQ(ReadMessageBox(hwndBox).strText, L"Please enter a name.");
    PressKeys(hwndBox, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwndBox));
    EXPECT_TRUE(::IsWindow(hwnd));

    Accept(hwnd, L"Anna");
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForText(Result(), L"Last result: Modal: OK, \"Anna\""));
    EXPECT_TRUE(::IsWindowEnabled(Main()));

    hwnd = Open(IDC_MODAL, L"Modal");
    PressKeys(hwnd, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForText(Result(), L"Last result: Modal: canceled"));
}

TEST_F(GalleryDialogs, ModelessOneLeavesTheOthersUsable) {
    HWND hwnd = Open(IDC_MODELESS, L"Modeless");
    ASSERT_TRUE(hwnd);
    EXPECT_TRUE(::IsWindowEnabled(Main()));
    EXPECT_TRUE(WaitForFocus(IDC_NAME));
    PressKeys(hwnd, {L"Tab"}); // the program's loop gives it the keys
    EXPECT_TRUE(WaitForFocus(IDC_BODY));
    EXPECT_EQ(::GetWindow(hwnd, GW_OWNER), Main());

    // Out of the main window's place: the test platform raises an owner above what it owns.
    RECT rcOk = RectOf(::GetDlgItem(hwnd, IDOK));
    POINT ptBody{rcOk.left - 40, rcOk.bottom - 4};
    const int nUp = RectOf(hwnd).bottom - RectOf(Main()).top + 10;
    DragWindow(ptBody, 0, -nUp);
    EXPECT_TRUE(WaitUntil([&] { return RectOf(hwnd).bottom == RectOf(Main()).top - 10; }));
    ClickOn(PageItem(IDC_CASCADED)); // the main window, meanwhile
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(IDC_CASCADED)); }));
    EXPECT_TRUE(::IsWindowVisible(hwnd));
    ClickOn(::GetDlgItem(hwnd, IDC_NAME));
    Accept(hwnd, L"Carla");
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForText(Result(), L"Last result: Modeless: OK, \"Carla\""));

    ASSERT_TRUE(Open(IDC_MODELESS, L"Modeless"));
    ClickOn(Item(IDCANCEL)); // it goes with its owner
    EXPECT_TRUE(HasEnded());
}

TEST_F(GalleryDialogs, OneWithItsOwnLoopReturnsItsResultAndEnablesTheOwnerAgain) {
    HWND hwnd = Open(IDC_OWN_LOOP, L"Own loop");
    ASSERT_TRUE(hwnd);
    EXPECT_FALSE(::IsWindowEnabled(Main()));
    Accept(hwnd, L"Berta");
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(WaitForText(Result(), L"Last result: Own loop: OK, \"Berta\""));
    EXPECT_TRUE(::IsWindowEnabled(Main()));
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == Main(); }));
    EXPECT_TRUE(Leave()); // the outer loop goes on, and ends
}

TEST_F(GalleryDialogs, OneFromMemoryIsBuiltAsItsTemplateSays) {
    HWND hwnd = Open(IDC_FROM_MEMORY, L"From memory");
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    EXPECT_EQ(TextOf(::GetDlgItem(hwnd, IDOK)), L"OK");
    TakePicture(L"memory", {Main(), hwnd});
    ClickOn(::GetDlgItem(hwnd, IDOK));
    EXPECT_TRUE(WaitUntilGone(hwnd));
    EXPECT_TRUE(Leave());
}

TEST_F(GalleryDialogs, ComesUpWhereItIsAskedTo) {
    const RECT rcMain = RectOf(Main());
    auto place = [&](int nRadio) {
        ClickOn(PageItem(nRadio));
        EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(nRadio)); }));
        HWND hwnd = Open(IDC_MODAL, L"Modal");
        RECT rc = RectOf(hwnd);
        PressKeys(hwnd, {L"Escape"});
        EXPECT_TRUE(WaitUntilGone(hwnd));
        return rc;
    };
    RECT rc = place(IDC_CENTERED);
    EXPECT_EQ(rc.left, rcMain.left + (WidthOf(rcMain) - WidthOf(rc)) / 2);
    EXPECT_EQ(rc.top, rcMain.top + (HeightOf(rcMain) - HeightOf(rc)) / 2);
    rc = place(IDC_CASCADED);
    EXPECT_EQ(rc.left, rcMain.left + ::GetSystemMetrics(SM_CXVSCROLL));
    EXPECT_EQ(rc.top, rcMain.top + ::GetSystemMetrics(SM_CYCAPTION));
    POINT ptMouse = MiddleOf(PageItem(IDC_MODAL));
    rc = place(IDC_AT_MOUSE);
    EXPECT_EQ(rc.left, ptMouse.x);
    EXPECT_EQ(rc.top, ptMouse.y);
}

TEST_F(GalleryDialogs, IsDraggedByItsBodyUnlessThatIsOff) {
    HWND hwnd = Open(IDC_MODAL, L"Modal");
    ASSERT_TRUE(hwnd);
    RECT rc = RectOf(hwnd), rcOk = RectOf(::GetDlgItem(hwnd, IDOK));
    POINT ptBody{rcOk.left - 40, rcOk.bottom - 4};
    DragWindow(ptBody, 30, 50);
    EXPECT_TRUE(WaitUntil([&] { return RectOf(hwnd).left == rc.left + 30; }));
    EXPECT_EQ(RectOf(hwnd).top, rc.top + 50);

    PressKeys(hwnd, {L"alt+b"});
    EXPECT_TRUE(WaitUntil([&] { return !IsChecked(::GetDlgItem(hwnd, IDC_BODY)); }));
    rc = RectOf(hwnd);
    mouse::Drag({ptBody.x + 30, ptBody.y + 50}, {ptBody.x, ptBody.y});
    RECT rcAfter = RectOf(hwnd);
    EXPECT_TRUE(::EqualRect(&rc, &rcAfter));
}

TEST_F(GalleryDialogs, ResizableOneHoldsItsMinimumAndComesBackAfterTheNextStart) {
    HWND hwnd = Open(IDC_SIZABLE, L"Resizable");
    ASSERT_TRUE(hwnd);
    const RECT rcFirst = RectOf(hwnd);
    const RECT rcNotes = RectOf(::GetDlgItem(hwnd, IDC_NOTES));
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    DragCorner(hwnd, -60, -60);
    EXPECT_TRUE(HoldsFor(
        [&] {
            RECT rc = RectOf(hwnd);
            return ::EqualRect(&rc, &rcFirst) != 0;
        },
        200));
    DragCorner(hwnd, 80, 50);
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(hwnd)) == WidthOf(rcFirst) + 80; }));
    EXPECT_EQ(HeightOf(RectOf(hwnd)), HeightOf(rcFirst) + 50);
    EXPECT_EQ(WidthOf(RectOf(::GetDlgItem(hwnd, IDC_NOTES))), WidthOf(rcNotes) + 80);
    EXPECT_EQ(HeightOf(RectOf(::GetDlgItem(hwnd, IDC_NOTES))), HeightOf(rcNotes) + 50);
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    TakePicture(L"resizable", {Main(), hwnd});
    const RECT rcLeft = RectOf(hwnd);
    ClickOn(::GetDlgItem(hwnd, IDOK));
    EXPECT_TRUE(WaitUntilGone(hwnd));

    hwnd = Open(IDC_SIZABLE, L"Resizable");
    RECT rcBack = RectOf(hwnd);
    EXPECT_TRUE(::EqualRect(&rcBack, &rcLeft));
    PressKeys(hwnd, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    ASSERT_TRUE(Leave());

    Start();
    hwnd = Open(IDC_SIZABLE, L"Resizable");
    rcBack = RectOf(hwnd);
    EXPECT_TRUE(::EqualRect(&rcBack, &rcLeft));
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
}

TEST_F(GalleryDialogs, ResizableOneComesBackMaximisedAndThenAsItWasBefore) {
    // It shows itself as maximised before its children lie where they then belong.
    HWND hwnd = Open(IDC_SIZABLE, L"Resizable");
    ASSERT_TRUE(hwnd);
    auto notes = [&] { return RectOf(::GetDlgItem(hwnd, IDC_NOTES)); };
    const RECT rcFirst = RectOf(hwnd), rcNotesFirst = notes();
    DoubleClickTitleOf(hwnd);
    ASSERT_TRUE(WaitUntil([&] { return ::IsZoomed(hwnd) && !(notes() == rcNotesFirst); }));
    ExpectLaidOut(hwnd);
    const RECT rcNotes = notes();
    PressKeys(hwnd, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwnd));

    hwnd = Open(IDC_SIZABLE, L"Resizable");
    ASSERT_TRUE(WaitUntil([&] { return ::IsZoomed(hwnd) != 0; }));
    EXPECT_TRUE(WaitUntil([&] { return notes() == rcNotes; }))
        << rcNotes.right << "," << rcNotes.bottom << " and now " << notes().right << ","
        << notes().bottom;
    TakePicture(L"maximised", {hwnd});
    DoubleClickTitleOf(hwnd);
    ASSERT_TRUE(WaitUntil([&] { return !::IsZoomed(hwnd); }));
    EXPECT_TRUE(WaitUntil([&] { return RectOf(hwnd) == rcFirst && notes() == rcNotesFirst; }));
    ExpectLaidOut(hwnd);
}

TEST_F(GalleryDialogs, ResizableOneIsLaidOutWhateverItsRecordHolds) {
    HWND hwnd = Open(IDC_SIZABLE, L"Resizable");
    const RECT rcFirst = RectOf(hwnd);
    PressKeys(hwnd, {L"Escape"});
    EXPECT_TRUE(WaitUntilGone(hwnd));
    const RECT places[] = {
        {300, 300, 350, 320},               // smaller than the smallest size
        {300, 300, 200, 100},               // turned around
        {-2000000000, -7, 2000000000, 900}, // wider than a number can tell
    };
    for (const RECT& rcPlace : places) {
        WINDOWPLACEMENT place{};
        place.length = sizeof(place);
        place.showCmd = SW_SHOWNORMAL;
        place.rcNormalPosition = rcPlace;
        ASSERT_TRUE(Leave()); // what it stores in its end is not to come behind this
        StoreBytes(L"SizableDialog", &place, sizeof(place));
        Start();
        hwnd = Open(IDC_SIZABLE, L"Resizable");
        ASSERT_TRUE(hwnd);
        const RECT rc = RectOf(hwnd);
        EXPECT_GE(WidthOf(rc), WidthOf(rcFirst)) << rcPlace.left;
        EXPECT_GE(HeightOf(rc), HeightOf(rcFirst)) << rcPlace.left;
        EXPECT_NE(::MonitorFromRect(&rc, MONITOR_DEFAULTTONULL), nullptr) << rcPlace.left;
        EXPECT_EQ(FaultsOfLayout(hwnd), L"") << rcPlace.left;
        PressKeys(hwnd, {L"Escape"});
        EXPECT_TRUE(WaitUntilGone(hwnd));
    }
}

TEST_F(GalleryDialogs, GroupsFoldAwayAndWhatStandsBelowMoves) {
    HWND hwnd = Open(IDC_FOLD, L"Folding");
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    auto item = [&](int nId) { return ::GetDlgItem(hwnd, nId); };
    auto top = [&](int nId) { return RectOf(item(nId)).top; };
    const int nGift = top(IDC_FOLD_GIFT), nBelow = top(IDC_FOLD_BELOW), nOk = top(IDOK);
    const int nFrame = HeightOf(RectOf(item(IDC_FOLD_FRAME))), nHeight = HeightOf(RectOf(hwnd));
    const int nAddress = nGift - top(IDC_STREET_LABEL); // the group, down to what follows it
    TakePicture(L"unfolded", {Main(), hwnd});

    ClickOn(item(IDC_FOLD_ADDRESS));
    ASSERT_TRUE(WaitUntil([&] { return HeightOf(RectOf(hwnd)) == nHeight - nAddress; }));
    EXPECT_FALSE(::IsWindowVisible(item(IDC_STREET)));
    EXPECT_FALSE(::IsWindowEnabled(item(IDC_TOWN)));
    EXPECT_EQ(top(IDC_FOLD_GIFT), nGift - nAddress);
    EXPECT_EQ(top(IDC_FOLD_BELOW), nBelow - nAddress);
    EXPECT_EQ(top(IDOK), nOk - nAddress);
    EXPECT_EQ(HeightOf(RectOf(item(IDC_FOLD_FRAME))), nFrame - nAddress);
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    TakePicture(L"folded", {Main(), hwnd});

    ClickOn(item(IDC_FOLD_GIFT));
    ASSERT_TRUE(WaitUntil([&] { return !::IsWindowVisible(item(IDC_GIFT)); }));
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
    ClickOn(item(IDC_FOLD_ADDRESS));
    ASSERT_TRUE(WaitUntil([&] { return top(IDC_FOLD_GIFT) == nGift; }));
    ClickOn(item(IDC_FOLD_GIFT));
    ASSERT_TRUE(WaitUntil([&] { return HeightOf(RectOf(hwnd)) == nHeight; }));
    EXPECT_TRUE(::IsWindowVisible(item(IDC_STREET)));
    EXPECT_EQ(top(IDC_FOLD_GIFT), nGift);
    EXPECT_EQ(top(IDOK), nOk);
    EXPECT_EQ(HeightOf(RectOf(item(IDC_FOLD_FRAME))), nFrame);
    EXPECT_EQ(FaultsOfLayout(hwnd), L"");
}
