#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <atomic>

class CSProgressCtrl;
class ProgressDlg;
class ProgressEx;
class ProgressThread;
class ProgressTicker;

/// What a worker holds to tell how far it is. It can be used before any window exists: it stores
/// what it is told and brings a dialog up, on a thread of its own, once the work has lasted long
/// enough. There is no timer: StepIt, NextStep and SetText look at the clock, so that a worker that
/// goes silent shows nothing. What was stored is handed over when the dialog is up, once, in this
/// order: title, lines, range, steps, position, ticker.
///
/// States: waiting (storing), shown, finished: after the dialog has ended the object stores again,
/// and no second dialog comes up before Close.
///
/// The worker is one thread, which calls everything; it may be an interface thread: SetText, Close
/// and the coming up of the dialog dispatch its messages, and from handlers that run then the same
/// object may be used, Close included, but not destroyed. WM_QUIT stays in the queue. Where a
/// dialog is asked for that does not exist, nothing happens and the result is null.
class TESSALY_API Progress {
  public:
    /// The parent, which may be null, is disabled from now to the end. With dwDelayMs 0 the dialog
    /// comes up at once, otherwise not before so many milliseconds. dwTextIntervalMs is the least
    /// time between two changes of text, 0 for no limit; what comes earlier is dropped. nLinesCount
    /// of the dialog's four lines are used; 0 stands for 4.
    explicit Progress(HWND hwndOwner = nullptr, unsigned long dwDelayMs = 0,
                      unsigned long dwTextIntervalMs = 0, unsigned nLinesCount = 0,
                      int bCancelEnabled = 1);
    /// Enables the parent, brings it to the foreground, and Close.
    ~Progress();
    Progress(const Progress&) = delete; // owns thread and texts
    Progress& operator=(const Progress&) = delete;

    // Text. Formats are FormatText's (runtime/text/text_format.h), cut at 1,023 characters.

    void SetTitle(const wchar_t* pszNew); ///< The dialog's title.
    /// The dialog's title, formatted with the arguments.
    void SetTitleFmt(const wchar_t* pszFormat, ...);
    /// Lines are 0 to 3; others are ignored. Null and the empty text empty the line.
    void SetText(int nLine, const wchar_t* pszNew);
    /// SetText, formatted with the arguments.
    void SetTextFmt(int nLine, const wchar_t* pszFormat, ...);
    /// The lines in use, for a dialog that comes up from now on; 0 stands for 4.
    void SetLinesCount(unsigned nCount);

    // Numbers, in real units.

    /// Range 0 to nMax, position 0, the title, and the text of line 1: strings by their ids
    /// (runtime/messages/res_str.h), empty where there is none.
    void Init(unsigned nMax, unsigned nTitleId, unsigned nTextId);
    /// The range. Also sets the bar's position to 0 if there is a dialog. Before that it is stored
    /// for the dialog, but only if neither end is negative; so is a position.
    void SetRange(int nLow, int nHigh);
    /// The same, but the bar's position stays.
    void SetRange64(__int64 qnLow, __int64 qnHigh);
    void SetPos(long lPos);       ///< The position, within the range.
    void SetPos64(__int64 qnPos); ///< The position, within the range.
    /// What was set and stepped, whether or not there is a dialog.
    __int64 GetPos64() const { return nPos; }
    /// Made to be called for every byte: before the dialog is due it costs little more than the
    /// look at the clock, with a dialog little more than the count, as long as the bar does not
    /// move.
    void StepIt() {
        ++nPos;
        if (pDlg.load(std::memory_order_acquire)) {
            StepDlg();
            return;
        }
        ++nPendingSteps;
        TestClock();
    }
    /// StepIt, then the text of line 1. 1; 0, and nothing happens, once the user has cancelled: the
    /// usual loop condition of a worker.
    int NextStep(unsigned nTextId);

    // State.

    /// 1 once the dialog has ended in another way than by Close.
    int IsCanceled() const { return bCanceled; }
    /// Ends the dialog, whatever it is doing, and waits for its thread. A later StepIt or SetText
    /// brings a new one up at once. Nothing to do without one.
    void Close();
    /// Shows the dialog, in the foreground, or hides it.
    void Show(int bShow);
    /// Another window in the parent's place, which stays enabled.
    void SetModelessParent(HWND hwndOwner);
    /// The bar fills by the clock: ProgressTicker's arguments (progress/progress_ticker.h). An
    /// interval of 0 is no ticker. *pdwResult is written when the dialog ends, not later than Close
    /// returns.
    void EnableTicker(unsigned long dwIntervalMs, unsigned long dwMax, unsigned long* pdwResult);
    void PauseTicker(int bPause); ///< Non-zero holds the ticker, 0 lets it go on.

    // What the dialog has; good until it ends, which the user can do.

    HWND GetDlg() { return GetDlgHWND(); } ///< GetDlgHWND under another name.
    HWND GetDlgHWND();                     ///< The dialog's window; null without one.
    CSProgressCtrl* GetProgressCtrl();     ///< The dialog's bar; null without a dialog.
    ProgressEx* GetProgressEx();           ///< The arithmetic of that bar; null without a dialog.
    ProgressTicker* GetTicker();           ///< The ticker; null without one.

  protected:
    /// The only way in: brings the dialog up and hands over what was stored; nothing while there is
    /// a thread. Comes back with the dialog up, or when 5 seconds were not enough for that: then
    /// what was stored is handed over at the first call after it came up.
    void StartThread();

  private:
    friend class ProgressThread;
    friend class ProgressDlg;

    /// A call that uses the dialog. Handlers that run meanwhile may close: what they end stays
    /// until the outermost call has left it.
    class Call {
      public:
        explicit Call(Progress& of) : progress(of) { ++progress.nCalls; }
        ~Call() {
            if (--progress.nCalls == 0) progress.DeleteEndedThreads();
        }
        Call(const Call&) = delete; // stands for one call
        Call& operator=(const Call&) = delete;

      private:
        Progress& progress;
    };

    static unsigned GetTickAfter(unsigned dwMs);
    /// Brings the dialog up if it is due.
    void TestClock() {
        if (pThread.load(std::memory_order_relaxed)) return;
        if (!dwShowTick || static_cast<int>(::GetTickCount() - dwShowTick) >= 0) StartThread();
    }
    ProgressDlg* GetLiveDlg();
    bool IsAnythingStored() const;
    void StepDlg();
    void HandOver(ProgressDlg* pShown);
    void ShowText(ProgressDlg* pShown, int nLine, const wchar_t* pszNew);
    void DeleteEndedThreads();

    HWND hwndParent = nullptr;     // enabled again at the end
    std::atomic<int> bModeless{0}; // see SetModelessParent; the dialog's thread sets it too
    std::atomic<int> bCanceled{0}; // the dialog ended other than by Close
    std::atomic<ProgressThread*> pThread{nullptr}; // owned; null until shown
    std::atomic<ProgressDlg*> pDlg{nullptr};       // the thread's, while the dialog exists
    wchar_t* pszTitle = nullptr;                   // waiting for the dialog, owned
    wchar_t* pszText[4] = {};                      // likewise
    unsigned nLines;
    int bCanCancel;
    __int64 nPos = 0;              // the caller's
    __int64 nPendingSteps = 0;     // taken while no dialog existed
    __int64 nPendingLow = -1;      // waiting for the dialog; -1: none
    __int64 nPendingHigh = -1;     // likewise
    __int64 nPendingPos = -1;      // likewise
    unsigned dwShowTick = 0;       // when the dialog is due; 0: at once
    unsigned dwTextInterval;       // milliseconds; 0: no limit
    unsigned dwNextTextTick;       // earlier texts are dropped; 0: none are
    unsigned dwTickerInterval = 0; // waiting for the dialog; 0: none
    unsigned dwTickerMax = 0;
    unsigned long* pTickerResult = nullptr; // borrowed

    std::atomic<int> bClosing{0}; // Close is under way
    std::atomic<int> nCalls{0};   // under way, see Call
    int bParentDisabled = 0;      // by this object
    int bHandedOver = 0;          // what was stored, to the present dialog
    int bHandingOver = 0;         // just now: handlers that run meanwhile store
    int nLateSteps = 0;           // theirs, behind the position that is handed over
    std::atomic<ProgressThread*> pEndedThread{
        nullptr}; // closed while calls were under way; a chain, owned
};

/// Destroys and frees a Progress, which was made with new, at the end of a block: in the module
/// that made it, which may have another heap than the library.
class ProgressDeleter {
  public:
    /// Null: nothing happens.
    explicit ProgressDeleter(Progress* pToDelete) : pProgress(pToDelete) {}
    ~ProgressDeleter() { delete pProgress; }
    ProgressDeleter(const ProgressDeleter&) = delete;
    ProgressDeleter& operator=(const ProgressDeleter&) = delete;

  private:
    Progress* pProgress;
};

/// Pauses the ticker and hides the dialog for the length of a block, in which the worker asks the
/// user something; at its end the dialog comes back to the foreground and the ticker goes on.
class TESSALY_API ProgressPauseHide {
  public:
    /// Null: nothing happens.
    explicit ProgressPauseHide(Progress* pToHide);
    ~ProgressPauseHide();
    ProgressPauseHide(const ProgressPauseHide&) = delete;
    ProgressPauseHide& operator=(const ProgressPauseHide&) = delete;

  private:
    Progress* pProgress;
};
