#include "store/registry/reg_register.h"
#include "runtime/text/str_format.h"

#include <shlobj.h>

namespace {
constexpr std::size_t kRegisterPathSize = 256;
constexpr std::size_t kDriverFileSize = 65; // of a driver's file name, with the terminator
constexpr const wchar_t* kSafeModes[] = {L"Minimal", L"Network"};
constexpr const wchar_t* kCurrentVersion = L"HKLM\\Software\\Microsoft\\Windows\\CurrentVersion";

bool IsEmpty(const wchar_t* psz) { return !psz || !*psz; }

/// The default value of a subkey that is there, or is made by an operation that writes.
bool ProcessDefault(RegKey::Op op, RegKey& parent, const wchar_t* pszSubkey,
                    const wchar_t* pszText) {
    RegKey key(parent, pszSubkey, op);
    return key.GetHandle() && key.ProcessEntry(op, nullptr, pszText);
}

/// What is below the key of a class.
bool ProcessClassEntries(RegKey::Op op, RegKey& keyClass, const wchar_t* pszName,
                         const wchar_t* pszDllPath) {
    if (!keyClass.ProcessEntry(op, nullptr, pszName)) return false;
    RegKey server(keyClass, L"InProcServer32", op);
    if (!server.GetHandle()) return false;
    return server.ProcessEntry(op, nullptr, pszDllPath) &&
           server.ProcessEntry(op, L"ThreadingModel", L"Apartment");
}

bool ProcessClass(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                  const wchar_t* pszClsid) {
    if (IsEmpty(pszClsid)) return false;
    RegKey classes(L"HKCLS\\CLSID", op);
    if (!classes.GetHandle() || !classes.ProcessSubKey(op, pszClsid)) return false;
    if (op == RegKey::OpDelete) return true; // that took all of it
    RegKey key(classes, pszClsid, op);
    return key.GetHandle() && ProcessClassEntries(op, key, pszName, pszDllPath);
}

bool ProcessApproval(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszClsid) {
    wchar_t szPath[kRegisterPathSize];
    FormatText(szPath, L"%s\\Shell Extensions\\Approved", kCurrentVersion);
    RegKey approved(szPath, op);
    return approved.GetHandle() && approved.ProcessEntry(op, pszClsid, pszName);
}

bool ProcessHandler(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszClsid,
                    const wchar_t* pszType, const wchar_t* pszHandlerKind) {
    wchar_t szPath[kRegisterPathSize];
    FormatText(szPath, L"HKEY_CLASSES_ROOT\\%s\\shellex\\%s", pszType, pszHandlerKind);
    RegKey handlers(szPath, op);
    if (!handlers.GetHandle() || !handlers.ProcessSubKey(op, pszName)) return false;
    return op == RegKey::OpDelete || ProcessDefault(op, handlers, pszName, pszClsid);
}

/// Only what changed something is worth telling: the shell redraws all its icons for it.
void NotifyShell(RegKey::Op op, int bNotify) {
    if (!bNotify || !RegKey::IsWritable(op)) return;
    ::SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_FLUSH, nullptr, nullptr);
}

/// The driver's key, whose default value says what kind of thing starts.
bool ProcessDriver(RegKey::Op op, RegKey& mode, const wchar_t* pszSubkey) {
    if (op != RegKey::OpDelete && !mode.ProcessSubKey(op, pszSubkey)) return false;
    // With OpDelete this makes a missing key, which then goes at once.
    if (!ProcessDefault(op, mode, pszSubkey, L"Driver")) return false;
    return op != RegKey::OpDelete || mode.ProcessSubKey(op, pszSubkey);
}
} // namespace

// Every function is one list of steps, whatever the operation; a failed step ends it.

int RegisterComServer(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                      const wchar_t* pszClsid, int bNotify) {
    if (!ProcessClass(op, pszName, pszDllPath, pszClsid)) return 0;
    if (bNotify) ::SHChangeNotify(SHCNE_ASSOCCHANGED, 0, nullptr, nullptr);
    return 1;
}

int RegisterShellExtObject(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                           const wchar_t* pszClsid) {
    return ProcessClass(op, pszName, pszDllPath, pszClsid) &&
           ProcessApproval(op, pszName, pszClsid);
}

int RegisterShellExt(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                     const wchar_t* pszClsid, const wchar_t* const* ppszTypes,
                     const wchar_t* pszHandlerKind, int bNotify) {
    if (IsEmpty(pszName) || IsEmpty(pszHandlerKind)) return 0;
    if (!RegisterShellExtObject(op, pszName, pszDllPath, pszClsid)) return 0;
    for (; ppszTypes && !IsEmpty(*ppszTypes); ++ppszTypes) {
        if (!ProcessHandler(op, pszName, pszClsid, *ppszTypes, pszHandlerKind)) return 0;
    }
    NotifyShell(op, bNotify);
    return 1;
}

int SetupCtxMenuRegistry(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                         const wchar_t* pszClsid, const wchar_t* const* ppszTypes, int bNotify) {
    return RegisterShellExt(op, pszName, pszDllPath, pszClsid, ppszTypes, L"ContextMenuHandlers",
                            bNotify);
}

int RegisterBHO(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                const wchar_t* pszClsid, int bNotify) {
    if (!RegisterComServer(op, pszName, pszDllPath, pszClsid, 0)) return 0;
    wchar_t szPath[kRegisterPathSize];
    FormatText(szPath, L"%s\\Explorer\\Browser Helper Objects", kCurrentVersion);
    RegKey helpers(szPath, op);
    if (!helpers.GetHandle() || !helpers.ProcessSubKey(op, pszClsid)) return 0;
    NotifyShell(op, bNotify);
    return 1;
}

int RegisterDriverForSafeMode(RegKey::Op op, const wchar_t* pszName) {
    if (IsEmpty(pszName)) return 0;
    wchar_t szFile[kDriverFileSize];
    FormatText(szFile, L"%s.sys", pszName);
    for (const wchar_t* pszMode : kSafeModes) {
        RegKey mode(L"HKLM\\SYSTEM\\CurrentControlSet\\Control\\SafeBoot", pszMode,
                    RegKey::IsWritable(op));
        if (!mode.GetHandle()) return 0;
        if (!ProcessDriver(op, mode, pszName) || !ProcessDriver(op, mode, szFile)) return 0;
    }
    return 1;
}
