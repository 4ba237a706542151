#pragma once
#include "tessaly.h"

/// Can be resized by its frame and its grip, not below its template. Comes back where it was, also
/// after the next start of the program.
class SizableDialog : public CSDlg {
  public:
    SizableDialog();
    ~SizableDialog() override;
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    void OnResize(int dw, int dh) override;

  private:
    MyWindowPlacement place; // ours: the dialog reads and fills it
    CSIconForDlg icon;
};

/// Groups of controls fold away, and the dialog becomes lower by as much.
class FoldDialog : public CSDlg {
  public:
    FoldDialog();
    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
};
