#include "icons/commands/command_reach.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/message_gate.h"
#include "runtime/base/heap_array.h"

#include <cstring>

namespace {
constexpr DWORD kReachPollMs = 20;

DWORD TimeLeft(DWORD dwStart) {
    DWORD nPassed = ::GetTickCount() - dwStart;
    return nPassed < kCommandTimeoutMs ? kCommandTimeoutMs - nPassed : 0;
}

HWND FindMonitor() { return ::FindWindowW(kMonitorClass, nullptr); }

bool IsMonitorStarting() {
    return !FindMonitor() && HasInstanceMark(0, GetMyProductInfo().GetName());
}

/// What an answer says; of windows of that class that are somebody else's it may be anything.
CommandResult ReadAnswer(HWND hwnd, DWORD_PTR dwAnswer) {
    // What a window that goes meanwhile is sent has that answer, too.
    if (!dwAnswer) return ::IsWindow(hwnd) ? CommandResult::OldMonitor : CommandResult::NoAnswer;
    if (dwAnswer > static_cast<DWORD_PTR>(CommandResult::NoMemory)) return CommandResult::NoAnswer;
    return static_cast<CommandResult>(dwAnswer);
}
} // namespace

CommandResult CommandReach::TakeTurn() {
    return turn.Take(kCommandTimeoutMs) ? CommandResult::Done : CommandResult::Busy;
}

CommandResult CommandReach::Begin() {
    DWORD dwStart = ::GetTickCount();
    for (;;) {
        if (!turn.Take(TimeLeft(dwStart))) return CommandResult::Busy;
        hwndMonitor = FindMonitor();
        if (hwndMonitor || !IsMonitorStarting()) return CommandResult::Done;
        turn.Release(); // the one that starts waits for it
        while (IsMonitorStarting()) {
            if (!TimeLeft(dwStart)) return CommandResult::Busy;
            ::Sleep(kReachPollMs);
        }
    }
}

CommandResult CommandReach::TestMonitor() const {
    if (!hwndMonitor) return CommandResult::Done;
    // An import of nothing is answered with Damaged by every monitor that knows commands.
    CommandResult result = Ask(CommandCode::Import, 0);
    return result == CommandResult::Damaged ? CommandResult::Done : result;
}

CommandResult CommandReach::Ask(CommandCode code, unsigned __int64 qwValue,
                                std::span<const IconRecord> records) const {
    if (IsOfHigherLevel(hwndMonitor)) return CommandResult::OutOfReach;
    // Another user's would work on that user's snapshots, while this process lists its own user's.
    if (!IsOfSameUser(hwndMonitor))
        return ::IsWindow(hwndMonitor) ? CommandResult::OtherUser : CommandResult::NoAnswer;
    CommandMessage head{code, static_cast<DWORD>(records.size()), qwValue};
    HeapArray<BYTE> message(sizeof(head) + records.size_bytes());
    if (!message.IsReady()) return CommandResult::NoMemory;
    std::memcpy(message.Get(), &head, sizeof(head));
    if (!records.empty())
        std::memcpy(message.Get() + sizeof(head), records.data(), records.size_bytes());

    COPYDATASTRUCT data{kCommandData, static_cast<DWORD>(message.GetCount()), message.Get()};
    DWORD_PTR dwAnswer = 0;
    ::SetLastError(ERROR_SUCCESS);
    if (!::SendMessageTimeoutW(hwndMonitor, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data),
                               SMTO_NORMAL, kCommandTimeoutMs, &dwAnswer)) {
        bool bRefused = ::GetLastError() == ERROR_ACCESS_DENIED;
        return bRefused ? CommandResult::OutOfReach : CommandResult::NoAnswer;
    }
    return ReadAnswer(hwndMonitor, dwAnswer);
}
