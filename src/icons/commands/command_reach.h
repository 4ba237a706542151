#pragma once
#include "icons/monitor/command_message.h"
#include "icons/monitor/command_turn.h"

#include <span>

/// A command's way to the monitor that runs: its turn among the commands, the monitor's window, and
/// what is asked of that. All waits end in time.
class CommandReach {
  public:
    constexpr CommandReach() noexcept = default;
    /// Takes the turn: Done or Busy. For what only reads.
    CommandResult TakeTurn();
    /// Takes the turn and finds the monitor's window, waiting for it where a monitor is starting:
    /// Done, with or without a monitor, or Busy.
    CommandResult Begin();
    /// Gives the turn up.
    void End() { turn.Release(); }

    [[nodiscard]] bool HasMonitor() const { return hwndMonitor != nullptr; }
    /// Done if the monitor, where one runs, takes commands of this program, or why it does not.
    /// Changes nothing.
    CommandResult TestMonitor() const;
    /// Has the monitor do it; its answer, or why there is none.
    CommandResult Ask(CommandCode code, unsigned __int64 qwValue,
                      std::span<const IconRecord> records = {}) const;

  private:
    CommandTurn turn;
    HWND hwndMonitor = nullptr;
};
