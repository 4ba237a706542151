#pragma once
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include "runtime/threads/message_pump.h"
#include "wnd/core/cswnd.h"
#include "wnd/dialog/dlg_hooks.h"
#include "wnd/dialog/dlg_layout_data.h"
#include <windows.h>

class CSCtrl;
struct ResourceRef;

/// The flag word of a dialog.
enum CSDlgFlag : unsigned long {
    kDlgResizeWidth = 0x1,                               // the user can make it wider
    kDlgResizeHeight = 0x2,                              // the user can make it higher
    kDlgResizeBoth = kDlgResizeWidth | kDlgResizeHeight, // both
    kDlgNoCorner = 0x4,                                  // no resizing corner is drawn
    kDlgShowsItself = 0x8,           // not hidden during initialisation and not shown afterwards
    kDlgFixedWidth = 0x10,           // not resizable: the width is held at the first one seen
    kDlgFixedHeight = 0x20,          // likewise the height
    kDlgResizeEdges = 0x100,         // the edges of the client area resize too, not just the corner
    kDlgTopmostAtStart = 0x400,      // until it has been active
    kDlgKeepBodyCursor = 0x40000000, // the dragger leaves the cursor over the body alone
    kDlgStartHidden = 0x80000000,    // it comes up hidden
};

/// Where a dialog comes up, see CSDlg::alignMode.
enum CSDlgAlign { kDlgCentered = 1, kDlgCascaded = 2, kDlgAtMouse = 3 };

/// A dialog: runs a template modally, modelessly, or modelessly with a message loop of its own, and
/// turns its messages into virtual operations. Each control of it that has an id gets a CSCtrl
/// object. The object outlives its window and can be run again; isClosed, the mark of the first
/// show and that of collected data stay set until a derived class clears them.
///
/// With autoDelete the object is gone when its window is, also while one of the functions that run
/// a dialog is still under way; it stays its owner's if no dialog came up (Modal gives 0 or -1, the
/// others their failure). The destructor destroys no window: one that lives forgets the object and
/// is a dialog without a procedure from then on.
///
/// All of it belongs to the thread that runs the dialog. A negative template id, as a negative
/// string id, names a resource of this library by its absolute value. Where a result is not told it
/// is the platform's; an item that does not exist is nothing to do.
class TESSALY_API CSDlg : public CSWnd {
  public:
    explicit CSDlg(void* pUnused = nullptr); ///< The argument has no meaning.
    ~CSDlg() override;

    int IsKindOf(LPCWSTR pszClass) override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    void OnPostNcDestroy() override;
    void OnActivate(int bActive) override;
    void OnSystemSettingChange(WPARAM wParam, LPARAM lParam) override;

    // The virtual operations of a dialog; their order is fixed.

    /// Called once, when the dialog is first shown: derived dialogs fill their controls. 1.
    virtual int UpdateControls();
    /// Derived dialogs check and collect what was entered; 0 keeps the dialog open. The default
    /// gives 1 and remembers that, so that OnOK asks no second time.
    virtual int UpdateData();
    /// Size and place, then OnInitDone. The result is WM_INITDIALOG's.
    virtual __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam);
    /// WM_SHOWWINDOW. The default calls UpdateControls the first time: derived dialogs call it.
    virtual void OnShowWindow(int bShow, unsigned long dwStatus);
    /// The control that the notification comes from is asked first, then a tooltip gets its text.
    virtual __int64 OnNotify(int nId, NMHDR* pHdr);
    /// Every message of the dialog procedure: asks the dialog's hooks. Returns DoDlgMessage's
    /// result.
    virtual __int64 OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam);
    /// The company message (wnd/core/company_msg.h); non-zero: it was handled here.
    virtual int OnMyCompanyMsg(unsigned __int64 qwCode, __int64 qwData, __int64* pqwResult);
    /// Shows the help page of this dialog, or that which a dialog above names. pInfo may be null.
    virtual void OnHelp(HELPINFO* pInfo);
    /// UpdateData, unless it gave 1 before, then CloseDialog with IDOK. 1; 0 if the data do not do.
    virtual __int64 OnOK();
    virtual __int64 OnCancel(); ///< CloseDialog with IDCANCEL. 1.
    /// WM_COMMAND: the control's object first. Code 0 is a click, of IDOK, IDCANCEL and IDHELP too.
    virtual __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl);
    /// Non-zero swallows the system command; the low four bits of nCmd are 0.
    virtual int OnSysCommand(unsigned short nCmd, unsigned short x, unsigned short y);
    /// A button that no control's object took. The default does nothing.
    virtual void OnButtonClicked(unsigned short nId);
    /// Another choice in a combo box. The default does nothing.
    virtual void OnComboSelChanged(unsigned short nId);
    /// WM_DELETEITEM of a list. The default does nothing.
    virtual void OnDeleteItem(unsigned int nId, void* pItem);
    /// The colours (WM_CTLCOLOR...); non-zero, and *phbr is the answer.
    virtual int OnCtlColor(unsigned int uMsg, HDC hdc, HWND hwndCtl, HBRUSH* phbr);
    // A derived class that overrides one of the two brings the other in with a using declaration.
    /// Puts the text of a tooltip into cch characters. Non-zero, or 0 for none.
    virtual int GetTootTip(unsigned int nId, wchar_t* pszText, unsigned int cch);
    /// The same as a string of a module; asked first, and 0 or string 0 is none.
    virtual int GetTootTip(unsigned int nId, HINSTANCE& hinst, unsigned short& nStringId);
    /// The help page for a help id (0: of this dialog); null for none.
    virtual LPCWSTR GetHtmlPage(unsigned int nId);
    /// The help page could not be shown. The default does nothing.
    virtual void OnHtmlHelpError(LPCWSTR pszPage);
    /// Asked before the dialog closes; 0 keeps it open. The default gives 1.
    virtual int CanClose(int nResult);
    /// The dialog is closing. The default marks it as closed: derived dialogs call it.
    virtual void DoClose(int nResult);
    /// The size has changed by so many pixels: derived dialogs move their controls.
    virtual void OnResize(int dw, int dh);
    virtual void OnInitDone(); ///< The end of OnInitDialog: derived dialogs call it.
    /// May change the size that the template gave, which is the smallest one too.
    virtual void OnInitRect(RECT& rc);
    /// WM_WINDOWPOSCHANGING: derived dialogs call it.
    virtual void OnWindowPosChanging(WINDOWPOS* pPos);
    /// WM_WINDOWPOSCHANGED: derived dialogs call it.
    virtual void OnWindowPosChanged(WINDOWPOS* pPos);
    /// The mouse moves over the dialog; x is -1 when the mouse has left the dialog.
    virtual void OnMouseMove(unsigned __int64 qwFlags, int x, int y);
    /// Dialogs that scroll bring the item into view.
    virtual void EnsureDlgItemVisible(HWND hwndItem);
    /// What DelayAction has put off. The default ends the waiting: derived dialogs call it.
    virtual void OnDelayedAction(unsigned long dwCode);

    // Running. A null module is this library; what went wrong the platform tells, nothing is shown.
    // An object that runs already gets no second window: as if there were no template.

    /// Returns what CloseDialog was given; -1 or 0 for a template that can't be had. After Modeless
    /// on the same object CloseDialog destroys the window in place of ending the dialog.
    __int64 Modal(int nTemplateId, HINSTANCE hinst, HWND hwndParent);
    /// The window, null for none; it may be gone already if it was closed while it came up. nShow
    /// non-zero shows it (unless it starts hidden).
    HWND Modeless(int nTemplateId, HINSTANCE hinst, HWND hwndParent, int nShow);
    /// Runs until the dialog's window is gone, with WM_QUIT left to the outer loop. With
    /// bDisableOwner the owner is disabled meanwhile; one that was before stays so. Returns what
    /// CloseDialog was given; -1 if there was no window. *phwndCreated may be null.
    int ModelessWithLoop(int bDisableOwner, int nTemplateId, HINSTANCE hinst, HWND hwndParent,
                         HWND* phwndCreated);
    /// Creates it as Modeless, from a template in memory; not shown. 1 on success.
    // QUIRK: CloseDialog ends such a dialog as if it were modal: it is hidden and lives on. Test:
    // CSDlgRun.DialogFromMemoryIsOnlyHiddenByCloseDialog
    int CreateIndirect(const DLGTEMPLATE* pTemplate, HWND hwndParent);
    /// Ends the dialog if CanClose lets it. nOkControls: whether the controls' OnOK is called; -1:
    /// unless nResult is IDCANCEL. 1, also if it stays open.
    int CloseDialog(int nResult, int nOkControls);
    /// The platform's function, with its result.
    int EndDialog(int nResult);
    int IsInitialized() const { return isInitialized; }         ///< OnInitDialog is over.
    int IsClosed() const { return isClosed; }                   ///< It was closed.
    int IsClosing() const { return isClosing; }                 ///< It is about to be closed.
    int WereControlsUpdated() const { return controlsUpdated; } ///< It was shown once.
    /// Initialised, shown once, not closed.
    int IsValid() const { return isInitialized && !isClosed && controlsUpdated; }
    int IsSkinSet() const { return 0; } ///< Always 0.
    /// Whether it is a page of another dialog.
    int IsChildDlg() const { return isChildDlg; }
    void SetFlags(unsigned long dwMask, int bOn); ///< Sets or clears bits of the flag word.
    /// Whether any of the bits is set.
    int IsFlag(unsigned long dwMask) const { return (flags & dwMask) != 0; }

    // The second chain of hooks, for the dialog procedure's messages; as that of CSWnd.

    void AddDlgHook(WMHook* pHook);    ///< The hook is asked first. It is not owned.
    void RemoveDlgHook(WMHook* pHook); ///< Takes the hook off at once.
    void RemoveAllDlgHooks();          ///< Takes all hooks off.
    /// Runs the hooks; with pAfter those behind that one. The result of the one that handled it,
    /// else 0.
    __int64 DoDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam,
                         WMHook* pAfter);

    // Items, by id or handle.

    HWND GetDlgItem(int nId); ///< The item's window; null for none.
    /// Sends the item a message. Its answer.
    LRESULT SendDlgItemMsg(int nId, UINT uMsg, WPARAM wParam, LPARAM lParam);
    /// The item's control object; null if it has none.
    CSCtrl* GetDlgCtrl(int nId);
    CSCtrl* GetDlgCtrl(HWND hwndCtl);
    /// 0xFFFFFFFF for an item without an id.
    unsigned int GetDlgItemID(HWND hwndItem);
    /// Makes another button the default one. 1.
    int SetDlgDefaulButton(unsigned int nId);
    int EnableDlgItem(int nId, int bOn);    ///< Enables or disables. The platform's result.
    int ShowDlgItem(int nId, int bOn);      ///< Shows or hides. The platform's result.
    int HideDlgItem(int nId);               ///< Disables and hides.
    int TurnDlgItem(int nId, int bOn);      ///< Enables and shows, or HideDlgItem.
    void SetDlgItemFocus(unsigned int nId); ///< Moves the focus to the item.
    int SimulateButton(unsigned short nId); ///< Posts a click.
    int IsDlgItemEnabled(int nId);          ///< Whether it is enabled.
    int IsDlgItemVisible(int nId); ///< Whether it is shown, of itself, whatever its parents are.
    unsigned int IsDlgButtonChecked(int nId);         ///< A BST_ value.
    int CheckDlgButton(int nId, unsigned int uCheck); ///< BST_ values; the platform's result.
    /// Checks one of the ids and clears the others. The platform's result.
    int CheckRadioButton(int nFirst, int nLast, int nChecked);
    unsigned int GetDlgButtonState(int nId); ///< BST_ bits: checked, pushed, with the focus.
    void SetDlgButtonState(int nId, unsigned int uState); ///< Non-zero: the button looks pushed.
    /// The first checked id; 0 for none.
    int GetCheckedRadioButton(int nFirst, int nLast);
    int GetDlgItemTextLength(int nId); ///< Characters without the terminator.
    /// Copies the item's text, cut to cch characters with the terminator. Returns the length.
    int GetDlgItemTextW(int nId, LPWSTR pszText, int cch);
    /// Gives the item a text. The platform's result.
    int SetDlgItemTextW(int nId, LPCWSTR pszText);
    /// Sets a string of up to 511 characters. A null module: the library for a negative id,
    /// otherwise the module that owns the dialog.
    int SetDlgItemTextW(int nId, int nStringId, HINSTANCE hinst);
    /// The number that the text is, 0 if it is none. pbOk may be null.
    unsigned int GetDlgItemInt(int nId, int* pbOk, int bSigned);
    /// The number as text. The platform's result.
    int SetDlgItemInt(int nId, unsigned int uValue, int bSigned);
    /// Gives the item a formatted text. It (runtime/text/text_format.h) is cut at 1,023 characters.
    int SetDlgItemTextFmt(int nId, LPCWSTR pszFormat, ...);
    int SetDlgItemTextFmt(int nId, HINSTANCE hinst, int nStringId, ...);
    int SetDlgItemTextFmt(int nId, int nStringId, ...);
    /// Formats with the text that the control had at first as the format, so again and again.
    int SetDlgItemTextFmtCtrl(int nId, ...);
    /// Where the item is, in the dialog's client pixels.
    int GetDlgItemRect(unsigned int nId, RECT* prc);
    HWND GetNextDlgTabItem(HWND hwndCtl); ///< The next item that Tab goes to; null for none.
    HWND GetPrevDlgTabItem(HWND hwndCtl); ///< The previous item that Tab goes to; null for none.
    void NextDlgCtrl();                   ///< Moves the focus on.
    void PrevDlgCtrl();                   ///< Moves the focus back.
    /// The range of an up-down control.
    void SetSpinRange(unsigned int nId, unsigned int uLow, unsigned int uHigh);
    /// 0xFFFFFFFF (CLR_INVALID) is no colour; without a background the controls are asked.
    void SetDlgColors(unsigned long crBkg, unsigned long crText, unsigned long crThird);
    /// The background; CLR_INVALID for none.
    unsigned long GetDlgBkgColor() const { return bkgColor; }
    /// The text's colour; CLR_INVALID for none.
    unsigned long GetDlgTextColor() const { return textColor; }
    /// The third one; nothing is drawn with it.
    unsigned long GetDlgThirdColor() const { return thirdColor; }
    /// Redraws what of the dialog lies under the control.
    void EraseCtrlBkg(HDC hdcUnused, unsigned int nId);
    void EraseCtrlBkg(HDC hdcUnused, HWND hwndCtl);
    /// Takes the item's place out of what is to be painted.
    void ValidateDlgItem(unsigned int nId);
    /// Enables or shows them, from item to item in the order of siblings. EnableDlgItems takes the
    /// first child for 0.
    void EnableDlgItems(unsigned int nFirst, unsigned int nLast, int bOn);
    void ShowDlgItems(unsigned int nFirst, unsigned int nLast, int bOn);
    /// OnDelayedAction in that many milliseconds, in place of an action that still waits; 0 only
    /// drops that. 1; 0 when the platform refused.
    int DelayAction(unsigned long dwCode, unsigned long dwMs);
    /// Hides a button above the dialog's top edge, where it still takes its key, or brings it back.
    void ShiftNavButton(unsigned int nId, int bVisible);

    // Place and size (wnd/layout).

    /// Lets the user resize it; called before the dialog runs. The record is the caller's and lives
    /// longer than the run; null: the place is not kept.
    void EnableResizing(unsigned long dwFlags, MyWindowPlacement* pPlacement);
    void DisableResizing();   ///< No resizing any more; the place is not kept.
    void StoreResizingInfo(); ///< Puts the present place into the record.
    /// Calls OnResize by what the size differs from the previous one.
    void Resize();
    /// By how much the dialog is larger than its smallest size.
    SIZE GetResizeData();
    /// Whether the point is in the grip, in client pixels; the corner is a triangle.
    int IsPtInResizingCorner(int x, int y, RECT& rcClient);
    void DrawResizingCorner(HDC hdc);             ///< Draws the grip.
    void DrawResizingItem(HDC hdc, int x, int y); ///< Draws one dot of it.
    void SetResizingCursor();                     ///< Shows the cursor of a resizable corner.
    /// Whether the dialog can be dragged by its body from now on, as it can be by default.
    void EnableFullDrag(int bOn);
    int IsFullDrag() const { return dragger != nullptr; } ///< Whether it can.
    /// Places the dialog by alignMode.
    void AlignDlg();
    /// Moves it into the middle of the other window; null: of the monitor.
    int CenterWindow(HWND hwndOther);
    /// Moves it below the other window's corner; null: the desktop's.
    int CascadeWindow(HWND hwndOther);
    // Controls, by the functions of wnd/layout/ctrl_place.h.
    /// Moves it into the middle of the other control; 0: of the dialog.
    void CenterCtrl(unsigned int nId, int bHorizontal, unsigned int nRefId);
    void MoveCtrl(unsigned int nId, int dx, int dy, int bRedraw); ///< Moves it by so many pixels.
    /// Makes it larger by so many pixels.
    void ResizeCtrl(unsigned int nId, int dw, int dh, int bRedraw);
    /// Both at once.
    void MoveResizeCtrl(unsigned int nId, int dx, int dy, int dw, int dh, int bRedraw);
    /// Moves it to the place of another control, mostly a hidden one.
    void MoveCtrlToSlot(unsigned int nId, unsigned int nSlotId);
    void MoveButtonToSlot(unsigned int nId, unsigned int nSlotId);
    /// Moves it there, and to its size.
    void MoveResizeCtrlToSlot(unsigned int nId, unsigned int nSlotId);
    /// Gives the control the other one's right or left edge; the opposite edge stays.
    void MoveCtrlEdge(unsigned int nId, unsigned int nRefId, int bRightEdge);
    /// Moves it into the middle of nFrom and nTo (client pixels; both -1: the client area). In the
    /// vertical case what does not fit is cut.
    void CenterDlgItem(unsigned int nId, int bHorizontal, int nFrom, int nTo);
    /// Moves a run of siblings as one block into the middle of the client area.
    void AlignDlgItems(unsigned int nFirst, unsigned int nLast, int bHorizontal);
    /// Makes the dialog grow until the control's text fits.
    void AdjustHeight(unsigned int nId);
    /// Adds a run of siblings that can be folded away. 1; 0 when out of memory.
    int AddCtrlGroup(unsigned int nFirst, unsigned int nLast, unsigned int nContainer,
                     unsigned int nParentGroup);
    /// The first group with that first control, or with that container; null for none.
    CSCtrlGroup* FindCtrlGroup(unsigned int nFirst, unsigned int nContainer);
    /// Folds or unfolds; what stands below moves. Returns by how much, 0 if nothing was to do.
    /// bNested is for the groups within.
    int ShowCtrlGroup(unsigned int nFirst, int bShow, int bNested);

    /// The only procedure that the platform's dialog functions get.
    static INT_PTR CALLBACK ModalProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);

  private:
    friend class CSDlgMsgHandler;
    friend class FullWndDragger;
    friend class CSDlgMain;
    friend class CSDlgChild;
    class LifeMark; // tells a function on the stack that the object has gone
    class Creation; // the length of the platform's call that creates the window

    ResourceRef Prepare(int& nTemplateId, HINSTANCE hinst, HWND hwndParentNew);
    HWND StartModeless(LifeMark& mark, int nTemplateId, HINSTANCE hinst, HWND hwndParentNew,
                       int nShow);
    bool IsRunning();
    void RunLoop(LifeMark& mark);
    static CSDlg* FindObject(HWND hwnd);
    void SubclassDlg(HWND hwnd, unsigned int nTemplateId);
    bool AskDlgHooks(unsigned int uMsg, unsigned __int64 qwParam, __int64 qlParam, WMHook* pAfter,
                     __int64* pqwResult, const LifeMark& mark);
    void SettleDlgHooks();
    __int64 InitDialog(unsigned __int64 qwParam, __int64 qlParam);
    int HandleCompanyMsg(unsigned __int64 qwCode, __int64 qwData, LRESULT* plResult);
    LPCWSTR AskForHelpPage();
    // For the control with that id, if it has an object (wnd/control).
    void OnDrawItem(unsigned int nId, DRAWITEMSTRUCT* pItem);
    void OnMeasureItem(unsigned int nId, MEASUREITEMSTRUCT* pItem);
    void OnDeleteCtrlItem(unsigned int nId, DELETEITEMSTRUCT* pItem);
    void PostInitDialog();
    void OKControls();
    void PlaceFirst(const RECT& rc);
    int PlaceAsStored();
    void ReadZoomedSize();
    void MeasureCtrlGroups();

  protected:
    HBRUSH bkgBrush = nullptr; // owned
    unsigned long bkgColor = CLR_INVALID;
    unsigned long textColor = CLR_INVALID;
    unsigned long thirdColor = CLR_INVALID; // stored only
    int isModeless = 0;                     // how CloseDialog ends the dialog
    int hasOwnLoop = 0;

  public:
    int alignMode = kDlgCentered; // a CSDlgAlign

  protected:
    __int64 modalResult = 0;
    HINSTANCE hResources = nullptr; // where the template came from
    unsigned int dlgId = 0;         // the template's; 0 for one in memory

  public:
    unsigned int helpId = 0; // 0: dlgId serves
    /// With which another instance can ask for this dialog (code 121 of the company message); 0:
    /// it can't.
    unsigned short activationTag = 0;

  protected:
    int controlsUpdated = 0; // after the first UpdateControls
    int isChildDlg = 0;
    int inUpdateControls = 0;
    int isInitialized = 0; // set just before OnInitDone
    int ctrlGroupsMeasured = 1;
    int isClosing = 0;
    int isClosed = 0;
    HWND hParent = nullptr;
    FullWndDragger* dragger = nullptr; // owned
    CSDlgMsgHandler msgHandler;
    int result = -1;
    unsigned long flags = 0;                // CSDlgFlag
    MyWindowPlacement* placement = nullptr; // not owned
    // The size fields, in pixels of the whole window.
    int originX = 0, originY = 0; // written at initialisation, read by nothing
    int curWidth = 0, curHeight = 0;
    int minWidth = 0, minHeight = 0; // the template's, after OnInitRect
    int prevWidth = 0, prevHeight = 0;
    CSList dlgHooks; // of WMHook; an entry taken off during a dispatch is null
    int dlgMsgDepth = 0;
    int dlgHooksRemovalPending = 0;
    CSList ctrlGroups; // of CSCtrlGroup, owned
    unsigned long delayedAction = 0;
    CSTimer delayTimer{1};
    int dataUpdated = 0;

  private:
    LifeMark* pLifeMark = nullptr; // the innermost one
};
