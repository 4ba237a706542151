#include "shell/namespace/pidl.h"
#include "shell/namespace/shell_notify.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
constexpr UINT kNotifyMsg = WM_APP + 3;
constexpr UINT kOtherMsg = WM_APP + 4;

struct Probe : ShellNotify {
    using ShellNotify::bInitialized;
    using ShellNotify::pfnDeregister;
    using ShellNotify::pfnLock;
    using ShellNotify::pfnRegister;
    using ShellNotify::pfnUnlock;
};

/// Finds the functions anew before and after each test.
class ShellNotifyTest : public testing::Test {
  protected:
    ShellNotifyTest() { Forget(); }
    ~ShellNotifyTest() override {
        SetRuntimeLookup(nullptr);
        Forget();
    }
    static void Forget() {
        Probe::bInitialized = 0;
        Probe::pfnRegister = nullptr;
        Probe::pfnDeregister = nullptr;
        Probe::pfnLock = nullptr;
        Probe::pfnUnlock = nullptr;
    }
};

/// A shell that only writes down what it is asked.
struct FakeShell {
    struct Call {
        HWND hwnd;
        int nSources;
        LONG nEvents;
        UINT uMsg;
        int nEntries;
        const void* pidl;
        BOOL bRecursive;
    };
    static inline std::vector<Call> registered;
    static inline std::vector<ULONG> ended;
    static inline std::string strOrder;
    static inline ULONG nNextId = 100;

    static ULONG WINAPI Register(HWND hwnd, int nSources, LONG nEvents, UINT uMsg, int nEntries,
                                 const SHChangeNotifyEntry* pEntry) {
        registered.push_back(
            {hwnd, nSources, nEvents, uMsg, nEntries, pEntry->pidl, pEntry->fRecursive});
        strOrder += 'r';
        return nNextId ? nNextId++ : 0;
    }
    static BOOL WINAPI Deregister(ULONG nId) {
        ended.push_back(nId);
        strOrder += 'd';
        return TRUE;
    }
    static void Install() {
        registered.clear();
        ended.clear();
        strOrder.clear();
        nNextId = 100;
        Probe::pfnRegister = Register;
        Probe::pfnDeregister = Deregister;
    }
};

/// A window that writes down the notifications that it gets.
struct NotifiedWindow {
    std::vector<long> events;
    std::vector<std::wstring> paths;
    int nOther = 0;
    TestWindow window{[this](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg == kOtherMsg) ++nOther;
        if (uMsg != kNotifyMsg) return std::nullopt;
        ITEMIDLIST** ppidl = nullptr;
        long nEvent = 0;
        void* hLock = ShellNotify::OnMsgStart(wParam, lParam, &ppidl, &nEvent);
        EXPECT_NE(nullptr, hLock);
        if (!hLock) return 0;
        wchar_t szPath[MAX_PATH] = {};
        if (ppidl && ppidl[0]) ::SHGetPathFromIDListW(ppidl[0], szPath);
        events.push_back(nEvent);
        paths.push_back(szPath);
        ShellNotify::OnMsgEnd(hLock);
        return 0;
    }};
};
} // namespace

TEST_F(ShellNotifyTest, FirstConstructionFindsTheFunctions) {
    EXPECT_EQ(0, Probe::bInitialized);
    ShellNotify notify;
    EXPECT_EQ(1, Probe::bInitialized);
    EXPECT_NE(nullptr, Probe::pfnRegister);
    EXPECT_NE(nullptr, Probe::pfnDeregister);
    EXPECT_NE(nullptr, Probe::pfnLock);
    EXPECT_NE(nullptr, Probe::pfnUnlock);
}

TEST_F(ShellNotifyTest, WithoutTheFunctionsNothingIsRegistered) {
    HideFunctions hide{"SHChangeNotifyRegister", "SHChangeNotifyDeregister",
                       "SHChangeNotification_Lock", "SHChangeNotification_Unlock"};
    TestWindow window;
    ShellNotify notify;
    EXPECT_EQ(1, Probe::bInitialized);
    EXPECT_EQ(0, notify.Register(window, SHCNE_ALLEVENTS, kNotifyMsg, L"C:\\", 1));
    ITEMIDLIST** ppidl = nullptr;
    long nEvent = 0;
    EXPECT_EQ(nullptr, ShellNotify::OnMsgStart(1, 2, &ppidl, &nEvent));
    ShellNotify::OnMsgEnd(nullptr);
}

TEST_F(ShellNotifyTest, FunctionsAreNotLookedForAgain) {
    {
        HideFunctions hide{"SHChangeNotifyRegister"};
        ShellNotify notify;
    }
    ShellNotify notify;
    EXPECT_EQ(nullptr, Probe::pfnRegister);
}

TEST_F(ShellNotifyTest, TellsTheWindowOfAChangeBelowTheFolder) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"new.txt", "x");
    NotifiedWindow notified;
    ShellNotify notify;
    ASSERT_EQ(1, notify.Register(notified.window, SHCNE_CREATE | SHCNE_DELETE, kNotifyMsg,
                                 folder.Get().c_str(), 1));
    ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW | SHCNF_FLUSH, strFile.c_str(), nullptr);
    ASSERT_TRUE(PumpUntil([&] { return !notified.events.empty(); }));
    EXPECT_EQ(SHCNE_CREATE, notified.events[0]);
    EXPECT_EQ(0, ::lstrcmpiW(strFile.c_str(), notified.paths[0].c_str()));
}

TEST_F(ShellNotifyTest, DestructorEndsTheRegistration) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"new.txt", "x");
    NotifiedWindow first, second;
    ShellNotify stays;
    ASSERT_EQ(1, stays.Register(second.window, SHCNE_CREATE, kNotifyMsg, folder.Get().c_str(), 1));
    {
        ShellNotify notify;
        ASSERT_EQ(1,
                  notify.Register(first.window, SHCNE_CREATE, kNotifyMsg, folder.Get().c_str(), 1));
    }
    ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW | SHCNF_FLUSH, strFile.c_str(), nullptr);
    ASSERT_TRUE(PumpUntil([&] { return !second.events.empty(); }));
    EXPECT_TRUE(first.events.empty());
}

TEST_F(ShellNotifyTest, SecondRegistrationReplacesTheFirst) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"new.txt", "x");
    NotifiedWindow notified;
    ShellNotify notify;
    ASSERT_EQ(1,
              notify.Register(notified.window, SHCNE_CREATE, kOtherMsg, folder.Get().c_str(), 1));
    ASSERT_EQ(1,
              notify.Register(notified.window, SHCNE_CREATE, kNotifyMsg, folder.Get().c_str(), 1));
    ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW | SHCNF_FLUSH, strFile.c_str(), nullptr);
    ASSERT_TRUE(PumpUntil([&] { return !notified.events.empty(); }));
    EXPECT_EQ(0, notified.nOther);
}

TEST_F(ShellNotifyTest, FirstRegistrationEndsBeforeTheSecondBegins) {
    {
        ShellNotify notify;
        FakeShell::Install();
        notify.Register(nullptr, 1, 2, static_cast<const ITEMIDLIST*>(nullptr), 0);
        notify.Register(nullptr, 1, 2, static_cast<const ITEMIDLIST*>(nullptr), 0);
        EXPECT_EQ("rdr", FakeShell::strOrder);
        EXPECT_EQ((std::vector<ULONG>{100}), FakeShell::ended);
    }
    EXPECT_EQ((std::vector<ULONG>{100, 101}), FakeShell::ended);
}

TEST_F(ShellNotifyTest, EndedRegistrationIsNotEndedTwiceWhenTheNextFails) {
    {
        ShellNotify notify;
        FakeShell::Install();
        EXPECT_EQ(1, notify.Register(nullptr, 1, 2, static_cast<const ITEMIDLIST*>(nullptr), 0));
        FakeShell::nNextId = 0;
        EXPECT_EQ(0, notify.Register(nullptr, 1, 2, static_cast<const ITEMIDLIST*>(nullptr), 0));
    }
    EXPECT_EQ((std::vector<ULONG>{100}), FakeShell::ended);
}

TEST_F(ShellNotifyTest, AsksForTheSourcesOfItsKind) {
    TestWindow window;
    ITEMIDLIST* pidl = GetPidlOf(L"C:\\");
    ASSERT_NE(nullptr, pidl);
    {
        ShellNotify notify;
        FakeShell::Install();
        EXPECT_EQ(1, notify.Register(window, SHCNE_RENAMEITEM, kNotifyMsg, pidl, 1));
        EXPECT_EQ(1, notify.Register(window, SHCNE_RENAMEITEM, kNotifyMsg, pidl, 0));
    }
    ASSERT_EQ(2u, FakeShell::registered.size());
    const auto& recursive = FakeShell::registered[0];
    EXPECT_EQ(window.Get(), recursive.hwnd);
    EXPECT_EQ(0x9003, recursive.nSources);
    EXPECT_EQ(SHCNE_RENAMEITEM, recursive.nEvents);
    EXPECT_EQ(kNotifyMsg, recursive.uMsg);
    EXPECT_EQ(1, recursive.nEntries);
    EXPECT_EQ(pidl, recursive.pidl);
    EXPECT_TRUE(recursive.bRecursive);
    EXPECT_EQ(0x8003, FakeShell::registered[1].nSources);
    EXPECT_FALSE(FakeShell::registered[1].bRecursive);
    ShellFree(pidl);
}

TEST_F(ShellNotifyTest, PathWithoutAListWatchesTheWholeNamespace) {
    ShellNotify notify;
    FakeShell::Install();
    EXPECT_EQ(1, notify.Register(nullptr, 1, 2, L"C:\\no such folder at all", 0));
    EXPECT_EQ(1, notify.Register(nullptr, 1, 2, static_cast<const wchar_t*>(nullptr), 0));
    ASSERT_EQ(2u, FakeShell::registered.size());
    EXPECT_EQ(nullptr, FakeShell::registered[0].pidl);
    EXPECT_EQ(nullptr, FakeShell::registered[1].pidl);
}

TEST_F(ShellNotifyTest, PathIsRegisteredByItsList) {
    ShellNotify notify;
    FakeShell::Install();
    EXPECT_EQ(1, notify.Register(nullptr, 1, 2, L"C:\\", 1));
    ASSERT_EQ(1u, FakeShell::registered.size());
    EXPECT_NE(nullptr, FakeShell::registered[0].pidl);
}
