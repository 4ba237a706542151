#include "support/wait_until.h"
#include "wnd/core/core_wnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <atomic>
#include <iterator>
#include <memory>
#include <thread>

namespace {
constexpr const wchar_t* kCoreClass = L"TessalyCoreProbe";

struct CoreRecord {
    std::vector<UINT> messages;
    int nDeletes = 0;
    int Count(UINT uMsg) const {
        int n = 0;
        for (UINT u : messages) n += u == uMsg;
        return n;
    }
};

class CoreProbe : public CoreWnd {
  public:
    explicit CoreProbe(CoreRecord& recordNew) : record(recordNew) {}
    ~CoreProbe() override { ++record.nDeletes; }
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        record.messages.push_back(uMsg);
        if (hwndFirst == nullptr) hwndFirst = hWnd;
        if (uMsg == uRefused) {
            if (bDeleteIfRefused) autoDelete = DeleteObject;
            return lRefusal;
        }
        return CoreWnd::OnWndMessage(uMsg, wParam, lParam);
    }
    int Make() {
        return Create(kCoreClass, L"core", WS_OVERLAPPEDWINDOW, 1, 2, 30, 40, nullptr, nullptr,
                      nullptr);
    }
    using CoreWnd::WndProc;

    CoreRecord& record;
    HWND hwndFirst = nullptr; // the handle at the first message
    UINT uRefused = 0;
    LRESULT lRefusal = 0;
    bool bDeleteIfRefused = false; // then autoDelete is set in the refusing handler
};

struct CoreWndTest : testing::Test {
    CoreWndTest() {
        EXPECT_NE(0, CoreWnd::RegisterClassExW(kCoreClass, CS_DBLCLKS, nullptr, nullptr, nullptr,
                                               nullptr, nullptr, 4, 8));
    }
    ~CoreWndTest() override {
        EXPECT_TRUE(::UnregisterClassW(kCoreClass, ::GetModuleHandleW(nullptr)));
    }
    CoreRecord record;
};

TEST_F(CoreWndTest, ClassIsRegisteredAsGiven) {
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    ASSERT_TRUE(::GetClassInfoExW(::GetModuleHandleW(nullptr), kCoreClass, &wc));
    EXPECT_EQ(static_cast<UINT>(CS_DBLCLKS), wc.style);
    EXPECT_EQ(4, wc.cbClsExtra);
    EXPECT_EQ(8, wc.cbWndExtra);
    EXPECT_EQ(&CoreProbe::WndProc, wc.lpfnWndProc);
}

TEST_F(CoreWndTest, FreshObjectIsZero) {
    CoreProbe wnd(record);
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(nullptr, wnd.oldWndProc);
    EXPECT_EQ(0, static_cast<int>(wnd.autoDelete));
    static_assert(sizeof(CoreWnd::AutoDelete) == 4);
}

TEST_F(CoreWndTest, CreationTiesAtTheFirstMessage) {
    CoreProbe wnd(record);
    ASSERT_EQ(1, wnd.Make());
    EXPECT_EQ(wnd.hWnd, wnd.hwndFirst);
    EXPECT_EQ(&::DefWindowProcW, wnd.oldWndProc);
    EXPECT_EQ(static_cast<CoreWnd*>(&wnd), ::GetPropW(wnd.hWnd, L"COREWND"));
    EXPECT_EQ(nullptr, ::GetPropW(wnd.hWnd, L"CSWND"));
    EXPECT_EQ(1, record.Count(WM_CREATE));
    EXPECT_EQ(L"core", TextOf(wnd.hWnd));
    ::DestroyWindow(wnd.hWnd);
}

TEST_F(CoreWndTest, CreateExTakesTheExtendedStyle) {
    CoreProbe wnd(record);
    ASSERT_EQ(1, wnd.CreateEx(WS_EX_ACCEPTFILES, kCoreClass, L"x", WS_POPUP, 3, 4, 5, 6, nullptr,
                              nullptr, nullptr));
    EXPECT_TRUE(::GetWindowLongPtrW(wnd.hWnd, GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    RECT rc{};
    ::GetWindowRect(wnd.hWnd, &rc);
    EXPECT_EQ(3, rc.left);
    EXPECT_EQ(4, rc.top);
    EXPECT_EQ(8, rc.right);
    EXPECT_EQ(10, rc.bottom);
    ::DestroyWindow(wnd.hWnd);
}

TEST_F(CoreWndTest, WindowsEndKeepsTheObject) {
    CoreProbe wnd(record);
    ASSERT_EQ(1, wnd.Make());
    ::DestroyWindow(wnd.hWnd);
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(1, record.Count(WM_NCDESTROY));
    EXPECT_EQ(WM_NCDESTROY, static_cast<int>(record.messages.back()));
    EXPECT_EQ(0, record.nDeletes);
    EXPECT_EQ(1, wnd.Make()) << "it may be used again";
    ::DestroyWindow(wnd.hWnd);
}

TEST_F(CoreWndTest, WindowsEndDeletesTheObjectForTheValueOne) {
    auto* pWnd = new CoreProbe(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = CoreWnd::DeleteObject;
    EXPECT_EQ(1, static_cast<int>(pWnd->autoDelete));
    ::DestroyWindow(pWnd->hWnd);
    EXPECT_EQ(1, record.nDeletes);

    auto* pOther = new CoreProbe(record);
    ASSERT_EQ(1, pOther->Make());
    pOther->autoDelete = static_cast<CoreWnd::AutoDelete>(0);
    ::DestroyWindow(pOther->hWnd);
    EXPECT_EQ(1, record.nDeletes);
    delete pOther;
}

TEST_F(CoreWndTest, CloseDestroysInsideTheDefaultProcessing) {
    auto* pWnd = new CoreProbe(record);
    ASSERT_EQ(1, pWnd->Make());
    pWnd->autoDelete = CoreWnd::DeleteObject;
    HWND hwnd = pWnd->hWnd;
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(1, record.nDeletes);
}

struct RefusalCase {
    const char* pszName;
    UINT uMsg;
    LRESULT lResult;
    CoreWnd::AutoDelete autoDelete;
    bool bInHandler = false;
};
struct RefusedCoreWnd : CoreWndTest, testing::WithParamInterface<RefusalCase> {};
TEST_P(RefusedCoreWnd, LeavesTheObjectToItsOwner) {
    const RefusalCase& row = GetParam();
    CoreProbe wnd(record);
    int nBefore = record.nDeletes;
    wnd.uRefused = row.uMsg;
    wnd.lRefusal = row.lResult;
    wnd.autoDelete = row.autoDelete;
    wnd.bDeleteIfRefused = row.bInHandler;
    EXPECT_EQ(0, wnd.Make());
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(nBefore, record.nDeletes);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, RefusedCoreWnd,
    testing::Values(RefusalCase{"NcCreate", WM_NCCREATE, 0, CoreWnd::KeepObject},
                    RefusalCase{"NcCreateAutoDelete", WM_NCCREATE, 0, CoreWnd::DeleteObject},
                    RefusalCase{"Create", WM_CREATE, -1, CoreWnd::KeepObject},
                    RefusalCase{"CreateAutoDelete", WM_CREATE, -1, CoreWnd::DeleteObject},
                    RefusalCase{"CreateAutoDeleteSetInHandler", WM_CREATE, -1, CoreWnd::KeepObject,
                                true}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CoreWndTest, UnknownClassFailsAndLeavesNoCreationPointer) {
    CoreProbe wnd(record);
    EXPECT_EQ(0, wnd.Create(L"TessalyNoSuchClass", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, wnd.hWnd);
    PlainWnd plain;
    EXPECT_EQ(0, CoreProbe::WndProc(plain, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"x")));
    EXPECT_EQ(L"plain", TextOf(plain));
    EXPECT_EQ(nullptr, ::GetPropW(plain, L"COREWND"));
    EXPECT_TRUE(record.messages.empty());
}

TEST_F(CoreWndTest, WindowWithoutObjectGivesZero) {
    EXPECT_EQ(0, CoreProbe::WndProc(nullptr, WM_CLOSE, 0, 0));
    EXPECT_EQ(0, CoreProbe::WndProc(DeadWindow(), WM_CLOSE, 0, 0));
    EXPECT_EQ(nullptr, ::CreateWindowExW(0, kCoreClass, L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                         ::GetModuleHandleW(nullptr), nullptr));
}

TEST_F(CoreWndTest, PropertyIsTakenWithoutComparingTheHandle) {
    CoreProbe wnd(record);
    ASSERT_EQ(1, wnd.Make());
    PlainWnd plain;
    ::SetPropW(plain, L"COREWND", static_cast<CoreWnd*>(&wnd));
    int nBefore = record.Count(WM_APP);
    CoreProbe::WndProc(plain, WM_APP, 0, 0);
    EXPECT_EQ(nBefore + 1, record.Count(WM_APP));
    HWND hwnd = wnd.hWnd;
    wnd.hWnd = nullptr;
    EXPECT_EQ(0, CoreProbe::WndProc(plain, WM_APP, 0, 0)) << "an object without a handle";
    EXPECT_EQ(nBefore + 1, record.Count(WM_APP));
    wnd.hWnd = hwnd;
    ::RemovePropW(plain, L"COREWND");
    ::DestroyWindow(hwnd);
}

TEST_F(CoreWndTest, PropertyThatNamesNoObjectIsNotBelieved) {
    CoreProbe wnd(record);
    ASSERT_EQ(1, wnd.Make());
    void* pUnmapped = ::VirtualAlloc(nullptr, 0x10000, MEM_RESERVE, PAGE_NOACCESS);
    HWND handles[64];
    std::fill(std::begin(handles), std::end(handles), wnd.hWnd);
    CoreRecord recordGone;
    auto pGone = std::make_unique<CoreProbe>(recordGone);
    void* pFreed = static_cast<CoreWnd*>(pGone.get());
    pGone.reset();
    for (void* p : {reinterpret_cast<void*>(1), pUnmapped, static_cast<void*>(handles), pFreed}) {
        ::SetPropW(wnd.hWnd, L"COREWND", p);
        EXPECT_EQ(0, ::SendMessageW(wnd.hWnd, WM_GETTEXTLENGTH, 0, 0)) << p;
    }
    EXPECT_EQ(0, record.Count(WM_GETTEXTLENGTH));
    ::SetPropW(wnd.hWnd, L"COREWND", static_cast<CoreWnd*>(&wnd));
    EXPECT_EQ(4, ::SendMessageW(wnd.hWnd, WM_GETTEXTLENGTH, 0, 0)) << "the object is back";
    ::DestroyWindow(wnd.hWnd);
    EXPECT_EQ(nullptr, wnd.hWnd);
    ::VirtualFree(pUnmapped, 0, MEM_RELEASE);
}

TEST_F(CoreWndTest, PropertyOutlivesTheLastMessage) {
    CoreProbe wnd(record);
    PlainWnd plain;
    wnd.hWnd = plain;
    wnd.oldWndProc = &::DefWindowProcW;
    ::SetPropW(plain, L"COREWND", static_cast<CoreWnd*>(&wnd));
    CoreProbe::WndProc(plain, WM_NCDESTROY, 0, 0);
    EXPECT_EQ(nullptr, wnd.hWnd);
    EXPECT_EQ(static_cast<CoreWnd*>(&wnd), ::GetPropW(plain, L"COREWND"));
    ::RemovePropW(plain, L"COREWND");
}

TEST_F(CoreWndTest, ObjectThatGoesBeforeItsWindowLeavesNoName) {
    HWND hwnd = nullptr;
    {
        CoreProbe wnd(record);
        ASSERT_EQ(1, wnd.Make());
        hwnd = wnd.hWnd;
    }
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, L"COREWND"));
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0));
    ::DestroyWindow(hwnd);
}

TEST_F(CoreWndTest, BothKindsOfWindowsHaveTheirOwnCreationPointers) {
    ProbeClass cls;
    ProbeRecord recordOther;
    // A CSWnd window made while a CoreWnd's creation is under way, and nothing is mixed up.
    ProbeWnd other(recordOther);
    struct Maker : CoreProbe {
        using CoreProbe::CoreProbe;
        LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
            if (uMsg == WM_CREATE) pOther->Make();
            return CoreProbe::OnWndMessage(uMsg, wParam, lParam);
        }
        ProbeWnd* pOther = nullptr;
    } maker(record);
    maker.pOther = &other;
    ASSERT_EQ(1, maker.Make());
    EXPECT_EQ(&other, CSWnd::FromHandle(other));
    EXPECT_EQ(static_cast<CoreWnd*>(&maker), ::GetPropW(maker.hWnd, L"COREWND"));
    EXPECT_EQ(nullptr, ::GetPropW(other, L"COREWND"));
    other.Destroy();
    ::DestroyWindow(maker.hWnd);
}

TEST(CreationSlot, IsEmptyAtFirst) {
    CreationSlot slot;
    EXPECT_EQ(nullptr, slot.Take());
    EXPECT_EQ(nullptr, slot.Take());
}

TEST(CreationSlot, GivesItsObjectOnce) {
    CreationSlot slot;
    int nObject = 0, nOther = 0;
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(&nObject, slot.Take());
    EXPECT_EQ(nullptr, slot.Take());
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(1, slot.Set(&nOther));
    EXPECT_EQ(&nOther, slot.Take()) << "the later one";
    EXPECT_EQ(1, slot.Set(&nObject));
    EXPECT_EQ(1, slot.Set(nullptr));
    EXPECT_EQ(nullptr, slot.Take());
    EXPECT_EQ(1, slot.Set(&nObject));
    slot.Clear();
    EXPECT_EQ(nullptr, slot.Take());
}

TEST(CreationSlot, TwoSlotsAreApart) {
    CreationSlot one, other;
    int nObject = 0;
    EXPECT_TRUE(one.Set(&nObject));
    EXPECT_EQ(nullptr, other.Take());
    EXPECT_EQ(&nObject, one.Take());
}

TEST(CreationSlot, EachThreadHasItsOwn) {
    CreationSlot slot;
    int nMine = 0;
    EXPECT_TRUE(slot.Set(&nMine));
    std::thread([&] {
        int nTheirs = 0;
        EXPECT_EQ(nullptr, slot.Take());
        EXPECT_EQ(1, slot.Set(&nTheirs));
        EXPECT_EQ(&nTheirs, slot.Take());
    }).join();
    EXPECT_EQ(&nMine, slot.Take());
}

TEST(CreationSlot, GivesThePlatformsSlotBack) {
    int nObject = 0;
    for (int n = 0; n < 5000; ++n) { // the platform has 1,088
        CreationSlot slot;
        ASSERT_EQ(1, slot.Set(&nObject)) << n;
        ASSERT_EQ(&nObject, slot.Take()) << n;
    }
}

TEST(CreationSlot, FirstUseByManyThreadsAtOnce) {
    for (int nRound = 0; nRound < 50; ++nRound) {
        CreationSlot slot;
        std::atomic<int> nReady{0}, nGood{0};
        std::vector<std::thread> threads;
        for (int n = 0; n < 4; ++n) {
            threads.emplace_back([&] {
                int nOwn = 0;
                ++nReady;
                while (nReady < 4) ::SwitchToThread();
                nGood += slot.Set(&nOwn) && slot.Take() == &nOwn && !slot.Take();
            });
        }
        for (auto& t : threads) t.join();
        ASSERT_EQ(4, nGood);
    }
}

// Two threads inside CreateWindowExW at the same time: a hook of the platform holds each between
// its object's waiting and its window's first message until the other is there too.

std::atomic<int> nInside{0};

LRESULT CALLBACK HoldCreation(int nCode, WPARAM wParam, LPARAM lParam) {
    if (nCode == HCBT_CREATEWND) {
        auto* pCreate = reinterpret_cast<CBT_CREATEWNDW*>(lParam);
        if (pCreate->lpcs->lpCreateParams) {
            ++nInside;
            WaitUntil([] { return nInside >= 2; });
        }
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

TEST(CreationSlot, WindowsOfTwoThreadsFindTheirObjects) {
    ProbeClass cls;
    for (int nRound = 0; nRound < 20; ++nRound) {
        nInside = 0;
        std::atomic<int> nGood{0};
        auto create = [&](const wchar_t* pszTitle) {
            ProbeRecord record;
            ProbeWnd wnd(record);
            HHOOK hhook =
                ::SetWindowsHookExW(WH_CBT, &HoldCreation, nullptr, ::GetCurrentThreadId());
            int bCreated = wnd.Create(kProbeClass, pszTitle, WS_OVERLAPPEDWINDOW, 0, 0, 10, 10,
                                      nullptr, nullptr, &record);
            ::UnhookWindowsHookEx(hhook);
            nGood += bCreated && CSWnd::FromHandle(wnd) == &wnd && record.nPreInits == 1 &&
                     record.Count(WM_CREATE) == 1 && TextOf(wnd) == pszTitle &&
                     ::GetWindowThreadProcessId(wnd, nullptr) == ::GetCurrentThreadId();
            wnd.Destroy();
            nGood += record.nPostNcDestroys == 1;
        };
        std::thread one(create, L"one"), other(create, L"other");
        one.join();
        other.join();
        ASSERT_EQ(2, nInside) << "both were inside at once";
        ASSERT_EQ(4, nGood);
    }
}
} // namespace
