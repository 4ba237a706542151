#pragma once
#include <windows.h>

/// Puts a function of the test's in the place of a platform function that the program imports, for
/// the length of a block:
///
///     extern "C" FARPROC __imp_MessageBeep; // where the import's address lies
///     ReplaceImport replaced(__imp_MessageBeep, &MyBeep);
///
/// All code of the program then calls the other one; Original is what was there before.
class ReplaceImport {
  public:
    template <class Fn>
    ReplaceImport(FARPROC& pfnImport, Fn* pfnOther) : pfnSlot(&pfnImport), pfnBefore(pfnImport) {
        Write(reinterpret_cast<FARPROC>(reinterpret_cast<void*>(pfnOther)));
    }
    ~ReplaceImport() { Write(pfnBefore); }
    ReplaceImport(const ReplaceImport&) = delete;
    ReplaceImport& operator=(const ReplaceImport&) = delete;

    template <class Fn>
    Fn* Original() const {
        return reinterpret_cast<Fn*>(reinterpret_cast<void*>(pfnBefore));
    }

  private:
    void Write(FARPROC pfnNew) {
        DWORD dwOld = 0;
        ::VirtualProtect(pfnSlot, sizeof(*pfnSlot), PAGE_READWRITE, &dwOld);
        *const_cast<FARPROC volatile*>(pfnSlot) = pfnNew;
        ::VirtualProtect(pfnSlot, sizeof(*pfnSlot), dwOld, &dwOld);
    }
    FARPROC* pfnSlot;
    FARPROC pfnBefore;
};
