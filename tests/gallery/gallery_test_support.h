#pragma once
#include "e2e/support/child_process.h"
#include "gallery/hands_test_support.h"
#include "gallery/resource_ids.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <string>
#include <vector>

/// The pages as they follow each other in the gallery's list.
enum PageNumber {
    kDialogsPage,
    kEditsPage,
    kTextsPage,
    kRichTextPage,
    kButtonsPage,
    kUpdatesPage,
    kProgressPage,
    kShellPage,
    kFilesPage,
};

/// The gallery, started anew for each test, with nothing in its registry key.
class Gallery : public testing::Test {
  protected:
    Gallery();
    ~Gallery() override;

    /// Starts it and waits for its main window.
    void Start();
    /// Closes it by Escape; true if it ended as it should.
    bool Leave();
    /// Puts a value into the gallery's registry key.
    static void StoreBytes(const wchar_t* pszName, const void* p, size_t cb);
    bool HasEnded() const { return process.WaitForEnd() == 0u; }

    HWND Main() const { return hwndMain; }
    /// The page that is to be seen.
    HWND Page() const;
    /// Goes to a page by the keyboard: one of the numbers below.
    void GoToPage(int nPage);
    /// A control of the main dialog, and one of the page.
    HWND Item(int nId) const { return ::GetDlgItem(hwndMain, nId); }
    HWND PageItem(int nId) const { return ::GetDlgItem(Page(), nId); }
    /// A visible dialog of the gallery by its title, waited for; null if none comes.
    HWND WaitForDialog(const std::wstring& strTitle) const;
    HWND FindDialog(const std::wstring& strTitle) const;
    /// The tooltip that is to be seen; null for none.
    HWND FindTip() const;
    /// True when the dialog has gone.
    bool WaitUntilGone(HWND hwnd) const;

    /// The id of the control with the keyboard; of a combo box also when its edit field has it.
    int FocusId() const;
    bool WaitForFocus(int nId) const;
    /// The text of a control, waited for.
    bool WaitForText(HWND hwnd, const std::wstring& strText) const;
    /// Presses Tab until the focus is back, and gives the ids on the way.
    std::vector<int> WalkByTab();

    /// Moves a window by the mouse, at a point of its own that moves it. The mouse waits for the
    /// window to be held, which begins where the mouse is by then.
    void DragWindow(POINT pt, int dx, int dy);
    /// A corner is pulled by the mouse; returns when the window has come to rest.
    void DragCorner(HWND hwnd, int dx, int dy);

    DWORD ProcessId() const { return process.Id(); }

  private:
    GUITHREADINFO ThreadInfo() const;

    ChildProcess process;
    HWND hwndMain = nullptr;
};

/// Where two of the visible children meet that should not, and where a child leaves its dialog or
/// cuts its text; empty if all is well. Group boxes hold others.
std::wstring FaultsOfLayout(HWND hwndDlg);
