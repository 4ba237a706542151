#include "icons/monitor/command_desk.h"
#include "icons/agent/desktop_shared_data.h"
#include "runtime/base/heap_array.h"
#include "wnd/core/company_msg.h"

#include <cstring>

namespace {
/// Takes the message's head. False unless the data are it and the records that it tells of.
bool ReadHead(const COPYDATASTRUCT& data, CommandMessage& head) {
    if (!data.lpData || data.cbData < sizeof(head)) return false;
    std::memcpy(&head, data.lpData, sizeof(head));
    DWORD cbRecords = data.cbData - static_cast<DWORD>(sizeof(head));
    return cbRecords / sizeof(IconRecord) == head.nRecords && cbRecords % sizeof(IconRecord) == 0;
}

CommandResult Import(const COPYDATASTRUCT& data, const CommandMessage& head) {
    if (!head.nRecords || head.nRecords > kMaxCapturedIcons) return CommandResult::Damaged;
    HeapArray<IconRecord> records(head.nRecords);
    if (!records.IsReady()) return CommandResult::NotWritten;
    // What was sent need not be aligned.
    std::memcpy(records.Get(), static_cast<const BYTE*>(data.lpData) + sizeof(head),
                records.GetByteCount());
    return ImportForCommand(head.qwValue, {records.Get(), records.GetCount()});
}
} // namespace

bool CommandDesk::MovesIcons(const COPYDATASTRUCT& data) {
    CommandMessage head{};
    return ReadHead(data, head) && head.code == CommandCode::Restore && !head.nRecords &&
           TestSnapshot(head.qwValue) == CommandResult::Done;
}

bool CommandDesk::AsksForCapture(const COPYDATASTRUCT& data) {
    CommandMessage head{};
    return ReadHead(data, head) && head.code == CommandCode::Remember;
}

LRESULT CommandDesk::OnCommandData(const COPYDATASTRUCT& data) {
    CommandMessage head{};
    CommandResult result = CommandResult::Damaged;
    if (!ReadHead(data, head)) return static_cast<LRESULT>(result);
    if (head.code == CommandCode::Import) return static_cast<LRESULT>(Import(data, head));
    if (head.nRecords) return static_cast<LRESULT>(result);
    switch (head.code) {
    case CommandCode::Remember: result = Remember(head.qwValue); break;
    case CommandCode::Outcome: result = GetOutcome(head.qwValue); break;
    case CommandCode::Restore:
        result = RestoreForCommand(GetDesktopSharedData().hwndListView, head.qwValue);
        break;
    case CommandCode::Delete: result = DeleteForCommand(head.qwValue); break;
    case CommandCode::DeleteAll: result = DeleteAllForCommand(); break;
    case CommandCode::Import: break;
    }
    return static_cast<LRESULT>(result);
}

CommandResult CommandDesk::Remember(unsigned __int64 qwNumber) {
    if (!PostMyCompanyMsg(GetDesktopSharedData().hwndListView, kCodeCapture, 0))
        return CommandResult::NoDesktop;
    qwAsked = qwNumber;
    return outcome = CommandResult::Pending;
}

CommandResult CommandDesk::GetOutcome(unsigned __int64 qwNumber) const {
    return qwNumber == qwAsked ? outcome : CommandResult::NoAnswer;
}

void CommandDesk::OnCaptured(CommandResult result) {
    if (outcome == CommandResult::Pending) outcome = result;
}
