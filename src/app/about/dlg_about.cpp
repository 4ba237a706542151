#include "app/about/dlg_about.h"
#include "app/about/about.h"
#include "app/identity/product_info.h"
#include "app/launch/open_html.h"
#include "resources/resource_ids.h"
#include "runtime/base/heap_array.h"
#include "runtime/messages/res_str.h"
#include "runtime/text/text_format.h"
#include "shell/clipboard/clipboard.h"
#include "wnd/core/wnd_input.h"
#include "wnd/draw/cdpi.h"
#include "wnd/menu/csmenu.h"

namespace {
constexpr int kLineSize = 256;

void SetHTMLTextFmt(CSStaticHTML& control, const wchar_t* pszFormat, const wchar_t* psz1,
                    const wchar_t* psz2, const wchar_t* psz3) {
    wchar_t szText[kLineSize];
    FormatText(szText, pszFormat, psz1, psz2, psz3);
    control.SetHTMLText(szText);
}

/// The control's text without its tags. Nothing to copy, and no memory: what the clipboard holds
/// stays.
void CopyToClipboard(HWND hwnd, CSStaticHTML& control) {
    const unsigned cch = control.GetHTMLTextStripTags(nullptr, 0);
    if (cch <= 1) return;
    HeapArray<wchar_t> text(cch);
    if (!text.IsReady()) return;
    control.GetHTMLTextStripTags(text.Get(), static_cast<int>(cch));
    Clipboard::SetText(hwnd, text.Get());
}
} // namespace

DlgAboutHandler::DlgAboutHandler()
    : webBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon),
      rateBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon),
      translateBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon),
      improveBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon),
      noticeBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon) {}

int DlgAboutHandler::OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                  LRESULT* plResult) {
    if (uMsg == WM_CONTEXTMENU && wParam &&
        reinterpret_cast<HWND>(wParam) == static_cast<HWND>(details)) {
        pWnd->PostCmd(IDC_ABOUT_COPY, nullptr, 0);
    }
    return WMHook::OnWndMessage(pWnd, uMsg, wParam, lParam, plResult);
}

int DlgAboutHandler::OnDlgMessage(CSDlg* pDlg, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                  LRESULT* plResult) {
    switch (uMsg) {
    case WM_INITDIALOG: // the dialog's own initialisation comes first
        *plResult = pDlg->DoDlgMessage(uMsg, wParam, lParam, this);
        InitControls(pDlg);
        return 1;
    case WM_COMMAND: return HIWORD(wParam) == BN_CLICKED && OnCommand(pDlg, LOWORD(wParam));
    }
    return 0;
}

void DlgAboutHandler::InitControls(CSDlg* pDlg) {
    const struct {
        CSCtrl& control;
        unsigned int nId;
    } controls[] = {
        {webBtn, IDC_ABOUT_WEB_LINK},
        {rateBtn, IDC_ABOUT_RATE},
        {translateBtn, IDC_ABOUT_TRANSLATE},
        {improveBtn, IDC_ABOUT_IMPROVE},
        {noticeBtn, IDC_ABOUT_SHOW_NOTICE},
        {closeBtn, IDCANCEL},
        {title, IDC_ABOUT_TITLE},
        {nameLine, IDC_ABOUT_NAME},
        {version, IDC_ABOUT_FULL_VERSION},
        {details, IDC_ABOUT_DETAILS},
    };
    for (const auto& row : controls) row.control.Init(pDlg, row.nId, nullptr, 0);

    MyProductInfo& info = GetMyProductInfo();
    SetHTMLTextFmt(title, L"<H><H><b>%s %s</b></H></H>", L"About", info.GetDisplayName(), nullptr);
    SetHTMLTextFmt(nameLine, L"<b>%s</b>%s %s", info.GetNickName(), info.GetRegTM(),
                   info.GetEdition());
    version.SetHTMLText(IsKeyPressed(VK_SHIFT) ? info.GetVersionStrRev(1)
                                               : info.GetVersionStrLong(1));
    if (!pDlg->GetDlgItem(IDC_ABOUT_PRODUCT_ICON)) return;
    const int nSize = PCDPI()->GetAdjustedIconSize48_64();
    picture.LoadIconW(nSize, nSize, info.GetIconInstance(), static_cast<int>(info.GetIconID()), 0,
                      0, 0, 0, kImageCenterVertically | kImageCenterHorizontally);
    picture.Init(pDlg, IDC_ABOUT_PRODUCT_ICON, nullptr, 0);
}

int DlgAboutHandler::OnCommand(CSDlg* pDlg, unsigned short nId) {
    switch (nId) {
    case IDC_ABOUT_WEB_LINK: OpenHTML(*pDlg, pszMyCompanyURL, 0, 0); return 1;
    case IDC_ABOUT_RATE: GoWinStore(*pDlg); return 1;
    case IDC_ABOUT_TRANSLATE: GoOnline_Translate(*pDlg, nullptr); return 1;
    case IDC_ABOUT_IMPROVE: GoOnline_ImproveTranslation(*pDlg, nullptr); return 1;
    case IDC_ABOUT_SHOW_NOTICE: ShowCopyright(*pDlg); return 1;
    case IDC_ABOUT_COPY: ShowCopyMenu(pDlg); return 1;
    }
    return 0;
}

void DlgAboutHandler::ShowCopyMenu(CSDlg* pDlg) {
    CSMenu menu;
    if (!menu.CreatePopup()) return;
    menu.AppendItem(IDC_ABOUT_COPY, L"%s", static_cast<const wchar_t*>(ResStr(-IDS_COPY)));
    if (menu.Track(*pDlg, 0u) == IDC_ABOUT_COPY) CopyToClipboard(*pDlg, details);
}

DlgAbout::DlgAbout(int /*nUnused*/) {
    AddWndHook(&handler);
    AddDlgHook(&handler);
}

int DoAbout(HWND hwnd, int nUnused) {
    DlgAbout dlg(nUnused);
    return static_cast<int>(dlg.Modal(-IDD_ABOUT, nullptr, hwnd));
}
