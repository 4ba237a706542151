#pragma once
#include "gallery_page.h"

/// The two dialogs of the update check, with the page's own data: nobody is asked on the network,
/// and what was chosen is only told.
class UpdatesPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void RunQuestion();
    void RunOffer();
    void ShowAnswer(const wchar_t* pszDialog, int nResult, const DlgUpdateBase& dialog,
                    int bAutomatic);

    CSComboList reminder;
};
