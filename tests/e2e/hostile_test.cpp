// What other programs may send and plant: the shell and the monitor live on, nothing stored is
// lost, and captures go on.

#include "e2e/engine_test_support.h"
#include "support/test_window.h"

#include <commctrl.h>
#include <algorithm>
#include <climits>
#include <random>

namespace {
class Hostile : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        StartPlain(10);
        StartMonitor();
        MoveSomething();
        ASSERT_TRUE(Capture());
        ASSERT_EQ(2, store.Count());
        values = AllValues(store);
        icons = ExpectedIcons();
        uCompanyMsg = CompanyMsg();
    }
    /// The attack is over: nothing was stored, moved or lost, and the engine works.
    void ExpectUntouched() {
        FlushShell();
        EXPECT_EQ(values, AllValues(store));
        EXPECT_EQ(icons, ExpectedIcons());
        ExpectWorking();
    }
    void ExpectWorking() {
        EXPECT_TRUE(StillCaptures());
        EXPECT_TRUE(IsAllThere());
        EXPECT_TRUE(monitor.Exit());
        EXPECT_FALSE(desktop->HasGuest());
    }
    /// All that had been stored before the attack.
    bool IsAllThere() {
        auto now = AllValues(store);
        for (const auto& [strName, content] : values) {
            if (!now.count(strName) || now[strName] != content) return false;
        }
        return true;
    }
    void SendData(HWND hwnd, ULONG_PTR dwData, DWORD cbData, const void* lpData) {
        COPYDATASTRUCT data{dwData, cbData, const_cast<void*>(lpData)};
        SendTo(hwnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }
    void SendTo(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        DWORD_PTR nResult = 0;
        EXPECT_TRUE(::SendMessageTimeoutW(hwnd, uMsg, wParam, lParam, SMTO_NORMAL, kTestDeadlineMs,
                                          &nResult));
    }
    /// Records of this desktop's icons, all in other places.
    std::vector<StoredIcon> MovedIcons() {
        std::vector<StoredIcon> moved = icons;
        for (StoredIcon& icon : moved) icon.x += 300;
        return moved;
    }
    std::vector<HWND> AllWindows() {
        return {monitor.Window(), desktop->List(), desktop->View(), desktop->Progman()};
    }
    std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> values;
    std::vector<StoredIcon> icons;
    UINT uCompanyMsg = 0;
};

constexpr ULONG_PTR kCountsThatWrap[] = {
    0xFFFFFFFF,         // 32 bits of them
    0x100000000,        // 0 in 32 bits
    0x10000000A,        // 10 in 32 bits
    0x0AAAAAAAAAAAAAAB, // times 24 is 8 in 64 bits
    0x0AAAAAAAAAAAAAB5, // 248: with the ten records and 8 bytes
    0x5555555555555555, // 2^63 and more, a third of all
    0x0555555555555556, // times 24 is 2^63 + 16
    0x8000000000000000, // times 24 is 0
    0x800000000000000A, // times 24 is 240: the size of ten records
    0x2000000000000000 + 10,
    0x7FFFFFFFFFFFFFFF,
    ~ULONG_PTR{0},
};

TEST_F(Hostile, CapturesOfMoreThanTheirDataHold) {
    HWND hwnd = monitor.Window();
    std::vector<StoredIcon> moved = MovedIcons();
    for (ULONG_PTR nCount : {1, 2, 10, 11, 999, 1000, 0x10000}) {
        SendData(hwnd, nCount, 0, nullptr);
        SendData(hwnd, nCount, 23, moved.data());
        SendData(hwnd, nCount, static_cast<DWORD>(std::min(24 * nCount, ULONG_PTR{240}) - 1),
                 moved.data());
    }
    SendData(hwnd, 11, 240, moved.data());
    SendData(hwnd, 10, 239, moved.data());
    for (ULONG_PTR nCount : kCountsThatWrap) {
        for (DWORD cb : {0u, 8u, 16u, 24u, 240u}) {
            SendData(hwnd, nCount, cb, cb ? moved.data() : nullptr);
        }
    }
    ExpectUntouched();
}

TEST_F(Hostile, CapturesOfNothing) {
    HWND hwnd = monitor.Window();
    std::vector<StoredIcon> moved = MovedIcons();
    SendData(hwnd, 0, 0, nullptr);
    SendData(hwnd, 0, 240, moved.data());
    SendData(hwnd, 0, 1, moved.data());
    SendData(hwnd, 10, 0, moved.data());
    SendData(hwnd, 0, 0, moved.data());
    ExpectUntouched();
}

TEST_F(Hostile, RestoresWhoseSizeDoesNotFit) {
    HWND hwnd = desktop->List();
    std::vector<StoredIcon> moved = MovedIcons();
    moved.resize(11, moved[0]);
    for (DWORD cb : {0u, 1u, 23u, 24u, 216u, 239u, 241u, 248u, 264u}) {
        SendData(hwnd, 10, cb, cb ? moved.data() : nullptr);
    }
    SendData(hwnd, 0, 0, nullptr);
    SendData(hwnd, 0, 240, moved.data());
    for (ULONG_PTR nCount : kCountsThatWrap) {
        for (DWORD cb : {0u, 8u, 16u, 24u, 240u, 248u}) {
            SendData(hwnd, nCount, cb, cb ? moved.data() : nullptr);
        }
    }
    ExpectUntouched();
}

TEST_F(Hostile, RestoresToImpossiblePlaces) {
    constexpr LONG kPlaces[] = {INT_MIN, INT_MAX, -1, INT_MIN + 1, 0x7FFF0000};
    std::vector<StoredIcon> wild = icons;
    for (LONG n : kPlaces) {
        for (StoredIcon& icon : wild) icon.x = icon.y = n;
        SendData(desktop->List(), wild.size(), static_cast<DWORD>(24 * wild.size()), wild.data());
    }
    SendData(desktop->List(), icons.size(), static_cast<DWORD>(24 * icons.size()), icons.data());
    ExpectUntouched(); // the last one put all back
}

TEST_F(Hostile, RestoreOfManyRecordsOfNobody) {
    // The test platform itself fails with some megabytes.
    std::vector<StoredIcon> many(50'000, Record(0, {1, 1}, L"nobody"));
    SendData(desktop->List(), many.size(), static_cast<DWORD>(24 * many.size()), many.data());
    ExpectUntouched();
}

TEST_F(Hostile, CodesToEverybody) {
    const WPARAM codes[] = {kCodeOpenMenu,
                            kCodeCapture,
                            kCodeIconsMoved,
                            0,
                            2,
                            3,
                            4,
                            100,
                            121,
                            370,
                            375,
                            0xFFFF,
                            0x100000000 + kCodeCapture,
                            ~WPARAM{0}};
    for (HWND hwnd : AllWindows()) {
        for (WPARAM nCode : codes) {
            for (LPARAM lParam : {LPARAM{0}, LPARAM{1}, LPARAM{-1}}) {
                ::PostMessageW(hwnd, uCompanyMsg, nCode, lParam);
            }
            // Whoever sends for the menu waits until it has closed, unless one is open already.
            if (nCode == kCodeOpenMenu && hwnd == monitor.Window()) continue;
            SendTo(hwnd, uCompanyMsg, nCode, 0x123456789);
        }
    }
    for (WPARAM nCode : codes) ::PostMessageW(HWND_BROADCAST, uCompanyMsg, nCode, 0);
    ExpectUntouched();
}

TEST_F(Hostile, AttachingAndDetachingAtRandom) {
    std::mt19937 random(20);
    for (int n = 0; n < 300; ++n) {
        HWND hwnd = AllWindows()[random() % 4];
        LPARAM lParam = static_cast<LPARAM>(random() % 2);
        if (random() % 3) {
            ::PostMessageW(hwnd, uCompanyMsg, kCodeAttach, lParam);
        } else {
            SendTo(hwnd, uCompanyMsg, kCodeAttach, lParam);
        }
    }
    FlushShell();
    ::PostMessageW(desktop->List(), uCompanyMsg, kCodeAttach, 0);
    FlushShell();
    EXPECT_FALSE(desktop->HasGuest());
    EXPECT_TRUE(StillCaptures()); // the hook does that
    values = AllValues(store);
    icons = ExpectedIcons();
    ::PostMessageW(desktop->List(), uCompanyMsg, kCodeAttach, 1);
    FlushShell();
    EXPECT_TRUE(desktop->IsFullyAttached());
    ExpectUntouched();
}

TEST_F(Hostile, NotificationsWithBogusHandles) {
    UINT uMsg = ShellEventMsg();
    const ULONG_PTR handles[] = {
        0, 1, 4, 0xDEAD, 0x7FFFFFFF, 0xFFFFFFFF, 0x7FF600000000, ~ULONG_PTR{0}};
    for (ULONG_PTR nHandle : handles) {
        for (LPARAM nProcess :
             {LPARAM{0}, LPARAM{1}, LPARAM{-1}, static_cast<LPARAM>(::GetCurrentProcessId()),
              static_cast<LPARAM>(desktop->ProcessId()),
              static_cast<LPARAM>(monitor.ProcessId())}) {
            SendTo(monitor.Window(), uMsg, nHandle, nProcess);
            ::PostMessageW(monitor.Window(), uMsg, nHandle, nProcess);
        }
    }
    ExpectUntouched();
}

TEST_F(Hostile, FloodsOfMessages) {
    for (int n = 0; n < 10'000; ++n) {
        ::PostMessageW(monitor.Window(), uCompanyMsg, n % 2 ? kCodeIconsMoved : 375, n);
    }
    for (int n = 0; n < 10'000; ++n) {
        WPARAM nCode = n % 50 == 0 ? kCodeCapture : n % 50 == 1 ? kCodeAttach : 1000;
        ::PostMessageW(desktop->List(), uCompanyMsg, nCode, 1);
        if (n % 2'500 == 0) FlushShell(); // each wave has the time of an answer
    }
    for (int n = 0; n < 300; ++n) ::PostMessageW(monitor.Window(), WM_TIMER, 10, 0);
    ExpectUntouched();
}

TEST_F(Hostile, TicksOfOtherTimers) {
    for (WPARAM nId : {WPARAM{0}, WPARAM{1}, WPARAM{9}, WPARAM{11}, WPARAM{12}, ~WPARAM{0},
                       WPARAM{0x10000000A}}) {
        SendTo(monitor.Window(), WM_TIMER, nId, 0);
        SendTo(desktop->List(), uCompanyMsg, nId, 0);
    }
    ExpectUntouched();
}

TEST_F(Hostile, MessagesOfNoMeaning) {
    SendTo(desktop->View(), uCompanyMsg, kCodeIconsMoved, 0);
    SendTo(monitor.Window(), WM_NULL, 0, 0);
    SendTo(monitor.Window(), WM_USER + 1, ~WPARAM{0}, -1);
    SendTo(monitor.Window(), WM_APP + 1, ~WPARAM{0}, -1);
    ExpectUntouched();
}

// Pages of a section that is shared are everybody's who maps the library.
TEST_F(Hostile, SharedWordsThatSomebodyElseWrites) {
    ProductLibrary library;
    volatile ProductLibrary::SharedWords& words = library.Words();
    HWND hwndMonitor = words.hwndMonitor, hwndList = words.hwndList;
    int nSeen = 0; // of what the shell would send or post to a third program
    TestWindow wndVictim([&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == LVM_GETITEMCOUNT || uMsg == LVM_GETITEMPOSITION || uMsg == LVM_GETITEMW ||
            uMsg == WM_CLOSE || uMsg == WM_COPYDATA || uMsg == uCompanyMsg) {
            ++nSeen;
            return uMsg == LVM_GETITEMCOUNT;
        }
        return {};
    });
    auto nothingComes = [&] {
        desktop->Notify(LVN_SETDISPINFOW);
        ::PostMessageW(desktop->List(), uCompanyMsg, kCodeCapture, 0);
        FlushShell();
        MSG msg;
        while (::PeekMessageW(&msg, wndVictim, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        return nSeen == 0;
    };

    words.hwndMonitor = wndVictim;
    EXPECT_TRUE(nothingComes());
    words.nCompanyMsg = WM_CLOSE;
    EXPECT_TRUE(nothingComes());
    words.hwndMonitor = hwndMonitor;
    EXPECT_TRUE(nothingComes()); // the monitor is not closed by it either
    words.nCompanyMsg = uCompanyMsg;
    words.hwndList = wndVictim;
    EXPECT_TRUE(nothingComes());
    words.hwndList = hwndList;
    ExpectUntouched();
}

/// Bytes without sense, the same in every run.
std::vector<BYTE> RandomBytes(std::mt19937& random, size_t cb) {
    std::vector<BYTE> bytes(cb);
    for (BYTE& b : bytes) b = static_cast<BYTE>(random());
    return bytes;
}

TEST_F(Hostile, RandomRecordsAsCaptures) {
    std::mt19937 random(1);
    for (int n = 0; n < 15; ++n) { // no more than there is room for beside what is stored
        size_t nCount = 1 + random() % 40;
        std::vector<BYTE> bytes = RandomBytes(random, 24 * nCount);
        SendData(monitor.Window(), nCount, static_cast<DWORD>(bytes.size()), bytes.data());
    }
    for (const StoredSnapshot& value : store.Values()) EXPECT_TRUE(value.DigestHolds());
    EXPECT_EQ(icons, ExpectedIcons());
    ExpectWorking();
}

TEST_F(Hostile, RandomRecordsAsRestores) {
    std::mt19937 random(2);
    for (int n = 0; n < 100; ++n) {
        size_t nCount = 1 + random() % 60;
        std::vector<BYTE> bytes = RandomBytes(random, 24 * nCount);
        SendData(desktop->List(), nCount, static_cast<DWORD>(bytes.size()), bytes.data());
    }
    ExpectUntouched();
}

TEST_F(Hostile, RandomValuesInTheKey) {
    std::mt19937 random(3);
    ProductLibrary library;
    for (unsigned n = 0; n < 15; ++n) {
        size_t cb = n % 3 ? random() % 300 : 16 + 24 * (random() % 12);
        std::wstring strName = NameBeforeNow(1000 + n);
        store.Plant(strName, RandomBytes(random, cb), n % 4 == 3 ? REG_SZ : REG_BINARY);
        values = AllValues(store);
        library.Restore(strName);
        values[L""] = AllValues(store)[L""]; // the mark, or none
        if (values[L""].second.empty()) values.erase(L"");
        EXPECT_EQ(values, AllValues(store));
        EXPECT_EQ(icons, ExpectedIcons());
    }
    ExpectWorking();
}

TEST_F(Hostile, RandomValueAsTheNewest) {
    std::mt19937 random(4);
    for (unsigned n = 0; n < 8; ++n) {
        size_t cb = n % 2 ? 16 + 24 * 10 : random() % 400;
        wchar_t sz[17];
        swprintf(sz, 17, L"7FFFFFFF%08X", n);
        store.Plant(sz, RandomBytes(random, cb), n % 3 ? REG_BINARY : REG_MULTI_SZ);
        values = AllValues(store);
        EXPECT_TRUE(StillCaptures());
        EXPECT_TRUE(IsAllThere());
    }
    ExpectWorking();
}

TEST_F(Hostile, MarkOfAnotherKind) {
    store.Plant(L"", std::vector<BYTE>(3000, 0x41), REG_BINARY);
    std::wstring strName = store.Newest()->strName;
    ProductLibrary().Restore(strName);
    EXPECT_EQ(strName, store.Marked());
    values = AllValues(store);
    ExpectUntouched();
}
} // namespace
