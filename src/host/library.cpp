#include "host/library.h"
#include "resources/version.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"

#include <windows.h>
#include <algorithm>

namespace {
constexpr const wchar_t* kLibraryName = L"TSDLL64.dll";

// What this program calls, by the exported names. A function that is not there would end the
// program at its first call, without a word.
constexpr const char* kFunctions[] = {
    "DoMonitor",
    "DoSnapshotStep",
    "CalcMD5",
    "_Z10FreeDllBufPv",
    "_ZN6CSFile8ReadTextEPKwPjP13CSFileTextFmtw",
    "_Z3MsgP6HWND__j7MsgText",
    "_Z16GetMyProductInfov",
    "_Z18GetSetAutoRunDll32iPiiiPKwS1_",
    "_Z16PostMyCompanyMsgP6HWND__yx",
    "_Z22DoCheckForUpdatesCmdlnPKwi",
    "_Z18GetRestoreOnChangev",
    "_Z18SetRestoreOnChangei",
    "_ZN16SingleInstanceXP15IsFirstInstanceEiPKw",
};

// The system libraries that it imports and that are none of those which every Windows keeps mapped
// for all programs ("KnownDLLs"): the loader would look for them beside this program first.
// (comctl32.dll, which is such a one, too, comes by this program's manifest.)
constexpr const wchar_t* kSystemLibraries[] = {L"wtsapi32.dll"};

/// Maps those, for the rest of the program's life: what is mapped is not looked for. What they need
/// themselves comes from the system folder, too. False if one is not there.
bool MapSystemLibraries() {
    for (const wchar_t* pszName : kSystemLibraries) {
        wchar_t szPath[MAX_PATH];
        if (!MakeSystemPath(szPath, pszName) ||
            !::LoadLibraryExW(szPath, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
            return false;
        }
    }
    return true;
}

/// The fixed part of a version resource: found by its mark, as what is before it varies in length.
/// Null if the module has none.
const VS_FIXEDFILEINFO* FindFixedInfo(HMODULE hmod) {
    HRSRC hrsrc = ::FindResourceW(hmod, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    if (!hrsrc) return nullptr;
    const void* pData = ::LockResource(::LoadResource(hmod, hrsrc));
    DWORD cb = ::SizeofResource(hmod, hrsrc);
    if (!pData || cb < sizeof(VS_FIXEDFILEINFO)) return nullptr;
    const auto* pBytes = static_cast<const BYTE*>(pData);
    for (DWORD i = 0; i <= cb - sizeof(VS_FIXEDFILEINFO); i += sizeof(DWORD)) {
        const auto* pInfo = reinterpret_cast<const VS_FIXEDFILEINFO*>(pBytes + i);
        if (pInfo->dwSignature == VS_FFI_SIGNATURE) return pInfo;
    }
    return nullptr;
}

bool IsThisVersion(HMODULE hmod) {
    constexpr DWORD kNumbers[] = {TESSALY_VERSION_NUMBERS};
    const VS_FIXEDFILEINFO* pInfo = FindFixedInfo(hmod);
    return pInfo &&
           pInfo->dwProductVersionMS == static_cast<DWORD>(MAKELONG(kNumbers[1], kNumbers[0])) &&
           pInfo->dwProductVersionLS == static_cast<DWORD>(MAKELONG(kNumbers[3], kNumbers[2]));
}

bool HasAllFunctions(HMODULE hmod) {
    return std::ranges::all_of(
        kFunctions, [hmod](const char* psz) { return FindModuleFunc(hmod, psz) != nullptr; });
}
} // namespace

bool GetLibraryPath(wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    if (cch == 0 || cch >= MAX_PATH) return false;
    while (cch && szPath[cch - 1] != L'\\') --cch;
    if (cch + ::lstrlenW(kLibraryName) + 1 > MAX_PATH) return false;
    ::lstrcpyW(szPath + cch, kLibraryName);
    return true;
}

LibraryProblem MapLibrary(const wchar_t* pszPath) {
    if (::GetFileAttributesW(pszPath) == INVALID_FILE_ATTRIBUTES) return LibraryProblem::Missing;
    // The loader's own boxes would say less than ours.
    UINT nOldMode = ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    ScopeExit restore([&] { ::SetErrorMode(nOldMode); });
    {
        // As data first: the entry point of a library of another version must not run.
        OwnedModule data(::LoadLibraryExW(pszPath, nullptr, LOAD_LIBRARY_AS_DATAFILE));
        if (!data) return LibraryProblem::NotLoadable;
        if (!IsThisVersion(data.Get())) return LibraryProblem::OtherVersion;
    }
    if (!MapSystemLibraries()) return LibraryProblem::NotLoadable;
    OwnedModule library(::LoadLibraryW(pszPath));
    if (!library) return LibraryProblem::NotLoadable;
    if (!HasAllFunctions(library.Get())) return LibraryProblem::Foreign;
    static_cast<void>(library.Release()); // mapped until the program ends
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
