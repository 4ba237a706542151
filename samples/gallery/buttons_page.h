#pragma once
#include "gallery_page.h"

/// The same button three times: as it is, checked, and disabled. Their ids follow each other.
template <class Button>
struct StateRow {
    /// The arguments are the button's.
    template <class... Args>
    explicit StateRow(const Args&... args) : normal(args...), checked(args...), disabled(args...) {}

    void Init(CSDlg* pDlg, unsigned int nFirstId) {
        normal.Init(pDlg, nFirstId, nullptr, 0);
        checked.Init(pDlg, nFirstId + 1, nullptr, 0);
        disabled.Init(pDlg, nFirstId + 2, nullptr, 0);
    }
    Button normal, checked, disabled;
};

/// Buttons that are all picture, and buttons with an icon and a text.
class ButtonsPage : public GalleryPage {
  public:
    ButtonsPage();

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    int UpdateControls() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnResize(int dw, int dh) override;

  private:
    void ShowPressed(unsigned int nId);
    void ToggleCheck(unsigned int nId);

    StateRow<ImageBtn> pictures[6];
    StateRow<IconBtn> labelled[2];
};
