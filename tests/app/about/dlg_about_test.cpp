#include "app/about/dlg_about.h"
#include "app/about/about_box.h"
#include "app/about/monitor_dpi.h"
#include "app/identity/product_info.h"
#include "app/launch/open_html.h"
#include "app/shell_start_recorder.h"
#include "resources/resource_ids.h"
#include "runtime/base/ownership.h"
#include "support/heap_count.h"
#include "support/input.h"
#include "support/menu_driver.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <algorithm>

extern "C" FARPROC __imp_GetKeyState;
extern "C" FARPROC __imp_GlobalAlloc;
extern "C" FARPROC __imp_GlobalFree;
extern "C" FARPROC __imp_ImageList_Create;
extern "C" FARPROC __imp_SetClipboardData;

namespace {
/// A dialog of the test's thread, shown without a loop of its own, and drawn.
class OpenAbout {
  public:
    OpenAbout() {
        EXPECT_NE(nullptr, dlg.Modeless(-IDD_ABOUT, nullptr, nullptr, 1));
        for (const DialogItem& item : ItemsOf(dlg)) ::UpdateWindow(item.hwnd);
    }
    ~OpenAbout() { dlg.CloseDialog(IDCANCEL, 0); }
    OpenAbout(const OpenAbout&) = delete;
    OpenAbout& operator=(const OpenAbout&) = delete;

    HWND Item(int nId) { return dlg.GetDlgItem(nId); }
    CSStaticHTML& RichText(int nId) { return static_cast<CSStaticHTML&>(*dlg.GetDlgCtrl(nId)); }
    std::wstring Markup(int nId) {
        wchar_t sz[1024] = L"";
        RichText(nId).GetHTMLText(sz, 1024);
        return sz;
    }
    void Click(int nId) { dlg.SendMsg(WM_COMMAND, MAKEWPARAM(nId, BN_CLICKED), 0); }

    DlgAbout dlg{0};
};

/// Which keys are down, for the length of a block.
class FakeKeys {
  public:
    explicit FakeKeys(int nKeyDown) : replaced(__imp_GetKeyState, &Tell) { nDown = nKeyDown; }

  private:
    static SHORT WINAPI Tell(int nKey) { return nKey == nDown ? SHORT{-128} : SHORT{0}; }
    static inline int nDown = 0;
    ReplaceImport replaced;
};

/// The text on the clipboard; L"?" if it holds none.
std::wstring ClipboardText() {
    std::wstring str = L"?";
    if (!::OpenClipboard(nullptr)) return L"not opened";
    HANDLE hData = ::GetClipboardData(CF_UNICODETEXT);
    auto* psz = hData ? static_cast<const wchar_t*>(::GlobalLock(hData)) : nullptr;
    if (psz) {
        str = psz;
        ::GlobalUnlock(hData);
    }
    ::CloseClipboard();
    return str;
}

void SetClipboardText(const std::wstring& str) {
    HGLOBAL h = ::GlobalAlloc(GMEM_MOVEABLE, (str.size() + 1) * sizeof(wchar_t));
    memcpy(::GlobalLock(h), str.c_str(), (str.size() + 1) * sizeof(wchar_t));
    ::GlobalUnlock(h);
    ASSERT_TRUE(::OpenClipboard(nullptr));
    ::EmptyClipboard();
    ::SetClipboardData(CF_UNICODETEXT, h);
    ::CloseClipboard();
}

constexpr wchar_t kDetails[] =
    L"Copyright (c) 2017 Orvanta. All rights reserved.\r\n\r\nKeeps the last 25 layouts of the "
    L"desktop's icons, and restores any of them. The pictures were drawn for this product.";

/// Opens the menu of the details and presses keys in it.
template <class... Keys>
bool CopyByKeys(OpenAbout& about, Keys... keys) {
    MenuDriver driver(about.dlg, [=](MenuDriver& hands) { hands.Press(keys...); });
    about.dlg.SendMsg(WM_COMMAND, IDC_ABOUT_COPY, 0);
    return driver.Finish();
}

/// Blocks that are asked for and given back meanwhile.
class BlockWatch {
  public:
    explicit BlockWatch(bool bGive = true)
        : allocating(__imp_GlobalAlloc, &Alloc), freeing(__imp_GlobalFree, &Free) {
        bGives = bGive;
        blocks.clear();
        freed.clear();
        pfnAlloc = allocating.Original<decltype(::GlobalAlloc)>();
        pfnFree = freeing.Original<decltype(::GlobalFree)>();
    }
    struct Block {
        UINT nFlags;
        SIZE_T cb;
        HGLOBAL h;
    };
    static inline std::vector<Block> blocks;
    static inline std::vector<HGLOBAL> freed;

  private:
    static HGLOBAL WINAPI Alloc(UINT nFlags, SIZE_T cb) {
        HGLOBAL h = bGives ? pfnAlloc(nFlags, cb) : nullptr;
        blocks.push_back({nFlags, cb, h});
        return h;
    }
    static HGLOBAL WINAPI Free(HGLOBAL h) {
        freed.push_back(h);
        return pfnFree(h);
    }
    static inline bool bGives = true;
    static inline decltype(&::GlobalAlloc) pfnAlloc;
    static inline decltype(&::GlobalFree) pfnFree;
    ReplaceImport allocating, freeing;
};

/// Sees the dialog's messages before its own handling; closes no menu.
class MenuReader : public WMHook {
  public:
    int OnWndMessage(CSWnd*, UINT uMsg, WPARAM wParam, LPARAM, LRESULT*) override {
        if (uMsg != WM_INITMENUPOPUP) return 0;
        auto hmenu = reinterpret_cast<HMENU>(wParam);
        for (int n = 0; n < ::GetMenuItemCount(hmenu); ++n) {
            wchar_t sz[64] = L"";
            ::GetMenuStringW(hmenu, static_cast<UINT>(n), sz, 64, MF_BYPOSITION);
            items.emplace_back(::GetMenuItemID(hmenu, n), sz);
        }
        return 0;
    }
    std::vector<std::pair<UINT, std::wstring>> items;
};

/// The commands that were posted to the dialog since the last time.
std::vector<int> PostedCommands(HWND hwnd) {
    std::vector<int> ids;
    MSG msg;
    while (::PeekMessageW(&msg, hwnd, WM_COMMAND, WM_COMMAND, PM_REMOVE))
        ids.push_back(static_cast<int>(msg.wParam));
    return ids;
}
} // namespace

// What is in the box

TEST(DlgAbout, TitleNameAndVersionAreRichTexts) {
    OpenAbout about;
    EXPECT_EQ(L"<H><H><b>About Tessaly</b></H></H>", about.Markup(20118));
    EXPECT_EQ(L"<b>Tessaly</b>[TM] x64 Edition", about.Markup(20101));
    EXPECT_EQ(L"Version <b>1.1</b>", about.Markup(20102));
    EXPECT_TRUE(about.dlg.GetDlgCtrl(20117)->IsKindOf(L"CSStaticHTML"));
    EXPECT_EQ(0u, about.Markup(20117).find(L"Copyright (c) 2017 Orvanta."));
}

TEST(DlgAbout, ShiftAtOpeningShowsTheRevision) {
    std::wstring strMarkup;
    {
        FakeKeys keys(VK_SHIFT);
        OpenAbout about;
        strMarkup = about.Markup(20102);
        EXPECT_EQ(GetMyProductInfo().GetVersionStrRev(1), strMarkup);
    }
    EXPECT_EQ(0u, strMarkup.find(L"1.1 (rev. "));
}

TEST(DlgAbout, OtherKeysAndALaterShiftShowTheVersion) {
    {
        FakeKeys keys(VK_CONTROL);
        OpenAbout about;
        EXPECT_EQ(L"Version <b>1.1</b>", about.Markup(20102));
    }
    OpenAbout about;
    FakeKeys keys(VK_SHIFT);
    ::RedrawWindow(about.dlg, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_EQ(L"Version <b>1.1</b>", about.Markup(20102));
}

TEST(DlgAbout, ButtonsDrawThemselvesButForOk) {
    OpenAbout about;
    for (int nId : {20104, 20105, 20106, 20107, 20108, 2, 20103})
        EXPECT_TRUE(IsOwnerDrawn(about.Item(nId))) << nId;
    EXPECT_FALSE(IsOwnerDrawn(about.Item(IDOK)));
}

TEST(DlgAbout, CloseButtonIsAnIconWithoutAText) {
    OpenAbout about;
    const SIZE size{60, 40};
    MemoryPicture picture(size.cx, size.cy, kUndrawn);
    DrawButtonInto(about.dlg, IDCANCEL, picture, size);
    RECT rc = DrawnPart(picture, size);
    EXPECT_LE(2, rc.left);
    EXPECT_LE(8, rc.right - rc.left);
    EXPECT_LE(rc.right - rc.left, ::GetSystemMetrics(SM_CXSMICON));
    EXPECT_LE(rc.bottom - rc.top, ::GetSystemMetrics(SM_CYSMICON));
}

struct PictureCase {
    UINT nDpi;
    int nPixels;
};
class DlgAboutPicture : public testing::TestWithParam<PictureCase> {};
TEST_P(DlgAboutPicture, IsLargerFrom144DotsPerInchOn) {
    FakeMonitorDpi dpi(GetParam().nDpi);
    OpenAbout about;
    const SIZE size{80, 80};
    MemoryPicture picture(size.cx, size.cy, kUndrawn);
    DrawButtonInto(about.dlg, 20103, picture, size);
    RECT rc = DrawnPart(picture, size);
    EXPECT_LE(rc.right - rc.left, GetParam().nPixels);
    EXPECT_GT(rc.right - rc.left, GetParam().nPixels - 8);
    EXPECT_LE(rc.bottom - rc.top, GetParam().nPixels);
    EXPECT_GT(rc.bottom - rc.top, GetParam().nPixels - 8);
}
INSTANTIATE_TEST_SUITE_P(Dpi, DlgAboutPicture,
                         testing::Values(PictureCase{96, 48}, PictureCase{120, 48},
                                         PictureCase{143, 48}, PictureCase{144, 64},
                                         PictureCase{192, 64}),
                         [](const auto& row) { return std::to_string(row.param.nDpi); });

namespace {
int nImageLists = 0;

HIMAGELIST WINAPI RefuseImageList(int, int, UINT, int, int) {
    ++nImageLists;
    return nullptr;
}

/// A dialog with that one button, as a template in memory.
struct OneButtonTemplate {
    explicit OneButtonTemplate(WORD wId) { item.id = wId; }
    alignas(DWORD) DLGTEMPLATE dialog{WS_POPUP | WS_CAPTION, 0, 1, 0, 0, 100, 60};
    WORD wMenu = 0, wClass = 0, wTitle = 0; // with these the item begins on a DWORD
    DLGITEMTEMPLATE item{WS_CHILD | WS_VISIBLE, 0, 5, 5, 50, 50, 0};
    WORD rgwItem[4] = {0xFFFF, 0x0080, 0, 0}; // a button without text and data
};

/// A program's own dialog with the handler.
struct HandledDlg : CSDlg {
    HandledDlg() {
        AddWndHook(&handler);
        AddDlgHook(&handler);
    }
    ~HandledDlg() override {
        if (hWnd && ::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
    DlgAboutHandler handler;
};
} // namespace

TEST(DlgAboutHandler, MakesNoPictureWithoutAControlForIt) {
    HandledDlg dlg;
    ReplaceImport replaced(__imp_ImageList_Create, &RefuseImageList);
    nImageLists = 0;
    OneButtonTemplate other(20199);
    ASSERT_TRUE(dlg.CreateIndirect(&other.dialog, nullptr));
    EXPECT_EQ(0, nImageLists);
    EXPECT_FALSE(IsOwnerDrawn(dlg.GetDlgItem(20199)));
}

TEST(DlgAboutHandler, MakesOneForTheControlInAnyDialog) {
    HandledDlg dlg;
    ReplaceImport replaced(__imp_ImageList_Create, &RefuseImageList);
    nImageLists = 0;
    OneButtonTemplate withPicture(20103);
    ASSERT_TRUE(dlg.CreateIndirect(&withPicture.dialog, nullptr));
    EXPECT_EQ(1, nImageLists);
    EXPECT_TRUE(IsOwnerDrawn(dlg.GetDlgItem(20103)));
}

TEST(DlgAbout, HasTheTemplatesSizeAndRoomForEveryText) {
    OpenAbout about;
    ExpectSizeInUnits(about.dlg, 270, 186);
    EXPECT_EQ(0, about.dlg.GetStyle(0) & (WS_CAPTION & ~WS_BORDER)) << "it has a title bar";
    ExpectNoOverlap(about.dlg);
    HDC hdc = ::GetDC(nullptr);
    for (const DialogItem& item : ItemsOf(about.dlg)) {
        if (!::SendMessageW(item.hwnd, WM_GETDLGCODE, 0, 0) || item.nId == IDOK) {
            ExpectTextFits(item);
        } else if (about.dlg.GetDlgCtrl(item.nId)->IsKindOf(L"CSStaticHTML")) {
            RECT rc{0, 0, item.rc.right - item.rc.left, item.rc.bottom - item.rc.top};
            int nHeight = about.RichText(item.nId).CalcHeight(hdc, &rc);
            EXPECT_LT(0, nHeight) << item.nId;
            EXPECT_LE(nHeight, item.rc.bottom - item.rc.top) << item.nId;
        } else {
            ExpectTextFits(item);
        }
    }
    ::ReleaseDC(nullptr, hdc);
}

// What it does

TEST(DlgAbout, LinksOpenTheMakersPages) {
    ShellStartRecorder recorder;
    OpenAbout about;
    std::vector<std::wstring> pages;
    for (int nId : {20104, 20105, 20106, 20107}) {
        about.Click(nId);
        ASSERT_EQ(1u, recorder.calls.size()) << nId;
        pages.push_back(recorder.TakeOne().file.str);
    }
    EXPECT_EQ(pszMyCompanyURL, pages[0]);
    for (const std::wstring& strPage : pages) EXPECT_EQ(0u, strPage.find(L"http"));
    std::sort(pages.begin(), pages.end());
    EXPECT_EQ(pages.end(), std::unique(pages.begin(), pages.end())) << "each has its own";
}

TEST(DlgAbout, CopyrightLinkShowsTheNotice) {
    OpenAbout about;
    MessageBoxDriver driver({IDOK});
    about.Click(20108);
    auto seen = driver.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_NE(std::wstring::npos, seen[0].strText.find(L"Copyright (c) 2017 Orvanta."));
    EXPECT_EQ(about.dlg, seen[0].hwndOwner);
}

TEST(DlgAbout, RightClickOnTheDetailsAsksForTheirMenu) {
    OpenAbout about;
    PostedCommands(about.dlg);
    RECT rc{};
    ::GetWindowRect(about.Item(20117), &rc);
    const LPARAM lPlace = MAKELPARAM(rc.left + 4, rc.top + 4);
    about.dlg.SendMsg(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(about.Item(20117)), lPlace);
    EXPECT_EQ((std::vector<int>{20114}), PostedCommands(about.dlg));
    ::SendMessageW(about.Item(20117), WM_RBUTTONUP, 0, MAKELPARAM(4, 4)); // the platform's own way
    EXPECT_EQ((std::vector<int>{20114}), PostedCommands(about.dlg));
}

TEST(DlgAbout, RightClickElsewhereAsksForNone) {
    OpenAbout about;
    PostedCommands(about.dlg);
    for (int nId : {20101, 20102, 20118, 20104, 1})
        about.dlg.SendMsg(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(about.Item(nId)), 0);
    about.dlg.SendMsg(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(static_cast<HWND>(about.dlg)), 0);
    EXPECT_TRUE(PostedCommands(about.dlg).empty());
}

TEST(DlgAbout, MenuOfTheDetailsHasOneItem) {
    OpenAbout about;
    MenuReader reader;
    about.dlg.AddWndHook(&reader);
    EXPECT_TRUE(CopyByKeys(about, VK_ESCAPE));
    about.dlg.RemoveWndHook(&reader);
    ASSERT_EQ(1u, reader.items.size());
    EXPECT_EQ(20114u, reader.items[0].first);
    EXPECT_EQ(L"Copy", reader.items[0].second);
}

TEST(DlgAbout, CopyPutsTheDetailsOnTheClipboardWithoutTags) {
    SetClipboardText(L"before");
    OpenAbout about;
    BlockWatch watch;
    EXPECT_TRUE(CopyByKeys(about, VK_DOWN, VK_RETURN));
    auto it = std::find_if(watch.blocks.begin(), watch.blocks.end(),
                           [](const auto& block) { return block.nFlags == 8194; });
    ASSERT_NE(watch.blocks.end(), it);
    EXPECT_EQ(sizeof(kDetails), it->cb);
    EXPECT_EQ(0, std::count(watch.freed.begin(), watch.freed.end(), it->h));
    EXPECT_EQ(kDetails, ClipboardText());
}

TEST(DlgAbout, RightClickByMouseAndChoiceByKeysCopy) {
    SetClipboardText(L"before");
    OpenAbout about;
    RECT rc{};
    ::GetWindowRect(about.Item(20117), &rc);
    const POINT pt{rc.left + 30, rc.top + 8};
    PutCursor(pt);
    MenuDriver driver(about.dlg, [](MenuDriver& hands) { hands.Press(VK_DOWN, VK_RETURN); });
    INPUT inputs[] = {MouseInput(MOUSEEVENTF_RIGHTDOWN, pt), MouseInput(MOUSEEVENTF_RIGHTUP, pt)};
    ::SendInput(2, inputs, sizeof(INPUT));
    EXPECT_TRUE(PumpUntil([] { return ClipboardText() == kDetails; }));
    EXPECT_TRUE(driver.Finish());
}

TEST(DlgAbout, EscapeInTheMenuCopiesNothing) {
    SetClipboardText(L"before");
    OpenAbout about;
    EXPECT_TRUE(CopyByKeys(about, VK_ESCAPE));
    EXPECT_EQ(L"before", ClipboardText());
}

TEST(DlgAbout, CopyWithoutMemoryLeavesTheClipboardAlone) {
    SetClipboardText(L"before");
    OpenAbout about;
    {
        BlockWatch watch(false);
        EXPECT_TRUE(CopyByKeys(about, VK_DOWN, VK_RETURN));
    }
    EXPECT_EQ(L"before", ClipboardText());
}

TEST(DlgAbout, CopyToAClipboardInUseFreesItsBlock) {
    SetClipboardText(L"before");
    OpenAbout about;
    WindowThread other;
    HWND hwndOther = nullptr;
    other.Run([&] {
        hwndOther =
            ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        EXPECT_TRUE(::OpenClipboard(hwndOther));
    });
    BlockWatch watch;
    EXPECT_TRUE(CopyByKeys(about, VK_DOWN, VK_RETURN));
    other.Run([&] {
        ::CloseClipboard();
        ::DestroyWindow(hwndOther);
    });
    auto it = std::find_if(watch.blocks.begin(), watch.blocks.end(),
                           [](const auto& block) { return block.nFlags == 8194; });
    ASSERT_NE(watch.blocks.end(), it);
    EXPECT_EQ(1, std::count(watch.freed.begin(), watch.freed.end(), it->h));
    EXPECT_EQ(L"before", ClipboardText());
}

namespace {
HANDLE WINAPI RefuseData(UINT, HANDLE) { return nullptr; }
} // namespace

TEST(DlgAbout, CopyThatTheClipboardRefusesFreesItsBlock) {
    OpenAbout about;
    BlockWatch watch;
    {
        ReplaceImport replaced(__imp_SetClipboardData, &RefuseData);
        EXPECT_TRUE(CopyByKeys(about, VK_DOWN, VK_RETURN));
    }
    auto it = std::find_if(watch.blocks.begin(), watch.blocks.end(),
                           [](const auto& block) { return block.nFlags == 8194; });
    ASSERT_NE(watch.blocks.end(), it);
    EXPECT_EQ(1, std::count(watch.freed.begin(), watch.freed.end(), it->h));
    EXPECT_TRUE(::OpenClipboard(nullptr)) << "it was left open";
    ::CloseClipboard();
}

TEST(DlgAbout, ClosesByEscapeOkAndTheCloseButton) {
    {
        ShownBox box([] { EXPECT_EQ(IDCANCEL, DoAbout(nullptr, 0)); });
        box.PressKey(VK_ESCAPE);
        EXPECT_TRUE(box.HasClosed());
    }
    {
        ShownBox box([] { EXPECT_EQ(IDCANCEL, DoAbout(nullptr, 0)); });
        box.Click(IDCANCEL);
        EXPECT_TRUE(box.HasClosed());
    }
    ShownBox box([] { EXPECT_EQ(IDOK, DoAbout(nullptr, 0)); });
    EXPECT_EQ(box.Item(IDOK), box.Focus());
    box.Click(IDOK);
    EXPECT_TRUE(box.HasClosed());
}

TEST(DlgAbout, IsModalOverItsWindow) {
    HWND hwndOwner = nullptr;
    std::atomic<bool> bWasEnabled{true};
    ShownBox box([&] {
        TestWindow owner({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
        hwndOwner = owner;
        DoAbout(owner, 7);
        bWasEnabled = ::IsWindowEnabled(owner);
    });
    EXPECT_EQ(hwndOwner, ::GetWindow(box, GW_OWNER));
    EXPECT_FALSE(::IsWindowEnabled(hwndOwner));
    box.Click(IDOK);
    EXPECT_TRUE(box.HasClosed());
    EXPECT_TRUE(bWasEnabled);
}

TEST(DlgAbout, TenOpeningsLeaveNothing) {
    { OpenAbout about; } // makes what the process keeps
    { OpenAbout about; }
    int nDrawing = CountGdiObjects(), nWindows = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 0; n < 10; ++n) {
        OpenAbout about;
    }
    EXPECT_EQ(nDrawing, CountGdiObjects());
    EXPECT_EQ(nWindows, CountUserObjects());
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}

TEST(DlgAbout, OneThatNeverRanGoesQuietly) {
    long nBlocks = CountLiveBlocks();
    { DlgAbout dlg(1); }
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}
