#pragma once
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"
#include "wnd/core/cswnd.h"
#include <shellapi.h>
#include <windows.h>

class CSDlg;

/// What a control does with the first of the files that are dropped on it. Any of them makes it
/// take files at Init.
enum CSCtrlDrop : unsigned long {
    kDropAnyPath = 0x80000000,  // the text becomes the path as dropped
    kDropFileName = 0x40000000, // the name alone, without drive and folders
    kDropFolder = 0x20000000,   // a dropped folder, or that of a dropped file
    kDropFile = 0x10000000,     // an existing file; a folder only with kDropAnyPath
};
constexpr unsigned long kDropMask = 0xF0000000; // all of them

/// One control of a dialog as an object: sees the control's own messages, and the notifications
/// that the dialog gets for it. Usually a member of its dialog's class, tied by Init in
/// OnInitDialog; controls that got none get a plain one by themselves, which goes with them.
class TESSALY_API CSCtrl : public CSWnd {
  public:
    CSCtrl();
    ~CSCtrl() override;

    int IsKindOf(LPCWSTR pszClass) override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;

    // The virtual operations of a control; their order is fixed.

    /// Called at the end of Init.
    virtual void OnInit();
    /// Called after the dialog's OnInitDialog.
    virtual void PostInitDialog();
    /// The colours (WM_CTLCOLOR...); non-zero, and *phbr is the answer.
    virtual int OnCtlColor(unsigned int uMsg, HDC hdc, HBRUSH* phbr);
    /// The dialog is closing by OK. The default calls Store.
    virtual void OnOK();
    /// Sets the control's text by the drop rules, and ends the drop.
    virtual void OnDropFiles(HDROP hdrop);
    /// A notification by WM_COMMAND; non-zero: the dialog does nothing more, and *pqwResult is the
    /// result.
    virtual int OnCommand(unsigned short nCode, __int64* pqwResult);
    /// A notification by WM_NOTIFY, otherwise as OnCommand.
    virtual int OnNotify(NMHDR* pHdr, __int64* pqwResult);
    /// WM_DRAWITEM of an owner-drawn control. The default does nothing.
    virtual void OnDrawItem(DRAWITEMSTRUCT* pItem);
    /// WM_MEASUREITEM. The default does nothing.
    virtual void OnMeasureItem(MEASUREITEMSTRUCT* pItem);
    /// WM_DELETEITEM. The default does nothing.
    virtual void OnDeleteItem(DELETEITEMSTRUCT* pItem);

  protected:
    /// What the control holds goes to where it is kept, and comes from there.
    virtual void Store();
    virtual void Load();

  public:
    /// Ties the object to the dialog's control, in the place of a plain object that it may have
    /// got. Works once. Without such a control the values are stored and nothing is tied.
    void Init(CSDlg* pDlg, unsigned int nId, LPCWSTR pszName, unsigned long dwMyStyle);
    /// A plain object for a control, which deletes itself with it. Null without such a control and
    /// when out of memory.
    static CSCtrl* AutoInit(CSDlg* pDlg, unsigned int nId);
    /// The object of a window if that is a control's; null otherwise.
    static CSCtrl* FromHandle(HWND hwnd);

    unsigned int GetID() const { return ctrlId; } ///< The control's id.
    /// The dialog that the control is tied to; null before Init.
    CSDlg* GetDlg() const { return dlg; }
    /// Clears, then sets bits of the own style word.
    void ModifyMyStyle(unsigned long dwRemove, unsigned long dwAdd);
    void ShowCtrl(int bShow); ///< Shows or hides the control.
    /// The text that the control had at the first call; an empty one is asked for again. Never
    /// null; good as long as the object.
    LPCWSTR GetOriginalText();

  protected:
    /// WM_DROPFILES for classes derived from this one that handle messages on their own:
    /// OnDropFiles, then the window's processing.
    LRESULT OnDropFilesMessage(WPARAM wParam, LPARAM lParam);

    CSDlg* dlg = nullptr; // set once Init ran; not owned
    unsigned int ctrlId = 0;
    LPCWSTR ctrlName = nullptr; // stored only
    unsigned long myStyle = 0;  // CSCtrlDrop, and bits of derived classes
    HeapArray<wchar_t> originalText;
};
