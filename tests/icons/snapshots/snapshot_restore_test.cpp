#include "icons/agent/desktop_shared_data.h"
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/snapshot_store.h"

#include <gtest/gtest.h>
#include <commctrl.h>
#include <atomic>
#include <thread>

namespace {
constexpr unsigned __int64 kTime = 0x01DB000000000000;
constexpr LONG_PTR kAutoArrange = LVS_AUTOARRANGE;

/// What a restore sent to the list view, seen by a window procedure in front of the control's own.
struct Sent {
    static inline WNDPROC pfnBefore = nullptr;
    static inline std::vector<Layout> layouts;
    static inline std::vector<WPARAM> senders;

    static LRESULT CALLBACK Proc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg == WM_COPYDATA) {
            const auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            EXPECT_EQ(pData->dwData * sizeof(IconRecord), pData->cbData);
            const auto* pRecords = static_cast<const IconRecord*>(pData->lpData);
            layouts.emplace_back(pRecords, pRecords + pData->dwData);
            senders.push_back(wParam);
            return 1;
        }
        return ::CallWindowProcW(pfnBefore, hwnd, uMsg, wParam, lParam);
    }
};

/// Answers the one message box that comes up in this process, in a thread of its own.
class MessageBoxDriver {
  public:
    explicit MessageBoxDriver(int nAnswer)
        : worker([this, nAnswer] {
              for (DWORD dwEnd = ::GetTickCount() + 10000; !bStop && ::GetTickCount() < dwEnd;) {
                  HWND hwndBox = FindBox();
                  if (!hwndBox) {
                      ::Sleep(5);
                      continue;
                  }
                  wchar_t sz[600] = L"";
                  ::GetDlgItemTextW(hwndBox, 0xFFFF, sz, 600);
                  strText = sz;
                  bAnswered = true;
                  ::PostMessageW(hwndBox, WM_COMMAND, nAnswer, 0);
                  return;
              }
          }) {}
    ~MessageBoxDriver() { Stop(); }

    void Stop() {
        bStop = true;
        if (worker.joinable()) worker.join();
    }
    bool WasAsked() {
        Stop();
        return bAnswered;
    }
    const std::wstring& GetText() const { return strText; }

  private:
    static HWND FindBox() {
        for (HWND hwnd = nullptr;
             (hwnd = ::FindWindowExW(nullptr, hwnd, L"#32770", nullptr)) != nullptr;) {
            DWORD dwProcess = 0;
            ::GetWindowThreadProcessId(hwnd, &dwProcess);
            if (dwProcess == ::GetCurrentProcessId() && ::IsWindowVisible(hwnd)) return hwnd;
        }
        return nullptr;
    }

    std::atomic<bool> bStop{false};
    std::atomic<bool> bAnswered{false};
    std::wstring strText;
    std::thread worker; // last: it uses the others
};

class SnapshotRestore : public testing::Test {
  protected:
    SnapshotKey raw;
    HWND hwnd = nullptr;

    void SetUp() override {
        ::InitCommonControls();
        hwnd = ::CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP | LVS_ICON, 0, 0, 300, 200, nullptr,
                                 nullptr, ::GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(nullptr, hwnd);
        Sent::pfnBefore = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Sent::Proc)));
        desktopSharedData.hwndListView = hwnd;
    }
    void TearDown() override {
        desktopSharedData.hwndListView = nullptr;
        ::DestroyWindow(hwnd);
        Sent::layouts.clear();
        Sent::senders.clear();
    }
    void SetAutoArrange() {
        ::SetWindowLongPtrW(hwnd, GWL_STYLE, ::GetWindowLongPtrW(hwnd, GWL_STYLE) | kAutoArrange);
    }
    std::wstring GetMark() {
        RegContent content = raw.Value(L"");
        if (content.bytes.size() < sizeof(wchar_t)) return L"none";
        EXPECT_EQ(static_cast<DWORD>(REG_SZ), content.dwType);
        return reinterpret_cast<const wchar_t*>(content.bytes.data());
    }
};

bool Same(const Layout& left, const Layout& right) {
    return left.size() == right.size() &&
           memcmp(left.data(), right.data(), left.size() * sizeof(IconRecord)) == 0;
}

TEST_F(SnapshotRestore, SendsTheRecordsAndMarksTheSnapshot) {
    Layout layout = MakeLayout(4);
    raw.Plant(kTime, layout);
    raw.Plant(kTime + 1, MakeLayout(5));
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, Sent::layouts.size());
    EXPECT_TRUE(Same(layout, Sent::layouts[0]));
    EXPECT_EQ(0u, Sent::senders[0]);
    EXPECT_EQ(NameOf(kTime), GetMark());
}

TEST_F(SnapshotRestore, MarkMovesToTheSnapshotRestoredLast) {
    raw.Plant(kTime, MakeLayout(1));
    raw.Plant(kTime + 1, MakeLayout(999));
    RestoreSnapshot(kTime);
    RestoreSnapshot(kTime + 1);
    EXPECT_EQ(NameOf(kTime + 1), GetMark());
    ASSERT_EQ(2u, Sent::layouts.size());
    EXPECT_EQ(999u, Sent::layouts[1].size());
}

TEST_F(SnapshotRestore, RestoringTheMarkedSnapshotAgainWritesNothing) {
    raw.Plant(kTime, MakeLayout(1));
    RegBytes mark = BytesOf(NameOf(kTime));
    raw.Put(L"", REG_BINARY, mark); // a write would change the type
    RestoreSnapshot(kTime);
    EXPECT_EQ((RegContent{REG_BINARY, mark}), raw.Value(L""));
    EXPECT_EQ(1u, Sent::layouts.size());
}

TEST_F(SnapshotRestore, SnapshotWithoutRecordsIsNeitherSentNorMarked) {
    raw.Put(NameOf(kTime), REG_BINARY, RegBytes(16, 1));
    raw.Put(NameOf(kTime + 1), REG_BINARY, RegBytes(41, 1));
    RestoreSnapshot(kTime);
    RestoreSnapshot(kTime + 1);
    RestoreSnapshot(kTime + 2); // missing
    EXPECT_TRUE(Sent::layouts.empty());
    EXPECT_EQ(L"none", GetMark());
}

TEST_F(SnapshotRestore, BadDigestSendsZerosAndMarksAllTheSame) {
    RegBytes value = MakeSnapshotValue(MakeLayout(3));
    value[20] ^= 1;
    raw.Put(NameOf(kTime), REG_BINARY, value);
    RestoreSnapshot(kTime);
    ASSERT_EQ(1u, Sent::layouts.size());
    EXPECT_TRUE(Same(Layout(3), Sent::layouts[0]));
    EXPECT_EQ(NameOf(kTime), GetMark());
}

TEST_F(SnapshotRestore, AutoArrangeIsClearedAfterAYes) {
    SetAutoArrange();
    LONG_PTR dwBefore = ::GetWindowLongPtrW(hwnd, GWL_STYLE);
    raw.Plant(kTime, MakeLayout(2));
    MessageBoxDriver driver(IDYES);
    RestoreSnapshot(kTime);
    EXPECT_TRUE(driver.WasAsked());
    EXPECT_EQ(dwBefore & ~kAutoArrange, ::GetWindowLongPtrW(hwnd, GWL_STYLE));
    EXPECT_EQ(1u, Sent::layouts.size());
    EXPECT_EQ(NameOf(kTime), GetMark());
    EXPECT_EQ(
        L"Your Desktop is currently set to auto arrange the icons. In order to restore the "
        L"icons, the auto arrange option needs to be cleared.\n\nOK to clear this option? (If "
        L"you select No, the icons will NOT be restored.)",
        driver.GetText());
}

TEST_F(SnapshotRestore, NothingChangesAfterANo) {
    SetAutoArrange();
    LONG_PTR dwBefore = ::GetWindowLongPtrW(hwnd, GWL_STYLE);
    raw.Plant(kTime, MakeLayout(2));
    raw.PutStr(L"", L"before");
    MessageBoxDriver driver(IDNO);
    RestoreSnapshot(kTime);
    EXPECT_TRUE(driver.WasAsked());
    EXPECT_EQ(dwBefore, ::GetWindowLongPtrW(hwnd, GWL_STYLE));
    EXPECT_TRUE(Sent::layouts.empty());
    EXPECT_EQ(L"before", GetMark());
}

TEST_F(SnapshotRestore, WithoutAutoArrangeNothingIsAsked) {
    raw.Plant(kTime, MakeLayout(2));
    MessageBoxDriver driver(IDNO);
    RestoreSnapshot(kTime);
    EXPECT_FALSE(driver.WasAsked());
    EXPECT_EQ(1u, Sent::layouts.size());
}

TEST_F(SnapshotRestore, WithoutAListViewOnlyTheMarkIsSet) {
    desktopSharedData.hwndListView = nullptr;
    raw.Plant(kTime, MakeLayout(2));
    RestoreSnapshot(kTime);
    EXPECT_EQ(NameOf(kTime), GetMark());
}
} // namespace
