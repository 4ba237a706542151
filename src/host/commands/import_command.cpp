#include "host/commands/import_command.h"
#include "files/text/cs_file.h"
#include "host/commands/command_outcome.h"
#include "host/commands/exit_code.h"
#include "host/commands/import_reader.h"
#include "host/commands/snapshot_listing.h"
#include "icons/snapshots/snapshot_store.h"
#include "runtime/base/dll_buf.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <algorithm>
#include <cstring>
#include <string_view>

namespace {
constexpr LONGLONG kMaxFileSize = 16LL * 1024 * 1024;

using OwnedText = OwnedHandleOf<void*, &::FreeDllBuf>;

/// What the size of an open file says; a pipe has none.
CommandResult TestSize(HANDLE hFile) {
    LARGE_INTEGER cb{};
    if (::GetFileType(hFile) != FILE_TYPE_DISK || !::GetFileSizeEx(hFile, &cb))
        return CommandResult::FileFailed;
    if (cb.QuadPart > kMaxFileSize) return CommandResult::FileTooLarge;
    return cb.QuadPart ? CommandResult::Done : CommandResult::NotOurFile;
}

CommandResult ReadImportText(const wchar_t* pszPath, OwnedText& text, std::wstring_view& view) {
    HANDLE hOpened = ::CreateFileW(pszPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hOpened == INVALID_HANDLE_VALUE) return CommandResult::FileFailed;
    OwnedHandle file(hOpened); // while it is open nobody writes to the file
    CommandResult result = TestSize(file.Get());
    if (result != CommandResult::Done) return result;
    unsigned cch = 0;
    CSFileTextFmt fmt = fmtUnknown;
    text = OwnedText(CSFile::ReadText(pszPath, &cch, &fmt, L'?'));
    if (!text || !cch) return CommandResult::FileFailed;
    if (fmt == fmtBinary) return CommandResult::NotOurFile;
    view = {static_cast<const wchar_t*>(text.Get()), cch - 1};
    return CommandResult::Done;
}

/// One import: chooses among the sections, then has the chosen ones written.
class SnapshotImport {
  public:
    explicit SnapshotImport(ImportReader& readerOfFile) : reader(readerOfFile) {}
    int Run(CommandText& told);

  private:
    void Choose();
    void ChooseSection(const ImportSection& section);
    [[nodiscard]] bool TakeKnown(const ImportSection& section);
    CommandResult Write();
    CommandResult WriteOne(const ImportSection& section);
    void LeaveOut(const ImportSection& section, const wchar_t* pszWhy) {
        left.Add(section.szName, pszWhy);
        ++nLeft;
    }
    int Tell(CommandResult result, CommandText& told) const;

    ImportReader& reader;
    SnapshotListing listing;
    ImportSection chosen[kMaxSnapshots]; // newest first
    std::size_t nRoom = 0, nChosen = 0;
    LeftOut left;
    unsigned nLeft = 0, nKnown = 0, nTaken = 0;
    bool bMemory = true; // there was enough for choosing
};

int SnapshotImport::Run(CommandText& told) {
    CommandResult result = listing.Read();
    if (result != CommandResult::Done) return DescribeResult(result, told);
    nRoom = kMaxSnapshots - std::min<std::size_t>(listing.GetStoredCount(), kMaxSnapshots);
    Choose();
    return Tell(bMemory ? Write() : CommandResult::NoMemory, told);
}

void SnapshotImport::Choose() {
    ImportSection section;
    while (reader.ReadSection(section)) {
        if (section.pszFault)
            LeaveOut(section, section.pszFault);
        else if (!TakeKnown(section))
            ChooseSection(section);
    }
}

/// Whether the registry has a snapshot of that time, which is told.
bool SnapshotImport::TakeKnown(const ImportSection& section) {
    auto all = listing.Get();
    auto found = std::ranges::find_if(
        all, [&section](const SnapshotEntry& entry) { return entry.qwTime == section.qwTime; });
    if (found == all.end()) return false;
    HeapArray<IconRecord> stored;
    std::span<const IconRecord> records = reader.GetRecords();
    CommandResult result = LoadRecords(*found, stored);
    if (result == CommandResult::NoSnapshot) return false; // it went after it was listed
    if (result == CommandResult::NoMemory) {
        bMemory = false;
        return true;
    }
    bool bSame = result == CommandResult::Done && stored.GetCount() == records.size() &&
                 std::memcmp(stored.Get(), records.data(), stored.GetByteCount()) == 0;
    if (bSame) {
        left.Add(section.szName, L"is there already");
        ++nKnown;
    } else {
        LeaveOut(section, L"is there with other content");
    }
    return true;
}

/// Keeps the newest as far as there is room.
void SnapshotImport::ChooseSection(const ImportSection& section) {
    constexpr const wchar_t* kNoRoom = L"there is no room for it";
    ImportSection* pEnd = chosen + nChosen;
    ImportSection* pPlace = std::find_if(chosen, pEnd, [&section](const ImportSection& other) {
        return other.qwTime <= section.qwTime;
    });
    if (pPlace != pEnd && pPlace->qwTime == section.qwTime) {
        LeaveOut(section, L"stands twice in the file");
        return;
    }
    if (pPlace == chosen + nRoom) {
        LeaveOut(section, kNoRoom);
        return;
    }
    if (nChosen == nRoom)
        LeaveOut(chosen[nRoom - 1], kNoRoom);
    else
        ++nChosen;
    std::move_backward(pPlace, chosen + nChosen - 1, chosen + nChosen);
    *pPlace = section;
}

/// Done, or what stopped it.
CommandResult SnapshotImport::Write() {
    for (std::size_t i = nChosen; i-- > 0;) { // the oldest first, as captures write them
        CommandResult result = WriteOne(chosen[i]);
        // Captures go on meanwhile, and what was checked is checked again.
        switch (result) {
        case CommandResult::Done: ++nTaken; break;
        case CommandResult::IsThere: ++nKnown; break;
        case CommandResult::Differs:
        case CommandResult::NoRoom:
        case CommandResult::Damaged: LeaveOut(chosen[i], L"was not taken"); break;
        default: return result;
        }
    }
    return CommandResult::Done;
}

CommandResult SnapshotImport::WriteOne(const ImportSection& section) {
    reader.MoveTo(section);
    ImportSection again;
    if (!reader.ReadSection(again) || again.pszFault) return CommandResult::Damaged;
    return DoImportStep(again.qwTime, reader.GetRecords());
}

int SnapshotImport::Tell(CommandResult result, CommandText& told) const {
    int nExitCode = kExitDone;
    if (result != CommandResult::Done) {
        nExitCode = DescribeResult(result, told);
        told.NextLine();
    } else if (nLeft) {
        nExitCode = nTaken ? kExitPartly : kExitNothingTaken;
    } else if (!nTaken && !nKnown) {
        told.Add(L"There are no snapshots in the file.");
        return kExitNothingTaken;
    }
    told.Add(nTaken == 1 ? L"%u snapshot is taken in." : L"%u snapshots are taken in.", nTaken);
    left.AddTo(told);
    return nExitCode;
}
} // namespace

int ImportFile(const wchar_t* pszPath, CommandText& told) {
    OwnedText text;
    std::wstring_view view;
    CommandResult result = ReadImportText(pszPath, text, view);
    if (result != CommandResult::Done) return DescribeResult(result, told);
    ImportReader reader(view);
    if (!reader.IsReady()) return DescribeResult(CommandResult::NoMemory, told);
    ImportReader::Head head = reader.ReadHead();
    if (head == ImportReader::Head::NotOurs) return DescribeResult(CommandResult::NotOurFile, told);
    if (head == ImportReader::Head::OtherVersion)
        return DescribeResult(CommandResult::OtherVersion, told);
    return SnapshotImport(reader).Run(told);
}
