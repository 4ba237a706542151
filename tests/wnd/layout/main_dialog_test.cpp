#include "runtime/base/current_product.h"
#include "support/message_box_driver.h"
#include "support/registry.h"
#include "support/replace_import.h"
#include "support/test_resource_ids.h"
#include "wnd/layout/csdlg_main.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <optional>

extern "C" FARPROC __imp_DrawIcon;

namespace {
constexpr int kAboutCommand = 16;
const wchar_t* pszRoot = nullptr;

struct DrawnIcon {
    int x, y;
    HICON hicon;
};
std::vector<DrawnIcon> drawn;
BOOL WINAPI RecordedDrawIcon(HDC, int x, int y, HICON hicon) {
    drawn.push_back({x, y, hicon});
    return TRUE;
}

struct TestMain : CSDlgMain {
    explicit TestMain(int nIcon = IDI_TEST) : CSDlgMain(::GetModuleHandleW(nullptr), nIcon) {}
    ~TestMain() override {
        if (hWnd && ::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
    bool Make() { return Modeless(IDD_LAYOUT_MAIN, nullptr, nullptr, 0) != nullptr; }
    __int64 OnAbout() override {
        ++nAbouts;
        return bOwnAbout ? 0 : CSDlgMain::OnAbout();
    }
    using CSDlg::result;
    using CSDlgMain::bigIcon;
    using CSDlgMain::smallIcon;
    int nAbouts = 0;
    bool bOwnAbout = true;
};

/// What a WM_QUIT in the queue of this thread says; it is taken off.
std::optional<int> TakeQuit() {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) return static_cast<int>(msg.wParam);
        ::DispatchMessageW(&msg);
    }
    return std::nullopt;
}

struct MainDialog : testing::Test {
    MainDialog() {
        CurrentProduct product = productBefore;
        product.pfnGetRootKey = [] { return pszRoot; };
        SetCurrentProduct(product);
        pszRoot = strRoot.c_str();
        drawn.clear();
    }
    ~MainDialog() override {
        TakeQuit();
        SetCurrentProduct(productBefore);
    }
    CurrentProduct productBefore = GetCurrentProduct();
    TestKey key{L"Software\\TessalyTests\\MainDialog"};
    std::wstring strRoot = key.Path();
};

TEST_F(MainDialog, HasTheAboutCommandInItsSystemMenu) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    HMENU hmenu = ::GetSystemMenu(dlg, FALSE);
    int n = ::GetMenuItemCount(hmenu);
    ASSERT_LE(3, n);
    wchar_t sz[50] = L"";
    ::GetMenuStringW(hmenu, n - 1, sz, 50, MF_BYPOSITION);
    EXPECT_STREQ(L"&About...", sz);
    EXPECT_EQ(unsigned{kAboutCommand}, ::GetMenuItemID(hmenu, n - 1));
    EXPECT_TRUE(::GetMenuState(hmenu, n - 2, MF_BYPOSITION) & MF_SEPARATOR);
    EXPECT_EQ(0u, ::GetMenuState(hmenu, kAboutCommand, MF_BYCOMMAND) & (MF_GRAYED | MF_DISABLED));
}

TEST_F(MainDialog, GivesItsIconsToTheWindow) {
    TestMain dlg;
    ASSERT_NE(nullptr, dlg.bigIcon);
    ASSERT_NE(nullptr, dlg.smallIcon);
    ASSERT_TRUE(dlg.Make());
    auto IconOf = [&](WPARAM wKind) {
        return reinterpret_cast<HICON>(::SendMessageW(dlg, WM_GETICON, wKind, 0));
    };
    EXPECT_EQ(dlg.bigIcon, IconOf(ICON_BIG));
    EXPECT_EQ(dlg.smallIcon, IconOf(ICON_SMALL));
    ICONINFO info{};
    ASSERT_TRUE(::GetIconInfo(dlg.smallIcon, &info));
    BITMAP bitmap{};
    ::GetObjectW(info.hbmMask, sizeof(bitmap), &bitmap);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), bitmap.bmWidth);
    ::DeleteObject(info.hbmColor);
    ::DeleteObject(info.hbmMask);
    EXPECT_EQ(dlg.bigIcon, reinterpret_cast<HICON>(::SendMessageW(dlg, WM_QUERYDRAGICON, 0, 0)));
    EXPECT_EQ(reinterpret_cast<__int64>(dlg.bigIcon), dlg.OnDlgMessage(WM_QUERYDRAGICON, 0, 0));
}

TEST_F(MainDialog, NeedsNoIcon) {
    TestMain dlg(0);
    EXPECT_EQ(nullptr, dlg.bigIcon);
    EXPECT_EQ(nullptr, dlg.smallIcon);
    EXPECT_TRUE(dlg.Make());
    EXPECT_EQ(0, dlg.OnDlgMessage(WM_QUERYDRAGICON, 0, 0));
}

TEST_F(MainDialog, AnIconThatIsNotThereIsNone) {
    TestMain dlg(31999);
    EXPECT_EQ(nullptr, dlg.bigIcon);
    EXPECT_EQ(dlg.bigIcon, dlg.smallIcon) << "the big one stands in for the small one";
    EXPECT_TRUE(dlg.Make());
}

TEST_F(MainDialog, ComesBackWhereItWas) {
    {
        TestMain dlg;
        ASSERT_TRUE(dlg.Make());
        RECT rc = WindowRect(dlg);
        EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - Width(rc)) / 2, rc.left);
        ::SetWindowPos(dlg, nullptr, 44, 55, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        EXPECT_FALSE(key.HasValue(L"posLeft"));
        ::DestroyWindow(dlg);
    }
    EXPECT_TRUE(key.HasValue(L"posLeft"));
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    EXPECT_EQ(44, WindowRect(dlg).left);
    EXPECT_EQ(55, WindowRect(dlg).top);
}

TEST_F(MainDialog, StoresAndRestoresWhenAsked) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    ::SetWindowPos(dlg, nullptr, 44, 55, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    dlg.StorePosition();
    ::SetWindowPos(dlg, nullptr, 4, 5, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    dlg.RestorePosition();
    EXPECT_EQ(44, WindowRect(dlg).left);
    EXPECT_EQ(55, WindowRect(dlg).top);
}

TEST_F(MainDialog, WithAPlacementTheRegistryIsLeftAlone) {
    key.PutDword(L"posLeft", 44);
    key.PutDword(L"posTop", 55);
    MyWindowPlacement record;
    {
        TestMain dlg;
        dlg.EnableResizing(kDlgStartHidden, &record);
        ASSERT_TRUE(dlg.Make());
        EXPECT_NE(44, WindowRect(dlg).left);
    }
    EXPECT_EQ(44, key.Value(L"posLeft").bytes[0]);
}

TEST_F(MainDialog, DamagedPositionsLeaveItOnTheScreen) {
    for (DWORD dw : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 100000u}) {
        key.PutDword(L"posLeft", dw);
        key.PutDword(L"posTop", dw);
        TestMain dlg;
        ASSERT_TRUE(dlg.Make());
        RECT rc = WindowRect(dlg);
        EXPECT_LE(-Width(rc) / 2, rc.left);
        EXPECT_GE(::GetSystemMetrics(SM_CXSCREEN) - Width(rc) / 2, rc.left);
        EXPECT_LE(0, rc.top);
    }
    key.Put(L"posLeft", REG_SZ, BytesOf(L"nonsense"));
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    EXPECT_EQ((::GetSystemMetrics(SM_CXSCREEN) - Width(WindowRect(dlg))) / 2, WindowRect(dlg).left);
}

TEST_F(MainDialog, ModelessOneEndsTheLoopWithItsResult) {
    {
        TestMain dlg;
        ASSERT_TRUE(dlg.Make());
        EXPECT_EQ(std::nullopt, TakeQuit());
        dlg.CloseDialog(42, 0);
        EXPECT_EQ(42, TakeQuit());
    }
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    ::DestroyWindow(dlg);
    EXPECT_EQ(-1, TakeQuit()) << "nobody gave a result";
}

TEST_F(MainDialog, ModalOneEndsNoLoop) {
    struct Closing : TestMain {
        int UpdateControls() override {
            ::PostMessageW(hWnd, WM_COMMAND, IDCANCEL, 0);
            return 1;
        }
    } dlg;
    EXPECT_EQ(IDCANCEL, dlg.Modal(IDD_LAYOUT_MAIN, nullptr, nullptr));
    EXPECT_EQ(std::nullopt, TakeQuit());
    EXPECT_TRUE(key.HasValue(L"posTop"));
}

TEST_F(MainDialog, SystemCommandIsAbout) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    ::SendMessageW(dlg, WM_SYSCOMMAND, kAboutCommand, 0);
    EXPECT_EQ(1, dlg.nAbouts);
    ::SendMessageW(dlg, WM_SYSCOMMAND, kAboutCommand + 15, 0);
    EXPECT_EQ(2, dlg.nAbouts) << "the low four bits are the platform's";
    ::SendMessageW(dlg, WM_SYSCOMMAND, kAboutCommand + 16, 0);
    ::SendMessageW(dlg, WM_SYSCOMMAND, 0, 0);
    EXPECT_EQ(2, dlg.nAbouts);
    EXPECT_EQ(0, dlg.OnDlgMessage(WM_SYSCOMMAND, kAboutCommand, 0));
    EXPECT_EQ(3, dlg.nAbouts);
}

TEST_F(MainDialog, DefaultAboutIsABox) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    dlg.bOwnAbout = false;
    MessageBoxDriver driver({IDOK}, L"About");
    EXPECT_EQ(0, dlg.OnAbout());
    auto boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"TODO...", boxes[0].strText);
}

TEST_F(MainDialog, MinimisedPaintsItsIconInTheMiddle) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    int nErases = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM wParam, LPARAM, LRESULT*) {
        nErases += uMsg == WM_ICONERASEBKGND && wParam != 0;
        return 0;
    });
    dlg.AddWndHook(&hook);
    ReplaceImport replaced(__imp_DrawIcon, &RecordedDrawIcon);
    ::ShowWindow(dlg, SW_SHOWMINNOACTIVE);
    ASSERT_TRUE(::IsIconic(dlg));
    drawn.clear();
    nErases = 0;
    EXPECT_EQ(0, dlg.OnPaint(0, 0));
    EXPECT_EQ(1, nErases);
    ASSERT_EQ(1u, drawn.size());
    RECT rc = ClientRect(dlg);
    EXPECT_EQ((rc.right - ::GetSystemMetrics(SM_CXICON) + 1) / 2, drawn[0].x);
    EXPECT_EQ((rc.bottom - ::GetSystemMetrics(SM_CYICON) + 1) / 2, drawn[0].y);
    EXPECT_EQ(dlg.bigIcon, drawn[0].hicon);
    drawn.clear();
    EXPECT_EQ(0, dlg.OnDlgMessage(WM_PAINT, 0, 0)) << "the message comes to OnPaint";
    EXPECT_EQ(1u, drawn.size());
    dlg.RemoveWndHook(&hook);
}

TEST_F(MainDialog, OrdinaryPaintingIsTheDialogs) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    struct PaintHook : WMHook {
        int OnDlgMessage(CSDlg*, UINT uMsg, WPARAM wParam, LPARAM, LRESULT* plResult) override {
            if (uMsg != WM_PAINT) return 0;
            *plResult = static_cast<LRESULT>(wParam) + 1;
            return 1;
        }
    } hook;
    dlg.AddDlgHook(&hook);
    ReplaceImport replaced(__imp_DrawIcon, &RecordedDrawIcon);
    EXPECT_EQ(6, dlg.OnPaint(5, 0));
    EXPECT_EQ(6, dlg.OnDlgMessage(WM_PAINT, 5, 0));
    EXPECT_TRUE(drawn.empty());
    dlg.RemoveDlgHook(&hook);
}

TEST_F(MainDialog, DestructionReachesTheDialogsHooks) {
    TestMain dlg;
    ASSERT_TRUE(dlg.Make());
    struct DestroyHook : WMHook {
        int OnDlgMessage(CSDlg*, UINT uMsg, WPARAM, LPARAM, LRESULT*) override {
            n += uMsg == WM_DESTROY;
            return 0;
        }
        int n = 0;
    } hook;
    dlg.AddDlgHook(&hook);
    ::DestroyWindow(dlg);
    EXPECT_EQ(1, hook.n);
}

TEST_F(MainDialog, IsADialogLikeOthers) {
    TestMain dlg;
    EXPECT_TRUE(dlg.IsKindOf(L"CSDlg"));
    ASSERT_TRUE(dlg.Make());
    EXPECT_TRUE(dlg.IsFullDrag());
    EXPECT_TRUE(dlg.IsInitialized());
}
} // namespace
