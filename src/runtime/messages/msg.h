#pragma once
#include "runtime/base/export.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/str_format.h"
#include <windows.h>

// The system's only way to show a message box. The title is always the product's name.
//
// The owner: null is the thread's active window, MsgNoOwner() no owner at all; any other window is
// replaced by its last active pop-up. Flags are MessageBoxW's; MB_SETFOREGROUND is added. The
// result is the button's id (IDOK...), 0 when the platform could not show the box. Texts are cut to
// 1,023 characters. Ids are those of runtime/messages/res_str.h; a string that is missing shows an
// empty box.

/// The owner that means no owner.
inline HWND MsgNoOwner() { return reinterpret_cast<HWND>(1); }

/// A text or the id of a string, whichever it is made from.
class MsgText {
  public:
    /// From a text, which may also be an id that was cast.
    MsgText(const wchar_t* pszText) : p(pszText) {}
    /// From an id.
    MsgText(int nId) : p(reinterpret_cast<const void*>(static_cast<INT_PTR>(nId))) {}
    /// From a loaded text, which must live as long.
    MsgText(const ResStr& str) : MsgText(static_cast<const wchar_t*>(str)) {}
    const void* Get() const { return p; } ///< The text, or the id as a pointer.

  private:
    const void* p;
};

/// Shows a text.
TESSALY_API int Msg(HWND hwndOwner, UINT nFlags, MsgText text);

/// Shows a text that is formatted with the arguments. The format is a text (or an id that was cast)
/// or the string of that id, in the dialect of FormatText.
TESSALY_API int MsgFmt(HWND hwndOwner, UINT nFlags, const wchar_t* pszFormat, ...);
TESSALY_API int MsgFmt(HWND hwndOwner, UINT nFlags, int nId, ...);
TESSALY_API int MsgFmt(HWND hwndOwner, UINT nFlags, const wchar_t* pszFormat, ArgList args);
TESSALY_API int MsgFmt(HWND hwndOwner, UINT nFlags, int nId, ArgList args);

/// As flags of MsgLastError and MsgHRESULT: the warning sign.
constexpr UINT kMsgErrorFlags = 0xFFFFFFFF;

/// Tells the thread's last error: the string, formatted with the arguments, an empty line and the
/// system's text; either may be missing. 1 without a box if there is neither error nor id.
TESSALY_API int MsgLastError(HWND hwndOwner, UINT nFlags, int nId, ...);
/// Tells hr in the same way; the system's text is only added if hr is negative. 1 without a box if
/// it is not and there is no id.
TESSALY_API int MsgHRESULT(HWND hwndOwner, HRESULT hr, UINT nFlags, int nId, ...);

/// Called with 0 before a box opens and with 1 when it has closed, on the box's thread, so that the
/// application can pause what it runs. Null for none.
using MsgPauseResumeFunc = void(int nResume);
/// Sets what is called, for all boxes of the process.
TESSALY_API void MsgSetPauseResumeCallback(MsgPauseResumeFunc* pfnNew);

/// The system's text of an error code (0: of the thread's last error), as it comes, with its line
/// end; empty for an unknown code. In a buffer of the process: for use at once, on one thread.
TESSALY_API const wchar_t* GetLastErrorText(DWORD nError = 0);

/// 1 on editions that have the feature. On a WinPro edition the user is told, over hwndOwner, that
/// the command is not available there, and the result is 0.
// QUIRK: the other way round than the name of WinPro suggests: it is what is not supported.
// Test: WinProNotSupported.TellsTheUserOnAProfessionalEdition
TESSALY_API int WinProNotSupported(HWND hwndOwner);
