#include "icons/snapshots/snapshot_commands.h"
#include "icons/snapshots/auto_arrange.h"
#include "icons/snapshots/layout.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "icons/snapshots/value_order.h"

#include <commctrl.h>
#include <cstring>

namespace {
constexpr unsigned kMaxMark = 40; // bytes of the name of the snapshot restored last

/// A snapshot's name as a value's.
class SnapshotName {
  public:
    explicit SnapshotName(unsigned __int64 qwTime) { FormatSnapshotName(szName, qwTime); }
    operator const wchar_t*() const { return szName; }

  private:
    wchar_t szName[kSnapshotNameLength + 1] = L"";
};

/// Sends with a time limit. False if the window has gone or does not answer in time.
bool AskShell(HWND hwnd, UINT uMsg, LPARAM lParam, DWORD nTimeoutMs, DWORD_PTR& dwAnswer) {
    return ::SendMessageTimeoutW(hwnd, uMsg, 0, lParam, SMTO_NORMAL, nTimeoutMs, &dwAnswer) != 0;
}

/// Whether there is a value of that name. One of type REG_NONE counts as absent with RegKey, but it
/// is listed.
bool HasValue(const RegKey& key, const wchar_t* pszName) {
    return key.FindValue(pszName) || key.GetBinSize(pszName);
}

bool SendRestoreInTime(HWND hwndListView, HeapArray<IconRecord>& records) {
    DWORD_PTR dwAnswer = 0;
    // A shell that hangs would do what it was sent when it is back, long after the answer was given
    // up: it is asked first.
    if (!AskShell(hwndListView, WM_NULL, 0, kShellAnswerMs, dwAnswer)) return false;
    COPYDATASTRUCT data = MakeRestoreData({records.Get(), records.GetCount()});
    return AskShell(hwndListView, WM_COPYDATA, reinterpret_cast<LPARAM>(&data), kShellRestoreMs,
                    dwAnswer);
}

CommandResult LoadStored(unsigned __int64 qwTime, HeapArray<IconRecord>& records) {
    RegKey key; // for reading: what is not there makes no key
    if (!OpenSnapshotKey(key, 0)) return CommandResult::NoSnapshot;
    return LoadSnapshot(key, qwTime, records);
}

/// Whether the value is there, and its mark.
bool FindStored(unsigned __int64 qwTime, bool& bMarked) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0) || !HasValue(key, SnapshotName(qwTime))) return false;
    bMarked = ReadRestoreMark(key) == qwTime;
    return true;
}

/// IsThere or Differs for a snapshot that is there, NoSnapshot for none, NoMemory.
CommandResult CompareStored(RegKey& key, unsigned __int64 qwTime,
                            std::span<const IconRecord> records) {
    HeapArray<IconRecord> stored;
    CommandResult result = LoadSnapshot(key, qwTime, stored);
    if (result == CommandResult::NoSnapshot || result == CommandResult::NoMemory) return result;
    bool bSame = result == CommandResult::Done && stored.GetCount() == records.size() &&
                 std::memcmp(stored.Get(), records.data(), stored.GetByteCount()) == 0;
    return bSame ? CommandResult::IsThere : CommandResult::Differs;
}

/// What stands against storing the records; Done if nothing does.
CommandResult TestRoom(unsigned __int64 qwTime, std::span<const IconRecord> records) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return CommandResult::Done; // the first one
    CommandResult result = CompareStored(key, qwTime, records);
    if (result != CommandResult::NoSnapshot) return result;
    SnapshotList list;
    return ListSnapshots(key, list) < kMaxSnapshots ? CommandResult::Done : CommandResult::NoRoom;
}
} // namespace

unsigned __int64 ReadRestoreMark(const RegKey& key) {
    unsigned cb = key.GetBinSize(nullptr);
    if (!cb || cb > kMaxMark) return 0;
    wchar_t szName[kMaxMark / sizeof(wchar_t) + 1]{}; // ends also if what is stored does not
    if (!key.GetBin(nullptr, szName, kMaxMark)) return 0;
    return ParseSnapshotName(szName);
}

CommandResult LoadSnapshot(RegKey& key, unsigned __int64 qwTime, HeapArray<IconRecord>& records) {
    SnapshotName name(qwTime);
    unsigned nRecords = CountLayoutRecords(key, name);
    if (!nRecords) {
        return HasValue(key, name) ? CommandResult::Damaged : CommandResult::NoSnapshot;
    }
    HeapArray<IconRecord> read(nRecords);
    if (!read.IsReady()) return CommandResult::NoMemory;
    if (!ReadLayoutRecords(key, name, read.Get(), nRecords)) return CommandResult::Damaged;
    records = std::move(read);
    return CommandResult::Done;
}

CommandResult TestSnapshot(unsigned __int64 qwTime) {
    HeapArray<IconRecord> records;
    return LoadStored(qwTime, records);
}

CommandResult RestoreForCommand(HWND hwndListView, unsigned __int64 qwTime) {
    HeapArray<IconRecord> records;
    CommandResult result = LoadStored(qwTime, records);
    if (result != CommandResult::Done) return result;
    if (IsAutoArranged(hwndListView)) return CommandResult::AutoArranged;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return CommandResult::NotWritten;
    if (!SendRestoreInTime(hwndListView, records)) return CommandResult::NoDesktop;
    return key.PutStr(nullptr, SnapshotName(qwTime), 1) ? CommandResult::Done
                                                        : CommandResult::NotWritten;
}

CommandResult DeleteForCommand(unsigned __int64 qwTime) {
    bool bMarked = false;
    if (!FindStored(qwTime, bMarked)) return CommandResult::NoSnapshot;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return CommandResult::NotWritten;
    SnapshotName name(qwTime);
    if (!key.FindValue(name)) key.PutDword(name, 0, 0); // one of type REG_NONE is not deleted
    if (!key.DelValue(name) || (bMarked && !key.DelValue(nullptr))) {
        return CommandResult::NotWritten;
    }
    return CommandResult::Done;
}

CommandResult DeleteAllForCommand() {
    {
        RegKey key; // for reading: where nothing is, no key is made
        if (!OpenSnapshotKey(key, 0)) return CommandResult::Done;
    }
    DeleteAllSnapshots();
    RegKey key;
    SnapshotList list;
    if (OpenSnapshotKey(key, 0)) ListSnapshots(key, list);
    for (POS pos = list.GetHeadPos(); pos; list.GetNext(pos)) {
        if (DeleteForCommand(GetSnapshotTime(list, pos)) == CommandResult::NotWritten)
            return CommandResult::NotWritten;
    }
    return CommandResult::Done;
}

CommandResult ImportForCommand(unsigned __int64 qwTime, std::span<const IconRecord> records) {
    if (records.empty() || records.size() > kMaxCapturedIcons || !IsImportableTime(qwTime))
        return CommandResult::Damaged;
    {
        RegKey key; // for reading: where nothing is, no key is made
        if (OpenSnapshotKey(key, 0) && OpenSnapshotKey(key, 1)) FinishCopies(key);
    }
    CommandResult result = TestRoom(qwTime, records);
    if (result != CommandResult::Done) return result;
    HeapArray<unsigned char> value =
        MakeLayoutValue(records.data(), static_cast<unsigned>(records.size()));
    RegKey key;
    bool bWritten = value.IsReady() && OpenSnapshotKey(key, 1) &&
                    key.PutBin(SnapshotName(qwTime), value.Get(),
                               static_cast<unsigned>(value.GetByteCount()), REG_BINARY);
    if (!bWritten) return CommandResult::NotWritten;
    ListNewerBehind(key, qwTime);
    return CommandResult::Done;
}

int CountDesktopIcons(HWND hwndListView) {
    DWORD_PTR dwCount = 0;
    if (!AskShell(hwndListView, LVM_GETITEMCOUNT, 0, kShellAnswerMs, dwCount)) return -1;
    return static_cast<int>(dwCount);
}
