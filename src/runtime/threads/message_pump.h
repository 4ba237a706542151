#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Takes and dispatches every message that waits for the window, or for the calling thread if hwnd
/// is null. Returns 1; 0 if WM_QUIT was among them. WM_QUIT is not put back: no later loop sees it.
TESSALY_API int ProcessAllMessages(HWND hwnd = nullptr);

/// Waits for the handle, up to nTimeoutMs, and dispatches the thread's messages meanwhile. Each
/// round of messages starts the time anew. True if the handle was signalled (or the wait failed),
/// false after the time.
bool WaitPumpingMessages(HANDLE h, DWORD nTimeoutMs);

/// While it lives, a WM_QUIT that the functions above take on the calling thread is not lost: at
/// its end the queue gets it back, for the loop whose it is. For waits within code that does not
/// know whether it runs on an interface thread.
class QuitKeeper {
  public:
    QuitKeeper() noexcept;
    ~QuitKeeper();
    QuitKeeper(const QuitKeeper&) = delete; // the list knows its address
    QuitKeeper& operator=(const QuitKeeper&) = delete;

    /// The calling thread's innermost keeper, if there is one, gets a WM_QUIT with that exit code.
    static void Note(WPARAM nCode) noexcept;

  private:
    DWORD dwThread;
    QuitKeeper* pNext;
    bool bTaken = false;
    int nExitCode = 0;
};

/// A timer of the calling thread: of a window (WM_TIMER, or pfnTimer), or of none. Start and Stop
/// belong to the window's thread.
class TESSALY_API CSTimer {
  public:
    /// nTimerId 0: the first Start's default id becomes the id.
    explicit constexpr CSTimer(unsigned nTimerId = 0) noexcept : nId(nTimerId) {}
    ~CSTimer() { Stop(); }
    CSTimer(const CSTimer&) = delete; // owns the running timer
    CSTimer& operator=(const CSTimer&) = delete;

    /// Starts the timer, or starts it anew. hwndOwner may be null: then pfnTimer is called, or
    /// WM_TIMER comes to the thread's queue with a number of the platform's choice. nDefaultId
    /// becomes the id for good if there was none. Returns 1; 0 when the platform refused.
    int Start(HWND hwndOwner, unsigned nPeriodMs, TIMERPROC pfnTimer = nullptr,
              unsigned nDefaultId = 0);
    /// Ends the timer; a WM_TIMER that already waits in the queue may still come.
    void Stop();
    /// 1 from a Start that gave 1 to the next Stop.
    int IsTicking() const { return uTimer != 0; }
    /// The timer's id; 0 while it has none.
    unsigned GetID() const { return nId; }

  private:
    HWND hwnd = nullptr;
    unsigned uTimer = 0; // what SetTimer returned; 0 while not ticking
    unsigned nId;
};
