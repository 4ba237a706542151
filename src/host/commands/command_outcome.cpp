#include "host/commands/command_outcome.h"
#include "host/commands/exit_code.h"

#include <algorithm>
#include <iterator>

namespace {
struct Outcome {
    CommandResult result;
    ExitCode nExitCode;
    const wchar_t* pszText;
};
constexpr Outcome kOutcomes[] = {
    {CommandResult::Done, kExitDone, L""},
    {CommandResult::IsThere, kExitDone, L""},
    {CommandResult::Unchanged, kExitDone, L"No changes to the icons have been detected."},
    {CommandResult::NoSnapshot, kExitNoSnapshot, L"There is no such snapshot."},
    {CommandResult::Damaged, kExitDamaged, L"The snapshot is damaged. Nothing was done."},
    {CommandResult::NotWritten, kExitNotWritten, L"Cannot write to the Windows Registry."},
    {CommandResult::NoDesktop, kExitNoDesktop,
     L"The desktop cannot be found, or it did not answer in time."},
    {CommandResult::NoIcons, kExitNoDesktop,
     L"The desktop has no icons to store, or more than can be stored."},
    {CommandResult::OldMonitor, kExitNoDesktop,
     L"The Tessaly that is running is of an older version, which does not know this command. "
     L"Restart it."},
    {CommandResult::OutOfReach, kExitNoDesktop,
     L"The Tessaly that is running has higher rights than this command. Start the command as "
     L"administrator."},
    {CommandResult::OtherUser, kExitNoDesktop,
     L"The Tessaly that is running belongs to another user or has higher rights. Start the command "
     L"as that user."},
    {CommandResult::NoAnswer, kExitNoDesktop,
     L"The Tessaly that is running did not answer in time, or was closed."},
    {CommandResult::AutoArranged, kExitAutoArranged,
     L"The desktop arranges its icons by itself. They were not put back."},
    {CommandResult::Busy, kExitBusy,
     L"Another command of Tessaly, or one that is starting, did not come to an end in time."},
    {CommandResult::NoMemory, kExitFile, L"There is not enough memory."},
    {CommandResult::FileFailed, kExitFile, L"The file cannot be read or written."},
    {CommandResult::FileTooLarge, kExitNothingTaken, L"The file is too large for an export."},
    {CommandResult::NotOurFile, kExitNothingTaken, L"The file is no export of Tessaly."},
    {CommandResult::OtherVersion, kExitNothingTaken,
     L"The file was made by another version of Tessaly."},
};
} // namespace

int DescribeResult(CommandResult result, CommandText& told) {
    const auto* pEnd = std::end(kOutcomes);
    const auto* pFound = std::find_if(
        std::begin(kOutcomes), pEnd, [result](const Outcome& row) { return row.result == result; });
    // What no command asks for is an answer of a window that is not the monitor's.
    if (pFound == pEnd) return DescribeResult(CommandResult::NoAnswer, told);
    if (*pFound->pszText) told.Add(L"%s", pFound->pszText);
    return pFound->nExitCode;
}

void LeftOut::Add(const wchar_t* pszName, const wchar_t* pszWhy) {
    constexpr unsigned kMaxTold = 20;
    if (nCount++ >= kMaxTold) return;
    lines.NextLine();
    lines.Add(L"%s: %s", pszName, pszWhy);
    nTold = nCount;
}

void LeftOut::AddTo(CommandText& told) const {
    if (!nCount) return;
    told.NextLine();
    told.Append(lines);
    if (nCount > nTold) told.Add(L"\nand %u others", nCount - nTold);
}
