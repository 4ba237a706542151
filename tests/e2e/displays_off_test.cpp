// Without the switch, changes of the displays are nothing to the program: a recorded run of what it
// gets and says, and of what it stores.

#include "e2e/displays_test_support.h"

#include <algorithm>

namespace {
constexpr const wchar_t* kCompanyPath = L"Software\\Orvanta";

/// Each key and value below, in a line.
void ListKey(HKEY hkeyParent, const std::wstring& strPath, std::vector<std::wstring>& lines) {
    HKEY hkey = nullptr;
    if (::RegOpenKeyExW(hkeyParent, strPath.c_str(), 0, KEY_READ, &hkey)) return;
    lines.push_back(strPath);
    wchar_t szName[1024];
    BYTE bytes[4096];
    for (DWORD n = 0;; ++n) {
        DWORD cch = 1024, cb = sizeof(bytes), dwType = 0;
        if (::RegEnumValueW(hkey, n, szName, &cch, nullptr, &dwType, bytes, &cb)) break;
        std::wstring strLine = strPath + L":" + szName + L"=" + std::to_wstring(dwType);
        for (DWORD nByte = 0; nByte < cb; ++nByte) strLine += L" " + std::to_wstring(bytes[nByte]);
        lines.push_back(strLine);
    }
    for (DWORD n = 0, cch = 1024;
         !::RegEnumKeyExW(hkey, n, szName, &cch, nullptr, nullptr, nullptr, nullptr);
         ++n, cch = 1024) {
        ListKey(hkeyParent, strPath + L"\\" + szName, lines);
    }
    ::RegCloseKey(hkey);
}

std::vector<std::wstring> AllOfTheProduct() {
    std::vector<std::wstring> lines;
    ListKey(HKEY_CURRENT_USER, kCompanyPath, lines);
    return lines;
}

class DisplaysOff : public DisplaysTest {
  protected:
    std::string WindowName(HWND hwnd) {
        if (hwnd == monitor.Window()) return "monitor";
        if (hwnd == desktop->List()) return "list";
        if (hwnd == desktop->View()) return "view";
        if (hwnd == desktop->Progman()) return "progman";
        return "other";
    }
    std::string MessageName(UINT uMsg) {
        if (uMsg == CompanyMsg()) return "company";
        switch (uMsg) {
        case WM_DISPLAYCHANGE: return "WM_DISPLAYCHANGE";
        case WM_COPYDATA: return "WM_COPYDATA";
        case WM_WTSSESSION_CHANGE: return "WM_WTSSESSION_CHANGE";
        case WM_TIMER: return "WM_TIMER";
        }
        return std::to_string(uMsg);
    }
    /// What the monitor's thread and the desktop's windows got since the last time, a line each.
    /// (All their other windows hear of a change of the displays as well, in no order, and those of
    /// the desktop of the test's commands.)
    std::vector<std::string> TakeRun() {
        DWORD dwMonitor = ::GetWindowThreadProcessId(monitor.Window(), nullptr);
        std::vector<std::string> lines;
        for (const MessageRecord& record : recorder->All()) {
            std::string strWindow = WindowName(record.hwnd);
            bool bOther = strWindow == "other";
            if (bOther && (record.dwThread != dwMonitor || record.uMsg == WM_DISPLAYCHANGE))
                continue;
            lines.push_back((record.bPosted ? "posted " : "sent ") + MessageName(record.uMsg) +
                            " to " + strWindow);
        }
        recorder->Forget();
        return lines;
    }
    /// A change of the layout that is captured, as it is recorded.
    void ExpectCapture() {
        MoveSomething();
        ASSERT_TRUE(Capture());
        EXPECT_EQ(
            (std::vector<std::string>{"sent WM_WTSSESSION_CHANGE to monitor",
                                      "posted company to list", "sent WM_COPYDATA to monitor"}),
            TakeRun());
        EXPECT_EQ(++nStored, store.Count());
        EXPECT_EQ(ExpectedIcons(), store.Newest()->Icons());
    }
    /// The displays have changed so often, and nothing came of it in a long time.
    void ExpectNothingButChanges(int nChanges) {
        auto before = AllOfTheProduct();
        EXPECT_TRUE(StayAfterSettling());
        EXPECT_EQ(before, AllOfTheProduct());
        std::vector<std::string> expected;
        for (int n = 0; n < nChanges; ++n) {
            for (const char* psz : {"monitor", "progman"})
                expected.push_back(std::string("sent WM_DISPLAYCHANGE to ") + psz);
        }
        std::vector<std::string> run = TakeRun();
        std::sort(expected.begin(), expected.end());
        std::sort(run.begin(), run.end()); // the two windows in any order
        EXPECT_EQ(expected, run);
    }
    void Run();

    int nStored = 1;
};

/// As the program behaved before it knew anything of displays.
void DisplaysOff::Run() {
    StartPlain(5);
    StartMonitor();
    ASSERT_EQ(nStored, store.Count());
    Record();
    for (SIZE size : {kLarge, kHome, kHome, kMiddle}) display.SetSize(size);
    ExpectNothingButChanges(4);
    ExpectCapture();
    display.PlugIn({{1152, 0, 1952, 600}});
    ExpectNothingButChanges(1);
    display.SetSize(kHome);
    ExpectNothingButChanges(1);
    ExpectCapture();
}

TEST_F(DisplaysOff, RunOfChangesIsAsBeforeAndNothingIsWritten) {
    Run();
    EXPECT_FALSE(layouts.KeyExists());
}

TEST_F(DisplaysOff, RunOfChangesIsTheSameAfterItWasSwitchedOff) {
    layouts.Plant(TextOf(kHome), SomeIcons(4), 1);
    layouts.Plant(TextOf(kLarge), SomeIcons(5), 2);
    layouts.Plant(TextOf(kMiddle), SomeIcons(6), 3);
    layouts.PlantSwitch(0);
    std::vector<StoredLayout> before = layouts.All();
    Run();
    EXPECT_EQ(before, layouts.All());
}
} // namespace
