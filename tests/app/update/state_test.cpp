#include "app/update/update_state.h"
#include "app/fake_clock.h"
#include "app/update/update_dlg.h"
#include "app/update_process.h"
#include "app/update_store.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <utility>

namespace {
constexpr DWORD kDay = 86400;
constexpr DWORD kNow = 688'000'001; // of the year 2017, and odd
constexpr DWORD kDisabled = 0xFFFFFFFF;
using Numbers = std::vector<unsigned long long>;

Numbers AllOf(const UpdateState& state) {
    return {state.dwLastUpdate, state.dwNextUpdate, state.dwFrequency, state.dwAutoCheck};
}

UpdateState StateOf(DWORD dwLast, DWORD dwNext, DWORD dwFrequency, DWORD dwAuto) {
    UpdateState state;
    state.dwLastUpdate = dwLast;
    state.dwNextUpdate = dwNext;
    state.dwFrequency = dwFrequency;
    state.dwAutoCheck = dwAuto;
    return state;
}
} // namespace

// In memory

TEST(UpdateState, NewOneWasNeverCheckedAndIsWeeklyAndAutomatic) {
    EXPECT_EQ((Numbers{0, 0, 1, 1}), AllOf(UpdateState()));
}

TEST(UpdateState, HasFourNumbersInTheirOrder) {
    UpdateState state = StateOf(1, 2, 3, 4);
    EXPECT_EQ(16u, sizeof(state));
    EXPECT_EQ(0, std::memcmp(&state, "\1\0\0\0\2\0\0\0\3\0\0\0\4\0\0", 16));
}

TEST(UpdateState, DaysAreThoseOfTheFrequency) {
    for (auto [nFrequency, nDays] : {std::pair{0u, 1u},
                                     {1u, 7u},
                                     {2u, 30u},
                                     {3u, 3650u},
                                     {4u, 3650u},
                                     {15u, 3650u},
                                     {0xFFFFFFFFu, 3650u}}) {
        EXPECT_EQ(nDays, StateOf(0, 0, nFrequency, 1).DaysFromFreq()) << nFrequency;
    }
}

TEST(UpdateState, ResetClearsTheLowestBitOfTheLastCheckAlone) {
    UpdateState state = StateOf(7, 9, 2, 3);
    state.Reset();
    EXPECT_EQ((Numbers{6, 9, 2, 3}), AllOf(state));
    state.Reset();
    EXPECT_EQ((Numbers{6, 9, 2, 3}), AllOf(state));
}

TEST(UpdateState, LastCheckIsNowWithTheLowestBitClear) {
    for (DWORD dwNow : {kNow, kNow - 1}) {
        FakeClock clock(dwNow);
        for (int nArgument : {0, 1, -1}) {
            UpdateState state = StateOf(3, 9, 2, 0);
            state.SetupLastUpdate(nArgument);
            EXPECT_EQ((Numbers{kNow - 1, 9, 2, 0}), AllOf(state)) << nArgument;
        }
    }
}

TEST(UpdateState, CountsWholeDaysSinceTheLastCheck) {
    FakeClock clock(kNow);
    struct Row {
        DWORD dwLast;
        unsigned nDays;
    };
    for (Row row :
         {Row{0, 0}, Row{kNow, 0}, Row{kNow - 1, 0}, Row{kNow - kDay + 1, 0}, Row{kNow - kDay, 1},
          Row{kNow - 2 * kDay + 1, 1}, Row{kNow - 2 * kDay, 2}, Row{kNow - 1000 * kDay, 1000},
          Row{2, (kNow - 2) / kDay}, Row{kNow + 1, 0}, Row{kNow + kDay, 0}, Row{0xFFFFFFFE, 0}}) {
        EXPECT_EQ(row.nDays, StateOf(row.dwLast, 0, 1, 1).GetDaysSinceLastUpdate()) << row.dwLast;
    }
}

TEST(UpdateState, IsDisabledByOneNumberAlone) {
    EXPECT_TRUE(StateOf(0, kDisabled, 1, 1).IsDisabled());
    for (DWORD dwNext : {DWORD{0}, DWORD{2}, kDisabled - 1})
        EXPECT_FALSE(StateOf(0, dwNext, 1, 1).IsDisabled());
}

// In the registry

TEST(UpdateState, ReadTakesTheFourValues) {
    UpdateStore store;
    store.Plant(1002, 2004, 2, 0);
    UpdateState state;
    EXPECT_EQ(1, state.Read());
    EXPECT_EQ((Numbers{1002, 2004, 2, 0}), AllOf(state));
}

TEST(UpdateState, ReadLeavesWhatIsNotThere) {
    const wchar_t* const names[] = {L"LastUpdate", L"NextUpdate", L"RemindFreq", L"AutoCheck"};
    for (int n = 0; n < 4; ++n) {
        UpdateStore store;
        store.Put(names[n], 1);
        UpdateState state = StateOf(50, 60, 70, 80);
        EXPECT_EQ(1, state.Read());
        Numbers expected{50, 60, 70, 80};
        expected[n] = 1;
        EXPECT_EQ(expected, AllOf(state)) << n;
    }
}

TEST(UpdateState, ReadWithoutAKeyGivesZeroAndTheStateStands) {
    UpdateStore store;
    store.Setup().Delete();
    UpdateState state = StateOf(50, 60, 70, 80);
    EXPECT_EQ(0, state.Read());
    EXPECT_EQ((Numbers{50, 60, 70, 80}), AllOf(state));
}

TEST(UpdateState, ReadMakesNoKeyAndWritesNothing) {
    UpdateStore store;
    store.Put(L"NextUpdate", 2);
    auto qwBefore = store.Setup().LastWrite();
    UpdateState().Read();
    EXPECT_EQ(qwBefore, store.Setup().LastWrite());
    EXPECT_EQ(1u, store.Values().size());
}

TEST(UpdateState, ReadLeavesAFarDateAloneIfNothingIsForced) {
    FakeClock clock(kNow);
    UpdateStore store;
    store.Plant(2, kNow + 1000 * kDay, 0, 1);
    UpdateState state;
    state.Read();
    EXPECT_EQ(kNow + 1000 * kDay, state.dwNextUpdate);
}

TEST(UpdateState, WritePutsTheFourValues) {
    UpdateStore store;
    EXPECT_EQ(1, StateOf(10, 20, 3, 0).Write());
    EXPECT_EQ(4u, store.Values().size());
    EXPECT_EQ(10u, store.Last());
    EXPECT_EQ(20u, store.Next());
    EXPECT_EQ(3u, store.Frequency());
    EXPECT_EQ(0u, store.Auto());
}

TEST(UpdateState, WriteMakesTheKey) {
    UpdateStore store;
    store.Setup().Delete();
    EXPECT_EQ(1, StateOf(10, 20, 3, 0).Write());
    store.Setup().Create();
    EXPECT_EQ(20u, store.Next());
}

TEST(UpdateState, WriteMakesNoLastCheckThatNeverWas) {
    UpdateStore store;
    StateOf(0, 20, 3, 0).Write();
    EXPECT_EQ(UpdateStore::kMissing, store.Last());
    EXPECT_EQ(3u, store.Values().size());
    store.Put(L"LastUpdate", 4); // but one that is there is put back
    StateOf(0, 20, 3, 0).Write();
    EXPECT_EQ(0u, store.Last());
}

TEST(UpdateState, WriteLeavesTheOtherValuesOfTheKeyAlone) {
    UpdateStore store;
    store.Put(L"DayCount", 17);
    StateOf(10, 20, 3, 0).Write();
    EXPECT_EQ(17u, store.Get(L"DayCount"));
}

TEST(UpdateState, WhatIsWrittenIsReadAgain) {
    UpdateStore store;
    for (DWORD dw : {DWORD{2}, DWORD{0x7FFFFFFE}, DWORD{0x80000000}, kDisabled}) {
        StateOf(dw, dw, dw, dw).Write();
        UpdateState state;
        EXPECT_EQ(1, state.Read());
        EXPECT_EQ((Numbers{dw, dw, dw, dw}), AllOf(state));
    }
}

// The settings

TEST(UpdateSettings, AreThoseThatAreStored) {
    UpdateStore store;
    store.Plant(2, 4, 2, 0);
    int bAuto = -1;
    Check4UpdatesFreq frequency = kCheckUnchanged;
    GetCheck4UpdatesSettings(&bAuto, &frequency);
    EXPECT_EQ(0, bAuto);
    EXPECT_EQ(kCheckMonthly, frequency);
    store.Plant(2, 4, 0, 1);
    GetCheck4UpdatesSettings(&bAuto, &frequency);
    EXPECT_EQ(1, bAuto);
    EXPECT_EQ(kCheckDaily, frequency);
    GetCheck4UpdatesSettings(nullptr, &frequency);
    GetCheck4UpdatesSettings(&bAuto, nullptr);
}

TEST(UpdateSettings, AreWeeklyAndAutomaticAtFirst) {
    UpdateStore store;
    store.Setup().Delete();
    int bAuto = -1;
    Check4UpdatesFreq frequency = kCheckUnchanged;
    GetCheck4UpdatesSettings(&bAuto, &frequency);
    EXPECT_EQ(1, bAuto);
    EXPECT_EQ(kCheckWeekly, frequency);
}

struct SetCase {
    const char* pszName;
    DWORD dwStored; // the frequency
    DWORD dwSet;
    DWORD dwExpected;
    DWORD dwDays; // from now to the next check; 0: it stays
};
class SetUpdateSettings : public testing::TestWithParam<SetCase> {};
TEST_P(SetUpdateSettings, SchedulesAnewIfTheFrequencyChanges) {
    const SetCase& row = GetParam();
    FakeClock clock(kNow);
    for (int bAuto : {0, 1}) {
        UpdateStore store;
        store.Plant(1000, 5000, row.dwStored, !bAuto);
        SetCheck4UpdatesSettings(bAuto, static_cast<Check4UpdatesFreq>(row.dwSet));
        EXPECT_EQ(1000u, store.Last());
        EXPECT_EQ(row.dwDays ? AddUpdateJitter(kNow + row.dwDays * kDay) : 5000, store.Next());
        EXPECT_EQ(row.dwExpected, store.Frequency());
        EXPECT_EQ(static_cast<DWORD>(bAuto), store.Auto());
    }
}
INSTANTIATE_TEST_SUITE_P(
    Cases, SetUpdateSettings,
    testing::Values(SetCase{"ToDaily", 1, 0, 0, 1}, SetCase{"ToWeekly", 0, 1, 1, 7},
                    SetCase{"ToMonthly", 3, 2, 2, 30}, SetCase{"ToNever", 2, 3, 3, 3650},
                    SetCase{"SameDaily", 0, 0, 0, 0}, SetCase{"SameNever", 3, 3, 3, 0},
                    SetCase{"LeftAlone", 2, 0xFFFFFFFF, 2, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(UpdateSettings, ResetSchedulesFromNowByTheStoredFrequency) {
    FakeClock clock(kNow);
    for (auto [dwFrequency, dwDays] : {std::pair<DWORD, DWORD>{0, 1}, {1, 7}, {2, 30}, {3, 3650}}) {
        UpdateStore store;
        store.Plant(1000, kDisabled, dwFrequency, 0);
        ResetCheck4Updates();
        EXPECT_EQ(1000u, store.Last());
        EXPECT_EQ(AddUpdateJitter(kNow + dwDays * kDay), store.Next());
        EXPECT_EQ(dwFrequency, store.Frequency());
        EXPECT_EQ(0u, store.Auto());
    }
    UpdateStore store;
    store.Setup().Delete();
    ResetCheck4Updates();
    store.Setup().Create();
    EXPECT_EQ(AddUpdateJitter(kNow + 7 * kDay), store.Next());
}

TEST(UpdateSettings, ListHasTheFrequenciesByTheirValuesAndKeepsItsSelection) {
    struct Dlg : DlgCheckForUpdates {
        using DlgCheckForUpdates::DlgCheckForUpdates;
        using DlgUpdateBase::remindList;
    };
    const wchar_t* const kNames[] = {L"Daily", L"Weekly", L"Monthly", L"Never"};
    for (int nSelected : {0, 1, 2, 3}) {
        OpenUpdateDlg<Dlg> open(21802, nSelected, 3u, nullptr);
        CSComboList& list = open.dlg.remindList;
        PopulateFreqList(list);
        EXPECT_EQ(4, list.GetCount());
        for (int n = 0; n < 4; ++n) {
            wchar_t sz[32] = L"";
            list.GetStr(static_cast<unsigned>(n), sz);
            EXPECT_STREQ(kNames[n], sz);
        }
        EXPECT_EQ(nSelected, list.GetCurSel());
    }
    OpenUpdateDlg<Dlg> open(21802, 0, 3u, nullptr);
    open.dlg.remindList.SetCurSel(0xFFFFFFFF);
    PopulateFreqList(open.dlg.remindList);
    EXPECT_EQ(-1, open.dlg.remindList.GetCurSel());
}

// Forced settings, each in a process of its own: they cannot be taken back

namespace {
constexpr const wchar_t* kRoot = L"Tessaly update test";
const std::wstring kClock = L"clock=" + std::to_wstring(kNow);
std::wstring Enforce(unsigned nFlags) { return L"enforce=" + std::to_wstring(nFlags); }

/// What the process tells of its state, the result in front.
Numbers ForcedState(std::initializer_list<std::wstring> commands) {
    return UpdateProcess(kRoot, commands).Numbers();
}
} // namespace

struct EnforceCase {
    const char* pszName;
    unsigned nFlags;
    DWORD dwFrequency, dwAuto; // of a new state
};
class EnforceUpdates : public testing::TestWithParam<EnforceCase> {};
TEST_P(EnforceUpdates, GivesANewStateWhatIsForced) {
    EXPECT_EQ((Numbers{0, 0, 0, GetParam().dwFrequency, GetParam().dwAuto}),
              ForcedState({Enforce(GetParam().nFlags), L"new", L"tell"}));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, EnforceUpdates,
    testing::Values(EnforceCase{"Nothing", 0, 1, 1}, EnforceCase{"Daily", 64, 0, 1},
                    EnforceCase{"Monthly", 64 + 2, 2, 1}, EnforceCase{"Largest", 64 + 15, 15, 1},
                    EnforceCase{"FrequencyWithoutItsFlag", 2, 1, 1},
                    EnforceCase{"AutoOff", 32, 1, 0}, EnforceCase{"AutoOn", 32 + 16, 1, 1},
                    EnforceCase{"AutoWithoutItsFlag", 16, 1, 1},
                    EnforceCase{"AsTheMonitorDoes", 64 + 32 + 16, 0, 1},
                    EnforceCase{"WeeklyAndOff", 64 + 32 + 1, 1, 0},
                    EnforceCase{"OtherBits", 0xFFFFFF80, 1, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(EnforceUpdates, WhatIsNotNamedStaysForced) {
    EXPECT_EQ((Numbers{0, 0, 0, 2, 0}),
              ForcedState({Enforce(64 + 2), Enforce(32), Enforce(0), L"new", L"tell"}));
    EXPECT_EQ((Numbers{0, 0, 0, 3, 1}), ForcedState({Enforce(64 + 2 + 32), Enforce(64 + 3),
                                                     Enforce(32 + 16), L"new", L"tell"}));
}

TEST(EnforceUpdates, NeitherSettingIsReadIfItIsForced) {
    UpdateStore store;
    store.Plant(1000, 5000, 2, 0);
    EXPECT_EQ((Numbers{1, 1000, 5000, 0, 1}), ForcedState({kClock, Enforce(112), L"new", L"read"}));
    EXPECT_EQ((Numbers{1, 1000, 5000, 2, 1}), ForcedState({kClock, Enforce(48), L"new", L"read"}));
    EXPECT_EQ((Numbers{1, 1000, 5000, 0, 0}), ForcedState({kClock, Enforce(64), L"new", L"read"}));
}

TEST(EnforceUpdates, NeitherSettingIsWrittenIfItIsForced) {
    UpdateStore store;
    EXPECT_EQ(1u, ForcedState({Enforce(112), L"new", L"last=10", L"next=20", L"write"})[0]);
    EXPECT_EQ(2u, store.Values().size());
    EXPECT_EQ(10u, store.Last());
    EXPECT_EQ(20u, store.Next());
    store.Plant(2, 4, 2, 0);
    ForcedState({Enforce(112), L"new", L"last=10", L"next=20", L"write"});
    EXPECT_EQ(10u, store.Last());
    EXPECT_EQ(20u, store.Next());
    EXPECT_EQ(2u, store.Frequency());
    EXPECT_EQ(0u, store.Auto());
    ForcedState({Enforce(48), L"new", L"write"}); // the frequency is not
    EXPECT_EQ(1u, store.Frequency());
    EXPECT_EQ(0u, store.Auto());
}

struct PullBackCase {
    const char* pszName;
    unsigned nFlags;
    DWORD dwStored, dwRead;
};
class EnforcedSchedule : public testing::TestWithParam<PullBackCase> {};
TEST_P(EnforcedSchedule, IsBroughtBackInMemory) {
    UpdateStore store;
    store.Put(L"NextUpdate", GetParam().dwStored);
    EXPECT_EQ(GetParam().dwRead,
              ForcedState({kClock, Enforce(GetParam().nFlags), L"new", L"read"})[2]);
    EXPECT_EQ(GetParam().dwStored, store.Next());
    EXPECT_EQ(1u, store.Values().size());
}
INSTANTIATE_TEST_SUITE_P(
    Cases, EnforcedSchedule,
    testing::Values(PullBackCase{"ThreeWeeksAhead", 112, kNow + 21 * kDay, kNow + kDay},
                    PullBackCase{"ASecondTooFar", 112, kNow + kDay + 1, kNow + kDay},
                    PullBackCase{"JustADay", 112, kNow + kDay, kNow + kDay},
                    PullBackCase{"Nearer", 112, kNow + 5, kNow + 5},
                    PullBackCase{"Past", 112, 2, 2},
                    PullBackCase{"FarthestOfAll", 112, kDisabled - 1, kNow + kDay},
                    PullBackCase{"NoneScheduled", 112, 0, 0},
                    PullBackCase{"Disabled", 112, kDisabled, kDisabled},
                    PullBackCase{"MonthlyInTime", 64 + 2, kNow + 21 * kDay, kNow + 21 * kDay},
                    PullBackCase{"MonthlyTooFar", 64 + 2, kNow + 31 * kDay, kNow + 30 * kDay},
                    PullBackCase{"AutoAlone", 48, kNow + 21 * kDay, kNow + 21 * kDay}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(EnforceUpdates, SettingsAreTheForcedOnesAndNotStored) {
    UpdateStore store;
    store.Plant(1000, 5000, 2, 0);
    EXPECT_EQ((Numbers{1, 0}), ForcedState({Enforce(112), L"get"}));
    EXPECT_EQ((Numbers{0, 3}), ForcedState({Enforce(64 + 3 + 32), L"get"}));
    ForcedState({kClock, Enforce(112), L"set=0,3"});
    EXPECT_EQ(2u, store.Frequency());
    EXPECT_EQ(0u, store.Auto());
}

TEST(EnforceUpdates, ResetGoesByTheForcedFrequency) {
    UpdateStore store;
    store.Plant(1000, 5000, 2, 0);
    ForcedState({kClock, Enforce(112), L"reset"});
    EXPECT_EQ(AddUpdateJitter(kNow + kDay), store.Next());
    EXPECT_EQ(1000u, store.Last());
    EXPECT_EQ(2u, store.Frequency());
}
