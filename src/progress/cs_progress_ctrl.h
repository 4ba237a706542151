#pragma once
#include "progress/progress_ex.h"
#include "runtime/base/export.h"
#include "runtime/text/text_format.h"
#include "runtime/threads/crit_sec.h"
#include "wnd/control/csctrl.h"
#include <windows.h>
#include <atomic>

class CSProgressCtrl;
struct ITaskbarList3;

/// The arithmetic of a CSProgressCtrl: moves its bar, and the mirror of that if there is one.
///
/// Each step is a message that the worker waits for. Where a step is less than a pixel, a dialog
/// that looks itself now and then (ProgressDlg) has them put off: the bar gets them together. Who
/// asks the bar for its position, or for a picture, sees no difference.
class TESSALY_API ProgressExForCtrl : public ProgressEx {
  public:
    ProgressExForCtrl() = default;

    void DoStepIt() override;
    void DoSetPos(int nBarPos) override;
    void DoSetRange(int nBarLow, int nBarHigh) override;
    int ProcessAllMessages() override;
    using ProgressEx::SetText;

    /// Borrowed; until it is set, and while its window does not live, no bar moves.
    void SetCtrl(CSProgressCtrl* pNew) { pCtrl = pNew; }

  protected:
    void SetText(int nLine, const wchar_t* pszFormat, char* pArgs) override;

  private:
    friend class CSProgressCtrl;
    friend class ProgressDlg;

    bool PutOffStep();

    CSProgressCtrl* pCtrl = nullptr;
    bool bFine = false;                // the bar has more units than pixels
    std::atomic<int> nPutOff{0};       // steps that the bar has not got yet
    std::atomic<bool> bUnshown{false}; // there were some since the dialog last looked
};

/// A progress bar of a dialog with 64-bit ranges, up to four lines of text that belong to it, a
/// mirror of the bar on the taskbar's button, pause colouring and a marquee.
///
/// The thread that does the work may be another one than the dialog's: what it reports reaches the
/// bar as messages. The object is to live as long as it reports; a window that is gone does no
/// harm.
class TESSALY_API CSProgressCtrl : public CSCtrl {
  public:
    CSProgressCtrl();
    ~CSProgressCtrl() override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;

    /// Ties the object to the dialog's bar (CSCtrl::Init), without lines, then Setup.
    void Init(CSDlg* pDlg, unsigned int nId, int nLow, int nHigh, int nPos);

    // ProgressEx's, of this bar.
    /// Range and position at once.
    void Setup(int nLow, int nHigh, int nPos) { progressEx.Setup(nLow, nHigh, nPos); }
    /// Range and position at once.
    void Setup64(__int64 qnLow, __int64 qnHigh, __int64 qnPos) {
        progressEx.Setup(qnLow, qnHigh, qnPos);
    }
    /// The range in real units.
    void SetRange64(__int64 qnLow, __int64 qnHigh) { progressEx.SetRange64(qnLow, qnHigh); }
    void SetPos64(__int64 qnPos) { progressEx.SetPos64(qnPos); } ///< The position in real units.
    /// One real unit is done. 1 if that moved the bar.
    int StepIt() { return progressEx.StepIt(); }
    /// Whether somebody wants the work to stop.
    int IsCanceled() const { return progressEx.IsCanceled(); }
    void Cancel(int bCancel) { progressEx.Cancel(bCancel); } ///< Sets or clears that mark.
    /// The arithmetic itself, which stays this object's.
    ProgressEx* GetProgressEx() { return &progressEx; }

    /// The dialog's items that are the lines 0 to 3, each emptied; 0 is none.
    void SetupLines(unsigned nId0, unsigned nId1, unsigned nId2, unsigned nId3);
    /// A line's text; null empties it. Nothing for a line that there is not.
    void SetText(int nLine, const wchar_t* pszText);
    /// The formatted text (runtime/text/text_format.h) is cut at 1,023 characters.
    void SetText(int nLine, const wchar_t* pszFormat, ArgList args);
    /// SetText, formatted with the arguments.
    void SetTextFmt(int nLine, const wchar_t* pszFormat, ...);

    /// From now on the bar shows on the taskbar's button of that window too; null ends that. Before
    /// Windows 7, and where COM is not initialised, there is no mirror, and nothing else differs.
    void EnableTaskbarProgress(HWND hwndButton);
    /// ProgressEx::Pause, and the bar and its mirror get the colour of a paused one, or of a
    /// running one.
    void Pause(int bPause);
    /// Turns the bar into one that slides without end, a step each nIntervalMs, or back into a
    /// normal one at its position.
    void DoMarquee(int bOn, unsigned nIntervalMs);

  private:
    friend class ProgressExForCtrl;
    friend class ProgressDlg;
    class MirrorUse; // one use of the mirror, which may be dropped meanwhile

    void EnableLines();
    void DropMirror();
    void CatchUp();
    bool ShowPutOff();
    void ShowMirror(int nPos);

    ProgressExForCtrl progressEx;
    bool bCatchingUp = false;
    ITaskbarList3* pTaskbarList = nullptr; // owned; null: no mirror
    HWND hwndTaskbar = nullptr;            // whose button shows it
    unsigned idText[4] = {};               // 0: none
    CritSec csTaskbar;                     // for the two above
};
