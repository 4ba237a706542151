// An icon button's icons, its life, and its messages outside of a dialog.
#include "app/identity/product_info.h"
#include "buttons/button_messages.h"
#include "buttons/icon_probe.h"
#include "resources/resource_ids.h"
#include "support/gui_objects.h"
#include "support/test_resource_ids.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr unsigned kNoResource = 31999;

unsigned Own(int nId) { return static_cast<unsigned>(-nId); }

// Icons

TEST(IconBtnIcons, AreLoadedAtTheSmallSize) {
    MadeResources made;
    ProbeIconBtn button(IDI_TEST, Own(IDI_DLG_CLOSE), 3, 0, 0);
    ASSERT_EQ(2u, made.asked.size());
    int cx = ::GetSystemMetrics(SM_CXSMICON), cy = ::GetSystemMetrics(SM_CYSMICON);
    for (const auto& one : made.asked) {
        EXPECT_EQ(static_cast<UINT>(IMAGE_ICON), one.uType);
        EXPECT_EQ(cx, one.cx);
        EXPECT_EQ(cy, one.cy);
    }
    EXPECT_NE(nullptr, button.hIcon);
    EXPECT_NE(nullptr, button.hIconHover);
    EXPECT_EQ(cx, button.sizeIconNormal.cx);
    EXPECT_EQ(cy, button.sizeIconNormal.cy);
    EXPECT_EQ(cx, button.sizeIconHover.cx);
    EXPECT_EQ(cy, button.sizeIconHover.cy);
    EXPECT_EQ(button.hIcon, static_cast<HICON>(button));
}

TEST(IconBtnIcons, NegativeOnesAreTheLibrarysPositiveOnesTheApplications) {
    HINSTANCE hinstApp = ::GetModuleHandleW(L"user32.dll");
    MadeResources made;
    {
        AppInstance app(hinstApp, nullptr);
        ProbeIconBtn button(IDI_TEST, Own(IDI_DLG_CLOSE), 3, 0, 0);
        ProbeIconBtn other(Own(IDI_DLG_MINIMIZE), IDI_TEST, 3, 0, 0);
    }
    ProbeIconBtn withoutApp(IDI_TEST, 0, 3, 0, 0);
    HINSTANCE hinstLibrary = ::GetModuleHandleW(nullptr);
    const struct {
        HINSTANCE hinst;
        int nId;
    } rows[] = {{hinstApp, IDI_TEST},
                {hinstLibrary, IDI_DLG_CLOSE},
                {hinstLibrary, IDI_DLG_MINIMIZE},
                {hinstApp, IDI_TEST},
                {hinstLibrary, IDI_TEST}};
    ASSERT_EQ(std::size(rows), made.asked.size());
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i].hinst, made.asked[i].hinst) << i;
        EXPECT_EQ(rows[i].nId, made.asked[i].nId) << i;
    }
}

TEST(IconBtnIcons, NoneIsAskedForWithId0) {
    MadeResources made;
    ProbeIconBtn button(0, 0, 3, 0, 0);
    EXPECT_TRUE(made.asked.empty());
    EXPECT_EQ(nullptr, button.hIcon);
    EXPECT_EQ(nullptr, button.hIconHover);
    EXPECT_EQ(nullptr, static_cast<HICON>(button));
}

TEST(IconBtnIcons, MissingOnesAreNone) {
    ProbeIconBtn button(kNoResource, Own(kNoResource), 3, 0, 0);
    EXPECT_EQ(nullptr, button.hIcon);
    EXPECT_EQ(nullptr, button.hIconHover);
}

TEST(IconBtnIcons, OfANullButtonIsNull) {
    IconBtn* volatile pNone = nullptr;
    IconBtn* pButton = pNone;
    EXPECT_EQ(nullptr, pButton->operator HICON());
}

TEST(IconBtnIcons, OfTheCaptionButtonsAreTheLibrarys) {
    MadeResources made;
    struct Close : CSCloseBtnForDlg {
        using IconBtn::dwFlags;
        using IconBtn::hIcon;
        using IconBtn::hIconHover;
        using IconBtn::xPos;
        using IconBtn::yPos;
    } close;
    struct Minimize : CSMinimizeBtnForDlg {
        using IconBtn::dwFlags;
        using IconBtn::hIcon;
        using IconBtn::hIconHover;
        using IconBtn::xPos;
        using IconBtn::yPos;
    } minimize;
    ASSERT_EQ(4u, made.asked.size());
    const int ids[] = {20074, 20075, 20076, 20077};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(ids[i], made.asked[i].nId);
        EXPECT_EQ(::GetModuleHandleW(nullptr), made.asked[i].hinst);
    }
    for (HICON hicon : {close.hIcon, close.hIconHover, minimize.hIcon, minimize.hIconHover})
        EXPECT_NE(nullptr, hicon);
    EXPECT_EQ(5u, close.dwFlags) << "what is common";
    EXPECT_EQ(2, close.xPos);
    EXPECT_EQ(0, close.yPos);
    EXPECT_EQ(5u, minimize.dwFlags);
    EXPECT_EQ(2, minimize.xPos);
    EXPECT_EQ(0, minimize.yPos);
}

TEST(IconBtnLife, StartsUp) {
    ProbeIconBtn button(0, 0, 6, 8, 9);
    EXPECT_EQ(6u, button.dwFlags);
    EXPECT_EQ(8, button.xPos);
    EXPECT_EQ(9, button.yPos);
    EXPECT_EQ(0u, button.dwCheck);
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ(nullptr, button.hFontThis);
    EXPECT_NE(0, button.IsCtrl());
}

TEST(IconBtnLife, OneHundredLeaveNoDrawingObjects) {
    auto MakeAndForget = [] {
        ProbeIconBtn button(Own(IDI_DLG_CLOSE), Own(IDI_DLG_CLOSE_HOVER), 5, 2, 0);
        button.SetThisFontProperties(2, FW_BOLD, 1, 0, L"Tahoma");
        button.SetThisFontProperties(4, 0, 0, 0, nullptr);
        CSCloseBtnForDlg close;
    };
    MakeAndForget(); // what is shared, and what the platform keeps for itself
    int nBefore = CountGdiObjects();
    ASSERT_LT(0, nBefore);
    for (int i = 0; i < 100; ++i) MakeAndForget();
    EXPECT_EQ(nBefore, CountGdiObjects());
}

// Messages

struct IconBtnMessages : testing::TestWithParam<unsigned long>, ButtonMessages<ProbeIconBtn> {
    IconBtnMessages() : ButtonMessages(L"&Open", 0u, 0u, GetParam(), 2, 2) {}
    void SetUp() override { Tie(); }
    void TearDown() override { Untie(); }
};
constexpr unsigned long kPlain = 3, kLink = 5;

using IconBtnBothLooks = IconBtnMessages;

TEST_P(IconBtnBothLooks, OnInitMakesTheButtonDrawnByItsOwner) {
    ::SetWindowLongW(window, GWL_STYLE,
                     WS_CHILD | WS_VISIBLE | BS_DEFPUSHBUTTON | BS_NOTIFY | BS_BITMAP);
    button.OnInit();
    ASSERT_EQ(1, spy->Count(BM_SETSTYLE));
    EXPECT_EQ(static_cast<DWORD>(WS_CHILD | WS_VISIBLE | BS_OWNERDRAW | BS_NOTIFY | BS_BITMAP),
              button.GetStyle(0));
}

TEST_P(IconBtnBothLooks, TheCursorStaysWhileTheMouseIsOver) {
    ExpectTheCursorStaysWhileTheMouseIsOver();
}

TEST_P(IconBtnBothLooks, DroppedFilesComeOnceAndBeforeTheDefault) {
    ExpectDroppedFilesComeOnceAndBeforeTheDefault();
}

TEST_P(IconBtnBothLooks, EnablingErases) {
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg != WM_ENABLE) return;
        EXPECT_EQ("", log->Take()) << "the default comes first";
    };
    button.Enable(0);
    EXPECT_EQ("erase ", log->Take());
    button.Enable(1);
    EXPECT_EQ("erase ", log->Take());
    EXPECT_EQ(2, spy->Count(WM_ENABLE));
}

TEST_P(IconBtnBothLooks, ACheckIsBit0) {
    const struct {
        WPARAM wParam;
        unsigned __int64 qwBefore, qwAfter;
    } rows[] = {{1, 0, 1},
                {0, 1, 0},
                {3, 0, 1},
                {2, 1, 0},
                {BST_INDETERMINATE, 1, 0},
                {1, 0xF0F0F0F0F0F0F0F0, 0xF0F0F0F0F0F0F0F1},
                {0, ~0ull, ~1ull}};
    for (const auto& row : rows) {
        button.dwCheck = row.qwBefore;
        Send(BM_SETCHECK, row.wParam);
        EXPECT_EQ(row.qwAfter, button.dwCheck) << row.wParam;
        EXPECT_EQ("repaint ", log->Take());
    }
    EXPECT_EQ(static_cast<int>(std::size(rows)), spy->Count(BM_SETCHECK));
}

TEST_P(IconBtnBothLooks, ReportsItsCheckWhateverTheDefaultSays) {
    for (UINT uMsg : {BM_GETCHECK, BM_GETSTATE}) {
        for (LRESULT lDefault : {0, 1, 6, 7, 0x104}) {
            spy->Answer(uMsg, lDefault);
            Send(BM_SETCHECK, 1);
            EXPECT_EQ(lDefault | 1, Send(uMsg)) << uMsg;
            Send(BM_SETCHECK, 0);
            EXPECT_EQ(lDefault & ~1, Send(uMsg)) << uMsg;
        }
    }
}

TEST_P(IconBtnBothLooks, KeepsItsCheckWhenDrawnByItsOwner) {
    button.OnInit();
    Send(BM_SETCHECK, 1);
    EXPECT_EQ(1, Send(BM_GETCHECK));
    EXPECT_EQ(1, Send(BM_GETSTATE) & 1);
    Send(BM_SETCHECK, 0);
    EXPECT_EQ(0, Send(BM_GETCHECK));
}

TEST_P(IconBtnBothLooks, GivesTheDefaultsResult) {
    for (UINT uMsg : {WM_MOUSEMOVE, WM_MOUSELEAVE, WM_ENABLE, BM_SETCHECK, WM_USER + 17}) {
        spy->Answer(uMsg, 4711);
        EXPECT_EQ(4711, Send(uMsg)) << uMsg;
    }
}

TEST_P(IconBtnBothLooks, TheMousesLeavingEndsHoverWithoutErasing) {
    button.bHover = 1;
    Send(WM_MOUSELEAVE);
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ("repaint ", log->Take());
    Send(WM_MOUSELEAVE);
    EXPECT_EQ("", log->Take());
}

TEST_P(IconBtnBothLooks, ButtonsOfTheMouseLeaveHoverAlone) {
    button.bHover = 1;
    for (UINT uMsg : {WM_RBUTTONDOWN, WM_RBUTTONUP, WM_MBUTTONDOWN, WM_MBUTTONUP}) Send(uMsg);
    EXPECT_EQ(1, button.bHover);
}

TEST_P(IconBtnBothLooks, AWindowThatTheDefaultDestroysIsLeftAlone) {
    for (UINT uMsg : {BM_SETCHECK, WM_ENABLE, WM_MOUSEMOVE}) {
        ShownButton dying;
        ProbeIconBtn other(0, 0, GetParam(), 2, 2);
        ASSERT_EQ(1, other.Subclass(dying));
        struct Destroyer : WMHook {
            explicit Destroyer(UINT u) : uWanted(u) {}
            int OnWndMessage(CSWnd* pWnd, UINT uSeen, WPARAM, LPARAM, LRESULT*) override {
                if (uSeen == uWanted) ::DestroyWindow(*pWnd);
                return 0;
            }
            UINT uWanted;
        } destroyer(uMsg);
        other.AddWndHook(&destroyer);
        ::SendMessageW(dying, uMsg, 1, 0);
        EXPECT_FALSE(::IsWindow(dying));
        EXPECT_EQ(std::string::npos, log->Take().find("everything")) << uMsg;
    }
}

INSTANTIATE_TEST_SUITE_P(Looks, IconBtnBothLooks, testing::Values(kPlain, kLink, 7ul, 0ul, 4ul));

class IconBtnLinks : public IconBtnMessages {};

TEST_P(IconBtnLinks, TheMouseBringsHandAndHover) {
    ProbeIconBtn::hCursorHand = nullptr;
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg != WM_MOUSEMOVE) return;
        EXPECT_EQ("", log->Take()) << "the default comes first";
    };
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ("load hand track repaint ", log->Take());
    EXPECT_EQ(1, button.bHover);
    spy->onMessage = nullptr;
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(6, 5));
    EXPECT_EQ("hand ", log->Take());
}

TEST_P(IconBtnLinks, TheSignalOfTheDialogIsTheMousesLeaving) {
    button.bHover = 1;
    ::SetCursor(::LoadCursorW(nullptr, IDC_CROSS));
    log->Take();
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(0xFFFF, 0xFFFF));
    EXPECT_EQ("repaint ", log->Take());
    EXPECT_EQ(0, button.bHover);
    Send(WM_MOUSEMOVE, 0, -1);
    EXPECT_EQ("", log->Take());
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_CROSS), ::GetCursor());
}

TEST_P(IconBtnLinks, OneCoordinateOfTheSignalIsAPlace) {
    for (LPARAM lParam : {MAKELPARAM(0xFFFF, 3), MAKELPARAM(3, 0xFFFF)}) {
        button.bHover = 0;
        Send(WM_MOUSEMOVE, 0, lParam);
        EXPECT_EQ(1, button.bHover);
    }
}

INSTANTIATE_TEST_SUITE_P(Looks, IconBtnLinks, testing::Values(4ul, 5ul, 6ul, 7ul));

class IconBtnPlainLook : public IconBtnMessages {};

TEST_P(IconBtnPlainLook, DoesNoHover) {
    HCURSOR hcurCross = ::LoadCursorW(nullptr, IDC_CROSS);
    ::SetCursor(hcurCross);
    log->Take();
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ("", log->Take());
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ(hcurCross, ::GetCursor());
    button.bHover = 1;
    Send(WM_MOUSEMOVE, 0, -1);
    EXPECT_EQ(1, button.bHover) << "the signal is for links";
}

INSTANTIATE_TEST_SUITE_P(Looks, IconBtnPlainLook, testing::Values(0ul, 1ul, 2ul, 3ul));

TEST(IconBtnLife, EndsAfterTheHandlerInWhichItsWindowWent) {
    struct Dying : ProbeIconBtn {
        explicit Dying(int* pnSet) : ProbeIconBtn(0, 0, 5, 2, 2), pnDeaths(pnSet) {
            autoDelete = 1;
        }
        ~Dying() override { ++*pnDeaths; }
        int* pnDeaths;
    };
    int nDeaths = 0;
    ShownButton window;
    auto* pButton = new Dying(&nDeaths);
    ASSERT_EQ(1, pButton->Subclass(window));
    pButton->onDrop = [&] { ::DestroyWindow(window); };
    ::SendMessageW(window, WM_DROPFILES, 0, 0);
    EXPECT_EQ(1, nDeaths);
    EXPECT_EQ(1, ProbeIconBtn::dwRefCount) << "its reference has gone with it";
}
} // namespace
