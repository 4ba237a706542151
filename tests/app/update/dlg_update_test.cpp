#include "app/update/dlg_update.h"
#include "app/identity/product_info.h"
#include "app/update/update_dlg.h"
#include "app/update_store.h"
#include "app/fake_clock.h"
#include "app/fake_wininet.h"
#include "app/shell_start_recorder.h"
#include "support/gui_objects.h"
#include "support/heap_count.h"
#include "support/message_box_driver.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <string>
#include <vector>

namespace {
constexpr const wchar_t* kUrl = L"http://orvanta.example/more?v=2";

/// Either dialog, to test what both do.
struct DialogCase {
    const char* pszName;
    int nTemplate;
    unsigned short nNumber;
};
constexpr DialogCase kDialogs[] = {{"Check", 21802, 109}, {"Get", 21804, 108}};

/// What a run of a dialog left.
struct Outcome {
    std::atomic<int> nResult{-7}, bYes{-7}, nFrequency{-7}, bAuto{-7};
};

void ShowDialog(int nTemplate, int nFrequency, Outcome& run, HWND hwndOwner = nullptr) {
    if (nTemplate == 21802) {
        DlgCheckForUpdates dlg(nFrequency, 3, nullptr, nullptr, hwndOwner);
        run.nResult = dlg.Show();
        run.bYes = dlg.bYes;
        run.nFrequency = dlg.nFrequency;
        run.bAuto = dlg.bAutoCheck;
    } else {
        DlgGetUpdates dlg(nFrequency, L"Version 2", nullptr, nullptr, hwndOwner);
        run.nResult = dlg.Show();
        run.bYes = dlg.bYes;
        run.nFrequency = dlg.nFrequency;
    }
}

class UpdateDlg : public testing::TestWithParam<DialogCase> {
  protected:
    /// Shows it on a thread of its own.
    struct Shown {
        explicit Shown(int nFrequency = 1)
            : dlg(GetParam().nNumber,
                  [this, nFrequency] { ShowDialog(GetParam().nTemplate, nFrequency, run); }) {}
        Outcome run;
        ShownUpdateDlg dlg;
    };
    static bool IsCheck() { return GetParam().nTemplate == 21802; }
};

/// What the classes keep to themselves.
struct ExposedCheck : DlgCheckForUpdates {
    using CSDlg::dataUpdated;
    using DlgCheckForUpdates::DlgCheckForUpdates;
    int UpdateData() override {
        ++nUpdates;
        return DlgCheckForUpdates::UpdateData();
    }
    int nUpdates = 0;
};
struct ExposedGet : DlgGetUpdates {
    using CSDlg::dataUpdated;
    using DlgGetUpdates::description;
    using DlgGetUpdates::DlgGetUpdates;
    using DlgUpdateBase::daysLine;
    using DlgUpdateBase::title;
};
} // namespace

// What both have

TEST_P(UpdateDlg, ComesUpWithYesAndTheFourReminders) {
    for (int nFrequency : {0, 1, 2, 3}) {
        Shown shown(nFrequency);
        EXPECT_TRUE(shown.dlg.IsChecked(21536));
        EXPECT_FALSE(shown.dlg.IsChecked(21537));
        HWND hwndList = shown.dlg.Item(21543);
        ASSERT_EQ(4, ::SendMessageW(hwndList, CB_GETCOUNT, 0, 0));
        const wchar_t* const texts[] = {L"Tomorrow", L"Next week", L"Next month", L"Never"};
        for (int n = 0; n < 4; ++n) {
            wchar_t sz[64] = L"";
            ::SendMessageW(hwndList, CB_GETLBTEXT, static_cast<WPARAM>(n),
                           reinterpret_cast<LPARAM>(sz));
            EXPECT_STREQ(texts[n], sz);
        }
        EXPECT_EQ(nFrequency, shown.dlg.Selection());
    }
}

TEST_P(UpdateDlg, HasNoTitleBarAndTheTemplatesSize) {
    Shown shown;
    const auto dwStyle = static_cast<DWORD>(::GetWindowLongPtrW(shown.dlg, GWL_STYLE));
    EXPECT_TRUE(dwStyle & WS_POPUP);
    EXPECT_NE(static_cast<DWORD>(WS_CAPTION), dwStyle & WS_CAPTION);
    RECT rcUnits{0, 0, 227, 124}, rc{};
    ::GetClientRect(shown.dlg, &rc);
    ::MapDialogRect(shown.dlg, &rcUnits);
    EXPECT_EQ(rcUnits.right, rc.right);
    EXPECT_EQ(rcUnits.bottom, rc.bottom);
}

TEST_P(UpdateDlg, WindowHasTheProductsIconInBothSizes) {
    Shown shown;
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), SizeOfIcon(IconOfWindow(shown.dlg, ICON_SMALL)).cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CXICON), SizeOfIcon(IconOfWindow(shown.dlg, ICON_BIG)).cx);
}

TEST_P(UpdateDlg, AnswersToItsNumberAlone) {
    Shown shown;
    auto Ask = [&](WPARAM nCode, LPARAM nNumber) {
        return ::SendMessageW(shown.dlg, GetMyCompanyMsgId(), nCode, nNumber);
    };
    EXPECT_EQ(1, Ask(121, GetParam().nNumber));
    EXPECT_EQ(0, Ask(121, GetParam().nNumber == 108 ? 109 : 108));
    EXPECT_EQ(0, Ask(121, 0));
    EXPECT_EQ(0, Ask(3, GetParam().nNumber)); // whoever asks brings it forward
}

TEST_P(UpdateDlg, CloseButtonIsAnIconAndProceedButtonAPictureOf48Pixels) {
    Shown shown;
    EXPECT_TRUE(IsOwnerDrawn(shown.dlg.Item(IDOK)));
    EXPECT_TRUE(IsOwnerDrawn(shown.dlg.Item(IDCANCEL)));
    RECT rcClose{};
    ::GetClientRect(shown.dlg.Item(IDCANCEL), &rcClose); // its text has no room there
    const SIZE sizeClose{rcClose.right, rcClose.bottom};
    MemoryPicture closing(sizeClose.cx, sizeClose.cy, kUndrawn);
    DrawButtonInto(shown.dlg, IDCANCEL, closing, sizeClose);
    RECT rc = DrawnPart(closing, sizeClose);
    EXPECT_LE(8, rc.right - rc.left);
    EXPECT_LE(rc.right - rc.left, ::GetSystemMetrics(SM_CXSMICON));
    const SIZE size{48, 48};
    MemoryPicture picture(size.cx, size.cy, kUndrawn);
    DrawButtonInto(shown.dlg, IDOK, picture, size);
    rc = DrawnPart(picture, size);
    EXPECT_LE(30, rc.right - rc.left);
    EXPECT_LE(30, rc.bottom - rc.top);
    EXPECT_EQ(kUndrawn, picture.Get(0, 0)) << "a frame, or a picture that is cut";
}

TEST_P(UpdateDlg, NoAndAReminderAreReadByOk) {
    for (int nFrequency : {0, 1, 2, 3}) {
        Shown shown(3 - nFrequency);
        shown.dlg.Click(21537);
        shown.dlg.Select(nFrequency);
        shown.dlg.Click(IDOK);
        EXPECT_TRUE(shown.dlg.HasClosed());
        EXPECT_EQ(1, shown.run.nResult);
        EXPECT_EQ(0, shown.run.bYes);
        EXPECT_EQ(nFrequency, shown.run.nFrequency);
    }
}

TEST_P(UpdateDlg, OneChoiceExcludesTheOther) {
    Shown shown;
    shown.dlg.Click(21537);
    EXPECT_FALSE(shown.dlg.IsChecked(21536));
    shown.dlg.Click(21536);
    EXPECT_FALSE(shown.dlg.IsChecked(21537));
}

struct ClosingCase {
    const char* pszName;
    void (*pfnClose)(const ShownUpdateDlg&);
};
TEST_P(UpdateDlg, CloseButtonEscapeAndAltF4CancelWithoutAnAnswer) {
    const ClosingCase closings[] = {
        {"close button", [](const ShownUpdateDlg& dlg) { dlg.Click(IDCANCEL); }},
        {"Escape", [](const ShownUpdateDlg& dlg) { dlg.PressKey(VK_ESCAPE); }},
        {"Alt+F4", [](const ShownUpdateDlg& dlg) { dlg.PressAltF4(); }},
        {"WM_CLOSE", [](const ShownUpdateDlg& dlg) { ::PostMessageW(dlg, WM_CLOSE, 0, 0); }},
    };
    for (const ClosingCase& row : closings) {
        Shown shown(2);
        shown.dlg.Select(0);
        if (IsCheck()) shown.dlg.Click(1008);
        row.pfnClose(shown.dlg);
        EXPECT_TRUE(shown.dlg.HasClosed()) << row.pszName;
        EXPECT_EQ(2, shown.run.nResult) << row.pszName;
        EXPECT_EQ(0, shown.run.bYes) << row.pszName;
        EXPECT_EQ(2, shown.run.nFrequency) << row.pszName;
        if (IsCheck()) {
            EXPECT_EQ(0, shown.run.bAuto) << row.pszName;
        }
    }
}

TEST_P(UpdateDlg, IsModalOverItsWindow) {
    HWND hwndOwner = nullptr;
    std::atomic<bool> bEnabledAfter{false};
    Outcome run;
    ShownUpdateDlg dlg(GetParam().nNumber, [&] {
        TestWindow owner({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        hwndOwner = owner;
        ShowDialog(GetParam().nTemplate, 1, run, owner);
        bEnabledAfter = ::IsWindowEnabled(owner);
    });
    EXPECT_EQ(hwndOwner, ::GetWindow(dlg, GW_OWNER));
    EXPECT_FALSE(::IsWindowEnabled(hwndOwner));
    dlg.Click(IDCANCEL);
    EXPECT_TRUE(dlg.HasClosed());
    EXPECT_TRUE(bEnabledAfter);
}

// The keyboard alone

TEST_P(UpdateDlg, TabReachesEverythingThatCanBeChosen) {
    Shown shown;
    std::vector<int> expected{21536, 21543, IDOK};
    if (IsCheck()) expected.push_back(1008);
    std::vector<int> seen;
    ASSERT_TRUE(WaitUntil([&] { return shown.dlg.Focus() != nullptr; }));
    for (int n = 0; n < 8; ++n) {
        const int nId = shown.dlg.FocusId();
        if (std::find(seen.begin(), seen.end(), nId) != seen.end()) break;
        seen.push_back(nId);
        shown.dlg.PressKey(VK_TAB);
        WaitUntil([&] { return shown.dlg.FocusId() != nId; });
    }
    for (int nId : expected) EXPECT_NE(seen.end(), std::find(seen.begin(), seen.end(), nId)) << nId;
    EXPECT_EQ(seen.end(), std::find(seen.begin(), seen.end(), 21537))
        << "that is the arrows' place";
    EXPECT_EQ(21536, seen[0]) << "the answer comes first";
}

TEST_P(UpdateDlg, ArrowsSpaceAndReturnAnswerIt) {
    Shown shown(1);
    ASSERT_TRUE(shown.dlg.WaitForFocus(21536));
    shown.dlg.PressKey(VK_DOWN);
    ASSERT_TRUE(shown.dlg.WaitForFocus(21537));
    EXPECT_TRUE(WaitUntil([&] { return shown.dlg.IsChecked(21537); }));
    EXPECT_FALSE(shown.dlg.IsChecked(21536));
    for (int n = 0; n < 8 && shown.dlg.FocusId() != 21543; ++n) {
        const int nId = shown.dlg.FocusId();
        shown.dlg.PressKey(VK_TAB);
        WaitUntil([&] { return shown.dlg.FocusId() != nId; });
    }
    shown.dlg.PressKey(VK_DOWN);
    EXPECT_TRUE(WaitUntil([&] { return shown.dlg.Selection() == 2; }));
    if (IsCheck()) {
        for (int n = 0; n < 8 && shown.dlg.FocusId() != 1008; ++n) {
            const int nId = shown.dlg.FocusId();
            shown.dlg.PressKey(VK_TAB);
            WaitUntil([&] { return shown.dlg.FocusId() != nId; });
        }
        shown.dlg.PressKey(VK_SPACE);
        EXPECT_TRUE(WaitUntil([&] { return shown.dlg.IsChecked(1008); }));
    }
    shown.dlg.PressKey(VK_RETURN);
    EXPECT_TRUE(shown.dlg.HasClosed());
    EXPECT_EQ(1, shown.run.nResult);
    EXPECT_EQ(0, shown.run.bYes);
    EXPECT_EQ(2, shown.run.nFrequency);
    if (IsCheck()) {
        EXPECT_EQ(1, shown.run.bAuto);
    }
}

TEST_P(UpdateDlg, TenOpeningsLeaveNothing) {
    for (int n = 0; n < 2; ++n) { // makes what the process keeps
        Shown shown;
    }
    int nDrawing = CountGdiObjects(), nWindows = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 10; ++n) {
        Shown shown;
    }
    EXPECT_EQ(nDrawing, CountGdiObjects());
    EXPECT_EQ(nWindows, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}
INSTANTIATE_TEST_SUITE_P(Dialogs, UpdateDlg, testing::ValuesIn(kDialogs),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(DlgUpdateBase, IsTheQuestionUnlessItIsToldAnotherNumber) {
    EXPECT_EQ(109, DlgUpdateBase(1).activationTag);
    EXPECT_EQ(108, DlgUpdateBase(1, 108).activationTag);
    EXPECT_EQ(109, DlgCheckForUpdates(1, 0, nullptr).activationTag);
    EXPECT_EQ(108, DlgGetUpdates(1, nullptr, nullptr).activationTag);
}

TEST(DlgUpdateBase, FrequencyBeyondTheListSelectsNothingAndStays) {
    for (int nFrequency : {4, 15, -1}) {
        OpenCheck open(nFrequency);
        EXPECT_EQ(-1, static_cast<int>(::SendMessageW(open.Item(21543), CB_GETCURSEL, 0, 0)));
        open.dlg.UpdateData();
        EXPECT_EQ(nFrequency, open.dlg.nFrequency);
    }
}

TEST(DlgUpdateBase, ReadingTheDataMarksItAsRead) {
    OpenUpdateDlg<ExposedCheck> check(21802, 1, 3u, nullptr);
    EXPECT_FALSE(check.dlg.dataUpdated);
    EXPECT_EQ(1, check.dlg.UpdateData());
    EXPECT_TRUE(check.dlg.dataUpdated);
    EXPECT_EQ(1, check.dlg.bYes);
    OpenUpdateDlg<ExposedGet> get(21804, 1, L"text", nullptr);
    EXPECT_FALSE(get.dlg.dataUpdated);
    EXPECT_EQ(1, get.dlg.UpdateData());
    EXPECT_TRUE(get.dlg.dataUpdated);
}

TEST(DlgUpdateBase, OneThatNeverRanGoesQuietly) {
    long nBlocks = CountLiveBlocks();
    {
        DlgCheckForUpdates check(1, 3, nullptr);
        DlgGetUpdates get(1, L"text", kUrl);
    }
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

// The question

TEST(DlgCheckForUpdates, TitleNamesTheProductInBothForms) {
    OpenCheck open;
    const std::wstring strTitle = L"Would you like to check for updates to Tessaly?";
    EXPECT_TRUE(open.dlg.GetDlgCtrl(21542)->IsKindOf(L"CSStaticHTML"));
    EXPECT_NE(std::wstring::npos, open.Markup(21542).find(strTitle));
}

TEST(DlgCheckForUpdates, LineTellsTheDaysAndIsHiddenForNone) {
    struct Row {
        unsigned nDays;
        const wchar_t* pszText;
    };
    for (Row row : {Row{1, L"Last check for updates was 1 days ago."},
                    Row{7, L"Last check for updates was 7 days ago."},
                    Row{3650, L"Last check for updates was 3650 days ago."},
                    Row{49710, L"Last check for updates was 49710 days ago."}}) {
        OpenCheck open(1, row.nDays);
        EXPECT_EQ(0u, open.Text(21503).find(row.pszText));
        EXPECT_GE(std::wcslen(row.pszText) + 1, open.Text(21503).size());
        EXPECT_TRUE(::IsWindowVisible(open.Item(21503)));
    }
    OpenCheck open(1, 0);
    EXPECT_FALSE(::IsWindowVisible(open.Item(21503)));
}

TEST(DlgCheckForUpdates, AutomaticIsOffAtFirstAndReadFromItsBox) {
    OpenCheck open;
    EXPECT_FALSE(open.IsChecked(1008));
    open.dlg.UpdateData();
    EXPECT_EQ(0, open.dlg.bAutoCheck);
    open.dlg.CheckDlgButton(1008, BST_CHECKED);
    open.dlg.UpdateData();
    EXPECT_EQ(1, open.dlg.bAutoCheck);
}

TEST(DlgCheckForUpdates, NoAsksNoServerAndReadsTheDataTwice) {
    FakeWinInet network("OK");
    OpenUpdateDlg<ExposedCheck> open(21802, 1, 3u, nullptr);
    open.dlg.CheckRadioButton(21536, 21537, 21537);
    open.dlg.OnOK();
    EXPECT_EQ(0, network.nSent);
    EXPECT_EQ(2, open.dlg.nUpdates);
    EXPECT_FALSE(::IsWindow(open.dlg));
}

TEST(DlgCheckForUpdates, YesChecksWhileItIsOnTheScreen) {
    UpdateStore store;
    FakeWinInet network; // nobody answers
    OpenUpdateDlg<ExposedCheck> open(21802, 1, 3u, nullptr);
    const HWND hwnd = open.dlg;
    MessageBoxDriver driver({IDRETRY, IDCANCEL});
    open.dlg.OnOK();
    auto seen = driver.Finish();
    ASSERT_EQ(2u, seen.size());
    EXPECT_EQ(hwnd, seen[0].hwndOwner);
    EXPECT_EQ(0u, seen[0].strText.find(L"Cannot connect to the software update server."));
    EXPECT_EQ((std::vector<int>{IDRETRY, IDCANCEL}), seen[0].buttons);
    EXPECT_EQ(2, network.nSent);
    EXPECT_EQ(0, network.nOpen);
    EXPECT_EQ(2, open.dlg.nUpdates);
    EXPECT_FALSE(::IsWindow(hwnd));
}

TEST(DlgCheckForUpdates, ResultIsTheCallersIfAnUpdateIsTaken) {
    for (int bTaken : {0, 1}) {
        UpdateStore store;
        ShellStartRecorder shell;
        FakeWinInet network("[dl]\nurlmoreinfo=https://orvanta.example/news\n");
        int bGet = 0;
        std::atomic<int> nResult{0}, bYes{0};
        ShownUpdateDlg dlg(109, [&] {
            DlgCheckForUpdates check(1, 3, &bGet);
            nResult = check.Show();
            bYes = check.bYes;
        });
        ::PostMessageW(dlg.Item(IDOK), BM_CLICK, 0, 0);
        dlg.WaitFor(108);
        if (!bTaken) dlg.Click(21537);
        dlg.Click(IDOK);
        EXPECT_TRUE(dlg.HasClosed());
        EXPECT_EQ(bTaken, bGet);
        EXPECT_EQ(1, nResult);
        EXPECT_EQ(1, bYes);
        ASSERT_EQ(static_cast<std::size_t>(bTaken), shell.calls.size());
        if (bTaken) {
            EXPECT_EQ(MaybeText(L"https://orvanta.example/news"), shell.calls[0].file);
        }
    }
}

// The offer

TEST(DlgGetUpdates, TitleIsDarkGreyAndBold) {
    OpenGet open(L"text");
    EXPECT_EQ(L"<b><dkgrey>An update is available:</dkgrey></b>", open.Markup(21542));
}

TEST(DlgGetUpdates, HasNoLineAboutTheLastCheck) {
    OpenUpdateDlg<ExposedGet> open(21804, 1, L"text", nullptr);
    EXPECT_EQ(nullptr, open.dlg.daysLine.GetDlg());
    EXPECT_NE(nullptr, open.dlg.title.GetDlg());
    EXPECT_NE(nullptr, open.dlg.description.GetDlg());
}

TEST(DlgGetUpdates, LinkInTheDescriptionOpensThePage) {
    ShellStartRecorder shell;
    OpenGet open(L"Version 2. <a>More about it</a>", kUrl);
    open.Click(1009);
    ASSERT_EQ(1u, shell.calls.size());
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(MaybeText(kUrl), call.file);
    EXPECT_EQ(MaybeText(), call.parameters);
    EXPECT_EQ(open.dlg, call.hwnd);
    EXPECT_TRUE(::IsWindow(open.dlg)) << "it stays open";
}

TEST(DlgGetUpdates, LinkIsPressedByMouseAndByKey) {
    ShellStartRecorder shell;
    OpenGet open(L"<a>Moreaboutit</a>", kUrl);
    HWND hwnd = open.Item(1009);
    ::SendMessageW(hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(6, 5));
    ::SendMessageW(hwnd, WM_LBUTTONUP, 0, MAKELPARAM(6, 5));
    PumpUntil([&] { return !shell.calls.empty(); });
    EXPECT_EQ(1u, shell.calls.size());
    EXPECT_EQ(MaybeText(kUrl), shell.TakeOne().file);
    ::SetFocus(hwnd);
    ::SendMessageW(hwnd, WM_KEYDOWN, VK_SPACE, 1);
    ::SendMessageW(hwnd, WM_KEYUP, VK_SPACE, LPARAM{0xC0000001});
    PumpUntil([&] { return !shell.calls.empty(); });
    EXPECT_EQ(MaybeText(kUrl), shell.TakeOne().file);
}

TEST(DlgGetUpdates, TabComesToALinkThatOpensAPageAndToNoOther) {
    struct Row {
        const wchar_t *pszDescription, *pszUrl;
        bool bReached;
    };
    for (Row row : {Row{L"<a>More</a>", kUrl, true}, Row{L"and <A>more", kUrl, true},
                    Row{L"<a>More</a>", L"", false}, Row{L"<a>More</a>", nullptr, false},
                    Row{L"<a1>More</a1>", kUrl, false}, Row{L"Version 2", kUrl, false},
                    Row{L"", kUrl, false}, Row{nullptr, kUrl, false}}) {
        OpenGet open(row.pszDescription, row.pszUrl);
        bool bReached = false;
        HWND hwnd = open.Item(21536);
        EXPECT_EQ(hwnd, ::GetNextDlgTabItem(open.dlg, nullptr, FALSE)) << "the answer comes first";
        for (int n = 0; n < 8; ++n) {
            bReached |= hwnd == open.Item(1009);
            hwnd = ::GetNextDlgTabItem(open.dlg, hwnd, FALSE);
        }
        EXPECT_EQ(row.bReached, bReached);
    }
}

TEST(DlgGetUpdates, LinkWithoutAnAddressOpensNothing) {
    ShellStartRecorder shell;
    for (const wchar_t* pszUrl : {static_cast<const wchar_t*>(nullptr), L""}) {
        OpenGet open(L"<a>More</a>", pszUrl);
        open.Click(1009);
        EXPECT_TRUE(shell.calls.empty());
        EXPECT_TRUE(::IsWindow(open.dlg));
    }
}

TEST(DlgGetUpdates, OtherLinksAndControlsOpenNothing) {
    ShellStartRecorder shell;
    OpenGet open(L"<a1>one</a1> <a2>two</a2> <a9>nine</a9>", kUrl);
    for (int nId : {1010, 1011, 1018, 1032, 1037, 1038, 21536, 21537}) open.Click(nId);
    EXPECT_TRUE(shell.calls.empty());
}

struct DescriptionCase {
    const char* pszName;
    std::wstring strText;
};

std::wstring Repeated(const std::wstring& str, std::size_t cch = 259) {
    std::wstring strAll;
    while (strAll.size() + str.size() <= cch) strAll += str;
    return strAll;
}

class HostileDescription : public testing::TestWithParam<DescriptionCase> {};
TEST_P(HostileDescription, IsDrawnAndNothingElse) {
    ShellStartRecorder shell;
    { OpenGet first(GetParam().strText.c_str(), kUrl); } // makes what the process keeps
    int nDrawing = CountGdiObjects();
    long nBlocks = CountLiveBlocks();
    {
        OpenGet open(GetParam().strText.c_str(), kUrl);
        EXPECT_EQ(GetParam().strText, open.Markup(1009));
        for (int n = 0; n < 3; ++n) {
            ::RedrawWindow(open.Item(1009), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
            ::SendMessageW(open.Item(1009), WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
        }
        EXPECT_EQ(L"Yes, download and install it now.", open.Text(21536));
        EXPECT_TRUE(open.IsChecked(21536));
    }
    EXPECT_EQ(nDrawing, CountGdiObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
    EXPECT_TRUE(shell.calls.empty());
}
INSTANTIATE_TEST_SUITE_P(
    Cases, HostileDescription,
    testing::Values(DescriptionCase{"Empty", L""}, DescriptionCase{"Blanks", Repeated(L" ")},
                    DescriptionCase{"OneWordOf259", Repeated(L"W")},
                    DescriptionCase{"WordsOf259", Repeated(L"word ")},
                    DescriptionCase{"LongerThanAnyField", Repeated(L"a<b>", 1500)},
                    DescriptionCase{"OpeningTags", Repeated(L"<b>")},
                    DescriptionCase{"Headings", Repeated(L"<h>")},
                    DescriptionCase{"GrowingText", Repeated(L"<big>x")},
                    DescriptionCase{"ShrinkingText", Repeated(L"<small>x")},
                    DescriptionCase{"ClosingTags", Repeated(L"</b>")},
                    DescriptionCase{"ClosingLinks", Repeated(L"</a>")},
                    DescriptionCase{"NestedLinks", Repeated(L"<a>x")},
                    DescriptionCase{"LinksOfAllNumbers", L"<a>a<a1>b<a2>c<a3>d<a9>e</a></a1></a9>"},
                    DescriptionCase{"CrossedTags", Repeated(L"<b><i>x</b>y</i>")},
                    DescriptionCase{"Unbalanced", L"<u><red>x</b></nobr></t><nobr><t><b>"},
                    DescriptionCase{"CutTag", L"text <b"},
                    DescriptionCase{"Brackets", Repeated(L"<")},
                    DescriptionCase{"Colours", Repeated(L"<red><green>")},
                    DescriptionCase{"Breaks", Repeated(L"<br>")},
                    DescriptionCase{"HalfBreaks", Repeated(L"x<brhalf>")},
                    DescriptionCase{"Centers", Repeated(L"<center>x")},
                    DescriptionCase{"Entities", Repeated(L"&lt;&amp;&bogus;&")},
                    DescriptionCase{"Conversions", L"%s%s%s%n%d %1!s! %%"},
                    DescriptionCase{"NoBreak", L"<nobr>" + Repeated(L"no break ", 250)},
                    DescriptionCase{"Slashes", Repeated(L"/\\")},
                    DescriptionCase{"Controls", L"a\tb\r\nc\x1b\x7f\x01"},
                    DescriptionCase{"Surrogates", Repeated(L"\xD83D")},
                    DescriptionCase{"RightToLeft", L"\x202E txt.exe \x05D0\x05D1"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(DlgGetUpdates, NoDescriptionIsAnEmptyOne) {
    OpenGet open(nullptr, kUrl);
    EXPECT_EQ(L"", open.Markup(1009));
}
