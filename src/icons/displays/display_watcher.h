#pragma once
#include "icons/agent/icon_record.h"
#include "icons/displays/display_setup.h"
#include "runtime/base/heap_array.h"
#include "runtime/threads/message_pump.h"

#include <span>

/// Keeps a layout for each set-up of the displays and finds out when one is to be put back: after a
/// change it waits until the shell has settled, and has what lies there then compared with what was
/// seen last under the new set-up. The monitor window owns it, passes on what it hears of, and does
/// what is left to do.
///
/// Off, as it is until somebody turns it on (icons/displays/restore_on_change.h), it does nothing
/// but look whether it has been turned on. It sends nothing while it is told of a capture: the
/// shell waits for the answer to that, and some of what it asks would wait for the shell.
class DisplayWatcher {
  public:
    /// The timer of the monitor window that is this object's. It only runs after a change.
    static constexpr unsigned kTimerId = 12;

    DisplayWatcher() = default;
    DisplayWatcher(const DisplayWatcher&) = delete; // owns the timer
    DisplayWatcher& operator=(const DisplayWatcher&) = delete;

    /// The monitor window of a round stands. The first round of a process begins with a change if
    /// the displays are known, and others were there while the feature was at work last.
    void Start(HWND hwndMonitor);
    /// It is about to go; nothing happens from now on. The next round of this process begins with a
    /// change if this one ends within one, or under other displays.
    void End();
    /// It may have been turned on or off. True: a capture is to be asked for, so that the present
    /// layout is known at once.
    [[nodiscard]] bool OnSwitch();
    /// The displays have changed, or may have.
    void OnChange();
    /// A capture is being asked for.
    void OnCaptureAsked();
    /// A capture has come, by a request to that window. True: it is one that this object asked for,
    /// and for nothing else.
    [[nodiscard]] bool TakeCapture(HWND hwndAsked, std::span<const IconRecord> records);
    /// A capture has come. bSeen: it was stored, or found unchanged, and so is the layout of the
    /// displays as they are; otherwise it serves for no more than a comparison that is due.
    void OnCaptured(std::span<const IconRecord> records, bool bSeen);
    /// The user has had a snapshot put back: what lies there now is the layout of these displays.
    /// It is asked for, as the restore's own changes lead to no capture.
    void OnRestored();
    /// Its timer. True: a layout is to be put back now, by PutBack.
    [[nodiscard]] bool OnTimer();
    /// Moves the icons. True if that is to be told: the displays are still the same.
    [[nodiscard]] bool PutBack();

  private:
    enum class Phase {
        Calm,      // what is captured is the layout of the present set-up
        Settling,  // the displays have changed; the timer runs
        Comparing, // the shell has settled and was asked for a capture
        Differing, // the layout is to be put back; the timer runs, for the message alone
    };
    void Enter(Phase phaseNew, unsigned nTimerMs);
    void TurnOn();
    bool IsBackAtKnown() const;
    void OnSettled();
    void Ask();
    void Compare(std::span<const IconRecord> records);
    void KeepRestored(std::span<const IconRecord> records);
    HeapArray<IconRecord> ReadUsableLayout(const DisplaySetup& setup) const;

    HWND hwnd = nullptr; // the monitor window; null outside of a round
    bool bOn = false;
    Phase phase = Phase::Calm;
    CSTimer timer{kTimerId};
    DWORD dwTimerStart = 0;
    unsigned nTimerPeriodMs = 0;
    SetupName present;         // the set-up since the shell has settled; empty if it can't be told
    SetupName askedUnder;      // of the oldest request for a capture that has no answer yet
    bool bAsked = false;       // there is one
    bool bUseDue = false;      // the first capture under the present set-up counts as its use
    bool bEverAsked = false;   // by this object; nobody else asks by way of the view
    unsigned nAsked = 0;       // requests of this object's own for a capture, without answers yet
    bool bRestored = false;    // the next of the answers is what the user has had put back
    HeapArray<IconRecord> due; // what PutBack sends
};
