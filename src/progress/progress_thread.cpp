// The thread of a progress dialog at its work, where thread, dialog and Progress meet.

#include "progress/progress.h"
#include "progress/progress_dlg.h"
#include "resources/resource_ids.h"
#include "runtime/base/ownership.h"

#include <new>

unsigned ProgressThread::DoThreadEx() {
    // Whoever waits for the dialog need not go on waiting for one that will not come up.
    ScopeExit ready([this] { SetDlgReady(); });
    if (IsCanceled()) return 0; // closed before it began
    __int64 nResult = -1;
    pDlg.reset(new (std::nothrow) ProgressDlg(this));
    if (pDlg) {
        pDlg->hwndParent = pProgress->hwndParent;
        pDlg->SetLinesCount(pProgress->nLines);
        pDlg->bCanCancel = pProgress->bCanCancel;
        pProgress->bModeless = 1;
        pDlg->bModelessProgress = pProgress->bModeless != 0;
        pProgress->pDlg = pDlg.get();
        nResult = pDlg->Modal(-IDD_PROGRESS, nullptr, nullptr);
        pDlg->bUp = false;
    }
    pProgress->bCanceled = nResult != IDOK;
    pProgress->pDlg = nullptr;
    // The worker may be in a call that uses the object, and be held up there by another one that
    // closes: it is never waited for. The object, without its window, goes with this one.
    if (pDlg) pDlg->EndRun();
    return 0;
}
