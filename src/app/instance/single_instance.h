#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

// Telling whether a program runs already, finding its window and bringing that forward. A window is
// known by what it answers to the company message (wnd/core/company_msg.h), not by its title.
// Whatever window is asked gets kAskTimeoutMs to answer; one that hangs counts as one that says no.

/// How long one window may think about one question.
constexpr UINT kAskTimeoutMs = 1000;

/// Asks every top-level window whether it is the instance of that id, and to bring itself forward
/// if so. Returns the first that says yes (kActivateDone), or null. For one thread at a time.
TESSALY_API HWND ActivatePreviousInstance(unsigned nId);

/// For the window procedure of a main window, with what it was called with. If the message is that
/// question for this id, the window is brought forward, or its last active popup; it and its
/// topmost parent or owner are restored first if they are minimised. Returns kActivateDone, which
/// the procedure has to give as its result; 0 if it was another message or hwnd is null.
TESSALY_API LRESULT OnActivatePreviousInstance(unsigned nId, HWND hwnd, UINT uMsg, WPARAM wParam,
                                               LPARAM lParam);

/// Looks for a top-level window of that class and title and brings it forward: it is asked to do so
/// itself, and if it does not say that it has, it is restored if it is minimised, and it or its
/// last active popup gets the foreground. Returns 1 if there was such a window.
///
/// A null class or title means any; without both and without nDialog nothing is looked for. With
/// nDialog, the number of a dialog, only a window is taken that says that it is that dialog; 0
/// means that none is asked.
TESSALY_API int ActivatePrevWnd(const wchar_t* pszClass, const wchar_t* pszTitle,
                                unsigned short nDialog);
/// ActivatePrevWnd for the dialog of that number, whatever its title.
TESSALY_API int ActivatePrevDlg(unsigned short nDialog);
/// Looks for the window as ActivatePrevWnd does and asks it to close. 1 if there was one, even if
/// it did not answer in time or stays.
TESSALY_API int ClosePrevWnd(const wchar_t* pszClass, const wchar_t* pszTitle,
                             unsigned short nDialog);

/// Gives the window the foreground from a process that has not got it: for the time of the call
/// this thread's input is joined with that of the thread whose window has the foreground. If that
/// thread does not answer it is not joined, since this one would then hang with it.
TESSALY_API void DoAttachThreadInputActivateWindow(HWND hwnd);

/// Tells whether this process is the first of its kind. The mark is a named event, open for the
/// life of the object: keep the object as long as the program runs.
class TESSALY_API SingleInstanceXP {
  public:
    SingleInstanceXP() = default;
    SingleInstanceXP(const SingleInstanceXP&) = delete; // owns the mark
    SingleInstanceXP& operator=(const SingleInstanceXP&) = delete;

    /// 1 if nobody has the mark of that name yet: in this logon session, or with bGlobal on the
    /// whole machine. The two kinds do not see each other. 0 also when the mark cannot be made.
    ///
    /// It counts whoever has the mark: an object that is asked again says 0, and keeps the mark. A
    /// mark of another name takes the place of the one before.
    int IsFirstInstance(int bGlobal, const wchar_t* pszName);

  private:
    OwnedHandle hMark; // empty unless this process is the first
};

/// Whether somebody has the mark that IsFirstInstance takes, or an object that is in its way. Takes
/// nothing itself, so that a program that starts meanwhile still finds itself the first.
[[nodiscard]] bool HasInstanceMark(int bGlobal, const wchar_t* pszName);
