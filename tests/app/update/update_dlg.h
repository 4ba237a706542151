#pragma once
#include "app/shown_dialog.h"
#include "app/update/dlg_update.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <functional>
#include <string>
#include <utility>

/// What a dialog takes at most to answer; one that hangs on purpose is not the one looked for.
constexpr UINT kAnswerMs = 300;

/// The visible dialog of that number in a process; null if it shows none.
inline HWND FindUpdateDlg(DWORD dwProcess, unsigned short nNumber) {
    for (HWND h = nullptr; (h = ::FindWindowExW(nullptr, h, L"#32770", nullptr));) {
        DWORD dwOwner = 0;
        ::GetWindowThreadProcessId(h, &dwOwner);
        if (dwOwner != dwProcess || !::IsWindowVisible(h)) continue;
        DWORD_PTR nAnswer = 0;
        ::SendMessageTimeoutW(h, GetMyCompanyMsgId(), kCompanyCodeIsDialog, nNumber,
                              SMTO_ABORTIFHUNG, kAnswerMs, &nAnswer);
        if (nAnswer == 1) return h;
    }
    return nullptr;
}

/// A function that shows an update dialog and returns when that is closed, running on a thread of
/// its own.
class ShownUpdateDlg : public ShownDialog {
  public:
    static constexpr unsigned short kCheck = 109, kGet = 108;

    ShownUpdateDlg(unsigned short nNumber, std::function<void()> fnShow)
        : ShownDialog(std::move(fnShow), [=] { return Find(nNumber); }) {}

    /// From now on it is the dialog of that number, once that is to be seen.
    void WaitFor(unsigned short nNumber) {
        ShownDialog::WaitFor([=] { return Find(nNumber); });
    }
    int FocusId() const { return ::GetDlgCtrlID(Focus()); }
    bool WaitForFocus(int nId) const {
        return WaitUntil([&] { return FocusId() == nId; });
    }
    void PressAltF4() const {
        constexpr LPARAM kAltDown = 0x20000000;
        ::PostMessageW(Focus(), WM_SYSKEYDOWN, VK_F4, kAltDown | 1);
    }
    bool IsChecked(int nId) const {
        return ::SendMessageW(Item(nId), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }
    int Selection() const {
        return static_cast<int>(::SendMessageW(Item(21543), CB_GETCURSEL, 0, 0));
    }
    void Select(int nIndex) const {
        ::SendMessageW(Item(21543), CB_SETCURSEL, static_cast<WPARAM>(nIndex), 0);
    }

  private:
    static HWND Find(unsigned short nNumber) {
        return FindUpdateDlg(::GetCurrentProcessId(), nNumber);
    }
};

/// A dialog of the test's thread, shown without a loop of its own, and drawn.
template <class Dlg>
class OpenUpdateDlg {
  public:
    template <class... Args>
    explicit OpenUpdateDlg(int nTemplate, Args... args) : dlg(args...) {
        hwndDlg = dlg.Modeless(-nTemplate, nullptr, nullptr, 1);
        EXPECT_NE(nullptr, hwndDlg);
        ::RedrawWindow(dlg, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    }
    ~OpenUpdateDlg() {
        if (::IsWindow(hwndDlg)) dlg.CloseDialog(IDCANCEL, 0);
    }
    OpenUpdateDlg(const OpenUpdateDlg&) = delete;
    OpenUpdateDlg& operator=(const OpenUpdateDlg&) = delete;

    HWND Item(int nId) { return dlg.GetDlgItem(nId); }
    std::wstring Text(int nId) { return WindowText(Item(nId)); }
    CSStaticHTML& RichText(int nId) { return static_cast<CSStaticHTML&>(*dlg.GetDlgCtrl(nId)); }
    std::wstring Markup(int nId) {
        wchar_t sz[2048] = L"";
        RichText(nId).GetHTMLText(sz, 2048);
        return sz;
    }
    void Click(int nId) { dlg.SendMsg(WM_COMMAND, MAKEWPARAM(nId, BN_CLICKED), 0); }
    bool IsChecked(int nId) { return dlg.IsDlgButtonChecked(nId) == BST_CHECKED; }

    Dlg dlg;

  private:
    HWND hwndDlg = nullptr;
};

struct OpenCheck : OpenUpdateDlg<DlgCheckForUpdates> {
    explicit OpenCheck(int nFrequency = 1, unsigned nDays = 3, int* pbResult = nullptr)
        : OpenUpdateDlg(21802, nFrequency, nDays, pbResult) {}
};

struct OpenGet : OpenUpdateDlg<DlgGetUpdates> {
    explicit OpenGet(const wchar_t* pszDescription, const wchar_t* pszUrl = nullptr,
                     int nFrequency = 1)
        : OpenUpdateDlg(21804, nFrequency, pszDescription, pszUrl) {}
};
