#pragma once
#include "gallery_page.h"

/// Help, tooltips, the wait cursor, and texts that are made to fit or from a number of seconds.
class TextsPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override;
    void OnButtonClicked(unsigned short nId) override;
    void OnDelayedAction(unsigned long dwCode) override;
    void OnHtmlHelpError(LPCWSTR pszPage) override;
    int GetTootTip(unsigned int nId, wchar_t* pszText, unsigned int cch) override;
    int GetTootTip(unsigned int nId, HINSTANCE& hinst, unsigned short& nStringId) override;
    void OnResize(int dw, int dh) override;

  private:
    void AddTip(unsigned int nId);
    void Work();
    void ShowFittedText();
    void ShowTimeRemaining();

    HWND hwndTip = nullptr; // goes with the page
};
