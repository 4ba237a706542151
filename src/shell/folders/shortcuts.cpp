#include "shell/folders/shortcuts.h"
#include "files/disk/path_fs.h"
#include "files/path/path_chars.h"
#include "runtime/base/ownership.h"
#include "shell/folders/shell_link.h"
#include "shell/folders/shell_names.h"
#include "shell/namespace/com_wrappers.h"
#include "shell/namespace/pidl.h"

#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

namespace {
constexpr DWORD kQuietResolve = DWORD{SLR_NO_UI} | DWORD{SLR_NOUPDATE} | DWORD{SLR_NOSEARCH} |
                                DWORD{SLR_NOTRACK} | DWORD{SLR_NOLINKINFO};
static_assert(kQuietResolve == 121);
constexpr DWORD kComFlags = COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE;
/// As the size of a buffer of 260 characters: only a path of the file system comes through, and
/// that in full, as it is not cut. Other names are for showing, not for opening.
constexpr unsigned kPathsOnly = 1;

bool IsShortcut(const wchar_t* pszPath) {
    SHFILEINFOW info{};
    info.dwAttributes = SFGAO_LINK; // asked for alone: the others may cost time
    return ::SHGetFileInfoW(pszPath, 0, &info, sizeof(info),
                            SHGFI_ATTRIBUTES | SHGFI_ATTR_SPECIFIED) &&
           (info.dwAttributes & SFGAO_LINK);
}

int FillLink(iShellLink& link, iPersistFile& file, const wchar_t* pszTarget, const wchar_t* pszLink,
             const wchar_t* pszArgs) {
    return link.SetPath(pszTarget) && (!pszArgs || link.SetArgs(pszArgs)) && file.Save(pszLink, 1);
}

HRESULT MakeLinkObject(IShellLinkW** ppLink) {
    return ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              reinterpret_cast<void**>(ppLink));
}
} // namespace

// Making and changing

int CreateLink(const wchar_t* pszTarget, const wchar_t* pszLink, const wchar_t* pszArgs) {
    if (!pszTarget || !pszLink) return 0;
    iShellLink link;
    iPersistFile file(link);
    return file.IsReady() && FillLink(link, file, pszTarget, pszLink, pszArgs);
}

int UpdateLink(const wchar_t* pszTarget, const wchar_t* pszLink, const wchar_t* pszArgs) {
    if (!pszTarget || !pszLink) return 0;
    iShellLink link;
    iPersistFile file(link);
    return file.Load(pszLink, 1) && FillLink(link, file, pszTarget, pszLink, pszArgs);
}

int GetShortcutIcon(const wchar_t* pszLink, wchar_t* pszOut, int* pnIndex) {
    if (!pszOut) return 0;
    iShellLink link;
    int nIndex = 0;
    if (!link.Load(pszLink) || !link.GetIcon(pszOut, nIndex)) return 0;
    if (pnIndex) *pnIndex = nIndex;
    return 1;
}

int SetShortcutIcon(const wchar_t* pszLink, const wchar_t* pszIcon, int nIndex) {
    iShellLink link;
    iPersistFile file(link);
    return file.Load(pszLink, 1) && link.SetIcon(pszIcon, nIndex) && file.Save(pszLink, 1);
}

// Following

int ResolveLink(HWND hwnd, iShellLink& link, iPersistFile& file, const wchar_t* pszPath,
                wchar_t* pszOut, DWORD nFlags, int bNoResolve) {
    if (!pszPath || !pszOut) return 0;
    if (!IsShortcut(pszPath)) {
        CopyPath(pszOut, pszPath);
        return 1;
    }
    *pszOut = 0;
    if (!file.IsReady() || !file.Load(pszPath, 0)) return 0;
    if (!bNoResolve && !link.Resolve(hwnd, nFlags)) return 0;
    return link.GetPath(pszOut, nullptr, 0);
}

void ResolveShortcut(HWND hwnd, wchar_t* pszPath, int bQuiet) {
    if (!pszPath) return;
    iShellLink link;
    iPersistFile file(link);
    wchar_t szTarget[MAX_PATH] = L"";
    const DWORD nFlags = bQuiet ? kQuietResolve : static_cast<DWORD>(SLR_ANY_MATCH);
    if (!file.IsReady() || !ResolveLink(hwnd, link, file, pszPath, szTarget, nFlags, 0)) return;
    if (GetFileAttributes2(szTarget) != INVALID_FILE_ATTRIBUTES) {
        CopyPath(pszPath, szTarget);
        return;
    }
    *pszPath = 0;
    PIDL list;
    list.Attach(GetPidlOf(szTarget));
    if (list) GetShellNameOf(list, pszPath, kPathsOnly, 1);
}

int GetShortcutTargetPath(wchar_t* pszOut, const wchar_t* pszPath, int bShellName) {
    if (!pszOut || !pszPath) return 0;
    wchar_t szTarget[MAX_PATH] = L"";
    if (IsShortcut(pszPath)) {
        iShellLink link;
        if (!link.Load(pszPath) || !link.GetPath(szTarget, nullptr, 0)) return 0;
    } else {
        CopyPath(szTarget, pszPath);
    }
    if (bShellName && FileOrFolderExists(szTarget))
        return GetShellPathOf(szTarget, pszOut, kPathsOnly, 1);
    CopyPath(pszOut, szTarget);
    return 1;
}

// Through bare interfaces

int CoreResolveShortcut_Init(IShellLinkW** ppLink, IPersistFile** ppFile, int* pbInitialized) {
    *ppLink = nullptr;
    *ppFile = nullptr;
    *pbInitialized = 0;
    HRESULT hr = MakeLinkObject(ppLink);
    if (hr == CO_E_NOTINITIALIZED) {
        *pbInitialized = SUCCEEDED(::CoInitializeEx(nullptr, kComFlags));
        hr = MakeLinkObject(ppLink);
    }
    if (SUCCEEDED(hr))
        hr = (*ppLink)->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(ppFile));
    if (SUCCEEDED(hr)) return 1;
    CoreResolveShortcut_Done(ppLink, ppFile, pbInitialized);
    return 0;
}

void CoreResolveShortcut_Done(IShellLinkW** ppLink, IPersistFile** ppFile, int* pbInitialized) {
    if (*ppFile) (*ppFile)->Release();
    if (*ppLink) (*ppLink)->Release();
    if (*pbInitialized) ::CoUninitialize(); // the objects are gone
    *ppFile = nullptr;
    *ppLink = nullptr;
    *pbInitialized = 0;
}

int CoreResolveShortcut(HWND, IShellLinkW* pLink, IPersistFile* pFile, const wchar_t* pszPath,
                        wchar_t* pszOut, unsigned cchOut) {
    if (!pszPath || !pszOut || !cchOut) return 0;
    if (!IsShortcut(pszPath)) {
        CopyTextCut(pszOut, cchOut, pszPath);
        return 1;
    }
    *pszOut = 0;
    if (!pLink || !pFile || FAILED(pFile->Load(pszPath, STGM_READ))) return 0;
    return SUCCEEDED(pLink->GetPath(pszOut, static_cast<int>(cchOut), nullptr, 0));
}

int CoreResolveShortcut(HWND hwndUnused, const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut) {
    if (!pszPath || !CopyTextCut(pszOut, cchOut, L"")) return 0;
    IShellLinkW* pLink = nullptr;
    IPersistFile* pFile = nullptr;
    int bInitialized = 0;
    // Also without the objects: a path that is no shortcut needs none.
    static_cast<void>(CoreResolveShortcut_Init(&pLink, &pFile, &bInitialized));
    const int bFound = CoreResolveShortcut(hwndUnused, pLink, pFile, pszPath, pszOut, cchOut);
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized);
    if (!*pszOut) CopyTextCut(pszOut, cchOut, pszPath);
    return bFound;
}
