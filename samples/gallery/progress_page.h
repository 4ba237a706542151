#pragma once
#include "gallery_page.h"
#include "progress_jobs.h"

#include <memory>

/// Progress of long operations: in a dialog of its own, and as a bar of this page.
class ProgressPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    __int64 OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnDelayedAction(unsigned long dwCode) override;
    void OnResize(int dw, int dh) override;

  private:
    void RunSteps();
    void RunDigests();
    void StartThread(std::unique_ptr<Job> pJobToRun, int nTextId);
    void OnJobDone();
    void Browse();
    void StepBar();
    void ShowBarText();

    CoInitEx com; // for the taskbar, and for the tree of folders
    CSProgressCtrl bar;
    int nBarSteps = 0;
    std::unique_ptr<Job> pJob; // what the thread does
    int nResultId = 0;         // where its result is to be told
    std::unique_ptr<JobThread> pThread;
};
