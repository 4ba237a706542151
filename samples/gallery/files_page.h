#pragma once
#include "file_work.h"
#include "gallery_page.h"

/// A text file: opened, recognised, edited, saved in any encoding, appended to.
class FilesPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override;
    void OnButtonClicked(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void OpenText();
    void SaveText();
    void AppendText();
    void ShowResult(int bDone, const wchar_t* pszDone);

    CSEdit pathEdit;
    CSComboList formatList;
    FileWork work{*this}; // what is done with whole files
};
