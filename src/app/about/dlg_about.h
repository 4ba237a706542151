#pragma once
#include "buttons/icon_btn.h"
#include "buttons/image_btn.h"
#include "richtext/control/cs_static_html.h"
#include "runtime/base/export.h"
#include "wnd/dialog/csdlg.h"
#include <windows.h>

/// What a general About box does, as a hook of its dialog and of that one's window: the rich texts,
/// the links, the picture, and "Copy" on a right click on the details.
///
/// It looks for these controls, and each may be missing. Statics with SS_NOTIFY: 20118 title, 20101
/// name, 20102 version, 20117 details, which keep the template's text. Buttons: 20103 picture;
/// links to the maker's pages, 20104 web site, 20105 rating, 20106 and 20107 translations; 20108
/// notice; 2 closes.
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
    explicit DlgAbout(int nUnused); ///< The number has no meaning.

  private:
    DlgAboutHandler handler;
};

/// Shows one until it is closed. Returns CSDlg::Modal's result.
TESSALY_API int DoAbout(HWND hwnd, int nUnused);
