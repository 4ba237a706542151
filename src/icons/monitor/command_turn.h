#pragma once
#include "runtime/base/ownership.h"
#include <windows.h>

/// A turn of the commands of a logon session: one works at a time, and none while a monitor starts.
/// It is a mutex of the session, which ends with its holder: one that was killed keeps nobody
/// waiting. Taken and released on one thread. Other programs can take the name and so keep commands
/// out.
class CommandTurn {
  public:
    constexpr CommandTurn() noexcept = default;
    CommandTurn(const CommandTurn&) = delete; // holds the turn
    CommandTurn& operator=(const CommandTurn&) = delete;
    ~CommandTurn() { Release(); }

    /// Waits for the turn. False after the time, also if the name stands for something else.
    [[nodiscard]] bool Take(DWORD nTimeoutMs);
    /// Gives it up; nothing if it is not taken.
    void Release();

  private:
    OwnedHandle hMutex; // owned by this thread, unless empty
};
