#include "host/commands/snapshot_listing.h"

#include <algorithm>

namespace {
bool IsSameSecond(const SYSTEMTIME& a, const SYSTEMTIME& b) {
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay && a.wHour == b.wHour &&
           a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}

CommandResult Do(SnapshotWork& work) { return static_cast<CommandResult>(DoSnapshotStep(&work)); }
} // namespace

CommandResult DoStep(SnapshotStep step, unsigned __int64 qwTime, bool bQuiet) {
    SnapshotWork work{};
    work.step = step;
    work.qwTime = qwTime;
    work.bQuiet = bQuiet;
    return Do(work);
}

CommandResult DoImportStep(unsigned __int64 qwTime, std::span<const IconRecord> records) {
    SnapshotWork work{};
    work.step = SnapshotStep::Import;
    work.qwTime = qwTime;
    work.pRecords = const_cast<IconRecord*>(records.data()); // which this step only reads
    work.nRecords = static_cast<unsigned>(records.size());
    return Do(work);
}

CommandResult LoadRecords(const SnapshotEntry& entry, HeapArray<IconRecord>& records) {
    if (!entry.bIntact) return CommandResult::Damaged;
    HeapArray<IconRecord> room(entry.nIcons);
    SnapshotWork work{};
    work.step = SnapshotStep::Load;
    work.qwTime = entry.qwTime;
    work.pRecords = room.Get();
    work.nRecords = entry.nIcons;
    CommandResult result = Do(work);
    if (result != CommandResult::Done) return result;
    // It may have been replaced by a smaller one since it was listed.
    if (work.nRecords != entry.nIcons) return CommandResult::Damaged;
    records = std::move(room);
    return result;
}

CommandResult SnapshotListing::Read() {
    SnapshotWork work{};
    work.step = SnapshotStep::List;
    CommandResult result = Do(work);
    if (result != CommandResult::Done || !work.nEntries) return result;
    HeapArray<SnapshotEntry> room(work.nEntries);
    if (!room.IsReady()) return CommandResult::NoMemory;
    work.pEntries = room.Get();
    result = Do(work);
    if (result != CommandResult::Done) return result;
    nEntries = std::min<std::size_t>(work.nEntries, room.GetCount());
    nStored = work.nStored;
    entries = std::move(room);
    std::sort(entries.begin(), entries.begin() + nEntries,
              [](const auto& a, const auto& b) { return a.qwTime > b.qwTime; });
    return CommandResult::Done;
}

const SnapshotEntry* SnapshotListing::Find(const SnapshotRequest& request) const {
    std::span<const SnapshotEntry> all = Get();
    switch (request.choice) {
    case SnapshotChoice::Newest: return all.empty() ? nullptr : all.data();
    case SnapshotChoice::ByNumber:
        return request.nNumber && request.nNumber <= all.size() ? &all[request.nNumber - 1]
                                                                : nullptr;
    case SnapshotChoice::ByTime: break;
    }
    auto found = std::ranges::find_if(all, [&](const SnapshotEntry& entry) {
        return IsSameSecond(entry.stLocal, request.stLocal);
    });
    return found == all.end() ? nullptr : &*found;
}
