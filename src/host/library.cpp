#include "host/library.h"
#include "resources/version.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"

namespace {
constexpr const wchar_t* kLibraryName = L"TSDLL64.dll";

// What this program calls, by the exported names. A function that is not there would end the
// program at its first call, without a word.
constexpr const char* kFunctions[] = {
    "_Z3MsgP6HWND__j7MsgText",
    "_Z16GetMyProductInfov",
    "_Z18GetSetAutoRunDll32iPiiiPKwS1_",
    "_Z16PostMyCompanyMsgP6HWND__yx",
    "_ZN16SingleInstanceXP15IsFirstInstanceEiPKw",
};

/// The fixed part of a version resource: found by its mark, as what is before it varies in length.
const VS_FIXEDFILEINFO* FindFixedInfo(HMODULE hmod) {
    HRSRC hrsrc = ::FindResourceW(hmod, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    if (!hrsrc) return nullptr;
    const void* pData = ::LockResource(::LoadResource(hmod, hrsrc));
    DWORD cb = ::SizeofResource(hmod, hrsrc);
    if (!pData || cb < sizeof(VS_FIXEDFILEINFO)) return nullptr;
    auto* pBytes = static_cast<const BYTE*>(pData);
    for (DWORD i = 0; i <= cb - sizeof(VS_FIXEDFILEINFO); i += sizeof(DWORD)) {
        auto* pInfo = reinterpret_cast<const VS_FIXEDFILEINFO*>(pBytes + i);
        if (pInfo->dwSignature == VS_FFI_SIGNATURE) return pInfo;
    }
    return nullptr;
}

int IsThisVersion(HMODULE hmod) {
    constexpr DWORD kNumbers[] = {TESSALY_VERSION_NUMBERS};
    const VS_FIXEDFILEINFO* pInfo = FindFixedInfo(hmod);
    return pInfo &&
           pInfo->dwProductVersionMS == static_cast<DWORD>(MAKELONG(kNumbers[1], kNumbers[0])) &&
           pInfo->dwProductVersionLS == static_cast<DWORD>(MAKELONG(kNumbers[3], kNumbers[2]));
}

int HasAllFunctions(HMODULE hmod) {
    for (const char* pszName : kFunctions)
        if (!FindModuleFunc(hmod, pszName)) return 0;
    return 1;
}
} // namespace

int GetLibraryPath(wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    if (cch == 0 || cch >= MAX_PATH) return 0;
    while (cch && szPath[cch - 1] != L'\\') --cch;
    if (cch + ::lstrlenW(kLibraryName) + 1 > MAX_PATH) return 0;
    ::lstrcpyW(szPath + cch, kLibraryName);
    return 1;
}

LibraryProblem LoadLibraryFile(const wchar_t* pszPath, MonitorFunc*& pfnMonitor) {
    if (::GetFileAttributesW(pszPath) == INVALID_FILE_ATTRIBUTES) return LibraryProblem::Missing;
    // The loader's own boxes would say less than ours.
    UINT nOldMode = ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    ScopeExit restore([&] { ::SetErrorMode(nOldMode); });
    {
        OwnedModule data(::LoadLibraryExW(pszPath, nullptr, LOAD_LIBRARY_AS_DATAFILE));
        if (!data) return LibraryProblem::NotLoadable;
        if (!IsThisVersion(data.Get())) return LibraryProblem::OtherVersion;
    }
    OwnedModule library(::LoadLibraryW(pszPath));
    if (!library) return LibraryProblem::NotLoadable;
    auto* pfnEntry = FindModuleFunc<MonitorFunc>(library.Get(), "DoMonitor");
    if (!pfnEntry || !HasAllFunctions(library.Get())) return LibraryProblem::Foreign;
    pfnMonitor = pfnEntry;
    (void)library.Release(); // mapped until the program ends
    return LibraryProblem::None;
}

const wchar_t* DescribeProblem(LibraryProblem problem) {
    switch (problem) {
    case LibraryProblem::Missing: return L"The file is missing.";
    case LibraryProblem::NotLoadable: return L"The file cannot be loaded.";
    case LibraryProblem::OtherVersion:
        return L"The file is not of version " TEXT(TESSALY_VERSION_TEXT) L".";
    case LibraryProblem::Foreign: return L"The file is not Tessaly's library.";
    case LibraryProblem::None: break;
    }
    return L"";
}
