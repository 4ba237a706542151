#pragma once
#include "gallery_page.h"

/// Rich text: statics that draw their text with tags, and whose links are commands of the page.
class RichTextPage : public GalleryPage {
  public:
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override;
    void OnButtonClicked(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void ShowPressed(unsigned int nId);
    void ShowMarkup();

    CSStaticHTML tags, wrapped, narrow, drawn;
    int nPresses = 0;
};
