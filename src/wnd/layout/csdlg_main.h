#pragma once
#include "runtime/base/export.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/draw/csicon.h"
#include <windows.h>

/// An application's main window as a dialog: has icons, "About..." in its system menu, and comes
/// back where it was, also without a placement of its own (EnableResizing). A modeless one ends the
/// thread's message loop when it goes, with its result.
class TESSALY_API CSDlgMain : public CSDlg {
  public:
    /// The icon's resource in that module, a null one being the system; a negative id is this
    /// library's, 0 is none.
    CSDlgMain(HINSTANCE hinst, int iconId);
    ~CSDlgMain() override;

    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    __int64 OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) override;
    /// Draws the icon of a minimised dialog.
    virtual __int64 OnPaint(unsigned __int64 wParam, __int64 lParam);
    /// The system menu's "About...". Derived classes override it.
    virtual __int64 OnAbout();

    /// The window's place in the registry, see wnd/layout/wnd_place.h.
    void StorePosition();
    void RestorePosition(); ///< Brings the window to the place that is stored.

  protected:
    HICON bigIcon = nullptr;   // the platform's, never destroyed
    HICON smallIcon = nullptr; // owned unless it is bigIcon
};

/// A page within a dialog. It has its own template, is not dragged, does not close itself, and
/// passes clicks and choices on to its parent.
class TESSALY_API CSDlgChild : public CSDlg {
  public:
    CSDlgChild();

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override;
    __int64 OnOK() override;
    __int64 OnCancel() override;
    void OnButtonClicked(unsigned short nId) override;
    void OnComboSelChanged(unsigned short nId) override;
    /// Creates the page in the place of the parent's control nSlotId, which it takes the size of.
    /// 1; 0 if there is no window, as for a null parent. The parent is to outlive the page.
    virtual int Init(CSDlg* pParent, unsigned int nSlotId, unsigned int nTemplateId,
                     HINSTANCE hinst, int bShow);

  protected:
    CSDlg* parentDlg = nullptr;
    unsigned int slotId = 0;
};

/// A dialog's icons, destroyed with the object: that is to live as long as the window.
class TESSALY_API CSIconForDlg {
  public:
    CSIconForDlg() = default;
    ~CSIconForDlg();
    CSIconForDlg(const CSIconForDlg&) = delete; // owns the icons
    CSIconForDlg& operator=(const CSIconForDlg&) = delete;

    /// Loads one icon of the system's small size, or of its big one, in place of the first one
    /// held. Ids as in runtime/messages/res_str.h. 1; 0 if there is no such icon, and then none is
    /// held.
    int Init(int iconId, int bSmall);
    /// Loads both sizes, the small one first, and gives them to the window. 1; 0 if there is
    /// neither.
    int InitEx(HWND hwnd, int iconId);
    /// The first icon; null if there is none.
    operator HICON() const { return icons[0]; }

  private:
    CSIcon icons[2];
};
