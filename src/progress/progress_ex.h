#pragma once
#include "runtime/base/export.h"
#include <atomic>
#include <cstdarg>
#include <type_traits>

// The arithmetic of progress, without windows. All times are milliseconds of GetTickCount; a
// tracked object belongs to the thread that reports to it.

/// The timing of events alone, for work that has no bar. The first event after the start or after a
/// pause only starts the clock.
class TESSALY_API ProgressTracker {
  public:
    ProgressTracker() = default;

    /// An event has happened now.
    void Update();
    /// Non-zero begins a pause, which does not count as time; 0 ends one. They can be nested.
    void Pause(int bPause);
    /// Milliseconds from event to event; 0 as long as none was counted.
    unsigned GetAverageEventDuration() const;
    /// Milliseconds that n events take; 0 as long as none was counted.
    unsigned GetAverageEventsDuration(unsigned n) const;
    /// How many events happen in so many seconds; 0 as long as no time was counted.
    unsigned GetAverageEventsPerSeconds(unsigned nSeconds) const;

  protected:
    unsigned __int64 qwTotalMs = 0; // between counted events
    unsigned dwEvents = 0;
    unsigned dwLastTick = 0; // of the last event; 0: none yet
    int nPaused = 0;         // depth
};

/// Maps 64-bit work to the 16 bits of a progress bar, counts time per visible step, and tells how
/// long is left. Derived classes own the bar. "Bar units" are real units divided by a divisor that
/// SetRange64 chooses.
///
/// All of it belongs to the thread that does the work, but for Cancel and IsCanceled, which any
/// thread may call.
class TESSALY_API ProgressEx {
  public:
    ProgressEx() = default;
    ProgressEx(const ProgressEx&) = delete; // stands for one bar
    ProgressEx& operator=(const ProgressEx&) = delete;

    // The virtual operations, of which the text is the first (below); their order is fixed.

  protected:
    /// A line of text, as a format and a started argument list; the default ignores it. On this
    /// platform such a list is a char*: so that no narrow text is taken for one, callers use the
    /// form below, and a plain char* is refused there by the compiler (a const char* is not).
    virtual void SetText(int nLine, const wchar_t* pszFormat, char* pArgs);

  public:
    /// The bar moves by one unit.
    virtual void DoStepIt() = 0;
    virtual void DoSetPos(int nBarPos) = 0;                 ///< The bar moves to a position.
    virtual void DoSetRange(int nBarLow, int nBarHigh) = 0; ///< The bar gets its range.
    /// Dispatches the calling thread's waiting messages. 0 if WM_QUIT was among them.
    virtual int ProcessAllMessages() = 0;

    /// SetRange64, then SetPos64.
    void Setup(__int64 qnLow, __int64 qnHigh, __int64 qnPos);
    /// The range in real units. Chooses the divisor, so that the bar's numbers stay within 16 bits
    /// where 32 bits of divisor are enough for that; a reversed or empty range is passed on as it
    /// is. The position stays as it was in bar units.
    void SetRange64(__int64 qnLow, __int64 qnHigh);
    /// The position in real units.
    void SetPos64(__int64 qnPos);
    /// One real unit is done. 1 if that moved the bar, 0 if not yet.
    int StepIt() { return CountSubStep() ? StepBar() : 0; }
    /// Sets or clears the mark that the user wants to stop; the worker asks for it.
    void Cancel(int bCancel);
    int IsCanceled() const; ///< Whether Cancel set the mark.
    /// Begins or ends a pause, as ProgressTracker::Pause.
    void Pause(int bPause);
    /// How much is done, of 100; 0 for an empty range.
    int GetPercentCompleted() const;
    /// How long it still takes, by the average of the steps so far; 0 as long as none was timed. A
    /// hint: from about 4,294 seconds on it begins at 0 again.
    unsigned GetSecondsRemaining() const;
    /// The same as a text (GetTextRemaining in runtime/text/str_format.h). 1; 0 and an empty text
    /// for 0 seconds.
    int GetTextRemaining(wchar_t* pszText, unsigned cch, int bLongForm) const;
    /// Real units done in so many seconds; 0 as long as no time was counted.
    unsigned __int64 GetEventsPerSeconds(unsigned nSeconds) const;
    /// Milliseconds per bar unit; 0 as long as no step was timed.
    unsigned GetAverageStepDuration() const;

    /// Formats as FormatText does (runtime/text/text_format.h: %s is wide), for the virtual
    /// SetText. Derived classes that override that one bring this in with a using declaration.
    template <class... Args>
    void SetText(int nLine, const wchar_t* pszFormat, Args... args) {
        static_assert((std::is_trivially_copyable_v<Args> && ...), "not for a format");
        SetTextList(nLine, pszFormat, args...);
    }

  protected:
    ~ProgressEx() = default; // deleted by those who know what they made

    /// The two halves of StepIt: whether the bar is to move, and its move.
    bool CountSubStep() {
        if (++nSubStep < dwDivisor) return false;
        nSubStep = 0;
        return true;
    }
    int StepBar();
    /// Takes the time of a bar step.
    void TimeStep();

    std::atomic<int> bCanceled{0};
    unsigned dwDivisor = 1; // real units per bar unit, at least 1
    unsigned nSubStep = 0;  // real steps since the last bar step
    int nLow = 0;           // range and position, all in bar units
    int nHigh = 0;
    int nPos = 0;
    unsigned __int64 qwTotalMs = 0; // between bar steps
    unsigned dwSteps = 0;           // bar steps timed
    unsigned dwLastTick = 0;        // of the last bar step; 0: none yet
    int nPaused = 0;                // depth

  private:
    void SetTextList(int nLine, const wchar_t* pszFormat, ...);
};
