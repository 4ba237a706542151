#pragma once
#include "support/wait_until.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/message_tap.h"
#include "wnd/dialog/csdlg.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A modeless dialog that writes down what its controls' notifications come to. Control objects are
/// declared before it, so that they outlive its window.
class CtrlDialog : public CSDlg {
  public:
    CtrlDialog() : CSDlg(nullptr) {}
    ~CtrlDialog() override { Destroy(); }

    /// Makes the window; onInit ties the objects.
    bool Run(int nTemplate, int nShow = 0) {
        if (!nShow) flags |= kDlgStartHidden;
        return Modeless(nTemplate, nullptr, nullptr, nShow) != nullptr;
    }
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
        __int64 lResult = CSDlg::OnInitDialog(wParam, lParam);
        log.push_back("OnInitDialog");
        if (onInit) onInit();
        return lResult;
    }
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override {
        if (onCommand) onCommand(nId, nCode, hwndCtl);
        return CSDlg::OnCommand(nId, nCode, hwndCtl);
    }
    void OnButtonClicked(unsigned short nId) override {
        log.push_back("clicked " + std::to_string(nId));
        if (onClicked) onClicked(nId);
    }
    void OnComboSelChanged(unsigned short nId) override {
        log.push_back("selected " + std::to_string(nId));
    }
    __int64 OnOK() override {
        log.push_back("OnOK");
        return bEndsByOk ? CSDlg::OnOK() : kOkResult;
    }
    __int64 OnCancel() override {
        log.push_back("OnCancel");
        return kCancelResult;
    }
    void OnHelp(HELPINFO* pInfo) override { log.push_back(pInfo ? "OnHelp" : "OnHelp null"); }
    int GetTootTip(unsigned int nId, wchar_t* pszText, unsigned int cch) override {
        log.push_back("tip text " + std::to_string(nId) + " " + std::to_string(cch));
        return onTipText ? onTipText(pszText, cch) : 0;
    }
    int GetTootTip(unsigned int nId, HINSTANCE& hinst, unsigned short& nStringId) override {
        log.push_back("tip string " + std::to_string(nId));
        return onTipString ? onTipString(hinst, nStringId) : 0;
    }
    void OnPostNcDestroy() override {
        log.push_back("OnPostNcDestroy");
        if (onPost) onPost();
        CSDlg::OnPostNcDestroy();
    }

    bool Logged(const std::string& str) const {
        for (auto& line : log) {
            if (line == str) return true;
        }
        return false;
    }

    static constexpr __int64 kOkResult = 0x111, kCancelResult = 0x222;
    bool bEndsByOk = false;
    std::vector<std::string> log;
    std::function<void()> onInit, onPost;
    std::function<void(unsigned, unsigned, HWND)> onCommand;
    std::function<void(unsigned)> onClicked;
    std::function<int(wchar_t*, unsigned)> onTipText;
    std::function<int(HINSTANCE&, unsigned short&)> onTipString;

    using CSDlg::dlgHooks;
    using CSDlg::flags;
    using CSDlg::hWnd;
    using CSDlg::isChildDlg;
};

/// A control object that writes down what is asked of it; what is set answers.
template <class Base>
class Recorded : public Base {
  public:
    using Answer = std::optional<LRESULT>;
    ~Recorded() override {
        if (pnDeletes) ++*pnDeletes;
    }

    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        messages.push_back(uMsg);
        if (onMessage) {
            if (Answer answer = onMessage(uMsg, wParam, lParam)) return *answer;
        }
        return Base::OnWndMessage(uMsg, wParam, lParam);
    }
    void OnInit() override {
        log.push_back("OnInit");
        hwndAtInit = this->hWnd;
        pDlgAtInit = this->dlg;
        Base::OnInit();
    }
    void PostInitDialog() override {
        log.push_back("PostInitDialog");
        Base::PostInitDialog();
    }
    int OnCtlColor(unsigned int uMsg, HDC hdc, HBRUSH* phbr) override {
        log.push_back("OnCtlColor " + std::to_string(uMsg));
        if (hbrAnswer) *phbr = hbrAnswer;
        return hbrAnswer ? nCtlColorAnswer : Base::OnCtlColor(uMsg, hdc, phbr);
    }
    void OnOK() override {
        log.push_back("OnOK");
        Base::OnOK();
    }
    void OnDropFiles(HDROP hdrop) override {
        log.push_back("OnDropFiles");
        hdropSeen = hdrop;
        if (bDrops) Base::OnDropFiles(hdrop);
    }
    int OnCommand(unsigned short nCode, __int64* pqwResult) override {
        log.push_back("OnCommand " + std::to_string(nCode));
        auto fn = onCommand; // the object may go meanwhile
        return fn ? fn(nCode, pqwResult) : Base::OnCommand(nCode, pqwResult);
    }
    int OnNotify(NMHDR* pHdr, __int64* pqwResult) override {
        log.push_back("OnNotify " + std::to_string(static_cast<int>(pHdr->code)));
        auto fn = onNotify;
        return fn ? fn(pHdr, pqwResult) : Base::OnNotify(pHdr, pqwResult);
    }
    void OnDrawItem(DRAWITEMSTRUCT* pItem) override {
        log.push_back("OnDrawItem");
        pItemSeen = pItem;
    }
    void OnMeasureItem(MEASUREITEMSTRUCT* pItem) override {
        log.push_back("OnMeasureItem");
        pItemSeen = pItem;
    }
    void OnDeleteItem(DELETEITEMSTRUCT* pItem) override {
        log.push_back("OnDeleteItem");
        pItemSeen = pItem;
    }
    void OnPostNcDestroy() override {
        log.push_back("OnPostNcDestroy");
        Base::OnPostNcDestroy();
    }
    void Store() override { log.push_back("Store"); }
    void Load() override { log.push_back("Load"); }

    int CountLogged(const std::string& str) const {
        int n = 0;
        for (auto& line : log) n += line == str;
        return n;
    }
    int Count(UINT uMsg) const {
        int n = 0;
        for (UINT u : messages) n += u == uMsg;
        return n;
    }

    std::vector<std::string> log;
    std::vector<UINT> messages;
    std::function<Answer(UINT, WPARAM, LPARAM)> onMessage;
    std::function<int(unsigned, __int64*)> onCommand;
    std::function<int(NMHDR*, __int64*)> onNotify;
    HWND hwndAtInit = nullptr;
    CSDlg* pDlgAtInit = nullptr;
    HDROP hdropSeen = nullptr;
    bool bDrops = true;
    HBRUSH hbrAnswer = nullptr;
    int nCtlColorAnswer = 1;
    void* pItemSeen = nullptr;
    int* pnDeletes = nullptr; // counts the object's end

    using Base::ctrlId;
    using Base::ctrlName;
    using Base::dlg;
    using Base::hWnd;
    using Base::myStyle;
};

inline std::wstring WndText(HWND hwnd) {
    std::wstring str(static_cast<std::size_t>(::GetWindowTextLengthW(hwnd)) + 1, 0);
    str.resize(
        static_cast<std::size_t>(::GetWindowTextW(hwnd, str.data(), static_cast<int>(str.size()))));
    return str;
}

/// Rows of a table that share one T, made before the first and Reset after each: with checked heaps
/// a dialog takes its time.
template <class T, class Row>
class SharedBy : public testing::TestWithParam<Row> {
  public:
    static void SetUpTestSuite() { pShared = std::make_unique<T>(); }
    static void TearDownTestSuite() { pShared.reset(); }
    void SetUp() override { pShared->Reset(); }
    void TearDown() override { pShared->Reset(); }

  protected:
    static T& Get() { return *pShared; }

  private:
    static inline std::unique_ptr<T> pShared;
};

/// PumpUntil with the keys of a dialog.
template <class Fn>
bool PumpDialogUntil(HWND hwndDlg, Fn fnDone) {
    DWORD nStart = ::GetTickCount();
    for (;;) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            if (::IsDialogMessageW(hwndDlg, &msg)) continue;
            ::TranslateMessage(&msg);
            ::DispatchMessageW(&msg);
        }
        if (fnDone()) return true;
        DWORD nPassedMs = ::GetTickCount() - nStart;
        if (nPassedMs >= kTestDeadlineMs) return false;
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, PauseAfter(nPassedMs), QS_ALLINPUT);
    }
}

/// Brings the dialog to the front with the focus on that window, ready for keys.
inline bool FocusIn(HWND hwndDlg, HWND hwndItem) {
    ::ShowWindow(hwndDlg, SW_SHOW);
    ::SetForegroundWindow(hwndDlg);
    ::SetFocus(hwndItem);
    return PumpDialogUntil(hwndDlg, [&] {
        return ::GetForegroundWindow() == hwndDlg && ::GetActiveWindow() == hwndDlg &&
               ::GetFocus() != nullptr;
    });
}

using Log = std::vector<std::string>;

/// The dialog of all kinds of controls, with one of them tied to an object.
struct Dialogs {
    explicit Dialogs(int nId = IDC_CTL_BUTTON, int nShow = 0) {
        dialog.onInit = [this, nId] { ctrl.Init(&dialog, static_cast<unsigned>(nId), nullptr, 0); };
        EXPECT_TRUE(dialog.Run(IDD_CONTROLS, nShow));
        dialog.log.clear();
        ctrl.log.clear();
    }
    void Reset() {
        ctrl.log.clear();
        dialog.log.clear();
    }
    HWND Item(int nId) { return ::GetDlgItem(dialog, nId); }
    LRESULT Command(int nId, int nCode, HWND hwndCtl) {
        return ::SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(nId, nCode),
                              reinterpret_cast<LPARAM>(hwndCtl));
    }
    /// What the dialog's built-in hook gives for a message: whether it is handled.
    int Handle(UINT uMsg, WPARAM wParam, const void* p) {
        CSDlgMsgHandler handler;
        LRESULT lResult = 0;
        return handler.OnDlgMessage(&dialog, uMsg, wParam, reinterpret_cast<LPARAM>(p), &lResult);
    }
    LRESULT Notify(NMHDR* pHdr) {
        return ::SendMessageW(dialog, WM_NOTIFY, pHdr ? pHdr->idFrom : 0,
                              reinterpret_cast<LPARAM>(pHdr));
    }
    static std::string Clicked(int nId) { return "clicked " + std::to_string(nId); }

    Recorded<CSCtrl> ctrl;
    CtrlDialog dialog;
};

/// Plays the author of a dialog: what the function does, it does in OnInitDialog.
inline bool RunWith(CtrlDialog& dialog, std::function<void()> fnInit,
                    int nTemplate = IDD_CONTROLS) {
    dialog.onInit = std::move(fnInit);
    return dialog.Run(nTemplate);
}
