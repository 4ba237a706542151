#include "wnd/layout/csdlg_main.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "wnd/core/wnd_free.h"
#include "wnd/layout/coordinates.h"
#include "wnd/layout/wnd_place.h"

namespace {
constexpr UINT kSysCmdAbout = 0x10; // the low four bits of a system command are the platform's
constexpr WPARAM kSysCmdMask = 0xFFF0;
} // namespace

// The main dialog

CSDlgMain::CSDlgMain(HINSTANCE hinst, int iconId) {
    if (!iconId) return;
    LPCWSTR pszIcon = MAKEINTRESOURCEW(iconId);
    if (iconId < 0) { // the library's; only then, as a null module means the system's own icons
        ResourceRef ref = ResolveResourceId(iconId, nullptr, DefaultModule::kLibrary);
        hinst = ref.hinst;
        pszIcon = ref.pszName;
    }
    bigIcon = ::LoadIconW(hinst, pszIcon);
    smallIcon =
        static_cast<HICON>(::LoadImageW(hinst, pszIcon, IMAGE_ICON, ::GetSystemMetrics(SM_CXSMICON),
                                        ::GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR));
    if (!smallIcon) smallIcon = bigIcon;
}

CSDlgMain::~CSDlgMain() {
    if (smallIcon != bigIcon) ::DestroyIcon(smallIcon);
}

__int64 CSDlgMain::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    HWND hwnd = hWnd;
    CSDlg::OnInitDialog(wParam, lParam);
    if (!::IsWindow(hwnd)) return 1; // ended by a handler, and the object may have gone with it
    if (HMENU hmenu = ::GetSystemMenu(hwnd, FALSE)) {
        ::AppendMenuW(hmenu, MF_SEPARATOR, 0, nullptr);
        ::AppendMenuW(hmenu, MF_STRING, kSysCmdAbout, ResStr(-IDS_ABOUT));
    }
    ::SendMessageW(hwnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(bigIcon));
    ::SendMessageW(hwnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon));
    if (!placement) RestorePosition();
    return 1;
}

__int64 CSDlgMain::OnDlgMessage(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam) {
    switch (uMsg) {
    case WM_DESTROY:
        if (!placement) StorePosition();
        if (isModeless) ::PostQuitMessage(result);
        break;
    case WM_PAINT: return OnPaint(wParam, lParam);
    case WM_QUERYDRAGICON: return reinterpret_cast<__int64>(bigIcon);
    case WM_SYSCOMMAND:
        if ((wParam & kSysCmdMask) == kSysCmdAbout) return OnAbout();
        break;
    }
    return CSDlg::OnDlgMessage(uMsg, wParam, lParam);
}

__int64 CSDlgMain::OnPaint(unsigned __int64 wParam, __int64 lParam) {
    HWND hwnd = hWnd;
    if (!::IsIconic(hwnd)) return CSDlg::OnDlgMessage(WM_PAINT, wParam, lParam);
    PAINTSTRUCT ps;
    HDC hdc = ::BeginPaint(hwnd, &ps);
    if (!hdc) return 0;
    ::SendMessageW(hwnd, WM_ICONERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0);
    RECT rc{};
    if (::GetClientRect(hwnd, &rc)) {
        int x = (GetWidth(rc) - ::GetSystemMetrics(SM_CXICON) + 1) / 2;
        int y = (GetHeight(rc) - ::GetSystemMetrics(SM_CYICON) + 1) / 2;
        ::DrawIcon(hdc, x, y, bigIcon);
    }
    ::EndPaint(hwnd, &ps);
    return 0;
}

__int64 CSDlgMain::OnAbout() {
    ::MessageBoxW(hWnd, L"TODO...", L"About", MB_OK);
    return 0;
}

void CSDlgMain::StorePosition() { ::WndStorePosition(hWnd, L""); }

void CSDlgMain::RestorePosition() { ::WndRestorePosition(hWnd, L""); }

// The page

CSDlgChild::CSDlgChild() { isChildDlg = 1; }

LRESULT CSDlgChild::OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
    return CSDlg::OnWndMessage(uMsg, wParam, lParam);
}

__int64 CSDlgChild::OnInitDialog(unsigned __int64 wParam, __int64 lParam) {
    HWND hwnd = hWnd;
    __int64 nResult = CSDlg::OnInitDialog(wParam, lParam);
    if (::IsWindow(hwnd)) EnableFullDrag(0); // a page stays in its place
    return nResult;
}

__int64 CSDlgChild::OnOK() { return 1; }

__int64 CSDlgChild::OnCancel() { return 1; }

void CSDlgChild::OnButtonClicked(unsigned short nId) {
    if (parentDlg) parentDlg->OnButtonClicked(nId);
}

void CSDlgChild::OnComboSelChanged(unsigned short nId) {
    if (parentDlg) parentDlg->OnComboSelChanged(nId);
}

int CSDlgChild::Init(CSDlg* pParent, unsigned int nSlotId, unsigned int nTemplateId,
                     HINSTANCE hinst, int bShow) {
    if (!pParent || IsRunning()) return 0;
    parentDlg = pParent;
    slotId = nSlotId;
    HWND hwnd = Modeless(static_cast<int>(nTemplateId), hinst, *pParent, bShow);
    if (!hwnd || !::IsWindow(hwnd)) return 0;
    SetLifeHolder(pParent); // a page is mostly a member of it
    // A page that is created late catches up with a parent that was resized before.
    SIZE sizeGrown = pParent->GetResizeData();
    if (sizeGrown.cx || sizeGrown.cy) {
        OnResize(sizeGrown.cx, sizeGrown.cy);
        if (!::IsWindow(hwnd)) return 0;
    }
    RECT rcSlot;
    if (pParent->GetDlgItemRect(nSlotId, &rcSlot)) ::SetWndPos(hwnd, &rcSlot, 0);
    return 1;
}

// The icons

CSIconForDlg::~CSIconForDlg() = default;

int CSIconForDlg::Init(int iconId, int bSmall) {
    icons[0].Load(iconId, bSmall, 1);
    return icons[0].IsReady();
}

int CSIconForDlg::InitEx(HWND hwnd, int iconId) {
    CSIcon &small = icons[0], &big = icons[1];
    small.Load(iconId, 1, 1);
    big.Load(iconId, 0, 1);
    // Also where there is none: the window must not keep the name of an icon that was destroyed.
    ::SendMessageW(hwnd, WM_SETICON, ICON_SMALL,
                   reinterpret_cast<LPARAM>(static_cast<HICON>(small)));
    ::SendMessageW(hwnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(static_cast<HICON>(big)));
    return small.IsReady() || big.IsReady();
}
