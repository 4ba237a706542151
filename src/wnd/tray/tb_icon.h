#pragma once
#include "runtime/base/export.h"
#include "runtime/threads/message_pump.h"
#include "wnd/core/cswnd.h"
#include "wnd/draw/csicon.h"
#include <windows.h>
#include <shellapi.h>

/// An icon in the notification area, with a hidden window of its own that hears of its clicks and
/// balloons. Comes again by itself when the shell has restarted. Belongs to the thread of its
/// window. The destructor does not take the icon away: ShowIcon(0), or the window's end, does.
class TESSALY_API TBIcon : public CSWnd {
  public:
    TBIcon();
    ~TBIcon() override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;

    /// 0 keeps ShowIcon from showing the icon.
    virtual int ShouldShowIcon();
    /// The company message with its code. Non-zero: handled, with *plResult for an answer.
    virtual int OnMyCompanyMessage(WPARAM wParam, LPARAM lParam, LRESULT* plResult);
    // What happened to the icon. A handler runs outside the shell's call and may open a menu or a
    // dialog; as long as one runs, for whichever icon of the process, no other is called: the
    // window's last active popup comes to the front instead.
    virtual void OnLeftClick();     ///< A click with the left button.
    virtual void OnDoubleClick();   ///< The second of two clicks.
    virtual void OnRightClick();    ///< A click with the right button.
    virtual void OnBaloonShow();    ///< The balloon has come up.
    virtual void OnBaloonHide();    ///< The balloon was taken away.
    virtual void OnBaloonTimeout(); ///< The balloon went, by its time or its button.
    virtual void OnBaloonClick();   ///< A click on the balloon.
    virtual void OnMouseMove();     ///< The mouse is over the icon.
    /// The window has been created. The default does nothing.
    virtual void OnCreateWnd();
    /// The window goes. The default takes the icon away.
    // QUIRK: blinking and the balloon's time begin also when the icon is taken away, here and in
    // ShowIcon.
    // Test: TBIconTest.RemovalStartsTheBlinkToo and TBIconTest.RemovalStartsTheBalloonsTimeToo
    virtual void OnDestroyWnd();

    /// Creates the hidden window, of a class that was registered with CSWnd. 1 on success.
    int CreateWnd(LPCWSTR pszClass);
    /// Posts WM_CLOSE to the window or, if the object has none, to the one that is found by that
    /// class (null: to none).
    void DestroyWnd(LPCWSTR pszClass);
    /// Loads the icon, and a second one with which it blinks (id 0: none). Ids are as in
    /// CSIcon::Load, sizes the system's small ones.
    void SetIcon(int iconId, int alternateId, unsigned blinkPeriodMs);
    // The next two only prepare what UpdateIcon or ShowIcon makes visible.
    /// Cut at 127 characters.
    void SetTip(LPCWSTR pszFormat, ...);
    /// The text is cut at 255 characters, the title at 63; dwFlags are NIIF_ ones.
    void SetBalloon(LPCWSTR pszTitle, DWORD dwFlags, unsigned nSeconds, LPCWSTR pszFormat, ...);
    /// Empties the balloon's texts; with bUpdate it goes from the screen.
    void HideBalloon(int bUpdate);
    /// Whether the next update shows the balloon that was prepared.
    void EnableBaloon(int bEnabled);
    /// Shows what was prepared, if the icon is shown.
    void UpdateIcon();
    /// Gives the keyboard back to the notification area. 1 on success.
    int SetFocus();
    /// Puts the icon in (show non-zero) or takes it out; nothing if it is so already. If the shell
    /// refuses, nothing is tried again until it restarts or until the next call.
    void ShowIcon(int show);
    /// Whether the icon is in.
    int IsIconShown() const { return shown; }

    /// The size of the structure that a shell of that version expects, which is GetVerDll's number.
    static DWORD GetDataSize(unsigned short nShellVersion);

  protected:
    /// Prepares the icon, which stays its owner's, for the next update.
    void SetIcon(HICON hicon);
    /// On: shows the other one of the two icons and starts the timer. Off: stops it, and leaves the
    /// normal icon.
    void Blink(int bOn);
    /// Shows the other one of the two icons.
    void DoBlink();

    static constexpr DWORD kWholeDataSize = 976; // from Windows 7 on, in 64 bits
    union {
        NOTIFYICONDATAW nid;
        // The whole of it, whichever Windows the platform's header describes.
        unsigned char nidBytes[kWholeDataSize] = {};
    };
    int shown = 0;
    CSTimer timerBlink;
    CSTimer timerBalloon;
    CSIcon icon;
    CSIcon* pIconAlternate = nullptr; // owned; null: there is no blinking
    int blinkPhase = 0;               // non-zero while the alternate icon is showing
    unsigned blinkPeriod = 0;         // milliseconds

  private:
    void Show(int show);
    /// Whether OnMyCompanyMessage took it, with *plResult for an answer.
    bool OnCompanyMessage(WPARAM wParam, LPARAM lParam, LRESULT* plResult);
    void OnTimer();
    void PostEvent(WPARAM wParam, LPARAM lParam);
    void OnEvent(UINT uMsg);
};
