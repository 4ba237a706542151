#pragma once
#include "runtime/base/export.h"
#include "wnd/dialog/csdlg.h"
#include <windows.h>

/// An application's main window as a dialog: has icons, "About..." in its system menu, and comes
/// back where it was, also without a placement of its own (EnableResizing). A modeless one ends the
/// thread's message loop when it goes, with its result.
class TESSALY_API CSDlgMain : public CSDlg {
  public:
    /// The icon's resource in that module; 0 for none.
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
    void RestorePosition();

  protected:
    HICON bigIcon = nullptr;   // shared with the system
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
    /// Creates the page in the place of the parent's control nSlotId. 1; 0 if there is no window.
    virtual int Init(CSDlg* pParent, unsigned int nSlotId, unsigned int nTemplateId,
                     HINSTANCE hinst, int bShow);

  protected:
    CSDlg* parentDlg = nullptr;
    unsigned int slotId = 0;
};

/// A dialog's two icons, small and big, destroyed with the object.
class TESSALY_API CSIconForDlg {
  public:
    CSIconForDlg() = default;
    ~CSIconForDlg();
    CSIconForDlg(const CSIconForDlg&) = delete; // owns the icons
    CSIconForDlg& operator=(const CSIconForDlg&) = delete;

    /// Loads an icon of the system's small size, or of its big one. Ids as in
    /// runtime/messages/res_str.h. 1 on success.
    int Init(int iconId, int bSmall);
    /// Loads both sizes and gives them to the window. 1 if there is at least one.
    int InitEx(HWND hwnd, int iconId);
    operator HICON() const { return icons[0].hIcon; }

  private:
    struct Icon {
        HICON hIcon = nullptr;
        int width = 0;
        int height = 0;
    };
    Icon icons[2];
};
