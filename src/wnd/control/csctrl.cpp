#include "wnd/control/csctrl.h"
#include "files/disk/path_fs.h"
#include "files/disk/path_spelling.h"
#include "files/path/path_chars.h"
#include "files/path/path_split.h"
#include "runtime/base/ownership.h"
#include "wnd/dialog/csdlg.h"

#include <cwchar>
#include <memory>
#include <new>

CSCtrl::CSCtrl() { isCtrl = 1; }

CSCtrl::~CSCtrl() {
    // The object may go before the control, as with a dialog that is deleted while its window
    // lives; by then the control may be another object's.
    if (CSWnd::FromHandle(hWnd) == this) Unsubclass();
}

int CSCtrl::IsKindOf(LPCWSTR pszClass) {
    return (pszClass && std::wcscmp(pszClass, L"CSCtrl") == 0) || CSWnd::IsKindOf(pszClass);
}

CSCtrl* CSCtrl::FromHandle(HWND hwnd) {
    CSWnd* pWnd = CSWnd::RecallHandle(hwnd);
    return pWnd && pWnd->IsCtrl() ? static_cast<CSCtrl*>(pWnd) : nullptr;
}

void CSCtrl::Init(CSDlg* pDlg, unsigned int nId, LPCWSTR pszName, unsigned long dwMyStyle) {
    if (dlg) return;
    dlg = pDlg;
    ctrlId = nId;
    ctrlName = pszName;
    myStyle = dwMyStyle;
    HWND hwndCtrl = ::GetDlgItem(*pDlg, static_cast<int>(nId));
    if (!hwndCtrl) return;
    ReplaceObjectOf(hwndCtrl);
    if (!Subclass(hwndCtrl)) return;
    SetLifeHolder(pDlg);
    if (myStyle & kDropMask) ::DragAcceptFiles(hWnd, TRUE);
    OnInit();
}

CSCtrl* CSCtrl::AutoInit(CSDlg* pDlg, unsigned int nId) {
    std::unique_ptr<CSCtrl> pCtrl(new (std::nothrow) CSCtrl);
    if (!pCtrl) return nullptr;
    pCtrl->Init(pDlg, nId, nullptr, 0);
    // Only an object that the control names goes with it; any other would never be deleted.
    if (CSWnd::FromHandle(*pCtrl) != pCtrl.get()) {
        pCtrl->Unsubclass();
        return nullptr;
    }
    pCtrl->autoDelete = 1;
    return pCtrl.release();
}

void CSCtrl::ModifyMyStyle(unsigned long dwRemove, unsigned long dwAdd) {
    myStyle = (myStyle & ~dwRemove) | dwAdd;
}

void CSCtrl::ShowCtrl(int bShow) {
    if (dlg) dlg->ShowDlgItem(static_cast<int>(ctrlId), bShow);
}

LPCWSTR CSCtrl::GetOriginalText() {
    if (originalText.IsReady()) return originalText.Get();
    int cch = GetTextLength();
    if (cch <= 0) return L"";
    HeapArray<wchar_t> text(static_cast<std::size_t>(cch) + 1);
    // The platform may have counted more characters than there are.
    if (!text.IsReady() || !GetText(text.Get(), cch + 1) || !text[0]) return L"";
    originalText = std::move(text);
    return originalText.Get();
}

// Messages

LRESULT CSCtrl::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_DROPFILES) return OnDropFilesMessage(wParam, lParam);
    return CSWnd::OnWndMessage(uMsg, wParam, lParam);
}

LRESULT CSCtrl::OnDropFilesMessage(WPARAM wParam, LPARAM lParam) {
    OnDropFiles(reinterpret_cast<HDROP>(wParam));
    return CSWnd::OnWndMessage(WM_DROPFILES, wParam, lParam);
}

void CSCtrl::OnDropFiles(HDROP hdrop) {
    if (!hdrop) return;
    ScopeExit finish([&] { ::DragFinish(hdrop); });
    constexpr UINT kHowMany = 0xFFFFFFFF;
    if (::DragQueryFileW(hdrop, kHowMany, nullptr, 0) == 0) return;
    wchar_t szPath[kPathChars + 1] = L"";
    if (!::DragQueryFileW(hdrop, 0, szPath, kPathChars + 1)) return;
    DosPathToShellPath(szPath);
    // Each rule is followed in turn: of several that apply the last one's text stays.
    if (myStyle & kDropFileName) SetText(LocateFileName(szPath));
    if (myStyle & kDropFolder) {
        wchar_t szFolder[kPathChars];
        bool bFolder = FolderExists(szPath) != 0;
        if (!bFolder) DirFromPath(szFolder, szPath);
        SetText(bFolder ? szPath : szFolder);
    }
    if ((myStyle & kDropAnyPath) || ((myStyle & kDropFile) && FileExists(szPath))) SetText(szPath);
}

// What derived classes react to

void CSCtrl::OnInit() {}

void CSCtrl::PostInitDialog() {}

int CSCtrl::OnCtlColor(UINT, HDC, HBRUSH*) { return 0; }

void CSCtrl::OnOK() { Store(); }

int CSCtrl::OnCommand(unsigned short, __int64*) { return 0; }

int CSCtrl::OnNotify(NMHDR*, __int64*) { return 0; }

void CSCtrl::OnDrawItem(DRAWITEMSTRUCT*) {}

void CSCtrl::OnMeasureItem(MEASUREITEMSTRUCT*) {}

void CSCtrl::OnDeleteItem(DELETEITEMSTRUCT*) {}

void CSCtrl::Store() {}

void CSCtrl::Load() {}
