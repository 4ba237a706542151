#include "shell_page.h"
#include "resource_ids.h"

#include <commctrl.h>
#include <shlobj.h>
#include <algorithm>
#include <string>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_SHELL_GROUP, 0, 0, 1, 1},   {IDC_SHELL_ROOT, 0, 0, 1, 0},  {IDC_SHELL_UP, 1, 0, 0, 0},
    {IDC_SHELL_PATH, 0, 0, 1, 0},    {IDC_SHELL_LIST, 0, 0, 1, 1},  {IDC_OBJECT_GROUP, 0, 1, 1, 0},
    {IDC_OBJECT_ICON, 0, 1, 0, 0},   {IDC_OBJECT_NAME, 0, 1, 1, 0}, {IDC_OBJECT_KIND, 0, 1, 1, 0},
    {IDC_OBJECT_TARGET, 0, 1, 1, 0}, {IDC_OBJECT_OPEN, 0, 1, 0, 0}, {IDC_OBJECT_LINK, 0, 1, 0, 0},
    {IDC_OBJECT_FOLLOW, 0, 1, 0, 0},
};

struct Root {
    const wchar_t* pszName;
    int nCsidl;
};
constexpr Root kRoots[] = {
    {L"Desktop", CSIDL_DESKTOP}, {L"Computer", CSIDL_DRIVES}, {L"Documents", CSIDL_PERSONAL},
    {L"Recent", CSIDL_RECENT},   {L"Network", CSIDL_NETWORK},
};

struct Kind {
    DWORD nAttribute;
    const wchar_t* pszName;
};
constexpr Kind kKinds[] = {
    {SFGAO_FOLDER, L"folder"},
    {SFGAO_FILESYSTEM, L"in the file system"},
    {SFGAO_LINK, L"link"},
    {SFGAO_HIDDEN, L"hidden"},
};
constexpr DWORD kAllKinds = SFGAO_FOLDER | SFGAO_FILESYSTEM | SFGAO_LINK | SFGAO_HIDDEN;
} // namespace

int ShellPage::UpdateControls() {
    SHFILEINFOW info{};
    auto himl = ::SHGetFileInfoW(L"C:\\", 0, &info, sizeof(info),
                                 SHGFI_SYSICONINDEX | SHGFI_SMALLICON); // the system's, shared
    SendDlgItemMsg(IDC_SHELL_LIST, LVM_SETIMAGELIST, LVSIL_SMALL, static_cast<LPARAM>(himl));
    LVCOLUMNW column{};
    SendDlgItemMsg(IDC_SHELL_LIST, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    for (const Root& root : kRoots)
        SendDlgItemMsg(IDC_SHELL_ROOT, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(root.pszName));
    SendDlgItemMsg(IDC_SHELL_ROOT, CB_SETCURSEL, 0, 0);
    OnComboSelChanged(IDC_SHELL_ROOT);
    return GalleryPage::UpdateControls();
}

void ShellPage::OnComboSelChanged(unsigned short nId) {
    if (nId != IDC_SHELL_ROOT) return;
    PIDL root;
    if (root.Attach(kRoots[SendDlgItemMsg(nId, CB_GETCURSEL, 0, 0)].nCsidl)) GoTo(root);
}

void ShellPage::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_SHELL_UP: {
        PIDL above, left;
        above.CopyAll(place);
        if (above.IsEmpty()) break;
        left.CopyOne(above.GetLast());
        above.RemoveLast();
        GoTo(above);
        ChooseLike(left);
        break;
    }
    case IDC_OBJECT_OPEN: OpenChosen(); break;
    case IDC_OBJECT_LINK: LinkToChosen(); break;
    case IDC_OBJECT_FOLLOW: FollowChosen(); break;
    }
    GalleryPage::OnButtonClicked(nId);
}

__int64 ShellPage::OnNotify(int nId, NMHDR* pHdr) {
    if (nId == IDC_SHELL_LIST) {
        const auto* pChange = reinterpret_cast<const NMLISTVIEW*>(pHdr);
        if (pHdr->code == LVN_ITEMCHANGED && (pChange->uNewState & LVIS_SELECTED)) ShowChosen();
        if (pHdr->code == NM_DBLCLK) OpenChosen();
    }
    return GalleryPage::OnNotify(nId, pHdr);
}

// The folder

void ShellPage::GoTo(const ITEMIDLIST* pidlFolder) {
    place.CopyAll(pidlFolder);
    folder.BindToAbs(place);
    wchar_t szPath[1024];
    PIDL::GetDisplayPath(place, szPath, 1024);
    SetDlgItemTextW(IDC_SHELL_PATH, szPath);
    EnableDlgItem(IDC_SHELL_UP, !place.IsEmpty());
    ReadItems();
    ShowItems();
    Choose(0);
}

void ShellPage::ReadItems() {
    ForgetItems();
    iEnumIDList walk(folder, hWnd, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS);
    while (ITEMIDLIST* pidl = walk.Next()) items.push_back(pidl);
    std::sort(items.begin(), items.end(), [this](const ITEMIDLIST* a, const ITEMIDLIST* b) {
        int nOrder = 0;
        folder.Compare(a, b, 0, nOrder, 0);
        return nOrder < 0;
    });
}

void ShellPage::ForgetItems() {
    for (ITEMIDLIST* pidl : items) PIDL::Free(pidl);
    items.clear();
    if (hicon) ::DestroyIcon(hicon);
    hicon = nullptr;
}

void ShellPage::ShowItems() {
    HWND hwndList = GetDlgItem(IDC_SHELL_LIST);
    ::SendMessageW(hwndList, WM_SETREDRAW, 0, 0);
    ::SendMessageW(hwndList, LVM_DELETEALLITEMS, 0, 0);
    for (int n = 0; n < static_cast<int>(items.size()); ++n) {
        wchar_t szName[MAX_PATH];
        folder.GetDisplayNameOf(items[n], SHGDN_INFOLDER, szName, MAX_PATH);
        PIDL full;
        MakeFull(n, full);
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_IMAGE;
        item.iItem = n;
        item.pszText = szName;
        item.iImage = GetSysIconIndex(full, 0, 0, 0);
        ::SendMessageW(hwndList, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    ::SendMessageW(hwndList, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
    ::SendMessageW(hwndList, WM_SETREDRAW, 1, 0);
}

// The chosen object

int ShellPage::GetChosen() const {
    auto nItem = ::SendMessageW(::GetDlgItem(hWnd, IDC_SHELL_LIST), LVM_GETNEXTITEM,
                                static_cast<WPARAM>(-1), LVNI_SELECTED);
    return nItem < static_cast<LRESULT>(items.size()) ? static_cast<int>(nItem) : -1;
}

void ShellPage::MakeFull(int nItem, PIDL& listOut) const {
    listOut.CopyAll(place);
    listOut.AppendOne(items[nItem]);
}

void ShellPage::Choose(int nItem) {
    LVITEMW item{};
    item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    HWND hwndList = GetDlgItem(IDC_SHELL_LIST);
    ::SendMessageW(hwndList, LVM_SETITEMSTATE, nItem, reinterpret_cast<LPARAM>(&item));
    ::SendMessageW(hwndList, LVM_ENSUREVISIBLE, nItem, 0);
    ShowChosen(); // also if there is none
}

void ShellPage::ChooseLike(const ITEMIDLIST* pidlItem) {
    for (int n = 0; n < static_cast<int>(items.size()); ++n) {
        int nOrder = 1;
        if (!folder.Compare(items[n], pidlItem, 0, nOrder, 0) || nOrder) continue;
        Choose(n);
        return;
    }
}

void ShellPage::ShowChosen() {
    const int nChosen = GetChosen();
    wchar_t szName[MAX_PATH] = L"nothing", szTarget[MAX_PATH] = L"none";
    std::wstring strKind;
    DWORD nKinds = 0;
    HICON hiconNew = nullptr;
    if (nChosen >= 0) {
        PIDL full;
        MakeFull(nChosen, full);
        nKinds = folder.GetAttributesOf(items[nChosen], kAllKinds);
        for (const Kind& kind : kKinds)
            if (nKinds & kind.nAttribute)
                strKind += (strKind.empty() ? L"" : L", ") + std::wstring(kind.pszName);
        hiconNew = GetIconOf(full, 0, 1, 0, nullptr);
        wchar_t szPath[MAX_PATH];
        if ((nKinds & SFGAO_LINK) && GetPathOf(full, szPath, MAX_PATH, 0, 0))
            GetShortcutTargetPath(szTarget, szPath, 1);
        if (!GetShellNameOf(full, szName, MAX_PATH, 1)) GetShellNameOf(full, szName, MAX_PATH, 0);
    }
    SetDlgItemTextFmtCtrl(IDC_OBJECT_NAME, szName);
    SetDlgItemTextFmtCtrl(IDC_OBJECT_KIND, strKind.empty() ? L"none" : strKind.c_str());
    SetDlgItemTextFmtCtrl(IDC_OBJECT_TARGET, szTarget);
    SendDlgItemMsg(IDC_OBJECT_ICON, STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(hiconNew));
    if (hicon) ::DestroyIcon(hicon);
    hicon = hiconNew;
    EnableDlgItem(IDC_OBJECT_OPEN, (nKinds & SFGAO_FOLDER) != 0);
    EnableDlgItem(IDC_OBJECT_LINK, (nKinds & SFGAO_FILESYSTEM) != 0);
    EnableDlgItem(IDC_OBJECT_FOLLOW, (nKinds & SFGAO_LINK) != 0);
}

void ShellPage::OpenChosen() {
    const int nChosen = GetChosen();
    if (nChosen < 0 || !folder.GetAttributesOf(items[nChosen], SFGAO_FOLDER)) return;
    PIDL full;
    MakeFull(nChosen, full);
    GoTo(full);
    SetDlgItemFocus(IDC_SHELL_LIST); // the button may have become disabled
}

// The link comes beside the object, and is chosen then.
void ShellPage::LinkToChosen() {
    const int nChosen = GetChosen();
    if (nChosen < 0) return;
    PIDL full;
    MakeFull(nChosen, full);
    wchar_t szPath[MAX_PATH];
    if (!GetPathOf(full, szPath, MAX_PATH, 0, 0)) return;
    const std::wstring strLink = std::wstring(szPath) + L" (link).lnk";
    if (!CreateLink(szPath, strLink.c_str(), nullptr)) return;
    ITEMIDLIST* pidl = GetPidlOf(strLink.c_str());
    PIDL same;
    same.CopyAll(place);
    GoTo(same);
    if (pidl) ChooseLike(PIDL::GetLast(pidl));
    PIDL::Free(pidl);
}

// To the folder in which the target is, where that is chosen.
void ShellPage::FollowChosen() {
    const int nChosen = GetChosen();
    if (nChosen < 0) return;
    PIDL full, target;
    MakeFull(nChosen, full);
    wchar_t szPath[MAX_PATH];
    if (GetPathOf(full, szPath, MAX_PATH, 0, 0)) {
        ResolveShortcut(hWnd, szPath, 1); // empty if it leads to nothing
        if (*szPath) target.Attach(GetPidlOf(szPath));
    }
    if (!target) {
        SetDlgItemTextFmtCtrl(IDC_OBJECT_TARGET, L"it leads to nothing");
        return;
    }
    PIDL item;
    item.CopyOne(target.GetLast());
    target.RemoveLast();
    GoTo(target);
    ChooseLike(item);
    SetDlgItemFocus(IDC_SHELL_LIST);
}

void ShellPage::OnResize(int dw, int dh) { FollowSize(*this, kRules, dw, dh); }
