#pragma once
#include "progress/cs_progress_ctrl.h"
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include "runtime/threads/cs_thread.h"
#include "runtime/threads/crit_sec.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/layout/csdlg_main.h"
#include <windows.h>
#include <atomic>
#include <memory>

class Progress;
class ProgressDlg;
class ProgressTicker;

/// The thread of a progress dialog. The dialog is its for the whole of its life: it is made and
/// runs on the thread, and the object stays, without a window, until the thread object goes.
class TESSALY_API ProgressThread : public CSThreadEx {
  public:
    /// The Progress is borrowed and lives longer than the thread.
    explicit ProgressThread(Progress* pOf);
    ~ProgressThread() override;

    unsigned DoThreadEx() override;

    /// The dialog is up, or will not come up any more.
    void SetDlgReady() { ::SetEvent(hDlgReady.Get()); }
    /// CSThread::WaitForEvent for that: dispatches messages meanwhile. 1; 0 after the time.
    int WaitForDlgReady(unsigned long dwTimeoutMs);

  private:
    friend class Progress;
    friend class ProgressDlg;

    Progress* pProgress;
    OwnedHandle hDlgReady; // a manual event
    std::unique_ptr<ProgressDlg> pDlg;
    ProgressThread* pNext = nullptr; // in the chain of those that ended
};

/// The dialog of a long operation: title, four lines, bar, Cancel. Runs on its ProgressThread; the
/// worker calls the setters from its own thread. All of these do nothing while there is no window.
/// Steps of less than a pixel are shown a few times a second, by the dialog itself.
class TESSALY_API ProgressDlg : public CSDlg {
  public:
    /// pOf may be null: then nobody is told that the dialog is up.
    explicit ProgressDlg(ProgressThread* pOf);
    /// Stops the ticker, which stores its result, before the controls go.
    ~ProgressDlg() override;

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    __int64 OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) override;
    /// Asks the user; only Yes cancels. 1.
    __int64 OnCancel() override;
    void OnResize(int dw, int dh) override; ///< The controls follow the width.
    void OnInitRect(RECT& rc) override;
    void DoClose(int nResult) override;

    void SetTitle(const wchar_t* pszNew);           ///< The window's text.
    void SetText(int nLine, const wchar_t* pszNew); ///< A line's text; null empties it.
    /// The range. Also sets the position to 0.
    void SetRange(int nLow, int nHigh);
    /// The range; the position stays.
    void SetRange64(__int64 qnLow, __int64 qnHigh);
    void SetPos(long lPos);       ///< The position, within the range.
    void SetPos64(__int64 qnPos); ///< The position, within the range.
    void StepIt();                ///< One real unit is done.
    /// A ticker on the bar, in place of the one there is; see ProgressTicker.
    void EnableTicker(unsigned long dwIntervalMs, unsigned long dwMax, unsigned long* pdwResult);
    /// Nothing without a ticker.
    void PauseTicker(int bPause);
    /// Lines in use, 1 to 4; 0 stands for 4. For the time before the dialog comes up.
    void SetLinesCount(unsigned nCount);
    /// Hides the lines not in use, and tells how much lower the dialog is without them, in pixels.
    int CalcLinesResize();

    /// The dialog's place and width, from one dialog of the process to the next.
    static MyWindowPlacement wpResizing;

  private:
    friend class Progress;
    friend class ProgressThread;

    bool IsUp() const { return bUp.load(); }
    bool IsWindowThere() const;
    void ShowSteps();
    /// The two halves of StepIt: whether the bar is to move, and its move.
    bool CountSubStep() { return progressCtrl.progressEx.CountSubStep(); }
    void StepBar();
    void BringUp();
    void CutSystemMenu();
    void EndRun();
    void StopTicker(bool bForGood);
    void SharePlacement();

    int bInSizeMove = 0;       // between WM_ENTERSIZEMOVE and WM_EXITSIZEMOVE
    HWND hwndParent = nullptr; // the window to centre on
    int bCanCancel = 1;        // Cancel is enabled
    ProgressThread* pThread;   // borrowed
    unsigned nLines = 4;
    CSIconForDlg iconForDlg;
    CSProgressCtrl progressCtrl;
    ProgressTicker* pTicker = nullptr; // owned, may be null

    CritSec csTicker;                 // for it: worker and dialog may both end it
    bool bEnded = false;              // no new ticker
    bool bModelessProgress = true;    // what the Progress said
    std::atomic<bool> bUp{false};     // from the end of OnInitDialog on
    std::atomic<bool> bAsking{false}; // the question is on the screen
    std::atomic<bool> bHidden{false}; // by Progress::Show
    MyWindowPlacement wpOwn;          // this dialog's part in wpResizing
};
