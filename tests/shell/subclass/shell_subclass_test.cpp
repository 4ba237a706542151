#include "shell/subclass/shell_subclass.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_SetWindowLongPtrW;

namespace {
// The platform's chain

constexpr UINT kTestMsg = WM_APP + 1;

/// Reaches what the class keeps to itself.
struct Probe : ShellSubclass {
    using ShellSubclass::nId;
    using ShellSubclass::nState;
    using ShellSubclass::pfnDefault;
    using ShellSubclass::pfnDefaultCopy;
    using ShellSubclass::szTag;

    static void Forget() {
        nState = kNotSetUp;
        nId = 0;
        szTag[0] = 0;
    }
};

/// Leaves the state as the library's start made it.
class ShellSubclassTest : public testing::Test {
  protected:
    ~ShellSubclassTest() override {
        SetRuntimeLookup(nullptr);
        Probe::Forget();
        ShellSubclass::Initialize(18, L"TSLY");
    }
};

LRESULT CALLBACK AddOneHundred(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR nId,
                               DWORD_PTR dwRefData) {
    LRESULT lResult = ShellSubclass::Default(hwnd, uMsg, wParam, lParam);
    if (uMsg == kTestMsg)
        lResult += 100 + static_cast<LRESULT>(nId) + static_cast<LRESULT>(dwRefData);
    return lResult;
}

TestWindow::Handler AnswerSeven() {
    return [](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == kTestMsg) return 7;
        return std::nullopt;
    };
}

TEST_F(ShellSubclassTest, LibraryStartGivesItsIdAndTag) {
    EXPECT_EQ(ShellSubclass::kReady, Probe::nState.load());
    EXPECT_EQ(18u, Probe::nId);
    EXPECT_STREQ(L"TSLY", ShellSubclass::GetTag());
}

TEST_F(ShellSubclassTest, InitializeDoesNothingOnceSetUp) {
    EXPECT_EQ(ShellSubclass::kReady, ShellSubclass::Initialize(5, L"ABCD"));
    EXPECT_EQ(18u, Probe::nId);
    EXPECT_STREQ(L"TSLY", ShellSubclass::GetTag());
}

struct TagCase {
    const char* pszName;
    const wchar_t* pszTag;
    const wchar_t* pszStored;
};

class ShellSubclassTag : public ShellSubclassTest, public testing::WithParamInterface<TagCase> {};

TEST_P(ShellSubclassTag, IsCutAtFourCharacters) {
    Probe::Forget();
    ShellSubclass::Initialize(18, GetParam().pszTag);
    EXPECT_STREQ(GetParam().pszStored, ShellSubclass::GetTag());
}

INSTANTIATE_TEST_SUITE_P(Cases, ShellSubclassTag,
                         testing::Values(TagCase{"Longer", L"ABCDE", L"ABCD"},
                                         TagCase{"Fits", L"ABCD", L"ABCD"},
                                         TagCase{"Shorter", L"ABC", L"ABC"},
                                         TagCase{"Empty", L"", L""}, TagCase{"Null", nullptr, L""}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(ShellSubclassTest, IsReadyBeforeInitializeTakesIdZeroAndAnEmptyTag) {
    Probe::Forget();
    EXPECT_EQ(ShellSubclass::kReady, ShellSubclass::IsReady());
    EXPECT_EQ(0u, Probe::nId);
    EXPECT_STREQ(L"", ShellSubclass::GetTag());
}

TEST_F(ShellSubclassTest, EachMissingFunctionMakesTheStateMissing) {
    for (const char* pszName : {"SetWindowSubclass", "RemoveWindowSubclass", "DefSubclassProc"}) {
        HideFunctions hide{pszName};
        EXPECT_EQ(ShellSubclass::kMissing, ShellSubclass::ReInitialize()) << pszName;
        EXPECT_EQ(ShellSubclass::kMissing, ShellSubclass::IsReady()) << pszName;
    }
}

TEST_F(ShellSubclassTest, ReInitializeKeepsIdAndTag) {
    EXPECT_EQ(ShellSubclass::kReady, ShellSubclass::ReInitialize());
    EXPECT_EQ(18u, Probe::nId);
    EXPECT_STREQ(L"TSLY", ShellSubclass::GetTag());
}

TEST_F(ShellSubclassTest, SetPutsIntoTheChainAndRemoveTakesOut) {
    TestWindow window(AnswerSeven());
    EXPECT_EQ(1, ShellSubclass::Set(window, AddOneHundred, 1000));
    EXPECT_EQ(7 + 100 + 18 + 1000, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(1, ShellSubclass::Remove(window, AddOneHundred));
    EXPECT_EQ(7, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(0, ShellSubclass::Remove(window, AddOneHundred));
}

TEST_F(ShellSubclassTest, SetOfTheSameProcedureReplacesItsData) {
    TestWindow window(AnswerSeven());
    EXPECT_EQ(1, ShellSubclass::Set(window, AddOneHundred, 1000));
    EXPECT_EQ(1, ShellSubclass::Set(window, AddOneHundred, 2000));
    EXPECT_EQ(7 + 100 + 18 + 2000, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(1, ShellSubclass::Remove(window, AddOneHundred));
    EXPECT_EQ(7, ::SendMessageW(window, kTestMsg, 0, 0));
}

TEST_F(ShellSubclassTest, NoWindowGivesZero) {
    EXPECT_EQ(0, ShellSubclass::Set(nullptr, AddOneHundred, 0));
    EXPECT_EQ(0, ShellSubclass::Remove(nullptr, AddOneHundred));
}

TEST_F(ShellSubclassTest, WithoutTheFunctionsNothingIsSetAndMessagesGetTheirDefault) {
    HideFunctions hide{"SetWindowSubclass", "RemoveWindowSubclass", "DefSubclassProc"};
    ShellSubclass::ReInitialize();
    TestWindow window;
    EXPECT_EQ(0, ShellSubclass::Set(window, AddOneHundred, 0));
    EXPECT_EQ(0, ShellSubclass::Remove(window, AddOneHundred));
    EXPECT_EQ(::lstrlenW(L"test window"), ShellSubclass::Default(window, WM_GETTEXTLENGTH, 0, 0));
}

TEST_F(ShellSubclassTest, DefaultLooksAgainWhenItsPointerWasOverwritten) {
    TestWindow window(AnswerSeven());
    ASSERT_EQ(1, ShellSubclass::Set(window, AddOneHundred, 0));
    Probe::pfnDefault = reinterpret_cast<decltype(&::DefSubclassProc)>(0x10);
    EXPECT_EQ(7 + 100 + 18, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(Probe::pfnDefaultCopy.load(), Probe::pfnDefault.load());
    Probe::pfnDefault = nullptr;
    Probe::pfnDefaultCopy = nullptr;
    EXPECT_EQ(7 + 100 + 18, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_NE(nullptr, Probe::pfnDefault.load());
    EXPECT_EQ(1, ShellSubclass::Remove(window, AddOneHundred));
}

TEST_F(ShellSubclassTest, ThreadsSetAndRemoveOnTheirWindowsAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> nFailures{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&nFailures] {
            TestWindow window(AnswerSeven());
            for (int n = 0; n < 100; ++n) {
                if (!ShellSubclass::Set(window, AddOneHundred, 0)) ++nFailures;
                if (::SendMessageW(window, kTestMsg, 0, 0) != 7 + 100 + 18) ++nFailures;
                if (!ShellSubclass::Remove(window, AddOneHundred)) ++nFailures;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(0, nFailures.load());
}

// One window's subclass

constexpr UINT kOwnMsg = WM_APP + 2;

class Subclasser : public ShellSubclasser {
  public:
    explicit Subclasser(UINT_PTR nFirst = 0) : ShellSubclasser(nFirst) {}

    LRESULT OnWndMsg(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        ++nSeen;
        if (uMsg == kOwnMsg) return 55; // handled here, not passed on
        if (uMsg == WM_NCDESTROY && bUnsubclassAtTheEnd) nUnsubclassed = Unsubclass();
        return ShellSubclasser::OnWndMsg(hwndMsg, uMsg, wParam, lParam);
    }
    UINT_PTR GetFirstField() const { return nOldWndProc; }
    HWND GetWindow() const { return hwnd; }
    using ShellSubclasser::ShellSubclasserWndProc_Win2K;
    using ShellSubclasser::Subclass_Win2K;
    using ShellSubclasser::Unsubclass_Win2K;

    int nSeen = 0;
    bool bUnsubclassAtTheEnd = false;
    int nUnsubclassed = -1;
};

TestWindow::Handler CountingHandler(int& nCount) {
    return [&nCount](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg != kTestMsg && uMsg != kOwnMsg) return std::nullopt;
        ++nCount;
        return 7;
    };
}

UINT_PTR ProcedureOf(HWND hwnd) {
    return static_cast<UINT_PTR>(::GetWindowLongPtrW(hwnd, GWLP_WNDPROC));
}

LRESULT CALLBACK LaterProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

/// A Windows without the chain.
class FallbackTest : public testing::Test {
  protected:
    FallbackTest() { ShellSubclass::ReInitialize(); }
    ~FallbackTest() override {
        SetRuntimeLookup(nullptr);
        ShellSubclass::ReInitialize();
    }
    HideFunctions hide{"SetWindowSubclass", "RemoveWindowSubclass", "DefSubclassProc"};
};

/// Both routes: 1 is the chain.
class ShellSubclasserTest : public testing::TestWithParam<int> {
  protected:
    ShellSubclasserTest() {
        if (!GetParam()) pHide.reset(new HideFunctions{"SetWindowSubclass"});
        EXPECT_EQ(GetParam(), ShellSubclass::ReInitialize());
    }
    ~ShellSubclasserTest() override {
        pHide.reset();
        ShellSubclass::ReInitialize();
    }
    std::unique_ptr<HideFunctions> pHide;
};

TEST_P(ShellSubclasserTest, ConstructorKeepsWhatItIsGivenAndHasNoWindow) {
    Subclasser subclasser(0x1234);
    EXPECT_EQ(0x1234u, subclasser.GetFirstField());
    EXPECT_EQ(nullptr, subclasser.GetWindow());
}

TEST_P(ShellSubclasserTest, SeesMessagesFromSubclassToUnsubclass) {
    int nReceived = 0;
    TestWindow window(CountingHandler(nReceived));
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(window));
    EXPECT_EQ(window.Get(), subclasser.GetWindow());
    EXPECT_EQ(7, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(1, subclasser.nSeen);
    EXPECT_EQ(55, ::SendMessageW(window, kOwnMsg, 0, 0));
    EXPECT_EQ(1, nReceived);

    EXPECT_EQ(1, subclasser.Unsubclass());
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    int nSeen = subclasser.nSeen;
    EXPECT_EQ(7, ::SendMessageW(window, kOwnMsg, 0, 0));
    EXPECT_EQ(nSeen, subclasser.nSeen);
    EXPECT_EQ(0, subclasser.Unsubclass());
}

TEST_P(ShellSubclasserTest, CanBeUsedAgainOnAnotherWindow) {
    int nReceived = 0;
    TestWindow first(CountingHandler(nReceived)), second(CountingHandler(nReceived));
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(first));
    ASSERT_EQ(1, subclasser.Unsubclass());
    ASSERT_EQ(1, subclasser.Subclass(second));
    EXPECT_EQ(55, ::SendMessageW(second, kOwnMsg, 0, 0));
    EXPECT_EQ(7, ::SendMessageW(first, kOwnMsg, 0, 0));
    EXPECT_EQ(1, subclasser.Unsubclass());
}

TEST_P(ShellSubclasserTest, NoWindowGivesZeroAndChangesNothing) {
    Subclasser subclasser(9);
    EXPECT_EQ(0, subclasser.Subclass(nullptr));
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    EXPECT_EQ(9u, subclasser.GetFirstField());
    EXPECT_EQ(0, subclasser.Unsubclass());
}

TEST_P(ShellSubclasserTest, HasNoWindowAfterTheWindowsEnd) {
    Subclasser subclasser;
    TestWindow window;
    ASSERT_EQ(1, subclasser.Subclass(window));
    window.Destroy();
    EXPECT_GT(subclasser.nSeen, 0);
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    EXPECT_EQ(0, subclasser.Unsubclass());
}

TEST_P(ShellSubclasserTest, MayUnsubclassInTheWindowsLastMessage) {
    Subclasser subclasser;
    subclasser.bUnsubclassAtTheEnd = true;
    TestWindow window;
    ASSERT_EQ(1, subclasser.Subclass(window));
    window.Destroy();
    EXPECT_EQ(1, subclasser.nUnsubclassed);
    EXPECT_EQ(nullptr, subclasser.GetWindow());
}

TEST_P(ShellSubclasserTest, UnhandledMessagesOfABareSubclasserReachTheWindow) {
    int nReceived = 0;
    TestWindow window(CountingHandler(nReceived));
    ShellSubclasser subclasser(0);
    ASSERT_EQ(1, subclasser.Subclass(window));
    EXPECT_EQ(7, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(1, subclasser.Unsubclass());
}

INSTANTIATE_TEST_SUITE_P(Routes, ShellSubclasserTest, testing::Values(0, 1), [](const auto& row) {
    return std::string(row.param ? "Chain" : "Fallback");
});

TEST(ShellSubclasserChain, SecondSubclasserOfAWindowTakesTheFirstOnesPlace) {
    TestWindow window;
    Subclasser first, second;
    ASSERT_EQ(1, first.Subclass(window));
    ASSERT_EQ(1, second.Subclass(window));
    ::SendMessageW(window, kTestMsg, 0, 0);
    EXPECT_EQ(0, first.nSeen);
    EXPECT_EQ(1, second.nSeen);
    EXPECT_EQ(1, second.Unsubclass());
    EXPECT_EQ(0, first.Unsubclass()); // one entry of the chain served both
    EXPECT_EQ(window.Get(), first.GetWindow());
}

TEST(ShellSubclasserChain, SurvivesASubclasserThatComesLaterAndStays) {
    int nReceived = 0;
    TestWindow window(CountingHandler(nReceived));
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(window));
    auto later = [](HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                    DWORD_PTR) -> LRESULT {
        LRESULT lResult = ::DefSubclassProc(hwnd, uMsg, wParam, lParam);
        return uMsg == kTestMsg ? lResult + 1000 : lResult;
    };
    ASSERT_TRUE(::SetWindowSubclass(window, later, 1, 0));
    EXPECT_EQ(1007, ::SendMessageW(window, kTestMsg, 0, 0));
    EXPECT_EQ(1, subclasser.Unsubclass());
    EXPECT_EQ(1007, ::SendMessageW(window, kTestMsg, 0, 0));
    ::RemoveWindowSubclass(window, later, 1);
}

TEST_F(FallbackTest, WindowThatHoldsThePropertyIsLeftAlone) {
    TestWindow window;
    Subclasser first, second(9);
    ASSERT_EQ(1, first.Subclass(window));
    UINT_PTR nProcedure = ProcedureOf(window);
    EXPECT_EQ(0, second.Subclass_Win2K(window));
    EXPECT_EQ(nProcedure, ProcedureOf(window));
    EXPECT_EQ(static_cast<ShellSubclasser*>(&first), ::GetPropW(window, L"TSLY"));
    EXPECT_EQ(nullptr, second.GetWindow());
    EXPECT_EQ(9u, second.GetFirstField());
    EXPECT_EQ(1, first.Unsubclass());
}

TEST_F(FallbackTest, PutsTheProcedureBackAndClearsBothFields) {
    TestWindow window;
    UINT_PTR nBefore = ProcedureOf(window);
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(window));
    EXPECT_EQ(nBefore, subclasser.GetFirstField());
    EXPECT_NE(nBefore, ProcedureOf(window));
    EXPECT_EQ(1, subclasser.Unsubclass());
    EXPECT_EQ(nBefore, ProcedureOf(window));
    EXPECT_EQ(nullptr, ::GetPropW(window, L"TSLY"));
    EXPECT_EQ(0u, subclasser.GetFirstField());
    EXPECT_EQ(nullptr, subclasser.GetWindow());
}

// The next two are about the fall-back route alone: the test platform's chain takes any handle.
TEST_F(FallbackTest, WindowThatIsGoneGivesZeroAndChangesNothing) {
    TestWindow window;
    HWND hwndGone = window;
    window.Destroy();
    Subclasser subclasser(9);
    EXPECT_EQ(0, subclasser.Subclass(hwndGone));
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    EXPECT_EQ(9u, subclasser.GetFirstField());
}

LONG_PTR WINAPI RefuseLong(HWND, int, LONG_PTR) { return 0; }

TEST_F(FallbackTest, ProcedureThatIsNotTakenLeavesNothingBehind) {
    TestWindow window;
    UINT_PTR nBefore = ProcedureOf(window);
    Subclasser subclasser(9);
    {
        ReplaceImport replaced(__imp_SetWindowLongPtrW, &RefuseLong);
        EXPECT_EQ(0, subclasser.Subclass(window));
    }
    EXPECT_EQ(nBefore, ProcedureOf(window));
    EXPECT_EQ(nullptr, ::GetPropW(window, ShellSubclass::GetTag()));
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    EXPECT_EQ(9u, subclasser.GetFirstField());
    EXPECT_EQ(1, subclasser.Subclass(window));
    EXPECT_EQ(1, subclasser.Unsubclass());
}

TEST_F(FallbackTest, WindowOfAnotherProcessGivesZeroAndIsLeftAlone) {
    HWND hwnd = ::FindWindowW(L"Shell_TrayWnd", nullptr);
    if (!hwnd) GTEST_SKIP() << "no task bar on this desktop";
    Subclasser subclasser;
    EXPECT_EQ(0, subclasser.Subclass(hwnd));
    EXPECT_EQ(nullptr, subclasser.GetWindow());
    EXPECT_EQ(nullptr, ::GetPropW(hwnd, ShellSubclass::GetTag()));
}

TEST_F(FallbackTest, UnsubclassCutsOutALaterSubclasser) {
    TestWindow window;
    UINT_PTR nBefore = ProcedureOf(window);
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(window));
    ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LaterProc));
    EXPECT_EQ(1, subclasser.Unsubclass());
    EXPECT_EQ(nBefore, ProcedureOf(window));
}

TEST_F(FallbackTest, UnsubclassWithoutThePropertyGivesZero) {
    TestWindow window;
    Subclasser subclasser;
    ASSERT_EQ(1, subclasser.Subclass(window));
    ::RemovePropW(window, L"TSLY");
    EXPECT_EQ(0, subclasser.Unsubclass());
    // The procedure is still there and finds no object: the platform's default answers.
    EXPECT_EQ(::lstrlenW(L"test window"), ::SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
    ::SetPropW(window, L"TSLY", static_cast<ShellSubclasser*>(&subclasser));
    EXPECT_EQ(1, subclasser.Unsubclass());
}

TEST_F(FallbackTest, SubclasserWithoutAProcedureGivesThePlatformsDefault) {
    TestWindow window;
    ShellSubclasser subclasser(0);
    EXPECT_EQ(::lstrlenW(L"test window"), subclasser.OnWndMsg(window, WM_GETTEXTLENGTH, 0, 0));
}

TEST_F(FallbackTest, PropertyIsGoneBeforeTheWindowIs) {
    Subclasser subclasser;
    TestWindow window;
    UINT_PTR nBefore = ProcedureOf(window);
    ASSERT_EQ(1, subclasser.Subclass(window));
    window.Destroy();
    EXPECT_EQ(0u, subclasser.GetFirstField());
    EXPECT_NE(0u, nBefore);
    EXPECT_EQ(0, subclasser.Unsubclass_Win2K());
}
} // namespace
