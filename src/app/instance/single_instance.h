#pragma once
#include "runtime/base/export.h"
#include "runtime/base/owned_handle.h"
#include <windows.h>

/// Tells whether this process is the first of its kind. The mark is a named event, open for the
/// life of the object: keep the object as long as the program runs.
class TESSALY_API SingleInstanceXP {
  public:
    SingleInstanceXP() = default;
    SingleInstanceXP(const SingleInstanceXP&) = delete; // owns the mark
    SingleInstanceXP& operator=(const SingleInstanceXP&) = delete;

    /// 1 if no other process has the mark of that name: in this logon session, or with bGlobal on
    /// the whole machine. The two kinds do not see each other. 0 also when the mark cannot be made.
    int IsFirstInstance(int bGlobal, const wchar_t* pszName);

  private:
    OwnedHandle hMark; // empty unless this process is the first
};
