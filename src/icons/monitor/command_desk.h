#pragma once
#include "icons/monitor/command_message.h"

/// Whether what a WM_COPYDATA brings is a command, whole or not.
[[nodiscard]] inline bool IsCommandData(const COPYDATASTRUCT* pData) {
    return pData && pData->dwData == kCommandData;
}

/// Where the monitor takes commands: does what it is told and answers. Any program can send one:
/// what does not hold together is answered with Damaged and changes nothing, and a command can do
/// no more harm than other messages can: the menu deletes all snapshots where a command deletes
/// one, and what an import stores a made-up capture could as well. Nobody is asked and nothing is
/// shown.
class CommandDesk {
  public:
    /// Whether it is a command that moves icons, if nothing but the shell stands against it:
    /// captures are to be suppressed before.
    [[nodiscard]] static bool MovesIcons(const COPYDATASTRUCT& data);
    /// Whether it is a command that asks for a capture.
    [[nodiscard]] static bool AsksForCapture(const COPYDATASTRUCT& data);
    /// The answer to a command's message, a CommandResult. Takes up to the time that the shell has
    /// for a restore; messages that are sent to the monitor may be handled meanwhile.
    LRESULT OnCommandData(const COPYDATASTRUCT& data);

    /// Asks for a capture, whose outcome is kept under that number: Pending; NoDesktop if it can't
    /// be asked for. An earlier number's outcome is forgotten.
    CommandResult Remember(unsigned __int64 qwNumber);
    /// What has become of it; NoAnswer if another one has taken its place.
    CommandResult GetOutcome(unsigned __int64 qwNumber) const;
    /// A capture has been dealt with: Done (stored), Unchanged or NotWritten.
    void OnCaptured(CommandResult result);

  private:
    unsigned __int64 qwAsked = 0;
    CommandResult outcome = CommandResult::NoAnswer;
};
