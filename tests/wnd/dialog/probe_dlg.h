#pragma once
#include "support/wait_until.h"
#include "wnd/control/csctrl.h"
#include "wnd/dialog/csdlg.h"
#include "wnd/dialog/dialog_ids.h"
#include "wnd/dialog/dlg_record.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

/// Posted by a dialog to itself at its initialisation: runs what the test wants to see inside.
constexpr UINT kRunInside = WM_APP + 0x31;
/// The end of a dialog's own message loop, posted to the thread.
constexpr UINT kLoopEnd = 1034;

/// A dialog that writes down what happens to it and lets tests see its fields. What is not set
/// answers as CSDlg does. A dialog that stays open for 15 seconds fails its test.
class ProbeDlg : public CSDlg {
  public:
    using Act = std::function<void(ProbeDlg&)>;

    ProbeDlg() : CSDlg(nullptr), record(own) {}
    explicit ProbeDlg(DlgRecord& recordKept) : record(recordKept) {}
    ~ProbeDlg() override { ++record.nDeletes; }

    void PreInit() override {
        Note("PreInit");
        Run(onPreInit);
        CSDlg::PreInit();
    }
    int PreTranslateMessage(MSG* pMsg) override {
        return onPreTranslate ? onPreTranslate(pMsg) : CSDlg::PreTranslateMessage(pMsg);
    }
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        record.wndMessages.push_back(uMsg);
        return CSDlg::OnWndMessage(uMsg, wParam, lParam);
    }
    void OnPostNcDestroy() override {
        Note("OnPostNcDestroy");
        Run(onPostNcDestroy);
        CSDlg::OnPostNcDestroy();
        Run(afterPostNcDestroy);
    }
    void OnActivate(int bActive) override {
        Note("OnActivate", bActive);
        CSDlg::OnActivate(bActive);
    }
    void OnEnable(int bOn) override {
        Note("OnEnable", bOn);
        CSDlg::OnEnable(bOn);
    }
    int UpdateControls() override {
        Note("UpdateControls");
        Run(onUpdateControls);
        return CSDlg::UpdateControls();
    }
    int UpdateData() override {
        Note("UpdateData");
        return nUpdateData < 0 ? CSDlg::UpdateData() : nUpdateData;
    }
    /// onInit runs before the default, where dialogs tie their controls.
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
        Note("OnInitDialog");
        ::SetTimer(hWnd, kGuardTimer, 15000, &TooLong);
        if (onInside) ::PostMessageW(hWnd, kRunInside, 0, 0);
        if (!onInit) return CSDlg::OnInitDialog(wParam, lParam);
        auto fn = onInit;
        HWND hwnd = hWnd;
        fn(*this);
        return ::IsWindow(hwnd) ? CSDlg::OnInitDialog(wParam, lParam) : 0;
    }
    void OnShowWindow(int bShow, unsigned long dwStatus) override {
        Note("OnShowWindow", bShow, dwStatus);
        CSDlg::OnShowWindow(bShow, dwStatus);
    }
    __int64 OnNotify(int nId, NMHDR* pHdr) override {
        Note("OnNotify", nId, static_cast<int>(pHdr->code));
        return qwNotify ? *qwNotify : CSDlg::OnNotify(nId, pHdr);
    }
    __int64 OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) override {
        record.dlgMessages.push_back(uMsg);
        if (uMsg != kRunInside || !onInside) return CSDlg::OnDlgMessage(uMsg, wParam, lParam);
        auto fn = std::move(onInside);
        onInside = nullptr;
        HWND hwnd = hWnd;
        bool bStay = bStayOpen;
        int nResult = nCloseWith, nBefore = nCloses;
        fn(*this);
        bool bOpen = ::IsWindow(hwnd) && CSWnd::FromHandle(hwnd) == this && nCloses == nBefore;
        if (!bStay && bOpen) CloseDialog(nResult, 0);
        return 0;
    }
    int OnMyCompanyMsg(unsigned __int64 qwCode, __int64 qwData, __int64* pqwResult) override {
        Note("OnMyCompanyMsg", qwCode, qwData);
        if (!qwCompany) return CSDlg::OnMyCompanyMsg(qwCode, qwData, pqwResult);
        *pqwResult = *qwCompany;
        return 1;
    }
    void OnHelp(HELPINFO* pInfo) override {
        Note("OnHelp", pInfo ? pInfo->iCtrlId : -1);
        if (!bQuietHelp) CSDlg::OnHelp(pInfo);
    }
    __int64 OnOK() override {
        Note("OnOK");
        return qwOK ? *qwOK : CSDlg::OnOK();
    }
    __int64 OnCancel() override {
        Note("OnCancel");
        return qwCancel ? *qwCancel : CSDlg::OnCancel();
    }
    __int64 OnCommand(unsigned short nId, unsigned short nCode, HWND hwndCtl) override {
        Note("OnCommand", nId, nCode, hwndCtl != nullptr);
        if (qwCommand) return *qwCommand;
        return CSDlg::OnCommand(nId, nCode, hwndCtl);
    }
    int OnSysCommand(unsigned short nCmd, unsigned short x, unsigned short y) override {
        Note("OnSysCommand", nCmd, x, y);
        return nSysCommand < 0 ? CSDlg::OnSysCommand(nCmd, x, y) : nSysCommand;
    }
    void OnButtonClicked(unsigned short nId) override {
        Note("OnButtonClicked", nId);
        if (onButton) {
            auto fn = onButton;
            fn(*this, nId);
            return;
        }
        CSDlg::OnButtonClicked(nId);
    }
    void OnComboSelChanged(unsigned short nId) override {
        Note("OnComboSelChanged", nId);
        CSDlg::OnComboSelChanged(nId);
    }
    int OnCtlColor(unsigned int uMsg, HDC hdc, HWND hwndCtl, HBRUSH* phbr) override {
        Note("OnCtlColor", uMsg);
        return CSDlg::OnCtlColor(uMsg, hdc, hwndCtl, phbr);
    }
    int GetTootTip(unsigned int nId, wchar_t* pszText, unsigned int cch) override {
        Note("TipText", nId, cch);
        if (!pszTip) return CSDlg::GetTootTip(nId, pszText, cch);
        lstrcpynW(pszText, pszTip, static_cast<int>(cch));
        return 1;
    }
    int GetTootTip(unsigned int nId, HINSTANCE& hinst, unsigned short& nStringId) override {
        Note("TipString", nId);
        if (nTipResult < 0) return CSDlg::GetTootTip(nId, hinst, nStringId);
        hinst = hinstTip;
        nStringId = nTipString;
        return nTipResult;
    }
    LPCWSTR GetHtmlPage(unsigned int nId) override {
        Note("GetHtmlPage", nId);
        auto it = pages.find(nId);
        return it == pages.end() ? CSDlg::GetHtmlPage(nId) : it->second;
    }
    void OnHtmlHelpError(LPCWSTR pszPage) override {
        Note("OnHtmlHelpError");
        strErrorPage = pszPage;
        CSDlg::OnHtmlHelpError(pszPage);
    }
    int CanClose(int nResult) override {
        Note("CanClose", nResult);
        Run(onCanClose);
        return nCanClose < 0 ? CSDlg::CanClose(nResult) : nCanClose;
    }
    void DoClose(int nResult) override {
        Note("DoClose", nResult);
        ++nCloses;
        Run(onDoClose);
        CSDlg::DoClose(nResult);
    }
    void OnInitDone() override {
        Note("OnInitDone");
        Run(onInitDone);
        CSDlg::OnInitDone();
    }
    void OnWindowPosChanging(WINDOWPOS* pPos) override {
        Note("OnWindowPosChanging");
        CSDlg::OnWindowPosChanging(pPos);
    }
    void OnWindowPosChanged(WINDOWPOS* pPos) override {
        Note("OnWindowPosChanged");
        CSDlg::OnWindowPosChanged(pPos);
    }
    void OnMouseMove(unsigned __int64 qwFlags, int x, int y) override {
        Note("OnMouseMove", qwFlags, x, y);
        CSDlg::OnMouseMove(qwFlags, x, y);
    }
    void OnDelayedAction(unsigned long dwCode) override {
        Note("OnDelayedAction", dwCode);
        Run(onDelayed);
        CSDlg::OnDelayedAction(dwCode);
    }

    /// Runs the dialog modally, does that inside, and closes it (unless the test has).
    __int64 RunModal(Act fnInside, int nTemplate = IDD_DIALOG_PLAIN, HWND hwndParent = nullptr) {
        onInside = std::move(fnInside);
        return Modal(nTemplate, nullptr, hwndParent);
    }
    /// What the built-in hook answers; the result that it leaves in *pqwResult, if any.
    int Handle(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT* plResult = nullptr) {
        LRESULT lResult = 0;
        int n = msgHandler.OnDlgMessage(this, uMsg, wParam, lParam, &lResult);
        if (plResult) *plResult = lResult;
        return n;
    }

    using CSDlg::bkgBrush;
    using CSDlg::bkgColor;
    using CSDlg::controlsUpdated;
    using CSDlg::ctrlGroups;
    using CSDlg::ctrlGroupsMeasured;
    using CSDlg::curHeight;
    using CSDlg::curWidth;
    using CSDlg::dataUpdated;
    using CSDlg::delayedAction;
    using CSDlg::delayTimer;
    using CSDlg::dlgHooks;
    using CSDlg::dlgHooksRemovalPending;
    using CSDlg::dlgId;
    using CSDlg::dlgMsgDepth;
    using CSDlg::dragger;
    using CSDlg::flags;
    using CSDlg::hasOwnLoop;
    using CSDlg::hooks;
    using CSDlg::hParent;
    using CSDlg::hResources;
    using CSDlg::hWnd;
    using CSDlg::inUpdateControls;
    using CSDlg::isChildDlg;
    using CSDlg::isClosed;
    using CSDlg::isClosing;
    using CSDlg::isCtrl;
    using CSDlg::isDlg;
    using CSDlg::isInitialized;
    using CSDlg::isModeless;
    using CSDlg::minHeight;
    using CSDlg::minWidth;
    using CSDlg::modalResult;
    using CSDlg::msgDepth;
    using CSDlg::msgHandler;
    using CSDlg::placement;
    using CSDlg::prevHeight;
    using CSDlg::prevWidth;
    using CSDlg::result;
    using CSDlg::textColor;
    using CSDlg::thirdColor;

    DlgRecord own;
    DlgRecord& record;

    Act onPreInit, onInit, onInside, onInitDone, onUpdateControls, onCanClose, onDoClose, onDelayed;
    Act onPostNcDestroy, afterPostNcDestroy;
    std::function<void(ProbeDlg&, unsigned short)> onButton;
    std::function<int(MSG*)> onPreTranslate;
    bool bStayOpen = false; // after onInside
    int nCloses = 0;
    int nCloseWith = 7;
    int nUpdateData = -1, nCanClose = -1, nSysCommand = -1;
    bool bQuietHelp = false;
    std::optional<__int64> qwNotify, qwCompany, qwOK, qwCancel, qwCommand;
    const wchar_t* pszTip = nullptr;
    int nTipResult = -1;
    HINSTANCE hinstTip = nullptr;
    unsigned short nTipString = 0;
    std::map<unsigned, const wchar_t*> pages;
    std::wstring strErrorPage;

  private:
    static constexpr UINT_PTR kGuardTimer = 0x7A7A;

    template <class... Args>
    void Note(const char* pszWord, Args... args) {
        record.log.push_back(Line(pszWord, args...));
    }
    void Run(const Act& fnAct) {
        if (!fnAct) return;
        Act fn = fnAct; // may be changed, or gone, while it runs
        fn(*this);
    }
    static void CALLBACK TooLong(HWND hwnd, UINT, UINT_PTR uTimer, DWORD) {
        ::KillTimer(hwnd, uTimer);
        ADD_FAILURE() << "nobody has closed the dialog";
        ::EndDialog(hwnd, -99);
        ::DestroyWindow(hwnd);
    }
};

/// A dialog on the heap whose memory goes with it: whoever touches it later ends the program.
class MortalDlg : public ProbeDlg {
  public:
    explicit MortalDlg(DlgRecord& recordKept) : ProbeDlg(recordKept) { autoDelete = 1; }
    static void* operator new(std::size_t cb) {
        return ::VirtualAlloc(nullptr, cb, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    }
    static void operator delete(void* p) { ::VirtualFree(p, 0, MEM_RELEASE); }
};

/// A modeless dialog without an own loop, hidden, for the length of a test.
class OpenDlg : public ProbeDlg {
  public:
    explicit OpenDlg(int nTemplate = IDD_DIALOG_ITEMS, HWND hwndParent = nullptr, int nShow = 0) {
        EXPECT_NE(nullptr, Modeless(nTemplate, nullptr, hwndParent, nShow));
        record.log.clear();
        record.dlgMessages.clear();
        record.wndMessages.clear();
    }
    ~OpenDlg() override {
        if (::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
};

/// A control object that writes down what it is asked, in the dialog's log.
class ProbeCtrl : public CSCtrl {
  public:
    explicit ProbeCtrl(DlgRecord& recordKept) : record(recordKept) {}

    void PostInitDialog() override { Note("ctrl.PostInitDialog"); }
    int OnCtlColor(unsigned int uMsg, HDC, HBRUSH* phbr) override {
        Note("ctrl.OnCtlColor", uMsg);
        if (hbr) *phbr = hbr;
        return hbr ? 5 : 0;
    }
    void OnOK() override {
        Note("ctrl.OnOK");
        CSCtrl::OnOK();
    }
    int OnCommand(unsigned short nCode, __int64* pqwResult) override {
        Note("ctrl.OnCommand", nCode);
        if (onCommand) onCommand();
        if (!qwCommand) return 0;
        *pqwResult = *qwCommand;
        return 3;
    }
    int OnNotify(NMHDR* pHdr, __int64* pqwResult) override {
        Note("ctrl.OnNotify", static_cast<int>(pHdr->code));
        if (!qwNotify) return 0;
        *pqwResult = *qwNotify;
        return 3;
    }
    void OnDrawItem(DRAWITEMSTRUCT* p) override { Note("ctrl.OnDrawItem", ctrlId, p->itemID); }
    void OnMeasureItem(MEASUREITEMSTRUCT* p) override {
        Note("ctrl.OnMeasureItem", ctrlId, p->itemID);
    }
    void OnDeleteItem(DELETEITEMSTRUCT* p) override {
        Note("ctrl.OnDeleteItem", ctrlId, p->itemID);
    }

    DlgRecord& record;
    HBRUSH hbr = nullptr;
    std::function<void()> onCommand;
    std::optional<__int64> qwCommand, qwNotify;

    using CSCtrl::hWnd;

  private:
    template <class... Args>
    void Note(const char* pszWord, Args... args) {
        record.log.push_back(Line(pszWord, args...));
    }
};

/// Whether a message of the thread itself (no window) waits; takes it.
inline bool TakeThreadMessage(UINT uMsg, MSG* pMsg = nullptr) {
    MSG msg;
    bool bFound = ::PeekMessageW(&msg, reinterpret_cast<HWND>(-1), uMsg, uMsg, PM_REMOVE);
    if (bFound && pMsg) *pMsg = msg;
    return bFound;
}

inline std::wstring ItemText(HWND hwndDlg, int nId) {
    wchar_t sz[4096] = L"";
    ::GetDlgItemTextW(hwndDlg, nId, sz, 4096);
    return sz;
}
