#pragma once
#include "buttons/icon_btn.h"
#include "buttons/image_btn.h"
#include "runtime/base/export.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/draw/csdc.h"
#include <windows.h>

/// Shows the About box and returns when it is closed. If one is open already, in this process or in
/// another, that one is brought forward instead.
TESSALY_API void ShowAboutOrActivate();

/// The product's About box: icon, version, notice, and a button that opens the maker's web page.
class TESSALY_API DlgSimpleAbout : public CSDlg {
  public:
    /// The number by which the box is known (CSDlg::activationTag).
    static constexpr unsigned short kNumber = 370;

    DlgSimpleAbout();
    ~DlgSimpleAbout() override;

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    void OnButtonClicked(unsigned short nId) override;

  private:
    /// An icon of the window, with its size in pixels.
    struct WindowIcon {
        OwnedIcon icon;
        int cx = 0, cy = 0;
    };
    void SetWindowIcon(WindowIcon& icon, int nWhich, int nMetricX, int nMetricY);

    WindowIcon smallIcon, bigIcon;
    ImageBtn pictureBtn;
    IconBtn webBtn;
};

/// Shows the maker's notice in a message box. For one thread at a time until the box is up: the
/// notice is stored negated, and turned round in its place for the moment of the copying.
TESSALY_API void ShowCopyright(HWND hwnd);
