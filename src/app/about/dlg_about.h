#pragma once
#include "buttons/icon_btn.h"
#include "buttons/image_btn.h"
#include "richtext/control/cs_static_html.h"
#include "runtime/base/export.h"
#include "wnd/dialog/csdlg.h"
#include <windows.h>

/// What a general About box does, as a hook of its dialog: the rich texts, the links, the picture,
/// and "Copy" on a right click on the details.
class TESSALY_API DlgAboutHandler : public WMHook {
  public:
    DlgAboutHandler();
    int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override;
    int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override;

  private:
    void InitControls(CSDlg* pDlg);
    int OnCommand(CSDlg* pDlg, unsigned short nId);
    void ShowCopyMenu(CSDlg* pDlg);

    IconBtn webBtn, rateBtn, translateBtn, improveBtn, noticeBtn;
    CSCloseBtnForDlg closeBtn;
    CSStaticHTML title, nameLine, version, details;
    ImageBtn picture;
};

/// A richer About box, which a program with this library may use. It names the product, its version
/// (with Shift held down at its opening, the revision) and details, and has links to the maker's
/// pages.
class TESSALY_API DlgAbout : public CSDlg {
  public:
    explicit DlgAbout(int nUnused);

  private:
    DlgAboutHandler handler;
};

/// Shows one and returns when it is closed, with CSDlg::Modal's result.
TESSALY_API int DoAbout(HWND hwnd, int nUnused);
