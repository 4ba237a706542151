#include "icons/commands/snapshot_step.h"
#include "icons/commands/command_reach.h"
#include "icons/commands/desktop_visit.h"
#include "icons/monitor/desktop_discovery.h"
#include "icons/snapshots/auto_arrange.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"

#include <cstring>

namespace {
constexpr DWORD kOutcomePollMs = 10;

constinit CommandReach reach; // of the one command of this process

/// NoSnapshot if it has gone since it was listed: a monitor may be trimming.
CommandResult FillEntry(RegKey& key, unsigned __int64 qwTime, SnapshotEntry& entry) {
    HeapArray<IconRecord> records;
    CommandResult result = LoadSnapshot(key, qwTime, records);
    if (result == CommandResult::NoMemory || result == CommandResult::NoSnapshot) return result;
    entry.qwTime = qwTime;
    entry.nIcons = ReadSnapshot(key, qwTime);
    entry.bIntact = result == CommandResult::Done;
    entry.bRestoredLast = ReadRestoreMark(key) == qwTime;
    return CommandResult::Done;
}

CommandResult List(SnapshotWork& work) {
    unsigned nRoom = work.pEntries ? work.nEntries : 0;
    work.nEntries = work.nStored = 0;
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return CommandResult::Done; // none
    SnapshotList list;
    work.nStored = static_cast<unsigned>(ListSnapshots(key, list));
    for (POS pos = list.GetHeadPos(); pos; list.GetNext(pos)) {
        SnapshotEntry entry{};
        unsigned __int64 qwTime = GetSnapshotTime(list, pos);
        if (!ToLocalTime(qwTime, entry.stLocal)) continue;
        if (work.nEntries < nRoom) {
            CommandResult result = FillEntry(key, qwTime, entry);
            if (result == CommandResult::NoSnapshot) continue;
            if (result != CommandResult::Done) return result;
            work.pEntries[work.nEntries] = entry;
        }
        ++work.nEntries;
    }
    return CommandResult::Done;
}

CommandResult Load(SnapshotWork& work) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return CommandResult::NoSnapshot;
    HeapArray<IconRecord> records;
    CommandResult result = LoadSnapshot(key, work.qwTime, records);
    if (result != CommandResult::Done) return result;
    bool bFits = work.pRecords && records.GetCount() <= work.nRecords;
    work.nRecords = static_cast<unsigned>(records.GetCount());
    if (!bFits) return CommandResult::NoMemory;
    std::memcpy(work.pRecords, records.Get(), records.GetByteCount());
    return CommandResult::Done;
}

/// The capture that the monitor was asked for.
CommandResult AwaitOutcome(unsigned __int64 qwNumber) {
    DWORD dwStart = ::GetTickCount();
    for (;;) {
        CommandResult result = reach.Ask(CommandCode::Outcome, qwNumber);
        if (result != CommandResult::Pending) return result;
        if (::GetTickCount() - dwStart >= kShellRestoreMs) return CommandResult::NoDesktop;
        ::Sleep(kOutcomePollMs);
    }
}

/// The number of icons of the desktop that answers; less than 0 if none does.
int FindDesktop(HWND& hwndListView) {
    HWND hwndView = nullptr;
    return FindDesktopShellWnd(&hwndView, &hwndListView) ? CountDesktopIcons(hwndListView) : -1;
}

CommandResult Remember() {
    HWND hwndListView = nullptr;
    int nIcons = FindDesktop(hwndListView);
    if (nIcons < 0) return CommandResult::NoDesktop;
    if (!nIcons || nIcons > static_cast<int>(kMaxCapturedIcons)) return CommandResult::NoIcons;
    if (!reach.HasMonitor()) return CaptureWithoutMonitor();
    unsigned __int64 qwNumber = GetPresentTime(); // another one than those of killed commands
    CommandResult result = reach.Ask(CommandCode::Remember, qwNumber);
    return result == CommandResult::Pending ? AwaitOutcome(qwNumber) : result;
}

/// Done if nothing is known to stand against the restore but that the desktop arranges its icons.
CommandResult TestRestore(unsigned __int64 qwTime, HWND& hwndListView) {
    if (FindDesktop(hwndListView) < 0) return CommandResult::NoDesktop;
    CommandResult result = TestSnapshot(qwTime);
    return result == CommandResult::Done ? reach.TestMonitor() : result;
}

/// Has the desktop stop arranging its icons, if the user agrees: asks without the turn, which is
/// taken again. Nothing is changed as long as the restore can be seen to fail: what was so before
/// the question may be otherwise after it.
CommandResult ClearTheWay(unsigned __int64 qwTime) {
    HWND hwndListView = nullptr;
    CommandResult result = TestRestore(qwTime, hwndListView);
    if (result != CommandResult::Done) return result;
    reach.End();
    if (!AskToStopAutoArrange()) return CommandResult::AutoArranged;
    result = reach.Begin();
    if (result == CommandResult::Done) result = TestRestore(qwTime, hwndListView);
    if (result == CommandResult::Done) StopAutoArrange(hwndListView);
    return result;
}

CommandResult Restore(unsigned __int64 qwTime, bool bQuiet) {
    HWND hwndListView = nullptr;
    if (FindDesktop(hwndListView) < 0) return CommandResult::NoDesktop;
    CommandResult result = CommandResult::Done;
    if (IsAutoArranged(hwndListView))
        result = bQuiet ? CommandResult::AutoArranged : ClearTheWay(qwTime);
    if (result != CommandResult::Done) return result;
    return reach.HasMonitor() ? reach.Ask(CommandCode::Restore, qwTime)
                              : RestoreWithoutMonitor(qwTime);
}

CommandResult Delete(unsigned __int64 qwTime) {
    return reach.HasMonitor() ? reach.Ask(CommandCode::Delete, qwTime) : DeleteForCommand(qwTime);
}

CommandResult DeleteAll() {
    return reach.HasMonitor() ? reach.Ask(CommandCode::DeleteAll, 0) : DeleteAllForCommand();
}

CommandResult Import(const SnapshotWork& work) {
    std::span<const IconRecord> records(work.pRecords, work.pRecords ? work.nRecords : 0);
    return reach.HasMonitor() ? reach.Ask(CommandCode::Import, work.qwTime, records)
                              : ImportForCommand(work.qwTime, records);
}

CommandResult DoStep(SnapshotWork& work) {
    switch (work.step) {
    case SnapshotStep::TakeTurn: return reach.TakeTurn();
    case SnapshotStep::Begin: return reach.Begin();
    case SnapshotStep::End: reach.End(); break;
    case SnapshotStep::List: return List(work);
    case SnapshotStep::Load: return Load(work);
    case SnapshotStep::Remember: return Remember();
    case SnapshotStep::Restore: return Restore(work.qwTime, work.bQuiet);
    case SnapshotStep::Delete: return Delete(work.qwTime);
    case SnapshotStep::DeleteAll: return DeleteAll();
    case SnapshotStep::Import: return Import(work);
    }
    return CommandResult::Done;
}
} // namespace

int DoSnapshotStep(SnapshotWork* pWork) {
    return static_cast<int>(pWork ? DoStep(*pWork) : CommandResult::NoSnapshot);
}
