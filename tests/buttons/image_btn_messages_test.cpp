// What an image button does with its messages, outside of a dialog; in one: buttons_in_dialog_test.
#include "buttons/button_messages.h"
#include "buttons/image_probe.h"
#include "resources/resource_ids.h"

#include <gtest/gtest.h>

namespace {
struct ImageBtnMessages : testing::Test, ButtonMessages<ProbeImageBtn> {
    ImageBtnMessages() : ButtonMessages(L"") {}
    void SetUp() override {
        button.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3);
        Tie();
    }
    void TearDown() override {
        ::ReleaseCapture();
        Untie();
    }
};

TEST_F(ImageBtnMessages, OnInitMakesTheButtonDrawnByItsOwner) {
    ::SetWindowLongW(window, GWL_STYLE,
                     WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_AUTOCHECKBOX | BS_LEFTTEXT |
                         BS_NOTIFY | BS_MULTILINE);
    button.OnInit();
    ASSERT_EQ(1, spy->Count(BM_SETSTYLE));
    for (const auto& one : spy->seen) {
        if (one.uMsg != BM_SETSTYLE) continue;
        EXPECT_EQ((BS_LEFTTEXT | BS_NOTIFY | BS_MULTILINE | 11) & 0xFFFFu, one.wParam & 0xFFFFu);
    }
    EXPECT_EQ(static_cast<DWORD>(WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_LEFTTEXT | BS_NOTIFY |
                                 BS_MULTILINE | BS_OWNERDRAW),
              button.GetStyle(0));
}

TEST_F(ImageBtnMessages, CheckErases) {
    button.Check(1);
    EXPECT_EQ("erase ", log->Take());
    EXPECT_EQ(1, button.IsChecked());
    button.Check(1);
    EXPECT_EQ("erase ", log->Take()) << "also when nothing has changed";
}

TEST_F(ImageBtnMessages, TheCursorStaysWhileTheMouseIsOver) {
    ExpectTheCursorStaysWhileTheMouseIsOver();
}

TEST_F(ImageBtnMessages, DroppedFilesComeOnceAndBeforeTheDefault) {
    ExpectDroppedFilesComeOnceAndBeforeTheDefault();
}

TEST_F(ImageBtnMessages, TheMouseBringsHandAndHover) {
    ProbeImageBtn::hCursorHand = nullptr;
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1, spy->Count(WM_MOUSEMOVE)) << "the default handling";
    EXPECT_EQ("load hand track erase ", log->Take());
    EXPECT_EQ(1, button.bHover);
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_HAND), ::GetCursor());
    log->Take();
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(6, 5));
    EXPECT_EQ("hand ", log->Take()) << "hovering already; the cursor is loaded once";
    EXPECT_EQ(1, button.bHover);
}

TEST_F(ImageBtnMessages, TheDefaultHandlesAMovementFirst) {
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg != WM_MOUSEMOVE) return;
        EXPECT_EQ("", log->Take());
    };
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1, button.bHover);
}

TEST_F(ImageBtnMessages, GiveTheDefaultsResult) {
    for (UINT uMsg : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_MOUSELEAVE, WM_USER + 17}) {
        spy->Answer(uMsg, 4711);
        EXPECT_EQ(4711, Send(uMsg)) << uMsg;
    }
}

TEST_F(ImageBtnMessages, AWindowThatTheDefaultDestroysIsLeftAlone) {
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg == WM_MOUSEMOVE) ::DestroyWindow(window);
    };
    Send(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ("", log->Take());
    EXPECT_EQ(0, button.IsReady());
}

class ImageBtnHoverEnd : public ImageBtnMessages, public testing::WithParamInterface<UINT> {};

TEST_P(ImageBtnHoverEnd, ClearsHoverAndErases) {
    button.bHover = 1;
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg != GetParam()) return;
        EXPECT_EQ(1, button.bHover) << "the default comes first";
    };
    Send(GetParam(), 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1, spy->Count(GetParam()));
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ("erase ", log->Take());
}

TEST_P(ImageBtnHoverEnd, DoesNothingWithoutHover) {
    Send(GetParam(), 0, MAKELPARAM(5, 5));
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ("", log->Take());
}

TEST_P(ImageBtnHoverEnd, ClearsHoverOfAWindowThatIsGone) {
    button.bHover = 1;
    spy->onMessage = [&](UINT uMsg) {
        if (uMsg == GetParam()) ::DestroyWindow(window);
    };
    Send(GetParam(), 0, MAKELPARAM(5, 5));
    EXPECT_EQ(0, button.bHover);
    EXPECT_EQ("", log->Take());
}

INSTANTIATE_TEST_SUITE_P(Messages, ImageBtnHoverEnd,
                         testing::Values(WM_LBUTTONDOWN, WM_LBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP,
                                         WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MOUSELEAVE));

TEST_F(ImageBtnMessages, OtherMessagesLeaveHoverAlone) {
    button.bHover = 1;
    for (UINT uMsg : {WM_LBUTTONDBLCLK, WM_MOUSEWHEEL, WM_KEYDOWN, WM_SETFOCUS, WM_ENABLE})
        Send(uMsg, 0, 0);
    EXPECT_EQ(1, button.bHover);
}

TEST(ImageBtnLife, EndsAfterTheHandlerInWhichItsWindowWent) {
    struct Dying : ProbeImageBtn {
        explicit Dying(int* pnSet) : pnDeaths(pnSet) { autoDelete = 1; }
        ~Dying() override { ++*pnDeaths; }
        int* pnDeaths;
    };
    for (UINT uMsg : {WM_DROPFILES, WM_MOUSEMOVE, WM_LBUTTONUP}) {
        int nDeaths = 0;
        ShownButton window;
        auto* pButton = new Dying(&nDeaths);
        ASSERT_EQ(1, pButton->Subclass(window));
        pButton->bHover = uMsg == WM_LBUTTONUP;
        pButton->onDrop = [&] { ::DestroyWindow(window); };
        struct Destroyer : WMHook {
            int OnWndMessage(CSWnd* pWnd, UINT uSeen, WPARAM, LPARAM, LRESULT*) override {
                if (uSeen == WM_MOUSEMOVE || uSeen == WM_LBUTTONUP) ::DestroyWindow(*pWnd);
                return 0;
            }
        } destroyer;
        pButton->AddWndHook(&destroyer);
        ::SendMessageW(window, uMsg, 0, 0);
        EXPECT_EQ(1, nDeaths) << uMsg;
        EXPECT_FALSE(::IsWindow(window));
    }
}
} // namespace
