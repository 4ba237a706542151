#include "icons/displays/display_layouts.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/displays/restore_on_change.h"
#include "icons/snapshots/layout.h"
#include "runtime/text/text_format.h"
#include "wnd/core/company_msg.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace {
constexpr std::size_t kPathSize = 260;
constexpr const wchar_t* kSwitchValue = L"RestoreOnChange";
constexpr const wchar_t* kTextValue = L"Displays";
constexpr const wchar_t* kLayoutValue = L"Layout";
constexpr const wchar_t* kUsedValue = L"Used";

/// The layout in the set-up's key; not ready if the key is not of that set-up or is damaged.
HeapArray<IconRecord> ReadSetupKey(const RegKey& key, const wchar_t* pszText) {
    wchar_t szStored[kSetupTextSize];
    if (key.GetValueType(kTextValue) != REG_SZ) return {};
    key.GetStr(kTextValue, szStored, kSetupTextSize, L"");
    if (std::wcscmp(szStored, pszText) != 0) return {};
    if (key.GetValueType(kLayoutValue) != REG_BINARY) return {};
    unsigned nRecords = CountLayoutRecords(key, kLayoutValue);
    if (nRecords > kMaxCapturedIcons) return {};
    HeapArray<IconRecord> records(nRecords);
    if (!records.IsReady() || !ReadLayoutRecords(key, kLayoutValue, records.Get(), nRecords))
        return {};
    return records;
}

bool WriteUse(RegKey& key) {
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    return key.PutBin(kUsedValue, &ft, sizeof(ft), REG_QWORD) != 0;
}

/// 0, before every other, if it is missing or damaged.
unsigned __int64 ReadUse(const RegKey& key) {
    unsigned __int64 qwUsed = 0;
    if (key.GetValueType(kUsedValue) != REG_QWORD) return 0;
    if (key.GetBinSize(kUsedValue) != sizeof(qwUsed)) return 0;
    key.GetBin(kUsedValue, &qwUsed, sizeof(qwUsed));
    return qwUsed;
}

/// What a walk over the keys of the set-ups has found.
struct SetupWalk {
    unsigned nSetups = 0;
    SetupName oldest;              // but for the present one; empty if there is no other
    unsigned __int64 qwNewest = 0; // the latest use, but for that of the present one
};

SetupWalk WalkSetups(RegKey& displays, const SetupName& present) {
    SetupWalk walk;
    unsigned __int64 qwOldest = 0;
    SetupName name;
    for (DWORD nAt = 0;; ++nAt) {
        LSTATUS status = displays.ReadSubKeyName(nAt, name.sz, kSetupNameLength + 1);
        if (status == ERROR_MORE_DATA) continue; // a longer name, of no set-up
        if (status != ERROR_SUCCESS) return walk;
        if (std::wcslen(name.sz) != kSetupNameLength) continue;
        ++walk.nSetups;
        if (name == present) continue;
        RegKey key(displays, name.sz, 0);
        unsigned __int64 qwUsed = ReadUse(key);
        walk.qwNewest = std::max(walk.qwNewest, qwUsed);
        if (!walk.oldest.IsEmpty() && qwUsed >= qwOldest) continue;
        qwOldest = qwUsed;
        walk.oldest = name;
    }
}

void TrimSetups(RegKey& displays, const SetupName& present) {
    SetupWalk walk = WalkSetups(displays, present);
    // So many and no more: a key that can't be deleted would be found again and again.
    for (unsigned n = walk.nSetups; n > kMaxSetups; --n) {
        displays.DelSubKey(walk.oldest.sz);
        walk = WalkSetups(displays, present);
    }
}
} // namespace

int OpenDisplaysKey(RegKey& key, int bWrite) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s\\Displays", L"HKCU\\Software\\Orvanta",
               GetMyProductInfo().GetName());
    return key.Open(szPath, bWrite);
}

HeapArray<IconRecord> ReadDisplayLayout(const DisplaySetup& setup) {
    SetupName name = setup.GetName();
    RegKey displays;
    if (name.IsEmpty() || !OpenDisplaysKey(displays, 0)) return {};
    RegKey key(displays, name.sz, 0);
    wchar_t szText[kSetupTextSize];
    setup.FormatText(szText);
    return ReadSetupKey(key, szText);
}

bool KeepDisplayLayout(const DisplaySetup& setup, std::span<const IconRecord> records) {
    SetupName name = setup.GetName();
    if (name.IsEmpty() || records.empty() || records.size() > kMaxCapturedIcons) return false;
    HeapArray<IconRecord> known = ReadDisplayLayout(setup);
    if (known.GetCount() == records.size() &&
        std::memcmp(known.Get(), records.data(), records.size_bytes()) == 0)
        return false;
    auto nRecords = static_cast<unsigned>(records.size());
    HeapArray<unsigned char> value = MakeLayoutValue(records.data(), nRecords);
    if (!value.IsReady()) return false;

    RegKey displays;
    if (!OpenDisplaysKey(displays, 1)) return false;
    // What is damaged may be so by its type, which no writing would look at.
    if (!known.IsReady()) displays.DelSubKey(name.sz);
    RegKey key(displays, name.sz, 1);
    wchar_t szText[kSetupTextSize];
    setup.FormatText(szText);
    key.PutStr(kTextValue, szText, 1);
    key.PutBin(kLayoutValue, value.Get(), static_cast<unsigned>(value.GetByteCount()), REG_BINARY);
    WriteUse(key);
    TrimSetups(displays, name);
    return true;
}

void NoteSetupUse(const SetupName& name) {
    RegKey displays;
    if (name.IsEmpty() || !OpenDisplaysKey(displays, 0)) return;
    RegKey key(displays, name.sz, 0); // an open for writing would make one
    if (!key.GetHandle()) return;
    key.Close();
    if (key.Open(displays, name.sz, 1)) WriteUse(key);
}

bool WasOtherSetupUsedLast(const SetupName& present) {
    RegKey displays;
    if (present.IsEmpty() || !OpenDisplaysKey(displays, 0)) return false;
    RegKey key(displays, present.sz, 0);
    return WalkSetups(displays, present).qwNewest > ReadUse(key);
}

// The switch

int GetRestoreOnChange() {
    RegKey displays;
    if (!OpenDisplaysKey(displays, 0)) return 0;
    return displays.GetValueType(kSwitchValue) == REG_DWORD && displays.GetDword(kSwitchValue, 0);
}

int SetRestoreOnChange(int bOn) {
    RegKey displays;
    if (!OpenDisplaysKey(displays, 1)) return 0;
    if (!displays.PutDword(kSwitchValue, bOn != 0, 0)) return 0;
    // Posted after the value is there: a monitor that starts meanwhile reads it by itself.
    PostMyCompanyMsg(::FindWindowW(kMonitorClass, nullptr), kCodeDisplaysSwitch, 0);
    return 1;
}
