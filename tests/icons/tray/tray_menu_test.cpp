#include "app/identity/product_info.h"
#include "app/launch/open_html.h"
#include "app/shell_start_recorder.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/displays/restore_on_change.h"
#include "icons/displays_test_support.h"
#include "icons/icons_test_support.h"
#include "icons/menu_test_support.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/tray/recommendations.h"
#include "icons/tray/tray_front_end.h"
#include "icons/tray/tray_menu.h"
#include "resources/resource_ids.h"
#include "support/fake_tray.h"
#include "support/gui_objects.h"
#include "support/heap_count.h"
#include "support/menu_driver.h"
#include "support/message_box_driver.h"
#include "support/replace_import.h"
#include "wnd/core/cswnd.h"

#include <gtest/gtest.h>
#include <thread>

extern "C" FARPROC __imp_DestroyMenu, __imp_RegSetValueExW;

namespace {
using DestroyMenuFunc = BOOL WINAPI(HMENU);
DestroyMenuFunc* pfnPlatformsDestroy = nullptr;
int nMenusDestroyed = 0, nDestroyedTwice = 0, nValuesSet = 0;

BOOL WINAPI CountDestroyed(HMENU hmenu) {
    ++(::IsMenu(hmenu) ? nMenusDestroyed : nDestroyedTwice);
    return pfnPlatformsDestroy(hmenu);
}

LSTATUS WINAPI CountSet(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD) {
    ++nValuesSet;
    return ERROR_SUCCESS;
}

constexpr const wchar_t* kTestRoot = L"Software\\Orvanta\\TrayMenuTest";

/// Sees the menus of a window when they open, and what becomes of the window.
class MenuWatcher : public WMHook {
  public:
    int OnWndMessage(CSWnd*, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT*) override {
        if (uMsg == WM_INITMENUPOPUP) {
            auto hmenu = reinterpret_cast<HMENU>(wParam);
            if (!HIWORD(lParam) && texts.empty()) {
                hmenuOpen = hmenu;
                texts = TextsOf(hmenu);
                items = ItemsOf(hmenu);
                for (const SeenItem& item : items)
                    if (item.hmenuSub) subTexts = TextsOf(item.hmenuSub);
            }
        }
        if (uMsg == WM_ENTERMENULOOP) ++nOpened;
        if (uMsg == WM_ENTERIDLE && bCloseWhenShown) ::EndMenu();
        if (uMsg == WM_CLOSE) ++nCloses;
        return 0;
    }
    HMENU hmenuOpen = nullptr;
    std::vector<std::wstring> texts, subTexts;
    std::vector<SeenItem> items;
    int nOpened = 0, nCloses = 0;
    bool bCloseWhenShown = false;
};

/// A monitor window with a desktop of the test's, and a store and a day counter of the test's.
class TrayMenu : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        key.Create(); // the set-up above empties the store
        GetMyProductInfo().PushAppRootKey(root.Path().c_str());
        SetDays(0);
        monitor = std::make_unique<MyMonitor_Wnd>(frontEnd);
        ASSERT_TRUE(monitor->CreateHidden(nullptr));
        Share(view, *monitor);
        monitor->AddWndHook(&watcher);
        PutCursor({500, 300});
    }
    void TearDown() override {
        monitor->Destroy();
        monitor.reset();
        GetMyProductInfo().PopAppRootKey();
        EngineTest::TearDown();
    }
    /// The counter, as if today were known already.
    void SetDays(DWORD dwDays) {
        setup.PutDword(L"DayCount", dwDays);
        setup.PutStr(L"LastUse", DateText(TestDate::Get(), 0));
    }
    /// Opens the menu and does what fn does while it is open.
    void Open(MenuDriver::Steps fn) {
        watcher.texts.clear();
        watcher.subTexts.clear();
        MenuDriver driver(*monitor, std::move(fn));
        OpenTrayMenu(*monitor);
        EXPECT_TRUE(driver.Finish());
    }
    template <class... Keys>
    void Press(Keys... keys) {
        Open([=](MenuDriver& hands) { hands.Press(keys...); });
    }
    /// Opens the menu and lets it go as soon as it is shown: no hands, much quicker.
    void Glance() {
        watcher.texts.clear();
        watcher.subTexts.clear();
        watcher.bCloseWhenShown = true;
        OpenTrayMenu(*monitor);
        watcher.bCloseWhenShown = false;
    }
    /// As the agent sends a capture; from any thread.
    void SendCapture(Layout layout) {
        COPYDATASTRUCT data{layout.size(), static_cast<DWORD>(layout.size() * sizeof(IconRecord)),
                            layout.data()};
        ::SendMessageW(*monitor, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
    }
    HMENU SubMenu() const { return watcher.items[1].hmenuSub; }
    bool HasText(const std::wstring& str) {
        return std::find(watcher.texts.begin(), watcher.texts.end(), str) != watcher.texts.end();
    }

    TestKey root{kTestRoot};
    TestKey setup{std::wstring(kTestRoot) + L"\\Setup"};
    TestDate today{2017, 11, 3};
    SnapshotKey key;
    TestView view;
    MenuWatcher watcher;
    TrayFrontEnd frontEnd;
    const std::vector<const Recommendation*> entries = RecommendationsOfTheMenu();
    std::unique_ptr<MyMonitor_Wnd> monitor;
};

using Texts = std::vector<std::wstring>;

TEST_F(TrayMenu, WithoutSnapshotsRestoringIsGreyedAndDeletingIsMissing) {
    Press(VK_ESCAPE);
    EXPECT_EQ(
        (Texts{L"Remember icons now", L"(Restore icons)", L"-", L"About Tessaly...", L"Exit"}),
        watcher.texts);
    const UINT kIds[] = {1, 2, 0, 8, 9};
    for (size_t n : {0u, 1u, 3u, 4u}) EXPECT_EQ(kIds[n], watcher.items[n].nId);
    EXPECT_EQ(nullptr, watcher.items[1].hmenuSub);
}

TEST_F(TrayMenu, WithSnapshotsTheyAreInASubMenuAndCanBeDeleted) {
    key.Plant(StampOf(2017, 11, 3, 8, 0, 0), MakeLayout(2));
    key.Plant(StampOf(2017, 11, 1, 8, 0, 0), MakeLayout(2));
    key.PutStr(L"", NameOf(StampOf(2017, 11, 3, 8, 0, 0)));
    Press(VK_ESCAPE);
    EXPECT_EQ((Texts{L"Remember icons now", L"Restore icons", L"Delete all snapshots...", L"-",
                     L"About Tessaly...", L"Exit"}),
              watcher.texts);
    EXPECT_EQ(3u, watcher.items[2].nId);
    SYSTEMTIME st{2017, 11, 5, 3, 8, 0, 0, 0}, stOlder{2017, 11, 3, 1, 8, 0, 0, 0};
    EXPECT_EQ((Texts{L"*Today at " + TimeText(st) + L"*",
                     DateText(stOlder, DATE_LONGDATE) + L" " + TimeText(stOlder)}),
              watcher.subTexts);
}

TEST_F(TrayMenu, RecommendationComesAndGoesWithTheDayCounter) {
    int nShown = 0;
    for (DWORD dwDays = 0; dwDays <= 8; ++dwDays) {
        SetDays(dwDays);
        Glance();
        bool bDue = dwDays == 1 || dwDays == 3 || dwDays >= 5;
        if (!bDue) {
            EXPECT_EQ(5u, watcher.texts.size()) << dwDays;
            continue;
        }
        const Recommendation& row = *entries[nShown++ % 5]; // each opening moves on by one
        EXPECT_EQ((Texts{L"Remember icons now", L"(Restore icons)", L"-",
                         L"*" + std::wstring(row.pszLine1) + L"*", row.pszLine2, row.pszLine3, L"-",
                         L"About Tessaly...", L"Exit"}),
                  watcher.texts)
            << dwDays;
        EXPECT_EQ(100u, watcher.items[3].nId);
    }
    EXPECT_EQ(6, nShown);
}

TEST_F(TrayMenu, OpeningCountsTheDay) {
    for (int n = 1; n <= 26; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(2));
    key.PutStr(L"", NameOf(StampOf(2017, 10, 3)));
    Glance();
    EXPECT_EQ(6u, watcher.texts.size());
    today.Set(2017, 11, 4); // the program runs on
    Glance();
    EXPECT_EQ(10u, watcher.texts.size()); // 1 by now
    EXPECT_EQ(1, *reinterpret_cast<const int*>(setup.Value(L"DayCount").bytes.data()));
    unsigned long long qwWritten = setup.LastWrite(), qwRoot = root.LastWrite();
    unsigned long long qwStore = key.LastWrite();
    { // the same day: nothing is written
        ReplaceImport replaced(__imp_RegSetValueExW, &CountSet);
        nValuesSet = 0;
        for (int n = 0; n < 3; ++n) Glance();
        EXPECT_EQ(0, nValuesSet);
        today.Set(2017, 11, 5); // what a write would look like
        Glance();
        EXPECT_EQ(2, nValuesSet);
    }
    EXPECT_EQ(qwWritten, setup.LastWrite());
    EXPECT_EQ(qwRoot, root.LastWrite());
    EXPECT_EQ(qwStore, key.LastWrite());
}

TEST_F(TrayMenu, RememberAsksTheListViewForACaptureThatIsToldOf) {
    Press(VK_DOWN, VK_RETURN);
    PumpAll();
    EXPECT_EQ(1, view.spyListView.CountOfCode(kCodeCapture));
    EXPECT_EQ(1, monitor->GetSnapshotAnnounce());
    EXPECT_FALSE(IsSuppressing(*monitor));
}

TEST_F(TrayMenu, NothingChosenDoesNothing) {
    key.Plant(StampOf(2017, 11, 1), MakeLayout(2));
    ShellStartRecorder recorder;
    monitor->ScheduleCapture();
    auto before = key.Values();
    Press(VK_ESCAPE);
    PumpAll();
    EXPECT_EQ(0, view.spyListView.CountOfCode(kCodeCapture));
    EXPECT_EQ(0, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_EQ(0, monitor->GetSnapshotAnnounce());
    EXPECT_EQ(0, watcher.nCloses);
    EXPECT_TRUE(IsCapturePending(*monitor));
    EXPECT_FALSE(IsSuppressing(*monitor));
    EXPECT_EQ(before, key.Values());
    EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(TrayMenu, RestoreSuppressesCapturesBeforeAnythingMoves) {
    auto layout = MakeLayout(3);
    for (int n = 1; n <= 3; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(3, n));
    monitor->ScheduleCapture();
    int nCopies = 0;
    view.spyListView.handler = [&](UINT uMsg, WPARAM, LPARAM lParam, LRESULT*) {
        if (uMsg != WM_COPYDATA) return 0;
        ++nCopies;
        EXPECT_TRUE(IsSuppressing(*monitor));
        EXPECT_FALSE(IsCapturePending(*monitor));
        auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        EXPECT_EQ(3u, pData->dwData);
        auto expected = MakeLayout(3, 2);
        EXPECT_EQ(0, memcmp(expected.data(), pData->lpData, pData->cbData));
        return 0;
    };
    // The second in the sub-menu, which opens with its first one lit.
    Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_DOWN, VK_RETURN);
    EXPECT_EQ(1, nCopies);
    view.spyListView.handler = nullptr;
    EXPECT_EQ(BytesOf(NameOf(StampOf(2017, 10, 2))), key.Value(L"").bytes);
    Glance();
    EXPECT_EQ(0u, watcher.subTexts[0].find(DateText({2017, 10, 2, 3, 0, 0, 0, 0}, DATE_LONGDATE)));
    EXPECT_EQ(L'*', watcher.subTexts[1][0]); // bold at the next opening
}

TEST_F(TrayMenu, RestoreByTheMouse) {
    for (int n = 1; n <= 3; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(3, n));
    monitor->ScheduleCapture();
    Open([&](MenuDriver& hands) {
        hands.Click(hands.PlaceOf(watcher.hmenuOpen, 1));
        EXPECT_TRUE(WaitUntil([&] { return hands.CountPopups() == 2; }));
        hands.Click(hands.PlaceOf(SubMenu(), 2));
    });
    EXPECT_EQ(BytesOf(NameOf(StampOf(2017, 10, 1))), key.Value(L"").bytes);
    EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_TRUE(IsSuppressing(*monitor));
    EXPECT_FALSE(IsCapturePending(*monitor));
}

TEST_F(TrayMenu, RestoreLeadsToNoCaptureOfItsOwn) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(3));
    monitor->ScheduleCapture();
    view.spyListView.handler = [&](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        if (uMsg == WM_COPYDATA) { // the icons move, and the shell tells of it
            ::SendMessageW(*monitor, GetTestCompanyMsg(), kCodeIconsMoved, 0);
            EXPECT_FALSE(IsCapturePending(*monitor));
        }
        return 0;
    };
    Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_RETURN);
    view.spyListView.handler = nullptr;
    ::SendMessageW(*monitor, GetTestCompanyMsg(), kCodeIconsMoved, 0); // a little later, too
    EXPECT_FALSE(IsCapturePending(*monitor));
    EXPECT_TRUE(PumpUntil([&] { return !IsSuppressing(*monitor); }, 3000));
    ::SendMessageW(*monitor, GetTestCompanyMsg(), kCodeIconsMoved, 0);
    EXPECT_TRUE(IsCapturePending(*monitor));
}

TEST_F(TrayMenu, OldestOfAnyNumberOfSnapshotsCanBeRestored) {
    for (int nCount : {1, 25, 26}) {
        key.Delete();
        key.Create();
        for (int n = 1; n <= nCount; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(3, n));
        view.spyListView.Clear();
        Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_UP, VK_RETURN); // up from the first row is the last
        EXPECT_EQ(static_cast<size_t>(nCount), watcher.subTexts.size());
        EXPECT_EQ(1, view.spyListView.CountOf(WM_COPYDATA)) << nCount;
        EXPECT_EQ(BytesOf(NameOf(StampOf(2017, 10, 1))), key.Value(L"").bytes) << nCount;
    }
}

TEST_F(TrayMenu, SnapshotThatAgedOutAfterItsRestoreLeavesNothingBold) {
    for (int n = 1; n <= 25; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(3, n));
    Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_UP, VK_RETURN);
    Glance();
    EXPECT_EQ(L'*', watcher.subTexts.at(24)[0]);
    SendCapture(MakeLayout(4)); // the 26th
    EXPECT_EQ(BytesOf(NameOf(StampOf(2017, 10, 1))), key.Value(L"").bytes);
    Glance();
    EXPECT_EQ(25u, watcher.subTexts.size());
    for (const std::wstring& str : watcher.subTexts) EXPECT_NE(L'*', str[0]);
}

TEST_F(TrayMenu, SnapshotOfNoSnapshotsSizeIsListedAndRestoresNothing) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(3));
    key.PutStr(NameOf(StampOf(2017, 10, 2)), L"no snapshot");
    key.Plant(0xFFFFFFFFFFFFFFFF, MakeLayout(3)); // no date: not listed
    auto before = key.Values();
    Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_RETURN);
    EXPECT_EQ(2u, watcher.subTexts.size());
    EXPECT_EQ(0, view.spyListView.CountOf(WM_COPYDATA));
    EXPECT_EQ(before, key.Values());
    EXPECT_TRUE(IsSuppressing(*monitor));
}

TEST_F(TrayMenu, RestoreThatMovedNothingIsNotKeptForTheDisplays) {
    DisplaysKey displays;
    SetRestoreOnChange(1);
    PumpAll();
    key.Plant(StampOf(2017, 10, 1), MakeLayout(3));
    auto askedAfterARestore = [&] {
        view.spyView.Clear();
        Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_RETURN);
        PumpAll();
        return view.spyView.CountOfCode(kCodeCapture);
    };
    EXPECT_EQ(1, askedAfterARestore());
    LONG_PTR dwStyle = ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE);
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle | LVS_AUTOARRANGE);
    {
        MessageBoxDriver driver({IDNO});
        EXPECT_EQ(0, askedAfterARestore()); // of the snapshot that is marked
        EXPECT_EQ(1u, driver.Finish().size());
    }
    ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE, dwStyle);
    RegBytes damaged = MakeSnapshotValue(MakeLayout(3));
    damaged[20] ^= 1;
    key.Put(NameOf(StampOf(2017, 10, 2)), REG_BINARY, damaged);
    EXPECT_EQ(0, askedAfterARestore());
    EXPECT_EQ(BytesOf(NameOf(StampOf(2017, 10, 2))), key.Value(L"").bytes);
    SetRestoreOnChange(0); // nothing is left for the rounds of other tests
    PumpAll();
}

TEST_F(TrayMenu, TimeStampsAreGivenBackOnceAlsoAfterARestore) {
    for (int n = 1; n <= 3; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(3, n));
    view.spyListView.handler = [](UINT uMsg, WPARAM, LPARAM, LRESULT*) {
        return uMsg == WM_COPYDATA; // (kept out of the spy's growing record)
    };
    std::vector<long> blocks;
    for (int n = 0; n < 4; ++n) {
        Press(VK_DOWN, VK_DOWN, VK_RIGHT, VK_DOWN, VK_RETURN);
        PumpAll();
        watcher.texts = watcher.subTexts = {};
        watcher.items = {};
        view.spyListView.Clear();
        view.spyView.Clear();
        blocks.push_back(0); // the room for it is made before it is counted
        blocks.back() = CountLiveBlocks();
    }
    view.spyListView.handler = nullptr;
    EXPECT_EQ(blocks[2], blocks[3]);
}

TEST_F(TrayMenu, MenusAreDestroyedOnce) {
    for (bool bSnapshots : {false, true}) { // with them the sub-menu goes with its parent
        if (bSnapshots) key.Plant(StampOf(2017, 10, 1), MakeLayout(2));
        ReplaceImport replaced(__imp_DestroyMenu, &CountDestroyed);
        pfnPlatformsDestroy = replaced.Original<DestroyMenuFunc>();
        nMenusDestroyed = nDestroyedTwice = 0;
        Glance();
        EXPECT_EQ(bSnapshots ? 1 : 2, nMenusDestroyed);
        EXPECT_EQ(0, nDestroyedTwice);
        EXPECT_EQ(bSnapshots, SubMenu() != nullptr);
        EXPECT_FALSE(::IsMenu(SubMenu()));
    }
}

TEST_F(TrayMenu, DeletingAllAsksFirst) {
    key.Plant(StampOf(2017, 11, 1), MakeLayout(2));
    {
        MessageBoxDriver box({IDNO});
        Press(VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN);
        auto seen = box.Finish();
        ASSERT_EQ(1u, seen.size());
        EXPECT_EQ(L"Are you sure you want to delete all snapshots?", seen[0].strText);
        EXPECT_EQ((std::vector<int>{IDYES, IDNO}), seen[0].buttons);
        EXPECT_EQ(1, seen[0].bHasIcon);
        EXPECT_EQ(nullptr, seen[0].hwndOwner);
    }
    EXPECT_EQ(1u, key.Values().size());
    MessageBoxDriver box({IDYES});
    Press(VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN);
    EXPECT_EQ(1u, box.Finish().size());
    EXPECT_TRUE(key.Values().empty());
    Glance();
    EXPECT_TRUE(HasText(L"(Restore icons)"));
}

TEST_F(TrayMenu, AboutTellsNameVersionAndNotice) {
    wchar_t szVersion[64] = L"", szNotice[128] = L"";
    std::thread reader([&] {
        HWND hwndBox = nullptr;
        WaitUntil([&] {
            return (hwndBox = FindMessageBox(::GetCurrentProcessId(), L"About Tessaly")) != nullptr;
        });
        ::SendMessageW(hwndBox, WM_NULL, 0, 0); // answered when its loop runs
        ::GetDlgItemTextW(hwndBox, IDC_ABOUT_VERSION, szVersion, 64);
        ::GetDlgItemTextW(hwndBox, IDC_ABOUT_NOTICE, szNotice, 128);
        ::PostMessageW(hwndBox, WM_COMMAND, IDOK, 0);
    });
    Press(VK_UP, VK_UP, VK_RETURN);
    reader.join();
    EXPECT_STREQ(L"Tessaly v. 1.1", szVersion);
    EXPECT_STREQ(L"Copyright (c) 2017 Orvanta. All rights reserved.", szNotice);
}

TEST_F(TrayMenu, ExitClosesTheMonitorWindowByAMessage) {
    Press(VK_UP, VK_RETURN);
    EXPECT_EQ(0, watcher.nCloses); // posted
    PumpAll();
    EXPECT_EQ(1, watcher.nCloses);
}

TEST_F(TrayMenu, EachOfTheThreeRowsOpensThePageOfItsRecommendation) {
    SetDays(6);
    for (int nRow = 0; nRow < 3; ++nRow) {
        ShellStartRecorder recorder;
        Open([&](MenuDriver& hands) {
            hands.Click(hands.PlaceOf(watcher.hmenuOpen, static_cast<unsigned>(3 + nRow)));
        });
        ASSERT_EQ(1u, recorder.calls.size());
        EXPECT_EQ(MaybeText(entries[nRow]->pszUrl), recorder.calls[0].file);
    }
}

TEST_F(TrayMenu, RequestWhileTheMenuIsOpenDoesNothing) {
    SetDays(6);
    Open([&](MenuDriver& hands) {
        // As a double click asks: the second one is handled by the menu's own loop.
        DWORD_PTR dwResult = 0;
        EXPECT_NE(0, ::SendMessageTimeoutW(*monitor, GetTestCompanyMsg(), kCodeOpenMenu, 1, 0, 3000,
                                           &dwResult));
        EXPECT_EQ(1, hands.CountPopups());
        hands.Press(VK_ESCAPE);
    });
    EXPECT_EQ(1, watcher.nOpened);
    EXPECT_EQ(entries[0], GetRecommendation());
    Glance(); // and the next one opens again
    EXPECT_EQ(2, watcher.nOpened);
}

TEST_F(TrayMenu, CaptureGoesOnWhileTheMenuIsOpenAndShowsAtTheNextOpening) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(2));
    Open([&](MenuDriver& hands) {
        SendCapture(MakeLayout(5));
        EXPECT_EQ(2u, key.Values().size());
        EXPECT_EQ(1, ::GetMenuItemCount(SubMenu()));
        hands.Press(VK_ESCAPE);
    });
    Glance();
    EXPECT_EQ(2u, watcher.subTexts.size());
}

TEST_F(TrayMenu, TimersGoOnWhileTheMenuIsOpen) {
    monitor->SuppressCaptures();
    Open([&](MenuDriver& hands) {
        EXPECT_TRUE(WaitUntil([&] { return !IsSuppressing(*monitor); }));
        ::SendMessageW(*monitor, WM_TIMER, 10, 0); // as when it had been quiet for ten seconds
        EXPECT_TRUE(WaitUntil([&] { return view.spyListView.CountOfCode(kCodeCapture) == 1; }));
        EXPECT_EQ(1, hands.CountPopups());
        hands.Press(VK_ESCAPE);
    });
}

TEST_F(TrayMenu, BalloonComesWhileTheMenuIsOpenAndLeavesItOpen) {
    FakeTray tray;
    ASSERT_TRUE(tray.IsInFront());
    frontEnd.OnRoundStart(*monitor, 0);
    tray.calls.clear();
    monitor->SetSnapshotAnnounce(1);
    Open([&](MenuDriver& hands) {
        SendCapture(MakeLayout(5));
        EXPECT_EQ(1u, key.Values().size());
        EXPECT_EQ(1, hands.CountPopups());
        hands.Press(VK_ESCAPE);
    });
    ASSERT_EQ(1u, tray.calls.size());
    EXPECT_TRUE(tray.calls[0].uFlags & NIF_INFO);
    EXPECT_FALSE(tray.calls[0].strInfo.empty());
    EXPECT_EQ(0, monitor->GetSnapshotAnnounce());
    frontEnd.OnRoundEnd();
    PumpAll();
}

TEST_F(TrayMenu, MonitorWindowThatClosesUnderTheQuestionDeletesNothing) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(2));
    std::thread closer([&] {
        EXPECT_TRUE(WaitUntil([] { return IsMessageBoxOpen() != 0; }));
        ::SendMessageW(*monitor, WM_CLOSE, 0, 0);
    });
    Press(VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN);
    closer.join();
    EXPECT_FALSE(IsMessageBoxOpen());
    EXPECT_EQ(1u, key.Values().size());
    int bQuit = 0;
    PumpAll(&bQuit);
    EXPECT_EQ(1, bQuit);
}

TEST_F(TrayMenu, OpensAgainUnderTheQuestionAndShowsTheStoreAsItIsThen) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(2));
    SetDays(6);
    std::thread other([&] {
        EXPECT_TRUE(WaitUntil([] { return IsMessageBoxOpen() != 0; }));
        SendCapture(MakeLayout(5));
        watcher.texts.clear();
        watcher.bCloseWhenShown = true;
        ::SendMessageW(*monitor, GetTestCompanyMsg(), kCodeOpenMenu, 1); // back when it has closed
        watcher.bCloseWhenShown = false;
        MessageBoxDriver box({IDNO});
        EXPECT_TRUE(WaitUntil([] { return IsMessageBoxOpen() == 0; }));
    });
    Press(VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN);
    other.join();
    EXPECT_EQ(2, watcher.nOpened);
    EXPECT_EQ(2u, watcher.subTexts.size());
    EXPECT_EQ(entries[1], GetRecommendation());
    EXPECT_EQ(2u, key.Values().size());
}

TEST_F(TrayMenu, MonitorWindowThatClosesTakesTheMenuAlong) {
    key.Plant(StampOf(2017, 10, 1), MakeLayout(2));
    Open([&](MenuDriver&) { ::SendMessageW(*monitor, WM_CLOSE, 0, 0); });
    EXPECT_FALSE(monitor->IsReady());
    EXPECT_EQ(0, view.spyListView.CountOf(WM_COPYDATA));
    int bQuit = 0;
    PumpAll(&bQuit);
    EXPECT_EQ(1, bQuit);
}

TEST_F(TrayMenu, TwoHundredOpeningsLeaveNoObjectBehind) {
    SetDays(6);
    for (int n = 1; n <= 25; ++n) key.Plant(StampOf(2017, 10, n), MakeLayout(2));
    for (int n = 0; n < 5; ++n) Glance();
    watcher.texts = watcher.subTexts = {};
    watcher.items = {};
    int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    long nBlocks = CountLiveBlocks();
    for (int n = 5; n < 200; ++n) Glance();
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
    watcher.texts = watcher.subTexts = {};
    watcher.items = {};
    EXPECT_EQ(nBlocks, CountLiveBlocks());
}
} // namespace
