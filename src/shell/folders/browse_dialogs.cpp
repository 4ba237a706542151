#include "shell/folders/browse_dialogs.h"
#include "files/disk/path_spelling.h"
#include "files/path/path_chars.h"
#include "resources/resource_ids.h"
#include "runtime/base/heap_array.h"
#include "runtime/messages/res_str.h"
#include "runtime/system/runtime_func.h"
#include "runtime/system/system_facts.h"
#include "shell/namespace/pidl.h"

#include <commdlg.h>
#include <shlobj.h>
#include <algorithm>

namespace {
constexpr wchar_t kFilterSeparator = L'|';
constexpr DWORD kCommonFlags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
constexpr DWORD kSaveFlags = kCommonFlags | OFN_OVERWRITEPROMPT;
constexpr DWORD kOpenFlags = kCommonFlags | OFN_FILEMUSTEXIST;
static_assert(kSaveFlags == 2062 && kOpenFlags == 6156);

/// What a folder dialog has chosen at first.
struct BrowseStart {
    int bPath; // p is a path, otherwise a list
    const void* p;
};

int CALLBACK OnBrowseEvent(HWND hwnd, UINT uMsg, LPARAM, LPARAM lData) {
    const auto& start = *reinterpret_cast<const BrowseStart*>(lData);
    if (uMsg == BFFM_INITIALIZED && start.p) {
        ::SendMessageW(hwnd, BFFM_SETSELECTIONW, static_cast<WPARAM>(start.bPath),
                       reinterpret_cast<LPARAM>(start.p));
    }
    return 0;
}

ITEMIDLIST* Browse(HWND hwnd, const BrowseStart& start, wchar_t* pszDisplayName,
                   const wchar_t* pszTitle, unsigned nFlags, const ITEMIDLIST* pidlRoot) {
    const ResStr title(-IDS_BROWSE_FOLDER);
    wchar_t szName[MAX_PATH];
    BROWSEINFOW info{};
    info.hwndOwner = hwnd;
    info.pidlRoot = pidlRoot;
    info.pszDisplayName =
        pszDisplayName ? pszDisplayName : szName; // it may be written to in any case
    info.lpszTitle = pszTitle ? pszTitle : static_cast<const wchar_t*>(title);
    info.ulFlags = nFlags | (Win2K() ? BIF_EDITBOX | BIF_NEWDIALOGSTYLE : 0);
    info.lpfn = OnBrowseEvent;
    info.lParam = reinterpret_cast<LPARAM>(&start);
    return ::SHBrowseForFolderW(&info);
}
} // namespace

int BrowseForFolder(HWND hwnd, wchar_t* pszPath, const wchar_t* pszTitle, unsigned nFlags,
                    const ITEMIDLIST* pidlRoot) {
    if (!pszPath) return 0;
    PIDL chosen;
    chosen.Attach(Browse(hwnd, {1, pszPath}, nullptr, pszTitle, nFlags, pidlRoot));
    wchar_t szPath[MAX_PATH];
    if (!chosen || !::SHGetPathFromIDListW(chosen, szPath)) return 0;
    CopyPath(pszPath, szPath);
    DosPathToShellPath(pszPath);
    return 1;
}

ITEMIDLIST* BrowseForFolder(HWND hwnd, const ITEMIDLIST* pidlStart, wchar_t* pszDisplayName,
                            const wchar_t* pszTitle, unsigned nFlags, const ITEMIDLIST* pidlRoot) {
    return Browse(hwnd, {0, pidlStart}, pszDisplayName, pszTitle, nFlags, pidlRoot);
}

int BrowseForNetFolder(HWND hwnd, wchar_t* pszPath) {
    if (!pszPath) return 0;
    PIDL network;
    network.Attach(CSIDL_NETWORK);
    BrowseForFolder(hwnd, pszPath, nullptr, BIF_RETURNONLYFSDIRS, network);
    return *pszPath != 0;
}

void PrepareBrowseFilter(wchar_t* pszOut, const wchar_t* pszFilter) {
    if (!pszOut) return;
    const ResStr allFiles(-IDS_BROWSE_ALL_FILES);
    const wchar_t* pszAll = allFiles;
    const std::size_t cchFilter = LengthOf(pszFilter);
    CopyTextPart(pszOut, pszFilter, cchFilter);
    if (!cchFilter)
        CopyTextPart(pszOut, pszAll + (*pszAll ? 1 : 0), LengthOf(pszAll));
    else if (pszFilter[cchFilter - 1] != kFilterSeparator)
        CopyTextPart(pszOut + cchFilter, pszAll, LengthOf(pszAll));
    std::replace(pszOut, pszOut + LengthOf(pszOut), kFilterSeparator, L'\0');
}

int BrowseForFile(HWND hwnd, int bSave, wchar_t* pszPath, const wchar_t* pszTitle,
                  const wchar_t* pszFolder, const wchar_t* pszFilter, const wchar_t* pszDefaultExt,
                  unsigned nFlags) {
    static constinit RuntimeFunc<decltype(::GetOpenFileNameW)> openFunc(L"comdlg32.dll",
                                                                        "GetOpenFileNameW");
    static constinit RuntimeFunc<decltype(::GetSaveFileNameW)> saveFunc(L"comdlg32.dll",
                                                                        "GetSaveFileNameW");
    if (!pszPath) return 0;
    const ResStr title(-IDS_BROWSE_FILE);
    const ResStr allFiles(-IDS_BROWSE_ALL_FILES);
    HeapArray<wchar_t> filter(LengthOf(pszFilter) + LengthOf(allFiles) + 2);
    auto* pfn = (bSave ? saveFunc : openFunc).Get();
    if (!pfn || !filter.IsReady()) return 0;
    PrepareBrowseFilter(filter.Get(), pszFilter);

    OPENFILENAMEW info{};
    info.lStructSize = sizeof(info);
    static_assert(sizeof(info) == 152);
    info.hwndOwner = hwnd;
    info.lpstrFilter = filter.Get();
    info.lpstrFile = pszPath;
    info.nMaxFile = MAX_PATH;
    info.lpstrInitialDir = pszFolder;
    info.lpstrTitle = pszTitle ? pszTitle : static_cast<const wchar_t*>(title);
    info.Flags = nFlags ? nFlags : bSave ? kSaveFlags : kOpenFlags;
    info.lpstrDefExt = pszDefaultExt;
    if (!pfn(&info)) return 0;
    DosPathToShellPath(pszPath);
    return 1;
}
