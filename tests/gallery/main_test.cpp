// The main dialog and its pages.

#include "gallery/gallery_test_support.h"
#include "support/message_box_driver.h"

namespace {
class GalleryMain : public Gallery {};

struct PageRow {
    const wchar_t* pszPicture;
    std::vector<int> tabOrder; // behind the list of pages and before the button
};
const PageRow kPages[] = {
    {L"dialogs",
     {IDC_MODAL, IDC_MODELESS, IDC_OWN_LOOP, IDC_FROM_MEMORY, IDC_CENTERED, IDC_SIZABLE, IDC_FOLD}},
    {L"edits", // the first item can't go up
     {IDC_SOFT_EDIT, IDC_READ_ONLY, IDC_KEEP_SELECTION, IDC_COLOUR, IDC_BALLOON, IDC_DROP_PATH,
      IDC_DROP_FOLDER, IDC_TYPED, IDC_LIST, IDC_DOWN}},
    {L"texts", {IDHELP, IDC_TIP_TEXT, IDC_TIP_STRING, IDC_WORK, IDC_SECONDS, IDC_COUNT_DOWN}},
    {L"richtext", {IDC_TAGS, IDC_WRAPPED, IDC_MARKUP, IDC_DRAWN}},
    {L"buttons", // without the disabled ones
     {IDC_GO, IDC_GO + 1, IDC_UNDO, IDC_UNDO + 1, IDC_WEB, IDC_WEB + 1, IDC_APP, IDC_APP + 1,
      IDC_ICON_CLOSE, IDC_ICON_CLOSE + 1, IDC_ICON_MINIMIZE, IDC_ICON_MINIMIZE + 1, IDC_FACE,
      IDC_FACE + 1, IDC_LINK, IDC_LINK + 1}},
    {L"updates", {IDC_DAYS, IDC_ASK, IDC_DESCRIPTION, IDC_MORE_INFO, IDC_OFFER, IDC_REMINDER}},
    {L"progress",
     {IDC_ON_THIS_THREAD, IDC_DELAY, IDC_LINES, IDC_STEPS, IDC_CAN_CANCEL, IDC_BY_TICKER,
      IDC_RUN_JOB, IDC_BAR_GO, IDC_BAR_PAUSE, IDC_BAR_MARQUEE, IDC_BAR_TASKBAR, IDC_FOLDER,
      IDC_BROWSE, IDC_DIGEST, IDC_DIGESTS}},
    {L"shell", // the desktop has nothing above it, and its first object is a folder and no link
     {IDC_SHELL_ROOT, IDC_SHELL_LIST, IDC_OBJECT_OPEN, IDC_OBJECT_LINK}},
    {L"files",
     {IDC_TEXT_PATH, IDC_TEXT_OPEN, IDC_TEXT_BODY, IDC_TEXT_FORMAT, IDC_TEXT_SAVE, IDC_TEXT_APPEND,
      IDC_WORK_FROM, IDC_WORK_BROWSE, IDC_WORK_INTO, IDC_WORK_COPY, IDC_WORK_LIST, IDC_WORK_THREE,
      IDC_WORK_WIPE, IDC_WORK_VERIFY, IDC_WORK_DELETE}},
};
constexpr int kPageCount = static_cast<int>(std::size(kPages));
} // namespace

TEST_F(GalleryMain, ShowsEachPageInItsSlotWithNothingCut) {
    EXPECT_EQ(FaultsOfLayout(Main()), L"");
    for (int n = 0; n < kPageCount; ++n) {
        GoToPage(n);
        RECT rcSlot = RectOf(Item(IDC_PAGE_SLOT)), rcPage = RectOf(Page());
        EXPECT_TRUE(::EqualRect(&rcSlot, &rcPage)) << n;
        EXPECT_EQ(FaultsOfLayout(Page()), L"") << n;
        TakePicture(kPages[n].pszPicture, {Main()});
    }
    EXPECT_TRUE(Leave());
}

TEST_F(GalleryMain, TabWalksThroughEachPageInTheOrderOfReading) {
    for (int n = 0; n < kPageCount; ++n) {
        GoToPage(n);
        std::vector<int> expected{IDC_PAGES};
        expected.insert(expected.end(), kPages[n].tabOrder.begin(), kPages[n].tabOrder.end());
        expected.push_back(IDCANCEL);
        EXPECT_EQ(WalkByTab(), expected) << n;
    }
}

TEST_F(GalleryMain, PagesFollowTheWindowAndALateOneCatchesUp) {
    RECT rcMain = RectOf(Main()), rcPage = RectOf(Page()), rcClose = RectOf(Item(IDCANCEL));
    RECT rcGroup = RectOf(PageItem(IDC_RUN_GROUP));
    constexpr int dw = 90, dh = 60;
    DragCorner(Main(), dw, dh);
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(Main())) == WidthOf(rcMain) + dw; }));
    EXPECT_EQ(HeightOf(RectOf(Main())), HeightOf(rcMain) + dh);
    EXPECT_EQ(WidthOf(RectOf(Page())), WidthOf(rcPage) + dw);
    EXPECT_EQ(HeightOf(RectOf(Page())), HeightOf(rcPage) + dh);
    EXPECT_EQ(WidthOf(RectOf(PageItem(IDC_RUN_GROUP))), WidthOf(rcGroup) + dw);
    EXPECT_EQ(RectOf(Item(IDCANCEL)).left, rcClose.left + dw);
    EXPECT_EQ(RectOf(Item(IDCANCEL)).top, rcClose.top + dh);
    EXPECT_EQ(FaultsOfLayout(Page()), L"");

    GoToPage(kEditsPage); // created now
    RECT rcSlot = RectOf(Item(IDC_PAGE_SLOT)), rcLate = RectOf(Page());
    EXPECT_TRUE(::EqualRect(&rcSlot, &rcLate));
    EXPECT_EQ(WidthOf(RectOf(PageItem(IDC_EDIT_GROUP))), WidthOf(rcGroup) + dw);
    EXPECT_EQ(RectOf(PageItem(IDC_UP)).right, RectOf(PageItem(IDC_SOFT_EDIT)).right);
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    TakePicture(L"edits-larger", {Main()});

    DragCorner(Main(), -300, -300); // the template is the smallest size
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(Main())) == WidthOf(rcMain); }));
    EXPECT_EQ(HeightOf(RectOf(Main())), HeightOf(rcMain));
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    GoToPage(kDialogsPage); // was hidden, and followed
    EXPECT_EQ(WidthOf(RectOf(PageItem(IDC_RUN_GROUP))), WidthOf(rcGroup));
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
}

TEST_F(GalleryMain, EachPageIsLaidOutForALargerWindow) {
    constexpr int dw = 90, dh = 60;
    const RECT rcMain = RectOf(Main());
    auto check = [&] {
        for (int n = 0; n < kPageCount; ++n) {
            GoToPage(n);
            RECT rcSlot = RectOf(Item(IDC_PAGE_SLOT)), rcPage = RectOf(Page());
            EXPECT_TRUE(::EqualRect(&rcSlot, &rcPage)) << n;
            EXPECT_EQ(FaultsOfLayout(Page()), L"") << n;
        }
    };
    DragCorner(Main(), dw, dh);
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(Main())) == WidthOf(rcMain) + dw; }));
    check(); // created late, at that size
    DragCorner(Main(), -dw, -dh);
    ASSERT_TRUE(WaitUntil([&] { return WidthOf(RectOf(Main())) == WidthOf(rcMain); }));
    check(); // followed, those that were hidden too
}

TEST_F(GalleryMain, IsDraggedByItsBodyAndComesBackThere) {
    RECT rc = RectOf(Main());
    RECT rcList = RectOf(Item(IDC_PAGES));
    POINT ptBody{rcList.left + 20, RectOf(Item(IDCANCEL)).top + 8}; // nothing stands there
    DragWindow(ptBody, -70, -40);
    ASSERT_TRUE(WaitUntil([&] { return RectOf(Main()).left == rc.left - 70; }));
    EXPECT_EQ(RectOf(Main()).top, rc.top - 40);
    ASSERT_TRUE(Leave());
    Start();
    EXPECT_EQ(RectOf(Main()).left, rc.left - 70);
    EXPECT_EQ(RectOf(Main()).top, rc.top - 40);
}

TEST_F(GalleryMain, PagesFollowWhenItIsMaximised) {
    const RECT rcMain = RectOf(Main()), rcPage = RectOf(Page());
    DoubleClickTitleOf(Main());
    ASSERT_TRUE(WaitUntil([&] { return ::IsZoomed(Main()) != 0; }));
    EXPECT_TRUE(WaitUntil([&] {
        const RECT rcNow = RectOf(Main()), rcPageNow = RectOf(Page());
        return WidthOf(rcPageNow) - WidthOf(rcPage) == WidthOf(rcNow) - WidthOf(rcMain) &&
               HeightOf(rcPageNow) - HeightOf(rcPage) == HeightOf(rcNow) - HeightOf(rcMain);
    }));
    EXPECT_EQ(FaultsOfLayout(Main()), L"");
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
    DoubleClickTitleOf(Main());
    ASSERT_TRUE(WaitUntil([&] { return !::IsZoomed(Main()); }));
    EXPECT_TRUE(WaitUntil([&] {
        RECT rcBack = RectOf(Page());
        return ::EqualRect(&rcBack, &rcPage) != 0;
    }));
}

TEST_F(GalleryMain, SystemMenuTellsAboutIt) {
    PressKeys(Main(), {L"alt+space", L"Up", L"Return"}); // the last item
    HWND hwndBox = nullptr;
    ASSERT_TRUE(
        WaitUntil([&] { return (hwndBox = FindMessageBox(ProcessId(), L"Tessaly")) != nullptr; }));
    EXPECT_NE(ReadMessageBox(hwndBox).strText.find(L"samples/gallery"), std::wstring::npos);
    PressKeys(hwndBox, {L"Return"});
    EXPECT_TRUE(WaitUntilGone(hwndBox));
    EXPECT_TRUE(Leave());
}

TEST_F(GalleryMain, EnterDoesNotCloseItAndEscapeDoes) {
    PressKeys(Main(), {L"Return"});
    EXPECT_TRUE(HoldsFor([&] { return ::IsWindow(Main()); }, 200));
    EXPECT_TRUE(Leave());
}
