#pragma once
#include "richtext/engine/draw_html.h"
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"
#include "wnd/control/csctrl.h"
#include "wnd/draw/csdc.h"
#include <windows.h>

/// A static control that draws its text as rich text (richtext/engine/draw_html.h). Its links are
/// commands of the dialog: the control's own id and up to nine more. The template's text is taken
/// by itself at the first painting. A control without SS_NOTIFY lets the mouse through, and its
/// links only show the hand.
class TESSALY_API CSStaticHTML : public CSCtrl {
  public:
    CSStaticHTML();
    ~CSStaticHTML() override;

    int IsKindOf(LPCWSTR pszClass) override;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    /// Takes the system's colours, in place of those that were set.
    void OnSystemSettingChange(WPARAM wParam, LPARAM lParam) override;
    void OnInit() override;

    // Colours and font, 0x00BBGGRR. Nothing is repainted.

    void SetTextColor(COLORREF rgb) { tools.SetTextColor(rgb); }   ///< Of plain text.
    COLORREF GetTextColor() const { return tools.GetTextColor(); } ///< The colour of plain text.
    void SetLinkColor(COLORREF rgb) { tools.SetLinkColor(rgb); }   ///< Of links.
    COLORREF GetLinkColor() const { return tools.GetLinkColor(); } ///< The colour of links.
    void SetBkgColor(COLORREF rgb) { tools.SetBkgColor(rgb); }     ///< Behind the text.
    COLORREF GetBkgColor() const { return tools.GetBkgColor(); }   ///< The colour behind the text.
    void SetFixedFont(int bFixed) { tools.SetFixedFont(bFixed); }  ///< Or that of dialogs.
    /// Whether it is without a background of its own: the dialog's is drawn under the text.
    void SetTransparent(int bOn) { bTransparent = bOn; }
    int IsTransparent() const { return bTransparent; } ///< Whether it is without one.

    // The text. The window's own text stays what the template made it: these are the truth.

    /// Replaces the text; null is the empty one. 1; 0 when out of memory.
    int SetHTMLText(const wchar_t* pszNew);
    /// The same with a string as in runtime/messages/res_str.h; the empty text if it can't be had.
    int SetHTMLText(int nStringId, HINSTANCE hinst);
    /// Copies at most cch characters with the terminator. Returns GetHTMLTextLength.
    int GetHTMLText(wchar_t* pszBuffer, int cch);
    /// Characters of the text, tags and all, without the terminator.
    unsigned GetHTMLTextLength() const { return nHTMLLength; }
    /// DrawHTML::GetHTMLTextStripTags of the text.
    unsigned GetHTMLTextStripTags(wchar_t* out, int size);
    /// Returns how high the text is in that rectangle, in pixels. Any context will do.
    int CalcHeight(HDC hdc, RECT* prc);
    /// Makes the window text a link. With 249 characters and more the mark-up is cut at 255.
    // QUIRK: what is read is the window's own text, as the template made it.
    // Test: CSStaticHTML.MakeLinkReadsTheTemplatesText
    void MakeLink();
    /// Puts the window text, of up to 255 characters, into a format with one "%s".
    void MakeHtml(const wchar_t* pszFormat);

  protected:
    /// Holds a copy of the text, or with null the window's own unless a text is held. 1 if there
    /// is one now.
    int UpdateText(const wchar_t* pszNew);
    void OnPaint(CSDC& dc, PAINTSTRUCT& ps);

    int bTransparent = 0;
    int bHover = 0; // the mouse is over a link
    int bFocused = 0;
    int bNotify = 0; // the window has SS_NOTIFY
    DrawHTML drawHTML{0};
    DrawHTMLLinks links; // of the last painting
    DrawHTMLTools tools{FontGui};
    HeapArray<wchar_t> pszHTML; // none until it is first needed
    unsigned nHTMLLength = 0;

  private:
    LRESULT OnNcHitTest(WPARAM wParam, LPARAM lParam);
    LRESULT OnButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnPaintMessage();
    void SimulateLink(unsigned id);

    static HCURSOR hCursorHand; // loaded at first use, shared with the system
};

/// The title line of a dialog that has no caption: always control 21542.
class TESSALY_API PopupTitle : public CSStaticHTML {
  public:
    static constexpr unsigned int kCtrlId = 21542; // the control of each such line

    /// Ties the control. The template's text becomes the dialog's window text, and is shown.
    void InitTitle(CSDlg* pDlg);
    /// Shows another title, formatted with the arguments: a text, or the id of a string that was
    /// cast to one. The dialog's window text stays.
    void SetTitleFmt(const wchar_t* pszFormat, ...);

  private:
    void ShowTitle(const wchar_t* pszTitle);
};
