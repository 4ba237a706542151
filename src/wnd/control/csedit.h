#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include "wnd/control/csctrl.h"
#include <windows.h>

/// An edit control. Results that are not told are those of the message that is sent; positions
/// count characters from 0.
class TESSALY_API CSEdit : public CSCtrl {
  public:
    CSEdit() = default;
    ~CSEdit() override;

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override;
    int OnCtlColor(unsigned int uMsg, HDC hdc, HBRUSH* phbr) override;

    void Clear();                        ///< the empty text
    void GetSel(int& nStart, int& nEnd); ///< The selection's beginning and end.
    void SetSel(int nStart, int nEnd);   ///< Selects; 0 and -1 are all of the text.
    /// bUndo: the user can undo it.
    void ReplaceSel(LPCWSTR pszText, int bUndo);
    /// The place of a character in client pixels: x in the low word, y in the high one.
    LRESULT PosFromChar(int nChar);
    /// The most characters that a user can type; 0: no limit.
    void SetMaxTextLimit(unsigned int cch);
    int IsModified();                 ///< Whether the user has changed the text.
    void SetModified(int bModified);  ///< Sets or clears that mark.
    wchar_t GetPasswordChar();        ///< What is shown for each character; 0: the characters.
    void SetPasswordChar(wchar_t ch); ///< What is shown for each character; 0: the characters.

    /// Lets the next select-all pass by, as the dialog sends it to an edit that gets the focus.
    void BlockNextSelAll(int bBlock) { blockSelAll = bBlock; }
    /// The soft read-only mode: the user can select, scroll and copy, and the colours stay.
    // QUIRK: WM_CLEAR and EM_REPLACESEL get through. Test:
    // CSEdit.SoftReadOnlyLetsClearAndReplaceThrough
    void SetReadOnly(int bReadOnly) { readOnly = bReadOnly; }
    int GetReadOnly() const { return readOnly; } ///< Whether it is in that mode.

    /// The background, 0x00BBGGRR.
    void SetBkgColor(unsigned long cr);
    void ClearBkgColor(); ///< The platform's background again.

    /// A balloon at the edit; icon is a TTI_ value (commctrl.h). 0 before Windows XP, and where the
    /// platform shows none.
    int ShowBalloon(LPCWSTR pszTitle, LPCWSTR pszText, int nIcon);
    int HideBalloon(); ///< Takes the balloon away. 0 before Windows XP.

  protected:
    int readOnly = 0;
    int blockSelAll = 0;
    OwnedHandleOf<HBRUSH, &::DeleteObject> editBrush; // empty: the platform's background
};

/// An edit control of many lines.
class TESSALY_API CSMultiLineEdit : public CSEdit {
  public:
    int GetLineCount();          ///< The number of lines, at least 1.
    int LineFromChar(int nChar); ///< Returns the line of a character, from 0; -1 is the caret.
};

// Edit controls by their handle

/// Characters of a line, with its line end unless it is the last one; 0 if there is no such line.
TESSALY_API int EditCtrl_GetLineSize(HWND hwnd, unsigned int nLine);
/// Reads a line without its end into cch characters (of which the low 16 bits count), and
/// terminates it: of a line that does not fit the last of them gives way. Returns the characters
/// before the terminator; 0 for an empty line, for none, and without room.
TESSALY_API int EditCtrl_GetLine(HWND hwnd, unsigned int nLine, wchar_t* pszBuffer,
                                 unsigned int cch);

/// 1 if the shell can complete paths in an edit. Found out once.
TESSALY_API int CanAutoComplete();
/// The result of SHAutoComplete, found at run time: E_NOTIMPL without it, S_OK for a null window.
TESSALY_API HRESULT MySHAutoComplete(HWND hwndEdit, unsigned long dwFlags);
