#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>

namespace {
struct CSWndCreate : testing::Test {
    ProbeClass cls;
    ProbeRecord record;
};

TEST(CSWndClass, RegistersWhatIsGiven) {
    HICON hicon = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_WARNING));
    HICON hiconSmall = ::LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_ERROR));
    HCURSOR hcur = ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_CROSS));
    HBRUSH hbr = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    ATOM atom = CSWnd::RegisterClassExW(L"TessalyFull", CS_DBLCLKS | CS_HREDRAW, hicon, hiconSmall,
                                        hbr, hcur, nullptr, 8, 16);
    ASSERT_NE(0, atom);
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    EXPECT_EQ(atom, ::GetClassInfoExW(::GetModuleHandleW(nullptr), L"TessalyFull", &wc));
    EXPECT_EQ(static_cast<UINT>(CS_DBLCLKS | CS_HREDRAW), wc.style);
    EXPECT_EQ(&CSWnd::WndProc, wc.lpfnWndProc);
    EXPECT_EQ(hicon, wc.hIcon);
    EXPECT_EQ(hiconSmall, wc.hIconSm);
    EXPECT_EQ(hcur, wc.hCursor);
    EXPECT_EQ(hbr, wc.hbrBackground);
    EXPECT_EQ(nullptr, wc.lpszMenuName);
    EXPECT_EQ(8, wc.cbClsExtra);
    EXPECT_EQ(16, wc.cbWndExtra);
    EXPECT_EQ(0, CSWnd::RegisterClassExWithWndExtra(L"TessalyFull", 0)) << "is there already";
    EXPECT_NE(0, CSWnd::UnregisterClassW(L"TessalyFull"));
    EXPECT_EQ(0, CSWnd::UnregisterClassW(L"TessalyFull"));
}

TEST(CSWndClass, RegisterWithExtraLeavesTheRestZero) {
    ASSERT_NE(0, CSWnd::RegisterClassExWithWndExtra(L"TessalyExtra", 24));
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    ASSERT_TRUE(::GetClassInfoExW(::GetModuleHandleW(nullptr), L"TessalyExtra", &wc));
    EXPECT_EQ(24, wc.cbWndExtra);
    EXPECT_EQ(0, wc.cbClsExtra);
    EXPECT_EQ(0u, wc.style);
    EXPECT_EQ(nullptr, wc.hIcon);
    EXPECT_EQ(nullptr, wc.hCursor);
    EXPECT_EQ(nullptr, wc.hbrBackground);
    EXPECT_EQ(&CSWnd::WndProc, wc.lpfnWndProc);
    EXPECT_NE(0, CSWnd::UnregisterClassW(L"TessalyExtra"));
}

TEST_F(CSWndCreate, FreshObjectIsZero) {
    ProbeWnd wnd(record);
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(0, wnd.autoDelete);
    EXPECT_EQ(0, wnd.ncDestroyed);
    EXPECT_EQ(nullptr, wnd.oldWndProc);
    EXPECT_EQ(0, wnd.shellSubclassed);
    EXPECT_EQ(0, wnd.msgDepth);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
    EXPECT_EQ(0, wnd.hooksRemovalPending);
}

TEST_F(CSWndCreate, TiesObjectAndWindow) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    EXPECT_TRUE(::IsWindow(wnd.hWnd));
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(wnd.hWnd, L"CSWND"));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(wnd.hWnd));
    EXPECT_EQ(&::DefWindowProcW, wnd.oldWndProc);
    EXPECT_EQ(1, wnd.IsReady());
    EXPECT_EQ(L"probe", TextOf(wnd));
    EXPECT_EQ(::GetModuleHandleW(nullptr),
              reinterpret_cast<HMODULE>(::GetWindowLongPtrW(wnd, GWLP_HINSTANCE)));
    wnd.Destroy();
}

TEST_F(CSWndCreate, PreInitComesOnceBeforeAnyMessageWithTheHandleSet) {
    ProbeWnd wnd(record);
    size_t nMessagesBefore = 99;
    HWND hwndSeen = nullptr;
    wnd.onPreInit = [&](ProbeWnd& w) {
        nMessagesBefore = record.messages.size();
        hwndSeen = w.hWnd;
        EXPECT_EQ(static_cast<CSWnd*>(&w), ::GetPropW(w.hWnd, L"CSWND"));
    };
    ASSERT_EQ(1, wnd.Make());
    EXPECT_EQ(1, record.nPreInits);
    EXPECT_EQ(0u, nMessagesBefore);
    EXPECT_EQ(wnd.hWnd, hwndSeen);
    EXPECT_TRUE(record.Saw(WM_NCCREATE));
    EXPECT_TRUE(record.Saw(WM_CREATE));
    wnd.Destroy();
    EXPECT_EQ(1, record.nPreInits);
}

TEST_F(CSWndCreate, CreatorsArgumentsArriveInTheCreateMessage) {
    ProbeWnd parent(record), wnd(record);
    ASSERT_EQ(1, parent.Make());
    int nParam = 0;
    CREATESTRUCTW seen{};
    wnd.onMessage = [&](ProbeWnd&, UINT uMsg, WPARAM, LPARAM lParam) {
        if (uMsg == WM_CREATE) seen = *reinterpret_cast<CREATESTRUCTW*>(lParam);
        return ProbeWnd::Answer();
    };
    ASSERT_EQ(1, wnd.CreateEx(WS_EX_NOPARENTNOTIFY, kProbeClass, L"child", WS_CHILD, 1, 2, 30, 40,
                              parent, 0xFFFEull, &nParam));
    EXPECT_EQ(&nParam, seen.lpCreateParams);
    EXPECT_EQ(parent.hWnd, seen.hwndParent);
    EXPECT_EQ(1, seen.x);
    EXPECT_EQ(2, seen.y);
    EXPECT_EQ(30, seen.cx);
    EXPECT_EQ(40, seen.cy);
    EXPECT_EQ(static_cast<DWORD>(WS_EX_NOPARENTNOTIFY), seen.dwExStyle);
    EXPECT_EQ(0xFFFE, ::GetDlgCtrlID(wnd));
    wnd.Destroy();
    parent.Destroy();
}

TEST_F(CSWndCreate, MenuGoesToTheWindow) {
    ProbeWnd wnd(record);
    HMENU hmenu = ::CreateMenu();
    ASSERT_EQ(1, wnd.Create(kProbeClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, hmenu,
                            nullptr));
    EXPECT_EQ(hmenu, ::GetMenu(wnd));
    wnd.Destroy();
}

TEST_F(CSWndCreate, UnknownClassLeavesTheObjectUntied) {
    ProbeWnd wnd(record);
    wnd.autoDelete = 1;
    EXPECT_EQ(0, wnd.Create(L"TessalyNoSuchClass", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(0, record.nPreInits);
    EXPECT_EQ(0, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nDeletes);
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_F(CSWndCreate, FailedCreationLeavesNoCreationPointer) {
    ProbeWnd wnd(record);
    EXPECT_EQ(0, wnd.Create(L"TessalyNoSuchClass", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr));
    PlainWnd plain;
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x")));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(nullptr, ::GetPropW(plain, L"CSWND"));
    EXPECT_EQ(0, record.nPreInits);
}

TEST_F(CSWndCreate, ChildWithoutParentFails) {
    ProbeWnd wnd(record);
    EXPECT_EQ(0, wnd.Create(kProbeClass, L"", WS_CHILD, 0, 0, 1, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(1, wnd.Make()) << "and may be tried again";
    wnd.Destroy();
}

TEST_F(CSWndCreate, DeadParentFails) {
    ProbeWnd wnd(record);
    EXPECT_EQ(0, wnd.Make(DeadWindow()));
    EXPECT_EQ(nullptr, wnd.hWnd);
}

/// Which creation message refuses, and with what.
struct RefusalCase {
    const char* pszName;
    UINT uMsg;
    LRESULT lResult;
    int bAutoDelete;
};
class CSWndRefusal : public testing::TestWithParam<RefusalCase> {};

TEST_P(CSWndRefusal, FailsAndLeavesTheObjectToItsOwner) {
    const auto& row = GetParam();
    ProbeClass cls;
    ProbeRecord record;
    {
        ProbeWnd wnd(record);
        wnd.autoDelete = row.bAutoDelete;
        wnd.onMessage = [&](ProbeWnd&, UINT uMsg, WPARAM, LPARAM) {
            return uMsg == row.uMsg ? ProbeWnd::Answer(row.lResult) : std::nullopt;
        };
        EXPECT_EQ(0, wnd.Make());
        EXPECT_EQ(0, record.nDeletes);
        EXPECT_EQ(nullptr, wnd.hWnd);
        EXPECT_EQ(1, record.nPreInits);
        EXPECT_EQ(record.Count(WM_NCDESTROY), record.nPostNcDestroys);
        EXPECT_EQ(0, wnd.ncDestroyed);
        EXPECT_EQ(0, wnd.msgDepth);

        wnd.autoDelete = 0;
        wnd.onMessage = nullptr;
        EXPECT_EQ(1, wnd.Make()) << "the object may be used again";
        wnd.Destroy();
    }
    EXPECT_EQ(1, record.nDeletes);
}
INSTANTIATE_TEST_SUITE_P(Cases, CSWndRefusal,
                         testing::Values(RefusalCase{"NcCreate", WM_NCCREATE, 0, 0},
                                         RefusalCase{"NcCreateAutoDelete", WM_NCCREATE, 0, 1},
                                         RefusalCase{"Create", WM_CREATE, -1, 0},
                                         RefusalCase{"CreateAutoDelete", WM_CREATE, -1, 1}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSWndCreate, DetachInPreInitDropsEveryMessageAndFails) {
    ProbeWnd wnd(record);
    wnd.onPreInit = [](ProbeWnd& w) { w.Detach(); };
    EXPECT_EQ(0, wnd.Make());
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(1, record.nPreInits);
    EXPECT_TRUE(record.messages.empty());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_F(CSWndCreate, ClassOfAnotherGivesTheHandleAndNoMessages) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Create(L"STATIC", L"text", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr));
    EXPECT_EQ(1, wnd.IsReady());
    EXPECT_EQ(0, record.nPreInits);
    EXPECT_TRUE(record.messages.empty());
    EXPECT_EQ(nullptr, ::GetPropW(wnd, L"CSWND"));
    PlainWnd plain; // no creation is under way any more
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_NULL, 0, 0));
    EXPECT_EQ(nullptr, ::GetPropW(plain, L"CSWND"));
    wnd.Destroy();
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_F(CSWndCreate, ChildMadeInTheParentsCreateMessage) {
    ProbeRecord recordChild;
    ProbeWnd wnd(record), child(recordChild);
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg == WM_CREATE) {
            EXPECT_EQ(1, child.Make(w.hWnd));
        }
        return ProbeWnd::Answer();
    };
    ASSERT_EQ(1, wnd.Make());
    EXPECT_EQ(&wnd, CSWnd::FromHandle(wnd));
    EXPECT_EQ(&child, CSWnd::FromHandle(child));
    EXPECT_EQ(wnd.hWnd, ::GetParent(child));
    EXPECT_EQ(1, record.nPreInits);
    EXPECT_EQ(1, recordChild.nPreInits);
    wnd.Destroy();
    EXPECT_EQ(nullptr, child.hWnd);
    EXPECT_EQ(1, recordChild.nPostNcDestroys);
}

TEST_F(CSWndCreate, ChildMadeInPreInit) {
    ProbeRecord recordOther;
    ProbeWnd wnd(record), other(recordOther);
    wnd.onPreInit = [&](ProbeWnd&) { EXPECT_EQ(1, other.Make()); };
    ASSERT_EQ(1, wnd.Make());
    EXPECT_EQ(&wnd, CSWnd::FromHandle(wnd));
    EXPECT_EQ(&other, CSWnd::FromHandle(other));
    EXPECT_TRUE(record.Saw(WM_CREATE));
    EXPECT_TRUE(recordOther.Saw(WM_CREATE));
    wnd.Destroy();
    other.Destroy();
}

TEST_F(CSWndCreate, ObjectCanBeUsedForOneWindowAfterAnother) {
    ProbeWnd wnd(record);
    for (int n = 1; n <= 3; ++n) {
        ASSERT_EQ(1, wnd.Make());
        wnd.Destroy();
        EXPECT_EQ(nullptr, wnd.hWnd);
        EXPECT_EQ(n, record.nPreInits);
        EXPECT_EQ(n, record.nPostNcDestroys);
    }
    EXPECT_EQ(0, record.nDeletes);
}

TEST(CSWndNull, OperationsOnNoObjectDoNothing) {
    CSWnd* volatile pVolatile = nullptr;
    CSWnd* pNull = pVolatile;
    pNull->Destroy();
    EXPECT_EQ(0, pNull->IsReady());
    EXPECT_EQ(nullptr, static_cast<HWND>(*pNull));
}

TEST_F(CSWndCreate, IsReadyNeedsAHandleAndAWindow) {
    ProbeWnd wnd(record);
    EXPECT_EQ(0, wnd.IsReady());
    EXPECT_EQ(nullptr, static_cast<HWND>(wnd));
    EXPECT_EQ(1, wnd.Attach(DeadWindow()));
    EXPECT_EQ(0, wnd.IsReady());
    wnd.Destroy(); // of a window that is gone
    PlainWnd plain;
    EXPECT_EQ(1, wnd.Attach(plain));
    EXPECT_EQ(1, wnd.IsReady());
    EXPECT_EQ(0, wnd.Attach(nullptr));
    EXPECT_EQ(nullptr, wnd.hWnd);
}

TEST_F(CSWndCreate, AttachDoesNothingElse) {
    PlainWnd plain;
    ProbeWnd wnd(record);
    EXPECT_EQ(1, wnd.Attach(plain));
    EXPECT_EQ(static_cast<HWND>(plain), wnd.hWnd);
    EXPECT_EQ(nullptr, ::GetPropW(plain, L"CSWND"));
    EXPECT_EQ(nullptr, wnd.oldWndProc);
    ::SendMessageW(plain, WM_NULL, 0, 0);
    EXPECT_TRUE(record.messages.empty());
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(plain)) << "Destroy is for attached windows too";
    EXPECT_EQ(static_cast<HWND>(plain), wnd.hWnd) << "no message told it of the end";
}
} // namespace
