#pragma once
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include <windows.h>

class CSDlg;
class WMHook;

/// A window object: a window handle with virtual message handlers and a chain of hooks. It is tied
/// to a window by creating it (the class was registered here, with CSWnd::WndProc) or by
/// subclassing one that exists. The window carries its object under the property "CSWND".
///
/// The object does not own the window and outlives it, unless autoDelete is set: then it deletes
/// itself when the window is gone and no frame of its handlers runs any more. Everything about one
/// object happens on the thread that owns its window.
///
/// A derived class overrides OnWndMessage, reacts to what it wants, and hands what it does not
/// swallow to the base operation. WM_NCDESTROY must reach CSWnd::OnWndMessage.
class TESSALY_API CSWnd {
  public:
    constexpr CSWnd() noexcept = default; // statics need no construction at run time
    CSWnd(const CSWnd&) = delete;         // the window names one object
    CSWnd& operator=(const CSWnd&) = delete;
    /// Destroys no window and undoes no subclassing: detach the object first. A window that still
    /// names this object is only made to forget it.
    virtual ~CSWnd();

    /// Whether the object is of that class: "CSWnd", exactly. Derived classes compare their own
    /// name and then ask their base.
    virtual int IsKindOf(LPCWSTR pszClass);
    /// Called once, right after the object was tied to its window during creation, before any
    /// message reaches OnWndMessage. Subclass does not call it.
    virtual void PreInit();
    /// Asked by a modeless dialog's own loop; non-zero: the message was consumed.
    virtual int PreTranslateMessage(MSG* pMsg);
    /// Every message of the window. The default runs the hooks and the default processing
    /// (DoWndMessage) and then the notifications below. Returns the message's result.
    virtual LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam);
    /// Called after the window's last message. The default takes all hooks off.
    virtual void OnPostNcDestroy();
    /// Called after WM_ACTIVATE and WM_ENABLE. The defaults do nothing.
    virtual void OnActivate(int bActive);
    virtual void OnEnable(int bEnabled);
    /// The default passes the change to the direct children that are CSWnd objects.
    virtual void OnSystemSettingChange(WPARAM wParam, LPARAM lParam);

    /// Registers a class whose windows belong to CSWnd objects, with the library's instance.
    /// Returns the class's atom, 0 on failure.
    static ATOM RegisterClassExW(LPCWSTR pszName, UINT uStyle, HICON hicon, HICON hiconSmall,
                                 HBRUSH hbrBackground, HCURSOR hcur, LPCWSTR pszMenuName,
                                 int cbClassExtra, int cbWndExtra);
    /// Registers a class with nothing but a procedure and that many bytes for each window. Returns
    /// its atom, 0 on failure.
    static ATOM RegisterClassExWithWndExtra(LPCWSTR pszName, int cbWndExtra);
    /// Takes the class back. 1 on success.
    static int UnregisterClassW(LPCWSTR pszName);

    /// Creates the window; 1 on success. On failure hWnd is null and the object stays its owner's,
    /// also with autoDelete set. In a handler of a window that is gone the object's life with that
    /// one ends here, hooks included, and autoDelete waits for the new one.
    int Create(LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y, int cx, int cy,
               HWND hwndParent, HMENU hmenu, void* pParam);
    /// Creates it with extended styles, otherwise as Create.
    int CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y,
                 int cx, int cy, HWND hwndParent, HMENU hmenu, void* pParam);
    /// CreateEx for a child window, with its control id in place of the menu.
    int CreateEx(DWORD dwExStyle, LPCWSTR pszClass, LPCWSTR pszTitle, DWORD dwStyle, int x, int y,
                 int cx, int cy, HWND hwndParent, unsigned __int64 qwId, void* pParam);
    /// Destroys the window if there is one. Defined on a null object, as are IsReady and HWND.
    void Destroy();
    /// Stores the handle, for the forwarders below: no subclassing, no property, no messages.
    /// Returns whether it is non-null. In a handler of a window that is gone as Create.
    int Attach(HWND hwndTaken);
    /// Forgets the handle and returns it. No subclassing is undone, no property removed.
    HWND Detach();
    /// 1 if there is a window and it lives.
    int IsReady();
    /// The handle; null also for a null object.
    operator HWND() const;
    /// Whether the object is of the class "CSDlg", as IsKindOf has it.
    int IsDlg();
    /// Whether the object is a control's: it can be taken for a CSCtrl.
    int IsCtrl() const { return isCtrl; }

    /// Ties the object to a window that exists (null: the one that hWnd names). 1 on success. In a
    /// handler of a window that is gone as Create.
    int Subclass(HWND hwndTarget);
    /// Gives the window back its former procedure; hWnd stays. 1 on success, 0 on an untied object.
    int Unsubclass();

    /// The hook is asked first, before those already there. It is not owned.
    void AddWndHook(WMHook* pHook);
    /// Takes the hook off at once, also from inside a dispatch. An unknown one is ignored.
    void RemoveWndHook(WMHook* pHook);
    /// Takes all hooks off; from inside a dispatch, when the outermost one returns.
    void RemoveAllWndHooks();
    /// Runs the hooks and then the default processing: the subclass chain or the earlier procedure.
    /// With pAfter only the hooks behind that one are asked; if it is not in the chain, none is.
    /// Returns the message's result.
    LRESULT DoWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, WMHook* pAfter);

    /// The object of a window of this process, null for a window that has none: its property names
    /// an object that lives, and the object names the same window. Whatever else another program
    /// wrote into the property is not touched.
    static CSWnd* FromHandle(HWND hwnd);
    /// FromHandle for the way of messages: an object after which this library has named the window
    /// is believed without a look at the property.
    static CSWnd* RecallHandle(HWND hwnd);
    /// Whether the innermost message of the window, as far as this object sees it, has been handed
    /// to the platform's chain of subclasses.
    bool IsInChain() const { return hwndInChain && hwndInChain == hWnd; }

    /// The procedure of the classes that are registered here.
    static LRESULT CALLBACK WndProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
    /// The SUBCLASSPROC of the platform's chain; dwRefData is the object.
    static LRESULT CALLBACK ShellSubclassProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                              UINT_PTR uSubclassId, DWORD_PTR dwRefData);

    // Plain forwarders to the platform, on hWnd. Where a result is not told it is the platform's.
    int Redraw(UINT uFlags); ///< Redraws the whole window, with RDW_ flags.
    /// Has the rectangle painted; null: all of the client area.
    int Invalidate(const RECT* prc, int bErase);
    int InvalidateErase(const RECT* prc);              ///< Invalidate, with the background erased.
    int InvalidateUpdate(const RECT* prc, int bErase); ///< Invalidate, and repaints at once.
    int v(const RECT* prc); ///< Validates the rectangle; null: all of the client area.
    /// Sends a message. The window's answer.
    LRESULT SendMsg(UINT uMsg, WPARAM wParam, LPARAM lParam);
    int PostMsg(UINT uMsg, WPARAM wParam, LPARAM lParam);                ///< Posts a message.
    int PostCmd(unsigned short nId, HWND hwndCtl, unsigned short nCode); ///< Posts WM_COMMAND.
    int ClickButton(unsigned short nId); ///< Posts WM_COMMAND without a control's handle.
    int HasFocus();                      ///< Whether it has the focus.
    int IsActive();                      ///< Whether it is its thread's active window.
    int IsForeground();                  ///< Whether it is in front of all.
    HWND SetFocus();                     ///< Takes the focus. The window that had it.
    int Enable(int bEnabled);            ///< Enables or disables. Whether it was disabled.
    HWND GetParent();                    ///< The parent, or a popup's owner; null for none.
    int Show(int bVisible);              ///< Shows or hides. Whether it was visible.
    int GetTextLength();                 ///< Characters of the text, without the terminator.
    /// Copies the text, at most cch characters with the terminator; returns the length.
    int GetText(wchar_t* psz, int cch);
    int SetText(LPCWSTR psz); ///< Sets the text, or a title.
    /// Sets a string of the default module, formatted and cut at 1,023 characters; a missing string
    /// gives the empty text.
    int SetText(unsigned int nStringId, ...);
    /// SetText with what a text formats. It is cut at 1,023 characters.
    int SetTextFmt(LPCWSTR pszFormat, ...);
    /// The same with a string of that module.
    int SetTextFmt(HINSTANCE hinst, unsigned int nStringId, ...);
    DWORD GetStyle(int bExtended); ///< The style, or with bExtended the extended one.
    /// Replaces that style. The style before the call.
    DWORD SetStyle(DWORD dwStyle, int bExtended);
    /// Removes bits, then adds bits. The style before the call.
    DWORD ModifyStyle(DWORD dwRemove, DWORD dwAdd, int bExtended);
    /// Sets or clears bits of the plain style; returns the style before the call.
    DWORD SetStyleBits(DWORD dwBits, int bOn);
    HFONT GetFont(); ///< The font; null for the system's.
    /// Bit 1 of nWhich sets the small icon, bit 2 the big one.
    void SetIcon(HICON hicon, unsigned int nWhich);

  protected:
    /// The two halves of Subclass and Unsubclass, for classes that attach themselves. After a
    /// CommonSubclass that succeeds with shellSubclassed clear, the caller replaces the procedure.
    int CommonSubclass(HWND hwndTarget);
    int CommonUnsubclass();
    /// Takes the object that the window has, if any, off it, before this one is tied to it: undoes
    /// its subclassing, and deletes it if autoDelete is set. One whose handlers are running goes on
    /// with the window until the outermost of them has returned, and is deleted then.
    void ReplaceObjectOf(HWND hwndTarget);

    /// For handlers that run without the window procedure below them, as those of the first message
    /// of a dialog: between the two the object does not delete itself.
    void HoldLife() noexcept { ++procDepth; }
    /// The object may be gone after it. Without bMayDelete the window was one of a creation that
    /// has failed: the object's life with it ends at once, and the object stays its owner's.
    void ReleaseLife(bool bMayDelete);
    /// The object that this one may be a member of, or null: it does not delete itself while a
    /// handler of this one runs, nor does its own holder. It may go before this one.
    void SetLifeHolder(CSWnd* pHolder) noexcept;

  private:
    class LifeHold; // of a frame that holds this object for another one
    enum Removal { kRemoveAllHooks = 1, kRemoveEmptyEntries = 2 };

    LRESULT Dispatch(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT CallDefault(UINT uMsg, WPARAM wParam, LPARAM lParam);
    WNDPROC GetEndProc() const;
    bool AskHooks(UINT uMsg, WPARAM wParam, LPARAM lParam, WMHook* pAfter, LRESULT* plResult);
    void SettleHooks();
    void EndLife(bool bMayDelete);
    void SettleEndBefore(HWND hwndNext);
    bool IsTiedAnew() const;
    int SetTextV(LPCWSTR pszFormat, va_list args);

  protected:
    HWND hWnd = nullptr;

  public:
    int autoDelete = 0; // non-zero: the object deletes itself when its window is gone

  protected:
    int ncDestroyed = 0;          // WM_NCDESTROY has passed, the end of life is still to come
    WNDPROC oldWndProc = nullptr; // the earlier procedure; DefWindowProcW for a created window
    int isDlg = 0;
    int isCtrl = 0;
    // QUIRK: once set by CommonSubclass it is never cleared again.
    // Test: CSWndSubclassChain.FlagIsNeverClearedAgain
    int shellSubclassed = 0;
    int msgDepth = 0;            // DoWndMessage calls under way
    CSList hooks;                // of WMHook; an entry taken off during a dispatch is null
    int hooksRemovalPending = 0; // what waits for msgDepth to become 0, see Removal

  private:
    int procDepth = 0;           // frames of the window procedure, and others that hold the life
    CSWnd* lifeHolder = nullptr; // its frames are counted with this object's; not owned
    CSWnd* firstHeld = nullptr;  // the objects whose lifeHolder this one is
    CSWnd* nextHeld = nullptr;   // the next of those that this object is one of
    LifeHold* innermostHold = nullptr;
    HWND hwndOfFrame = nullptr;     // which window's message the innermost frame handles
    HWND hwndInChain = nullptr;     // whose message the innermost frame has handed to the chain
    int replaced = 0;               // ReplaceObjectOf came while handlers ran
    WNDPROC chainEndProc = nullptr; // where the chain of a window ends whose procedure is WndProc
};

/// Put on a window object, sees that window's messages before its default processing. Not owned by
/// the window: it is taken off (or all hooks are) before it goes.
class TESSALY_API WMHook {
  public:
    WMHook() = default;
    virtual ~WMHook();
    /// Non-zero: the message is handled and *plResult is its result; neither the hooks behind this
    /// one nor the default processing see it. The default gives 0.
    virtual int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                             LRESULT* plResult);
    /// As OnWndMessage, for the messages of a dialog's procedure.
    virtual int OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                             LRESULT* plResult);

    /// AddWndHook and RemoveWndHook of the window object, which must not be null.
    void AddToWnd(CSWnd* pWnd);
    void RemoveFromWnd(CSWnd* pWnd); ///< RemoveWndHook of the window object.
    /// AddDlgHook and RemoveDlgHook of the dialog, which must not be null (defined with it).
    void AddToDlg(CSDlg* pDlg);
    void RemoveFromDlg(CSDlg* pDlg); ///< RemoveDlgHook of the dialog.
};
