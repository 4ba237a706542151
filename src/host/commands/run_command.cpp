#include "host/commands/run_command.h"
#include "host/commands/command_outcome.h"
#include "host/commands/command_text.h"
#include "host/commands/exit_code.h"
#include "host/commands/export_text.h"
#include "host/commands/import_command.h"
#include "host/commands/output.h"
#include "host/commands/snapshot_listing.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/ownership.h"

namespace {
/// The snapshot's date in local time, as the list has it.
class LocalTimeText {
  public:
    explicit LocalTimeText(const SnapshotEntry& entry) { FormatTime(szText, entry.stLocal); }
    const wchar_t* Get() const { return szText; }

  private:
    wchar_t szText[kTimeTextSize] = L"";
};

int TellNoSnapshots(CommandText& told) {
    told.Add(L"There are no snapshots.");
    return kExitNoSnapshot;
}

int List(CommandText& told) {
    SnapshotListing listing;
    CommandResult result = listing.Read();
    if (result != CommandResult::Done) return DescribeResult(result, told);
    if (listing.Get().empty()) return TellNoSnapshots(told);
    unsigned n = 0;
    for (const SnapshotEntry& entry : listing.Get()) {
        told.NextLine();
        told.Add(L"%u\t%s\t%u\t%s%s", ++n, LocalTimeText(entry).Get(), entry.nIcons,
                 entry.bIntact ? L"ok" : L"damaged",
                 entry.bRestoredLast ? L"\trestored last" : L"");
    }
    return told.IsWhole() ? kExitDone : DescribeResult(CommandResult::NoMemory, told);
}

/// An export's text, and what is not in it.
struct ExportWork {
    CommandText file;
    LeftOut left;
    unsigned nWritten = 0, nDamaged = 0;
};

CommandResult AddSnapshots(const SnapshotListing& listing, ExportWork& work) {
    AddExportHead(work.file);
    for (const SnapshotEntry& entry : listing.Get()) {
        HeapArray<IconRecord> records;
        CommandResult result = LoadRecords(entry, records);
        if (result == CommandResult::NoMemory) return result;
        if (result == CommandResult::Done) {
            AddExportSection(work.file, entry.qwTime, {records.Get(), records.GetCount()});
            ++work.nWritten;
        } else if (result != CommandResult::NoSnapshot) { // which went after it was listed
            work.left.Add(LocalTimeText(entry).Get(), L"is damaged and left out");
            ++work.nDamaged;
        }
    }
    return CommandResult::Done;
}

int Export(const SnapshotRequest& request, CommandText& told) {
    SnapshotListing listing;
    CommandResult result = listing.Read();
    if (result == CommandResult::Done && listing.Get().empty()) return TellNoSnapshots(told);
    ExportWork work;
    if (result == CommandResult::Done) result = AddSnapshots(listing, work);
    if (result == CommandResult::Done && !work.nWritten) {
        if (!work.nDamaged) return TellNoSnapshots(told);
        told.Add(L"All snapshots are damaged. Nothing is written.");
        return kExitDamaged;
    }
    if (result == CommandResult::Done) result = WriteExportFile(request.pszFile, work.file);
    if (result != CommandResult::Done) return DescribeResult(result, told);
    told.Add(work.nWritten == 1 ? L"%u snapshot is written to %s."
                                : L"%u snapshots are written to %s.",
             work.nWritten, request.pszFile);
    work.left.AddTo(told);
    return work.nDamaged ? kExitPartly : kExitDone;
}

int Remember(CommandText& told) {
    CommandResult result = DoStep(SnapshotStep::Remember);
    if (result == CommandResult::Done) told.Add(L"Icons stored");
    return DescribeResult(result, told);
}

/// Restores or deletes the snapshot that is meant. A damaged one is only deleted.
int ActOn(SnapshotStep step, const wchar_t* pszDone, const SnapshotRequest& request,
          CommandText& told) {
    SnapshotListing listing;
    CommandResult result = listing.Read();
    if (result != CommandResult::Done) return DescribeResult(result, told);
    if (listing.Get().empty()) return TellNoSnapshots(told);
    const SnapshotEntry* pEntry = listing.Find(request);
    if (!pEntry) return DescribeResult(CommandResult::NoSnapshot, told);
    if (step == SnapshotStep::Restore && !pEntry->bIntact)
        return DescribeResult(CommandResult::Damaged, told);
    result = DoStep(step, pEntry->qwTime, request.bQuiet);
    if (result == CommandResult::Done) told.Add(pszDone, LocalTimeText(*pEntry).Get());
    return DescribeResult(result, told);
}

int DeleteAll(CommandText& told) {
    CommandResult result = DoStep(SnapshotStep::DeleteAll);
    if (result == CommandResult::Done) told.Add(L"All snapshots are deleted.");
    return DescribeResult(result, told);
}

int Do(const SnapshotRequest& request, CommandText& told) {
    switch (request.command) {
    case SnapshotCommand::List: return List(told);
    case SnapshotCommand::Remember: return Remember(told);
    case SnapshotCommand::Restore:
        return ActOn(SnapshotStep::Restore, L"The icons are back as they were at %s.", request,
                     told);
    case SnapshotCommand::Delete:
        return ActOn(SnapshotStep::Delete, L"The snapshot of %s is deleted.", request, told);
    case SnapshotCommand::DeleteAll: return DeleteAll(told);
    case SnapshotCommand::Export: return Export(request, told);
    case SnapshotCommand::Import: return ImportFile(request.pszFile, told);
    case SnapshotCommand::None: break;
    }
    return kExitDone;
}

/// Whether a command only reads: values are written whole, so that it needs no monitor.
bool OnlyReads(SnapshotCommand command) {
    return command == SnapshotCommand::List || command == SnapshotCommand::Export;
}

int DoInTurn(const SnapshotRequest& request, CommandText& told) {
    CommandResult result =
        DoStep(OnlyReads(request.command) ? SnapshotStep::TakeTurn : SnapshotStep::Begin);
    if (result != CommandResult::Done) return DescribeResult(result, told);
    ScopeExit end([] { DoStep(SnapshotStep::End); });
    return Do(request, told);
}
} // namespace

int RunCommand(const SnapshotRequest& request) {
    CommandText told;
    int nExitCode = DoInTurn(request, told);
    bool bFailed = nExitCode != kExitDone && nExitCode != kExitPartly;
    // The turn is over: a box may stand for long.
    if (!request.bQuiet) TellUser(told.Get(), bFailed, nExitCode != kExitDone);
    return nExitCode;
}
