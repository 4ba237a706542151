#pragma once
#include "runtime/base/export.h"
#include "runtime/threads/cs_thread.h"
#include <windows.h>
#include <atomic>

class ProgressTicker;

/// The thread of a ticker: a step each dwInterval milliseconds until it is stopped.
class TESSALY_API ProgressTickerThread : public CSThreadEx {
  public:
    /// The ticker is borrowed and lives longer than the thread. An interval of 0 counts as 1.
    ProgressTickerThread(ProgressTicker* pOf, unsigned long dwIntervalMs);
    ~ProgressTickerThread() override;

    unsigned DoThreadEx() override;

  private:
    ProgressTicker* pTicker;
    unsigned dwInterval; // milliseconds
};

/// Fills a bar by the clock when nothing better is known: a step each interval, up to a maximum
/// that is an estimate of the whole duration. It moves from its construction to its end, also while
/// the bar's own thread is busy. The object may be made and destroyed on any one thread.
class TESSALY_API ProgressTicker {
  public:
    /// Sets the bar's range to 0..dwMaxPos, its position to 0 and its step to 1. With bShow the bar
    /// is shown now and hidden at the end. pdwResult may be null; otherwise the number of steps is
    /// stored there by the destructor: a better estimate for the next time.
    ProgressTicker(HWND hwndProgressBar, unsigned long dwIntervalMs, unsigned long dwMaxPos,
                   int bShow, unsigned long* pdwResult);
    /// Stops the thread; the calling thread's messages are dispatched meanwhile.
    ~ProgressTicker();
    ProgressTicker(const ProgressTicker&) = delete; // owns the thread
    ProgressTicker& operator=(const ProgressTicker&) = delete;

    /// A step, as the thread makes them; nothing while it is paused or at its maximum.
    void StepIt();
    /// Non-zero holds the ticker, 0 lets it go on. Not nested. Defined on any thread.
    void Pause(int bPause);

  private:
    HWND hwndBar;
    unsigned dwInterval; // milliseconds
    int bShowHide;
    std::atomic<int> bPaused{0};
    unsigned long* pResult; // borrowed, may be null
    unsigned dwMax;
    std::atomic<unsigned> dwPos{0};
    ProgressTickerThread* pThread; // owned; null when out of memory
};

/// Holds a ticker for the length of a block.
class TESSALY_API ProgressTickerPause {
  public:
    /// Null: nothing happens.
    explicit ProgressTickerPause(ProgressTicker* pToPause);
    ~ProgressTickerPause();
    ProgressTickerPause(const ProgressTickerPause&) = delete;
    ProgressTickerPause& operator=(const ProgressTickerPause&) = delete;

  private:
    ProgressTicker* pTicker;
};
