#include "wnd/cswnd.h"
#include "support/wait_until.h"
#include "wnd_probe.h"

#include <gtest/gtest.h>

namespace {
constexpr UINT kMsgAct = WM_APP + 7; // makes a handler do what the test is about

struct CSWndCreate : testing::Test {
    ProbeClass cls;
    ProbeRecord record;
};
using CSWndEnd = CSWndCreate;
using CSWndProc = CSWndCreate;
using CSWndNotify = CSWndCreate;

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

TEST_F(CSWndEnd, DestroyEndsTheLifeAndKeepsTheObject) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd;
    HWND hwndAtPost = nullptr;
    int bNcDestroyedAtPost = -1;
    wnd.onPost = [&](ProbeWnd& w) {
        hwndAtPost = w.hWnd;
        bNcDestroyedAtPost = w.ncDestroyed;
    };
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(hwnd, hwndAtPost);
    EXPECT_EQ(0, bNcDestroyedAtPost);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nDeletes);
    EXPECT_EQ(WM_NCDESTROY, static_cast<int>(record.messages.back()));
    wnd.Destroy(); // of an object without a window
    EXPECT_EQ(1, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, AutoDeleteDeletesAfterTheLastMessage) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    HWND hwnd = *pWnd;
    pWnd->Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, AutoDeleteIsReadAfterOnPostNcDestroy) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->onPost = [](ProbeWnd& w) { w.autoDelete = 1; };
    pWnd->Destroy();
    EXPECT_EQ(1, record.nDeletes);
}

TEST_F(CSWndEnd, PlatformsDestroyIsTheSame) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    ::DestroyWindow(*pWnd);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(1, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, WmCloseDestroysInsideTheDefaultProcessing) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    HWND hwnd = *pWnd;
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

/// The object is destroyed from inside its own handler, before or after the handler's base call.
class CSWndEndInHandler : public testing::TestWithParam<int> {};
TEST_P(CSWndEndInHandler, WaitsForTheHandlersFrame) {
    ProbeClass cls;
    ProbeRecord record;
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    int bPostInHandler = -1, bDeletedInHandler = -1;
    LRESULT lBase = -1;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        if (GetParam() == 1) lBase = w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        ::DestroyWindow(w.hWnd);
        bPostInHandler = record.nPostNcDestroys;
        bDeletedInHandler = record.nDeletes;
        if (record.nDeletes) return ProbeWnd::Answer(0);
        if (GetParam() == 2) lBase = w.CSWnd::OnWndMessage(uMsg, wParam, lParam);
        return ProbeWnd::Answer(42);
    };
    HWND hwnd = *pWnd;
    EXPECT_EQ(42, ::SendMessageW(hwnd, kMsgAct, 0, 0));
    EXPECT_EQ(0, bPostInHandler);
    EXPECT_EQ(0, bDeletedInHandler);
    EXPECT_EQ(GetParam() ? 0 : -1, lBase);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
    EXPECT_FALSE(::IsWindow(hwnd));
}
constexpr const char* kBaseCalls[] = {"None", "Before", "After"};
INSTANTIATE_TEST_SUITE_P(BaseCall, CSWndEndInHandler, testing::Values(0, 1, 2),
                         [](const auto& row) { return std::string(kBaseCalls[row.param]); });

TEST_F(CSWndEnd, WaitsForTheOutermostOfManyFrames) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    std::vector<int> deletesAfter;
    pWnd->onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM wParam, LPARAM) {
        if (uMsg != kMsgAct) return ProbeWnd::Answer();
        if (wParam) {
            ::SendMessageW(w.hWnd, kMsgAct, wParam - 1, 0);
        } else {
            ::DestroyWindow(w.hWnd);
        }
        deletesAfter.push_back(record.nDeletes + record.nPostNcDestroys);
        return ProbeWnd::Answer(static_cast<LRESULT>(wParam));
    };
    EXPECT_EQ(5, ::SendMessageW(*pWnd, kMsgAct, 5, 0));
    EXPECT_EQ(std::vector<int>(6, 0), deletesAfter);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, DestroyedInsideAHookWaitsForTheDispatch) {
    auto* pWnd = new ProbeWnd(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = 1;
    int nBehind = 0, bDeletedInHook = -1;
    ProbeHook destroyer([&](CSWnd* p, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg != kMsgAct) return 0;
        p->Destroy();
        bDeletedInHook = record.nDeletes + record.nPostNcDestroys;
        return 0;
    });
    ProbeHook behind([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nBehind += uMsg == kMsgAct;
        return 0;
    });
    pWnd->AddWndHook(&behind);
    pWnd->AddWndHook(&destroyer);
    ::SendMessageW(*pWnd, kMsgAct, 0, 0);
    EXPECT_EQ(0, bDeletedInHook);
    EXPECT_EQ(1, nBehind) << "the walk goes on, the object lives";
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(1, record.nDeletes);
    EXPECT_EQ(0, record.nFramesAtDelete);
}

TEST_F(CSWndEnd, DestroyedInsideItsOwnCreateMessage) {
    ProbeWnd wnd(record);
    wnd.autoDelete = 1;
    int nEndedInHandler = -1;
    wnd.onMessage = [&](ProbeWnd& w, UINT uMsg, WPARAM, LPARAM) {
        if (uMsg != WM_CREATE) return ProbeWnd::Answer();
        ::DestroyWindow(w.hWnd);
        nEndedInHandler = record.nPostNcDestroys + record.nDeletes;
        return ProbeWnd::Answer(0);
    };
    wnd.Make();
    EXPECT_EQ(0, nEndedInHandler);
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(0, record.nFramesAtPost);
    EXPECT_EQ(0, record.nDeletes) << "it never was a window that its owner got";
    EXPECT_EQ(0, wnd.IsReady());
    EXPECT_EQ(nullptr, wnd.hWnd);
    wnd.autoDelete = 0;
}

TEST_F(CSWndEnd, DestroyedByTheParentsEnd) {
    ProbeRecord recordChild;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    auto* pChild = new ProbeWnd(recordChild);
    ASSERT_EQ(1, pChild->Make(wnd));
    pChild->autoDelete = 1;
    wnd.Destroy();
    EXPECT_EQ(1, recordChild.nDeletes);
    EXPECT_EQ(0, recordChild.nFramesAtDelete);
}

TEST_F(CSWndEnd, SwallowedNcDestroyNeverEndsTheLife) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.onMessage = [](ProbeWnd&, UINT uMsg, WPARAM, LPARAM) {
        return uMsg == WM_NCDESTROY ? ProbeWnd::Answer(0) : std::nullopt;
    };
    HWND hwnd = wnd;
    wnd.Destroy();
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(0, record.nPostNcDestroys);
    EXPECT_EQ(hwnd, wnd.hWnd);
    EXPECT_EQ(0, wnd.IsReady());
}

TEST_F(CSWndEnd, HooksAreOffAfterTheLastMessage) {
    ProbeWnd wnd(record);
    int nNcDestroys = 0;
    ProbeHook hook([&](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        nNcDestroys += uMsg == WM_NCDESTROY;
        return 0;
    });
    wnd.AddWndHook(&hook);
    ASSERT_EQ(1, wnd.Make());
    wnd.Destroy();
    EXPECT_EQ(1, nNcDestroys);
    EXPECT_TRUE(wnd.hooks.IsEmpty());
}

TEST_F(CSWndEnd, HookThatTakesNcDestroyDoesNotStopTheEnd) {
    ProbeWnd wnd(record);
    ProbeHook hook(
        [](CSWnd*, UINT uMsg, WPARAM, LPARAM, LRESULT*) { return uMsg == WM_NCDESTROY; });
    ASSERT_EQ(1, wnd.Make());
    wnd.AddWndHook(&hook);
    wnd.Destroy();
    EXPECT_EQ(1, record.nPostNcDestroys);
    EXPECT_EQ(nullptr, wnd.hWnd);
}

TEST_F(CSWndEnd, DetachedWindowDropsItsMessagesAndTheObjectStays) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    HWND hwnd = wnd.Detach();
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(nullptr, wnd.Detach());
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(hwnd, L"CSWND")) << "Detach removes nothing";
    size_t nBefore = record.messages.size();
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(nBefore, record.messages.size());
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, ObjectThatGoesBeforeItsWindowLeavesNoName) {
    HWND hwnd = nullptr;
    {
        ProbeWnd wnd(record);
        ASSERT_EQ(1, wnd.Make());
        hwnd = wnd;
    }
    EXPECT_TRUE(::IsWindow(hwnd));
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"CSWND"));
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
    ::DestroyWindow(hwnd);
    EXPECT_EQ(0, record.nPostNcDestroys);
}

TEST_F(CSWndEnd, ObjectThatNeverHadAWindowLeavesOthersNames) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    {
        ProbeWnd other(record);
        other.Attach(wnd.hWnd);
    }
    EXPECT_EQ(static_cast<CSWnd*>(&wnd), ::GetPropW(wnd, L"CSWND"));
    wnd.Destroy();
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

class KindProbe : public CSWnd {
  public:
    int IsKindOf(LPCWSTR psz) override {
        return !lstrcmpW(psz, L"KindProbe") || CSWnd::IsKindOf(psz);
    }
};
class DlgKindProbe : public CSWnd {
  public:
    int IsKindOf(LPCWSTR psz) override { return !lstrcmpW(psz, L"CSDlg") || CSWnd::IsKindOf(psz); }
};

TEST(CSWndKind, NameIsComparedExactly) {
    CSWnd wnd;
    EXPECT_NE(0, wnd.IsKindOf(L"CSWnd"));
    for (auto* psz : {L"cswnd", L"CSWND", L"CSWn", L"CSWnd ", L"CSWndX", L"", L"CSDlg", L"CSCtrl"})
        EXPECT_EQ(0, wnd.IsKindOf(psz)) << testing::PrintToString(std::wstring(psz));
    EXPECT_EQ(0, wnd.IsKindOf(nullptr));
    EXPECT_EQ(0, wnd.IsDlg());
}

TEST(CSWndKind, DerivedClassesAnswerToBothNames) {
    KindProbe wnd;
    EXPECT_NE(0, wnd.IsKindOf(L"KindProbe"));
    EXPECT_NE(0, wnd.IsKindOf(L"CSWnd"));
    EXPECT_EQ(0, wnd.IsDlg());
    DlgKindProbe dlg;
    EXPECT_NE(0, dlg.IsDlg());
}

TEST(CSWndDefaults, PreTranslateMessageTakesNothing) {
    CSWnd wnd;
    MSG msg{};
    EXPECT_EQ(0, wnd.PreTranslateMessage(&msg));
}

TEST_F(CSWndProc, WindowWithoutObjectGivesZeroAndNoDefault) {
    PlainWnd plain;
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"changed")));
    EXPECT_EQ(L"plain", TextOf(plain));
    EXPECT_EQ(0, CSWnd::WndProc(nullptr, WM_CLOSE, 0, 0));
    EXPECT_EQ(0, CSWnd::WndProc(DeadWindow(), WM_CLOSE, 0, 0));
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_CLOSE, 0, 0));
    EXPECT_TRUE(::IsWindow(plain));
}

TEST_F(CSWndProc, PlainCreationOfTheClassFailsForWantOfAnObject) {
    EXPECT_EQ(nullptr, ::CreateWindowExW(0, kProbeClass, L"", WS_POPUP, 0, 0, 1, 1, nullptr,
                                         nullptr, ::GetModuleHandleW(nullptr), nullptr));
}

TEST_F(CSWndProc, StalePropertyIsNotTrusted) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    size_t nBefore = record.messages.size();
    PlainWnd plain;
    ::SetPropW(plain, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    EXPECT_EQ(0, CSWnd::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"changed")));
    EXPECT_EQ(L"plain", TextOf(plain));
    EXPECT_EQ(nBefore, record.messages.size());
    ::RemovePropW(plain, L"CSWND");
    wnd.Destroy();
}

TEST_F(CSWndProc, FromHandleOfOrdinaryHandles) {
    PlainWnd plain;
    EXPECT_EQ(nullptr, CSWnd::FromHandle(nullptr));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(DeadWindow()));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(::GetDesktopWindow()));
}

TEST_F(CSWndProc, WindowOfAnotherProcessIsNeverAnObjects) {
    HWND hwnd = ::FindWindowW(L"Shell_TrayWnd", nullptr);
    if (!hwnd) hwnd = ::GetDesktopWindow();
    DWORD dwProcess = 0;
    ::GetWindowThreadProcessId(hwnd, &dwProcess);
    ASSERT_NE(::GetCurrentProcessId(), dwProcess);
    if (!::SetPropW(hwnd, L"CSWND", reinterpret_cast<HANDLE>(0x10)))
        GTEST_SKIP() << "the platform lets no other process's window be marked";
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    // Also an address that is good here must not be believed.
    ProbeWnd wnd(record);
    wnd.Attach(hwnd);
    ::SetPropW(hwnd, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    wnd.Detach();
    ::RemovePropW(hwnd, L"CSWND");
}

/// The earlier procedure of a window that notes when it was asked.
ProbeRecord* pDefaultRecord = nullptr;
LRESULT CALLBACK NotingProc(HWND, UINT, WPARAM, LPARAM) {
    pDefaultRecord->log.push_back("default");
    return 55; // the platform's own would activate the window and send more messages
}

struct NotifyCase {
    const char* pszName;
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    const char* pszNote;
};
class CSWndNotification : public testing::TestWithParam<NotifyCase> {};
TEST_P(CSWndNotification, ComesAfterHooksAndDefault) {
    const auto& row = GetParam();
    ProbeClass cls;
    ProbeRecord record;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    wnd.oldWndProc = &NotingProc;
    ProbeHook hook([&](CSWnd*, UINT, WPARAM, LPARAM, LRESULT*) {
        record.log.push_back("hook");
        return 0;
    });
    wnd.AddWndHook(&hook);
    record.log.clear();
    pDefaultRecord = &record;
    EXPECT_EQ(55, wnd.OnWndMessage(row.uMsg, row.wParam, row.lParam));
    EXPECT_EQ((std::vector<std::string>{"hook", "default", row.pszNote}), record.log);

    // A hook that takes the message stops the default and not the notification.
    record.log.clear();
    hook.fn = [&](CSWnd*, UINT, WPARAM, LPARAM, LRESULT* pl) {
        *pl = 77;
        return 1;
    };
    EXPECT_EQ(77, wnd.OnWndMessage(row.uMsg, row.wParam, row.lParam));
    EXPECT_EQ(std::vector<std::string>{row.pszNote}, record.log);
    wnd.RemoveAllWndHooks();
    wnd.oldWndProc = &::DefWindowProcW;
    wnd.Destroy();
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CSWndNotification,
    testing::Values(NotifyCase{"Inactive", WM_ACTIVATE, WA_INACTIVE, 0, "OnActivate 0"},
                    NotifyCase{"ActiveByClick", WM_ACTIVATE, WA_CLICKACTIVE, 0, "OnActivate 1"},
                    NotifyCase{"HighWordIsNotLooked", WM_ACTIVATE, 0x10000, 0, "OnActivate 0"},
                    NotifyCase{"Enabled", WM_ENABLE, 1, 0, "OnEnable 1"},
                    NotifyCase{"Disabled", WM_ENABLE, 0, 0, "OnEnable 0"},
                    NotifyCase{"EnableValueAsItIs", WM_ENABLE, 7, 0, "OnEnable 7"},
                    NotifyCase{"Setting", WM_SETTINGCHANGE, 47, 0, "setting 47 0"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSWndNotify, EnableWindowIsToldToTheWindow) {
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    record.log.clear();
    wnd.Enable(0);
    wnd.Enable(1);
    std::vector<std::string> enables;
    for (const auto& s : record.log)
        if (s.starts_with("OnEnable")) enables.push_back(s);
    EXPECT_EQ((std::vector<std::string>{"OnEnable 0", "OnEnable 1"}), enables);
    wnd.Destroy();
}

TEST_F(CSWndNotify, SettingChangeReachesObjectsBelowObjects) {
    ProbeRecord recordChild, recordGrand, recordOther, recordBelowPlain, recordStale;
    ProbeWnd wnd(record), child(recordChild), grand(recordGrand), other(recordOther),
        belowPlain(recordBelowPlain), stale(recordStale);
    ASSERT_EQ(1, wnd.Make());
    ASSERT_EQ(1, child.Make(wnd));
    ASSERT_EQ(1, grand.Make(child));
    PlainWnd plain(wnd);
    ASSERT_EQ(1, belowPlain.Make(plain));
    ASSERT_EQ(1, other.Make(wnd));
    ASSERT_EQ(1, stale.Make());
    PlainWnd named(wnd);
    ::SetPropW(named, L"CSWND", static_cast<CSWnd*>(&stale));

    ::SendMessageW(wnd, WM_SETTINGCHANGE, 5, 0);
    std::string expected = "setting 5 0";
    auto nTimes = [&](const ProbeRecord& r) {
        int n = 0;
        for (const auto& s : r.log) n += s == expected;
        return n;
    };
    EXPECT_EQ(1, nTimes(record));
    EXPECT_EQ(1, nTimes(recordChild));
    EXPECT_EQ(1, nTimes(recordGrand));
    EXPECT_EQ(1, nTimes(recordOther));
    EXPECT_EQ(0, nTimes(recordBelowPlain)) << "a child without object cuts off what is below";
    EXPECT_EQ(0, nTimes(recordStale));
    EXPECT_FALSE(recordChild.Saw(WM_SETTINGCHANGE)) << "children are called, not sent";
    ::RemovePropW(named, L"CSWND");
    stale.Destroy();
    wnd.Destroy();
}

TEST_F(CSWndNotify, ChildMayEndItselfInASettingChange) {
    ProbeRecord recordChild;
    ProbeWnd wnd(record);
    ASSERT_EQ(1, wnd.Make());
    auto* pChild = new ProbeWnd(recordChild);
    ASSERT_EQ(1, pChild->Make(wnd));
    pChild->autoDelete = 0;
    pChild->onSetting = [](ProbeWnd& w) { w.Destroy(); };
    ::SendMessageW(wnd, WM_SETTINGCHANGE, 0, 0);
    EXPECT_EQ(1, recordChild.nPostNcDestroys);
    delete pChild;
    wnd.Destroy();
}
} // namespace
