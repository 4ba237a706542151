#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

/// A library loaded by name, for as long as the object lives.
///
/// A bare name means the module that is mapped already or else the system folder's own file: the
/// program's folder and the search path, where anybody may have put a file of that name, are not
/// looked at. A full path means that file.
class TESSALY_API DLL_Loader {
  public:
    /// Loads if there is a name; see Load.
    explicit DLL_Loader(const wchar_t* pszName = nullptr, int bLocal = 0);
    virtual ~DLL_Loader() { Unload(); }
    DLL_Loader(const DLL_Loader&) = delete; // owns the module
    DLL_Loader& operator=(const DLL_Loader&) = delete;

    /// Loads the library, after giving up what was loaded. bLocal: only the file beside this
    /// library. Returns 1; 0 if there is no such library or its path is too long.
    int Load(const wchar_t* pszName, int bLocal = 0);
    /// The function of that name; null without it or without a library.
    FARPROC GetAPI(const char* pszName) const;
    /// Gives up what was loaded; nothing otherwise.
    void Unload() { hmod.Reset(); }
    /// The library's module, which stays the object's; null without one.
    operator HMODULE() const { return hmod.Get(); }

  private:
    OwnedModule hmod;
};

/// The version that a library tells by its DllGetVersion: major in the high byte, minor in the low;
/// 0x0400 if it has no such function. A null name means "SHELL32". The outputs may be null; the
/// build number is 0 if not told. All are 0 if there is no such library.
TESSALY_API unsigned short GetVerDll(const wchar_t* pszName, DWORD* pdwMajor = nullptr,
                                     DWORD* pdwMinor = nullptr, DWORD* pdwBuild = nullptr);
/// The version of "COMCTL32" in the same form, asked once per process.
TESSALY_API unsigned short GetVerDll_ComCtl32();

/// The path of a module's file; null is the program. False, and an empty text, if it does not fit.
bool GetModulePath(HINSTANCE hinst, wchar_t (&szPath)[MAX_PATH]);
