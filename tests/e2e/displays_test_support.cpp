#include "e2e/displays_test_support.h"

#include <algorithm>

namespace {
constexpr const wchar_t* kBalloon =
    L"The displays have changed. The icons are back as they were with these displays.";
} // namespace

std::wstring TextOf(SIZE size) {
    HDC hdc = ::GetDC(nullptr);
    int nDpi = ::GetDeviceCaps(hdc, LOGPIXELSX);
    ::ReleaseDC(nullptr, hdc);
    return std::to_wstring(size.cx) + L"x" + std::to_wstring(size.cy) + L"+0+0@" +
           std::to_wstring(nDpi);
}

void DisplaysTest::SetUp() {
    EngineTest::SetUp();
    layouts.Clear();
    ASSERT_EQ(kHome.cx, display.Size().cx);
    ASSERT_EQ(kHome.cy, display.Size().cy);
}

void DisplaysTest::TearDown() {
    recorder.reset();
    EngineTest::TearDown();
    tray.reset();
    layouts.Clear();
}

DWORD DisplaysTest::RunHost(const std::wstring& strArguments) {
    ChildProcess host;
    host.Start(ProductFolder() + L"\\TSEXE64.exe", strArguments);
    return host.WaitForEnd().value_or(99);
}

void DisplaysTest::StartSwitchedOn(int nIcons) {
    layouts.PlantSwitch(1);
    StartPlain(nIcons);
    StartMonitor();
    ASSERT_TRUE(WaitUntil([&] { return IsKnownAsItIs(TextOf(display.Size())); }));
}

void DisplaysTest::StartWithTwoKnown(int nIcons) {
    StartSwitchedOn(nIcons);
    home = ExpectedIcons();
    large = Shifted(310, 190);
    layouts.Plant(TextOf(kLarge), large, 1);
    Record();
}

bool DisplaysTest::IsKnownAsItIs(const std::wstring& strDisplays) {
    std::vector<StoredIcon> icons = layouts.IconsOf(strDisplays);
    return !icons.empty() && icons == ExpectedIcons();
}

std::vector<StoredIcon> DisplaysTest::Shifted(int dx, int dy) {
    std::vector<StoredIcon> icons = ExpectedIcons();
    for (StoredIcon& icon : icons) {
        icon.x += dx;
        icon.y += dy;
    }
    return icons;
}

void DisplaysTest::ShiftIcons(int dx, int dy) {
    for (const DesktopItem& item : desktop->Items())
        desktop->Move(item.nIndex, {item.pt.x + dx, item.pt.y + dy});
}

bool DisplaysTest::LieAs(const std::vector<StoredIcon>& layout) {
    std::vector<StoredIcon> now = ExpectedIcons();
    for (const StoredIcon& icon : layout) {
        bool bThere = false;
        for (const StoredIcon& there : now) {
            bThere = bThere ||
                     (there.nNameKey == icon.nNameKey && there.x == icon.x && there.y == icon.y);
        }
        if (!bThere) return false;
    }
    return true;
}

testing::AssertionResult DisplaysTest::ComeAfterSettling(const std::vector<StoredIcon>& layout) {
    std::optional<DWORD> passed;
    if (!WaitUntil([&] { return LieAs(layout) && (passed = ChangeToRestore()).has_value(); }))
        return testing::AssertionFailure() << "they were not put back";
    if (*passed < kNotYetMs)
        return testing::AssertionFailure() << "they were put back after " << *passed << " ms";
    return testing::AssertionSuccess();
}

testing::AssertionResult DisplaysTest::StayAfterSettling() {
    std::vector<StoredIcon> before = ExpectedIcons();
    int nRestores = recorder ? CountRestores() : 0;
    if (!HoldsFor([&] { return ExpectedIcons() == before; }, kSettledMs))
        return testing::AssertionFailure() << "something moved";
    if (recorder && CountRestores() != nRestores)
        return testing::AssertionFailure() << "something was restored";
    return testing::AssertionSuccess();
}

void DisplaysTest::Record() {
    recorder.reset();
    recorder = std::make_unique<MessageRecorder>();
    recorder->WatchEverything(monitor.Window());
    recorder->WatchEngine(desktop->List());
}

int DisplaysTest::CountCapturesAsked() const {
    auto records = recorder->All();
    return static_cast<int>(std::count_if(records.begin(), records.end(), [](const auto& record) {
        return record.bPosted && record.uMsg == CompanyMsg() && record.wParam == kCodeCapture;
    }));
}

std::optional<DWORD> DisplaysTest::ChangeToRestore() const {
    std::optional<DWORD> changed, passed;
    for (const MessageRecord& record : recorder->All()) {
        if (record.hwnd == monitor.Window() &&
            (record.uMsg == WM_DISPLAYCHANGE || record.uMsg == WM_WTSSESSION_CHANGE)) {
            changed = record.dwTime;
            passed.reset();
        } else if (changed && record.hwnd == desktop->List() && record.uMsg == WM_COPYDATA) {
            passed = record.dwTime - *changed;
        }
    }
    return passed;
}

int DisplaysTest::CountRestores() const { return recorder->Count(desktop->List(), WM_COPYDATA); }

int DisplaysTest::CountBalloons() {
    int nCount = 0;
    for (const FakeTray::Call& call : tray->Calls()) {
        nCount +=
            call.dwMessage == NIM_MODIFY && (call.uFlags & NIF_INFO) && call.strInfo == kBalloon;
    }
    return nCount;
}
