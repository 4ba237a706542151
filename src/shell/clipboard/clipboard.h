#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// The system's clipboard, open from the construction to the destruction of the object. The system
/// has one for all programs: an object lives for the shortest time. All but the static functions
/// take it that the opening worked, and otherwise give what the platform says of a clipboard that
/// is not open. Results are 1 for success and 0 for failure unless told otherwise.
class TESSALY_API Clipboard {
  public:
    /// Opens it with that window as its owner to be; null: the thread.
    explicit Clipboard(HWND hwndOwner);
    ~Clipboard();
    Clipboard(const Clipboard&) = delete; // closes it
    Clipboard& operator=(const Clipboard&) = delete;

    /// 1 if there is something of that format, CF_... or a registered one. Needs no open clipboard.
    int IsDataAvailable(UINT nFormat) const;
    /// Empties it; who does so becomes its owner.
    int Clear();
    /// Puts a copy of cb bytes there, in a moveable block that other programs may share.
    // QUIRK: a block that could not be locked, or that the clipboard refuses, is not freed.
    // Test: Clipboard.RefusedBlockIsLeftBehind
    int AddData(UINT nFormat, const BYTE* pData, UINT cb);
    /// Puts a text there with its terminator, as CF_UNICODETEXT. A null text counts as empty.
    int AddStr(const wchar_t* pszText);
    /// Fills the buffer with the first cb bytes of what is there, and with zeros behind its end. 0
    /// with an untouched buffer if there is nothing of the format.
    int GetData(UINT nFormat, BYTE* pBuffer, UINT cb) const;
    /// Puts the text that is there into pszOut, which has room for all of it, or only measures for
    /// null. Returns its length with the terminator; 0, and nothing is written, if there is none.
    // QUIRK: the size does not count: the caller has asked before how long the text is.
    // Test: Clipboard.GetStrDoesNotLookAtTheSize
    int GetStr(wchar_t* pszOut, UINT cchUnused) const;

    // For callers that have not opened the clipboard: each opens and closes it itself.

    /// GetStr, as far as cchOut allows: with 0 it does not count, otherwise a longer text gives 0
    /// and leaves pszOut alone. Without a text on the clipboard pszOut, unless null, becomes empty.
    // QUIRK: goes on when the clipboard cannot be opened, so that a thread that has it open already
    // gets its text all the same. Test: Clipboard.GetTextOnAThreadThatHasItOpen
    static int GetText(wchar_t* pszOut, UINT cchOut);
    /// Replaces all that is there by a text. Out of memory, or while another window has the
    /// clipboard open, it keeps what it held.
    static int SetText(HWND hwndOwner, const wchar_t* pszText);

  private:
    int bOpen = 0;
};
