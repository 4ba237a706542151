#include "shell/folders/shell_link.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"

#include <shellapi.h>

namespace {
constexpr int kMaxArgs = 2048; // characters that Execute takes of a link's arguments
} // namespace

// The wrappers of shell/namespace that begin with a folder or a link

iEnumIDList::iEnumIDList(iShellFolder& folder, HWND hwndOwner, DWORD nFlags) {
    IShellFolder* pFolder = folder;
    IEnumIDList* pEnum = nullptr;
    if (!folder.Keep(pFolder ? pFolder->EnumObjects(hwndOwner, nFlags, &pEnum) : E_POINTER)) return;
    pUnk = pEnum; // S_FALSE brings none
}

iPersistStream::iPersistStream(iShellLink& link) {
    link.GetPersistStream(*this);
    hr = link.GetLastResult();
}

iPersistFile::iPersistFile(iShellLink& link) {
    link.GetPersistFile(*this);
    hr = link.GetLastResult();
}

// iShellLink

iShellLink::iShellLink() {
    IShellLinkW* pLink = nullptr;
    if (Keep(::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                reinterpret_cast<void**>(&pLink))))
        pUnk = pLink;
}

template <class... Params, class... Args>
int iShellLink::Call(HRESULT (STDMETHODCALLTYPE IShellLinkW::*pfn)(Params...), Args... args) {
    IShellLinkW* pLink = *this;
    return Keep(pLink ? (pLink->*pfn)(args...) : E_POINTER);
}

int iShellLink::GetPath(wchar_t* pszOut, WIN32_FIND_DATAW* pData, DWORD nFlags) {
    return Call(&IShellLinkW::GetPath, pszOut, MAX_PATH, pData, nFlags);
}

int iShellLink::GetIDList(ITEMIDLIST*& pidlOut) {
    pidlOut = nullptr;
    return Call(&IShellLinkW::GetIDList, &pidlOut);
}

int iShellLink::GetArgs(wchar_t* pszOut, int cchOut) {
    return Call(&IShellLinkW::GetArguments, pszOut, cchOut);
}

int iShellLink::GetDescr(wchar_t* pszOut, int cchOut) {
    return Call(&IShellLinkW::GetDescription, pszOut, cchOut);
}

int iShellLink::GetDir(wchar_t* pszOut) {
    return Call(&IShellLinkW::GetWorkingDirectory, pszOut, MAX_PATH);
}

int iShellLink::GetHotKey(WORD& nHotKey) { return Call(&IShellLinkW::GetHotkey, &nHotKey); }

int iShellLink::GetShow(int& nShow) { return Call(&IShellLinkW::GetShowCmd, &nShow); }

int iShellLink::GetIcon(wchar_t* pszOut, int& nIndex) {
    return Call(&IShellLinkW::GetIconLocation, pszOut, MAX_PATH, &nIndex);
}

int iShellLink::SetPath(const wchar_t* pszPath) { return Call(&IShellLinkW::SetPath, pszPath); }

int iShellLink::SetIDList(const ITEMIDLIST* pidl) { return Call(&IShellLinkW::SetIDList, pidl); }

int iShellLink::SetRelativePath(const wchar_t* pszPath, const ITEMIDLIST*) {
    return Call(&IShellLinkW::SetRelativePath, pszPath, DWORD{0}); // that one is reserved
}

int iShellLink::SetArgs(const wchar_t* pszArgs) {
    return Call(&IShellLinkW::SetArguments, pszArgs);
}

int iShellLink::SetDescr(const wchar_t* pszDescr) {
    return Call(&IShellLinkW::SetDescription, pszDescr);
}

int iShellLink::SetDir(const wchar_t* pszDir) {
    return Call(&IShellLinkW::SetWorkingDirectory, pszDir);
}

int iShellLink::SetHotKey(WORD nHotKey) { return Call(&IShellLinkW::SetHotkey, nHotKey); }

int iShellLink::SetShow(int nShow) { return Call(&IShellLinkW::SetShowCmd, nShow); }

int iShellLink::SetIcon(const wchar_t* pszPath, int nIndex) {
    return Call(&IShellLinkW::SetIconLocation, pszPath, nIndex);
}

int iShellLink::Resolve(HWND hwnd, DWORD nFlags) {
    return Call(&IShellLinkW::Resolve, hwnd, nFlags);
}

// Files, and what the link opens

int iShellLink::GetPersistFile(iPersistFile& file) { return Keep(Query(IID_IPersistFile, file)); }

int iShellLink::GetPersistStream(iPersistStream& stream) {
    return Keep(Query(IID_IPersistStream, stream));
}

int iShellLink::Load(const wchar_t* pszPath) {
    iPersistFile file(*this);
    if (!file.IsReady()) return 0;
    file.Load(pszPath, 0);
    return Keep(file.GetLastResult());
}

int iShellLink::Save(const wchar_t* pszPath) {
    iPersistFile file(*this);
    if (!file.IsReady()) return 0;
    file.Save(pszPath, 1);
    return Keep(file.GetLastResult());
}

int iShellLink::Execute(HWND hwnd) {
    if (!pUnk) return Keep(E_POINTER); // nothing at all would open some folder
    wchar_t szPath[MAX_PATH] = L"", szDir[MAX_PATH] = L"", szArgs[kMaxArgs] = L"";
    int nShow = SW_SHOWNORMAL;
    PIDL list;
    ITEMIDLIST* pidl = nullptr;
    GetPath(szPath, nullptr, 0);
    GetArgs(szArgs, kMaxArgs);
    GetDir(szDir);
    GetShow(nShow);
    GetIDList(pidl);
    list.Attach(pidl); // freed at the end

    auto textOrNull = [](const wchar_t* psz) { return *psz ? psz : nullptr; };
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof(info);
    info.fMask = pidl ? SEE_MASK_IDLIST : 0;
    info.hwnd = hwnd;
    info.lpFile = textOrNull(szPath);
    info.lpParameters = textOrNull(szArgs);
    info.lpDirectory = textOrNull(szDir);
    info.nShow = nShow;
    info.lpIDList = pidl;
    return ::ShellExecuteExW(&info) != FALSE;
}
