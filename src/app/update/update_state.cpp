#include "app/update/update_state.h"
#include "app/identity/product_info.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/text_format.h"
#include "store/registry/reg_key.h"
#include "wnd/control/cscombo.h"

namespace {
constexpr const wchar_t* kLastUpdate = L"LastUpdate";
constexpr const wchar_t* kNextUpdate = L"NextUpdate";
constexpr const wchar_t* kRemindFreq = L"RemindFreq";
constexpr const wchar_t* kAutoCheck = L"AutoCheck";

constexpr DWORD kSecondsPerDay = 24 * 60 * 60;
constexpr DWORD kJitterSeconds = 60 * 60;
constexpr unsigned kFrequencyBits = 15; // of EnforceCheckForUpdates's flags
constexpr DWORD kNotForced = 0xFFFFFFFF;
constexpr std::size_t kPathSize = ProductInfo::kRootKeySize + 16;

// What is forced in this process.
constinit DWORD dwForcedFrequency = kNotForced;
constinit bool bAutoCheckForced = false;
constinit DWORD dwForcedAutoCheck = 0;

bool IsFrequencyForced() { return dwForcedFrequency != kNotForced; }
} // namespace

bool OpenSetupKey(RegKey& key, int bWrite) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s", GetMyProductInfo().GetAppRootKey(), L"Setup");
    return key.Open(szPath, bWrite) != 0;
}

DWORD AddUpdateJitter(DWORD dwTime) {
    // A linear congruential generator's first result; whoever knows the time knows it too.
    const DWORD dwRandom = dwTime * 214013 + 2531011;
    return (dwTime + (dwRandom >> 16 & 0x7FFF) % kJitterSeconds) & ~DWORD{1};
}

UpdateState::UpdateState()
    : dwFrequency(IsFrequencyForced() ? dwForcedFrequency : DWORD{kCheckWeekly}),
      dwAutoCheck(bAutoCheckForced ? dwForcedAutoCheck : 1) {}

int UpdateState::Read() {
    RegKey key;
    if (!OpenSetupKey(key, 0)) return 0;
    dwLastUpdate = key.GetDword(kLastUpdate, dwLastUpdate);
    dwNextUpdate = key.GetDword(kNextUpdate, dwNextUpdate);
    if (IsFrequencyForced()) {
        const DWORD dwLatest = GetCurTime() + DaysFromFreq() * kSecondsPerDay;
        if (!IsDisabled() && dwNextUpdate > dwLatest) dwNextUpdate = dwLatest;
    } else {
        dwFrequency = key.GetDword(kRemindFreq, dwFrequency);
    }
    if (!bAutoCheckForced) dwAutoCheck = key.GetDword(kAutoCheck, dwAutoCheck);
    return 1;
}

int UpdateState::Write() const {
    RegKey key;
    if (!OpenSetupKey(key, 1)) return 0;
    // "Never" is what no value means: the first run of all sets nothing but the next check.
    const bool bLast = dwLastUpdate || key.FindValue(kLastUpdate);
    int bDone = !bLast || key.PutDword(kLastUpdate, dwLastUpdate, 1);
    bDone &= key.PutDword(kNextUpdate, dwNextUpdate, 1);
    if (!IsFrequencyForced()) bDone &= key.PutDword(kRemindFreq, dwFrequency, 1);
    if (!bAutoCheckForced) bDone &= key.PutDword(kAutoCheck, dwAutoCheck, 1);
    return bDone;
}

void UpdateState::Reset() { dwLastUpdate &= ~DWORD{1}; }

void UpdateState::SetupLastUpdate(int /*nUnused*/) {
    dwLastUpdate = GetCurTime();
    Reset();
}

void UpdateState::SetupNextUpdate(unsigned nDays) {
    if (nDays == kDaysOfFreq) nDays = DaysFromFreq();
    dwNextUpdate = AddUpdateJitter(GetCurTime() + nDays * kSecondsPerDay);
}

unsigned UpdateState::GetDaysSinceLastUpdate() const {
    const DWORD dwNow = GetCurTime();
    if (!dwLastUpdate || dwLastUpdate > dwNow) return 0;
    return (dwNow - dwLastUpdate) / kSecondsPerDay;
}

unsigned UpdateState::DaysFromFreq() const {
    switch (dwFrequency) {
    case kCheckDaily: return 1;
    case kCheckWeekly: return 7;
    case kCheckMonthly: return 30;
    default: return 3650;
    }
}

// The settings

void EnforceCheckForUpdates(unsigned nFlags) {
    if (nFlags & kForceFrequency) dwForcedFrequency = nFlags & kFrequencyBits;
    if (!(nFlags & kForceAutoCheck)) return;
    bAutoCheckForced = true;
    dwForcedAutoCheck = (nFlags & kForceAutoCheckOn) ? 1 : 0;
}

void ResetCheck4Updates() {
    UpdateState state;
    state.Read();
    state.SetupNextUpdate();
    state.Write();
}

void GetCheck4UpdatesSettings(int* pbAuto, Check4UpdatesFreq* pFrequency) {
    UpdateState state;
    state.Read();
    if (pbAuto) *pbAuto = static_cast<int>(state.dwAutoCheck);
    if (pFrequency) *pFrequency = static_cast<Check4UpdatesFreq>(state.dwFrequency);
}

void SetCheck4UpdatesSettings(int bAuto, Check4UpdatesFreq frequency) {
    UpdateState state;
    state.Read();
    state.dwAutoCheck = static_cast<DWORD>(bAuto);
    if (frequency != kCheckUnchanged && frequency != state.dwFrequency) {
        state.dwFrequency = frequency;
        state.SetupNextUpdate();
    }
    state.Write();
}

void PopulateFreqList(CSComboList& list) {
    const int nSelected = list.GetCurSel();
    list.DelAll();
    for (int nId : {IDS_CHECK_DAILY, IDS_CHECK_WEEKLY, IDS_CHECK_MONTHLY, IDS_CHECK_NEVER})
        list.AddStr(ResStr(-nId));
    list.SetCurSel(static_cast<unsigned>(nSelected));
}
