#include "runtime/system/dll_loader.h"
#include "support/program_folder.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <shlwapi.h>
#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_GetProcAddress;

namespace {
std::wstring SystemFolder() {
    wchar_t sz[MAX_PATH];
    ::GetSystemDirectoryW(sz, MAX_PATH);
    return std::wstring(sz) + L"\\";
}

/// A file of that name beside the program while it lives: the system's own mpr.dll, renamed.
struct Beside {
    explicit Beside(const wchar_t* pszName) : strPath(ProgramFolder() + pszName) {
        EXPECT_TRUE(::CopyFileW((SystemFolder() + L"mpr.dll").c_str(), strPath.c_str(), FALSE));
    }
    ~Beside() { ::DeleteFileW(strPath.c_str()); }
    std::wstring strPath;
};

std::wstring PathOf(HMODULE hmod) {
    wchar_t sz[MAX_PATH] = L"";
    ::GetModuleFileNameW(hmod, sz, MAX_PATH);
    return sz;
}

TEST(DLL_Loader, WithoutANameHoldsNothing) {
    DLL_Loader loader;
    EXPECT_EQ(nullptr, static_cast<HMODULE>(loader));
    EXPECT_EQ(nullptr, loader.GetAPI("GetTickCount"));
    EXPECT_EQ(0, loader.Load(nullptr));
    EXPECT_EQ(0, loader.Load(L""));
    EXPECT_EQ(0, loader.Load(L"", 1));
    loader.Unload();
}

TEST(DLL_Loader, FindsMappedModulesAndTheirFunctions) {
    DLL_Loader loader(L"kernel32");
    EXPECT_EQ(::GetModuleHandleW(L"kernel32.dll"), static_cast<HMODULE>(loader));
    EXPECT_NE(nullptr, loader.GetAPI("GetTickCount"));
    EXPECT_EQ(nullptr, loader.GetAPI("NoSuchFunctionAtAll"));
    loader.Unload();
    EXPECT_EQ(nullptr, loader.GetAPI("GetTickCount"));
}

TEST(DLL_Loader, LoadsFromTheSystemFolderAndFreesAgain) {
    ASSERT_EQ(nullptr, ::GetModuleHandleW(L"avicap32.dll"));
    {
        DLL_Loader loader(L"avicap32");
        ASSERT_NE(nullptr, static_cast<HMODULE>(loader));
        EXPECT_EQ(0, _wcsicmp((SystemFolder() + L"avicap32.dll").c_str(), PathOf(loader).c_str()));
    }
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"avicap32.dll"));
}

TEST(DLL_Loader, BareNameIsNotLookedForBesideTheProgram) {
    Beside planted(L"tessaly_planted.dll");
    DLL_Loader loader;
    EXPECT_EQ(0, loader.Load(L"tessaly_planted"));
    EXPECT_EQ(0, loader.Load(L"tessaly_planted.dll"));
    EXPECT_EQ(0, loader.Load(L".\\tessaly_planted.dll"));
    EXPECT_EQ(nullptr, static_cast<HMODULE>(loader));
}

TEST(DLL_Loader, LocalNameIsTheFileBesideThisLibraryOnly) {
    DLL_Loader loader(L"tessaly_local.dll", 1);
    EXPECT_EQ(nullptr, static_cast<HMODULE>(loader));
    EXPECT_EQ(0, loader.Load(L"kernel32.dll", 1)); // mapped, but not there
    Beside local(L"tessaly_local.dll");
    ASSERT_EQ(1, loader.Load(L"tessaly_local.dll", 1));
    EXPECT_EQ(0, _wcsicmp(local.strPath.c_str(), PathOf(loader).c_str()));
    loader.Unload();
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"tessaly_local.dll"));
}

TEST(DLL_Loader, TakesFullPaths) {
    Beside file(L"tessaly_full.dll");
    DLL_Loader loader(file.strPath.c_str());
    ASSERT_NE(nullptr, static_cast<HMODULE>(loader));
    EXPECT_EQ(0, _wcsicmp(file.strPath.c_str(), PathOf(loader).c_str()));
}

TEST(DLL_Loader, FailedLoadGivesUpWhatWasLoaded) {
    DLL_Loader loader(L"kernel32");
    EXPECT_EQ(0, loader.Load(L"no_such_library"));
    EXPECT_EQ(nullptr, static_cast<HMODULE>(loader));
}

TEST(DLL_Loader, RefusesPathsThatAreTooLong) {
    std::wstring strLong(MAX_PATH, L'x');
    DLL_Loader loader;
    EXPECT_EQ(0, loader.Load(strLong.c_str(), 1));
    EXPECT_EQ(0, loader.Load(strLong.c_str(), 0));
}

TEST(GetVerDll, TellsMajorMinorAndBuild) {
    DWORD dwMajor = 99, dwMinor = 99, dwBuild = 99;
    unsigned short n = GetVerDll(L"COMCTL32", &dwMajor, &dwMinor, &dwBuild);
    EXPECT_GE(n, 0x0500);
    EXPECT_EQ(n >> 8, static_cast<int>(dwMajor));
    EXPECT_EQ(n & 0xFF, static_cast<int>(dwMinor));
    EXPECT_NE(99u, dwBuild);
    EXPECT_EQ(n, GetVerDll(L"COMCTL32"));
    EXPECT_EQ(n, GetVerDll_ComCtl32());
    EXPECT_EQ(n, GetVerDll_ComCtl32());
}

HRESULT WINAPI TellSixteen(DLLVERSIONINFO* pInfo) {
    pInfo->dwMajorVersion = 6;
    pInfo->dwMinorVersion = 16;
    pInfo->dwBuildNumber = 0x12345;
    return S_OK;
}
HRESULT WINAPI TellAndFail(DLLVERSIONINFO* pInfo) {
    TellSixteen(pInfo);
    return E_INVALIDARG;
}

/// Every library has that DllGetVersion.
class VersionFunction {
  public:
    explicit VersionFunction(DLLGETVERSIONPROC pfnVersion) {
        pfn = pfnVersion;
        pReplaced = &replaced;
    }

  private:
    static FARPROC WINAPI Find(HMODULE hmod, LPCSTR pszName) {
        if (std::string("DllGetVersion") == pszName) return AsProc(pfn);
        return pReplaced->Original<decltype(Find)>()(hmod, pszName);
    }
    static inline DLLGETVERSIONPROC pfn;
    static inline ReplaceImport* pReplaced;
    ReplaceImport replaced{__imp_GetProcAddress, &Find};
};

TEST(GetVerDll, MajorIsInTheHighByteAndMinorInTheLow) {
    DWORD dwMajor = 99, dwMinor = 99, dwBuild = 99;
    VersionFunction function(&TellSixteen);
    EXPECT_EQ(0x0610, GetVerDll(L"COMCTL32", &dwMajor, &dwMinor, &dwBuild));
    EXPECT_EQ(6u, dwMajor);
    EXPECT_EQ(16u, dwMinor);
    EXPECT_EQ(0x12345u, dwBuild);
}

TEST(GetVerDll, FunctionThatFailsIsAsNone) {
    VersionFunction function(&TellAndFail);
    EXPECT_EQ(0x0400, GetVerDll(L"COMCTL32"));
}

TEST(GetVerDll, OfTheCommonControlsIsAskedForOnce) {
    unsigned short n = GetVerDll_ComCtl32();
    VersionFunction function(&TellSixteen);
    ASSERT_NE(n, GetVerDll(L"COMCTL32"));
    EXPECT_EQ(n, GetVerDll_ComCtl32());
}

TEST(GetVerDll, WithoutANameIsTheShell) {
    EXPECT_EQ(GetVerDll(L"SHELL32"), GetVerDll(nullptr));
    EXPECT_GE(GetVerDll(nullptr), 0x0500);
}

TEST(GetVerDll, LibraryWithoutAVersionFunctionIsFour) {
    DWORD dwMajor = 99, dwMinor = 99, dwBuild = 99;
    EXPECT_EQ(0x0400, GetVerDll(L"kernel32", &dwMajor, &dwMinor, &dwBuild));
    EXPECT_EQ(4u, dwMajor);
    EXPECT_EQ(0u, dwMinor);
    EXPECT_EQ(0u, dwBuild);
}

TEST(GetVerDll, LoadsAndFreesWhatIsNotMapped) {
    ASSERT_EQ(nullptr, ::GetModuleHandleW(L"avicap32.dll"));
    EXPECT_EQ(0x0400, GetVerDll(L"avicap32"));
    EXPECT_EQ(nullptr, ::GetModuleHandleW(L"avicap32.dll"));
}

TEST(GetVerDll, MissingLibraryIsZero) {
    DWORD dwMajor = 99;
    EXPECT_EQ(0, GetVerDll(L"no_such_library", &dwMajor));
    EXPECT_EQ(0u, dwMajor);
}
} // namespace
