#include "shell/subclass/shell_subclass.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {
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
} // namespace

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

TEST_F(ShellSubclassTest, TagIsCutAtFourCharacters) {
    const struct {
        const wchar_t* pszTag;
        const wchar_t* pszStored;
    } cases[] = {
        {L"ABCDE", L"ABCD"}, {L"ABCD", L"ABCD"}, {L"ABC", L"ABC"}, {L"", L""}, {nullptr, L""}};
    for (const auto& row : cases) {
        Probe::Forget();
        ShellSubclass::Initialize(18, row.pszTag);
        EXPECT_STREQ(row.pszStored, ShellSubclass::GetTag());
    }
}

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
