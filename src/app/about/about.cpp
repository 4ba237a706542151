#include "app/about/about.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "app/launch/open_html.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/msg.h"

#include <shellapi.h>
#include <cwchar>
#include <iterator>

namespace {
constexpr int kPictureSize = 48; // pixels
constexpr int kNoticeSize = 256; // characters, with the terminator

/// A text with every unit negated, at compile time.
template <std::size_t n>
struct NegatedText {
    consteval NegatedText(const wchar_t (&sz)[n]) {
        for (std::size_t i = 0; i < n; ++i) rg[i] = static_cast<wchar_t>(-sz[i]);
    }
    wchar_t rg[n] = {};
};

/// In plain text the notice stands in memory only for an instant.
constinit NegatedText negatedNotice(L"Tessaly\n\nCopyright (c) 2017 Orvanta. All rights reserved.");

void NegateNotice() {
    for (wchar_t& ch : negatedNotice.rg) ch = static_cast<wchar_t>(-ch);
}
} // namespace

void ShowAboutOrActivate() {
    if (ActivatePrevDlg(DlgSimpleAbout::kNumber)) return;
    DlgSimpleAbout dlg;
    dlg.Modal(IDD_SIMPLE_ABOUT, GetLibraryInstance(), nullptr);
}

DlgSimpleAbout::DlgSimpleAbout()
    : pictureBtn(kPictureSize, kPictureSize, nullptr, -IDI_TESSALY, 0, 0, 0, 0,
                 kImageCenterVertically | kImageCenterHorizontally),
      webBtn(0, 0, IconBtn::kCommon, IconBtn::kCommon, IconBtn::kCommon) {
    activationTag = kNumber;
}

DlgSimpleAbout::~DlgSimpleAbout() = default;

void DlgSimpleAbout::SetWindowIcon(WindowIcon& icon, int nWhich, int nMetricX, int nMetricY) {
    icon.cx = ::GetSystemMetrics(nMetricX);
    icon.cy = ::GetSystemMetrics(nMetricY);
    icon.icon.Reset(
        static_cast<HICON>(::LoadImageW(GetLibraryInstance(), MAKEINTRESOURCEW(IDI_TESSALY),
                                        IMAGE_ICON, icon.cx, icon.cy, LR_DEFAULTCOLOR)));
    SendMsg(WM_SETICON, nWhich, reinterpret_cast<LPARAM>(icon.icon.Get()));
}

__int64 DlgSimpleAbout::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    const __int64 nResult = CSDlg::OnInitDialog(wParam, lParam);
    SetWindowIcon(smallIcon, ICON_SMALL, SM_CXSMICON, SM_CYSMICON);
    SetWindowIcon(bigIcon, ICON_BIG, SM_CXICON, SM_CYICON);
    pictureBtn.Init(this, IDC_ABOUT_PICTURE, nullptr, 0);
    webBtn.Init(this, IDC_ABOUT_WEB, nullptr, 0);
    SetDlgItemTextFmtCtrl(IDC_ABOUT_VERSION, GetMyProductInfo().GetVersionStr());
    SetDlgItemTextFmtCtrl(IDC_ABOUT_NOTICE, GetMyProductInfo().GetCopyrightYear());
    return nResult;
}

void DlgSimpleAbout::OnButtonClicked(unsigned short nId) {
    if (nId != IDC_ABOUT_WEB) {
        CSDlg::OnButtonClicked(nId);
        return;
    }
    ::ShellExecuteW(hWnd, nullptr, pszMyCompanyURL, nullptr, nullptr, SW_SHOWNORMAL);
}

void ShowCopyright(HWND hwnd) {
    wchar_t szNotice[kNoticeSize];
    NegateNotice();
    ::lstrcpynW(szNotice, negatedNotice.rg, kNoticeSize);
    NegateNotice();
    Msg(hwnd, MB_ICONINFORMATION, szNotice);
    ::SecureZeroMemory(szNotice, sizeof(szNotice));
}
