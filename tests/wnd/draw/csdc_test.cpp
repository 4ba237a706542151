#include "support/gui_objects.h"
#include "support/memory_picture.h"
#include "support/replace_import.h"
#include "wnd/draw/csdc.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

extern "C" FARPROC __imp_SaveDC;
extern "C" FARPROC __imp_ReleaseDC;
extern "C" FARPROC __imp_RestoreDC;
extern "C" FARPROC __imp_DeleteDC;

namespace {
constexpr COLORREF kBefore = RGB(1, 2, 3), kInside = RGB(40, 50, 60);

int IsDisplay(HDC hdc) {
    return ::GetDeviceCaps(hdc, TECHNOLOGY) == DT_RASDISPLAY && ::GetObjectType(hdc) == OBJ_DC;
}
/// A handle that was a context's and is none any more.
HDC DeadDC() {
    HDC hdc = ::CreateCompatibleDC(nullptr);
    ::DeleteDC(hdc);
    return hdc;
}

TEST(CSDC, ByDefaultIsANewDisplayContextThatIsDeleted) {
    HDC hdc;
    {
        CSDC dc;
        hdc = dc;
        EXPECT_TRUE(IsDisplay(hdc));
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

TEST(CSDC, NullIsANewDisplayContextAlsoWhenItIsToBeSaved) {
    HDC hdc;
    {
        CSDC dc(nullptr, 1);
        hdc = dc;
        EXPECT_TRUE(IsDisplay(hdc));
        EXPECT_EQ(1, ::SaveDC(hdc)) << "nothing was saved before";
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

TEST(CSDC, WrapsAContextWithoutTouchingIt) {
    MemoryPicture picture(1, 1);
    ::SetTextColor(picture, kBefore);
    {
        CSDC dc(picture, 0);
        EXPECT_EQ(static_cast<HDC>(picture), static_cast<HDC>(dc));
        ::SetTextColor(dc, kInside);
    }
    EXPECT_EQ(kInside, ::GetTextColor(picture));
    EXPECT_EQ(1, ::SaveDC(picture));
}

TEST(CSDC, RestoresTheStateWhenAskedAndKeepsTheContext) {
    MemoryPicture picture(1, 1);
    ::SetTextColor(picture, kBefore);
    {
        CSDC dc(picture, 1);
        ::SetTextColor(dc, kInside);
    }
    EXPECT_EQ(kBefore, ::GetTextColor(picture));
    EXPECT_EQ(1, ::SaveDC(picture)) << "no saved state is left over";
}

TEST(CSDC, IsDestroyedThroughItsBase) {
    HDC hdc;
    {
        CSDC* pDC = new CompatibleDC(nullptr);
        hdc = *pDC;
        EXPECT_EQ(static_cast<DWORD>(OBJ_MEMDC), ::GetObjectType(hdc));
        delete pDC;
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

TEST(CSDC, HoldsTheContextBeforeWhatIsToBeDone) {
    struct Probe : CSDC {
        using CSDC::CSDC;
        using CSDC::deleteDC;
        using CSDC::hDC;
        using CSDC::restoreDC;
    };
    static_assert(sizeof(CSDC) == 2 * sizeof(void*) + 2 * sizeof(int));
    MemoryPicture picture(1, 1);
    Probe saved(picture, 7), plain(picture, 0), display;
    EXPECT_LT(static_cast<void*>(&saved.hDC), static_cast<void*>(&saved.restoreDC));
    EXPECT_LT(&saved.restoreDC, &saved.deleteDC);
    EXPECT_TRUE(saved.restoreDC && !saved.deleteDC);
    EXPECT_TRUE(!plain.restoreDC && !plain.deleteDC);
    EXPECT_TRUE(!display.restoreDC && display.deleteDC);
}

TEST(CompatibleDC, IsLikeTheGivenOneAndDeleted) {
    MemoryPicture picture(1, 1);
    HDC hdc;
    {
        CompatibleDC dc(picture);
        hdc = dc;
        EXPECT_EQ(static_cast<DWORD>(OBJ_MEMDC), ::GetObjectType(hdc));
        EXPECT_NE(static_cast<HDC>(picture), hdc);
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

TEST(CompatibleDC, TakesOutWhatWasSelectedSoThatItCanBeDeleted) {
    MemoryPicture picture(4, 4);
    HBITMAP hbm = ::CreateCompatibleBitmap(picture, 2, 2);
    {
        CompatibleDC dc(picture);
        ASSERT_NE(nullptr, ::SelectObject(dc, hbm));
    }
    EXPECT_TRUE(::DeleteObject(hbm));
    EXPECT_EQ(0u, ::GetObjectType(hbm));
}

TEST(CompatibleDC, AndTheWindowsContextsAreSaved) {
    MemoryPicture picture(1, 1);
    CompatibleDC dcMemory(picture);
    EXPECT_EQ(2, ::SaveDC(dcMemory));
    PlainWnd wnd;
    ClientDC dcClient(wnd);
    EXPECT_EQ(2, ::SaveDC(dcClient));
    ::RestoreDC(dcClient, -1);
    DCWindow dcWhole(wnd);
    EXPECT_EQ(2, ::SaveDC(dcWhole));
    ::RestoreDC(dcWhole, -1);
}

TEST(CompatibleDC, IsADisplayContextWhereNoneCanBeMade) {
    HDC hdc;
    {
        CompatibleDC dc(DeadDC());
        hdc = dc;
        EXPECT_TRUE(IsDisplay(hdc));
        EXPECT_EQ(1, ::SaveDC(hdc)) << "nothing was saved before";
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

/// Windows of a class that owns one context for each: its state outlives a release.
class OwnContextWindow {
  public:
    OwnContextWindow() {
        WNDCLASSW wc{};
        wc.style = CS_OWNDC;
        wc.lpfnWndProc = ::DefWindowProcW;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = L"OwnContextWindow";
        ::RegisterClassW(&wc);
        hwnd = ::CreateWindowExW(0, wc.lpszClassName, L"", WS_POPUP | WS_DLGFRAME | WS_VISIBLE, 10,
                                 10, 80, 60, nullptr, nullptr, wc.hInstance, nullptr);
    }
    ~OwnContextWindow() {
        ::DestroyWindow(hwnd);
        ::UnregisterClassW(L"OwnContextWindow", ::GetModuleHandleW(nullptr));
    }
    operator HWND() const { return hwnd; }

  private:
    HWND hwnd;
};

COLORREF TextColorOf(HWND hwnd) {
    HDC hdc = ::GetDC(hwnd);
    COLORREF cr = ::GetTextColor(hdc);
    ::ReleaseDC(hwnd, hdc);
    return cr;
}

TEST(ClientDC, RestoresAContextThatTheClassOwnsAfterItsRelease) {
    OwnContextWindow wnd;
    HDC hdcBefore = ::GetDC(wnd);
    ::SetTextColor(hdcBefore, kBefore);
    ::ReleaseDC(wnd, hdcBefore);
    {
        ClientDC dc(wnd);
        EXPECT_EQ(hdcBefore, static_cast<HDC>(dc));
        ::SetTextColor(dc, kInside);
        EXPECT_EQ(kInside, TextColorOf(wnd));
    }
    EXPECT_EQ(kBefore, TextColorOf(wnd));
}

TEST(ClientDC, CoversTheClientArea) {
    OwnContextWindow wnd;
    POINT ptClient{0, 0}, ptOrigin{};
    ::ClientToScreen(wnd, &ptClient);
    {
        ClientDC dc(wnd);
        EXPECT_EQ(wnd, ::WindowFromDC(dc));
        ::GetDCOrgEx(dc, &ptOrigin);
    }
    EXPECT_EQ(ptClient.x, ptOrigin.x);
    EXPECT_EQ(ptClient.y, ptOrigin.y);
}

TEST(ClientDC, OfNoWindowIsTheScreens) {
    ClientDC dc(nullptr);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSCREEN), ::GetDeviceCaps(dc, HORZRES));
}

TEST(ClientDC, OfADeadWindowIsADisplayContextThatIsDeleted) {
    HDC hdc;
    {
        ClientDC dc(DeadWindow());
        hdc = dc;
        EXPECT_TRUE(IsDisplay(hdc));
        EXPECT_EQ(1, ::SaveDC(hdc)) << "nothing was saved before";
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

/// The calls that contexts are made and given up by, in order, in place of the platform's.
class ContextCalls {
  public:
    ContextCalls() { str.clear(); }
    std::string Take() { return std::exchange(str, {}); }

  private:
    static int WINAPI Save(HDC) {
        str += "save ";
        return 1;
    }
    static int WINAPI Release(HWND hwnd, HDC hdc) {
        str += hwnd && hdc ? "release " : "release nothing ";
        return 1;
    }
    static BOOL WINAPI Restore(HDC, int nSaved) {
        str += "restore" + std::to_string(nSaved) + " ";
        return TRUE;
    }
    static BOOL WINAPI Delete(HDC) {
        str += "delete ";
        return TRUE;
    }
    static inline std::string str;
    ReplaceImport save{__imp_SaveDC, &Save}, release{__imp_ReleaseDC, &Release},
        restore{__imp_RestoreDC, &Restore}, erase{__imp_DeleteDC, &Delete};
};

template <class WindowContext>
void ExpectContextCalls() {
    OwnContextWindow wnd;
    HWND hwndDead = DeadWindow();
    ContextCalls calls;
    { WindowContext dc(wnd); }
    EXPECT_EQ("save release restore-1 ", calls.Take());
    { WindowContext dc(hwndDead); }
    EXPECT_EQ("release delete ", calls.Take()) << "the display's context is released too";
}

TEST(ClientDC, IsReleasedBeforeItIsRestoredOrDeleted) { ExpectContextCalls<ClientDC>(); }

TEST(DCWindow, IsReleasedBeforeItIsRestoredOrDeleted) { ExpectContextCalls<DCWindow>(); }

TEST(CompatibleDC, IsRestoredBeforeItIsDeleted) {
    MemoryPicture picture(1, 1);
    HDC hdcDead = DeadDC();
    ContextCalls calls;
    { CompatibleDC dc(picture); }
    EXPECT_EQ("save restore-1 delete ", calls.Take());
    { CompatibleDC dc(hdcDead); }
    EXPECT_EQ("delete ", calls.Take());
}

TEST(DCWindow, CoversTheFrameToo) {
    OwnContextWindow wnd;
    RECT rc{};
    ::GetWindowRect(wnd, &rc);
    POINT ptOrigin{};
    {
        DCWindow dc(wnd);
        EXPECT_EQ(wnd, ::WindowFromDC(dc));
        ::GetDCOrgEx(dc, &ptOrigin);
    }
    EXPECT_EQ(rc.left, ptOrigin.x);
    EXPECT_EQ(rc.top, ptOrigin.y);
}

TEST(DCWindow, OfADeadWindowIsADisplayContextThatIsDeleted) {
    HDC hdc;
    {
        DCWindow dc(DeadWindow());
        hdc = dc;
        EXPECT_TRUE(IsDisplay(hdc));
    }
    EXPECT_EQ(0u, ::GetObjectType(hdc));
}

template <class WindowContext>
void ExpectNoContextLeft() {
    PlainWnd wnd;
    int nBefore = -1;
    for (int i = 0; i < 60; ++i) {
        { WindowContext dc(wnd); }
        if (i == 9) nBefore = CountGdiObjects();
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(ClientDC, GivesItsContextBack) { ExpectNoContextLeft<ClientDC>(); }

TEST(DCWindow, GivesItsContextBack) { ExpectNoContextLeft<DCWindow>(); }
} // namespace
