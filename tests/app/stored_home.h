#pragma once
#include "store/reg_tree.h"

/// A home folder of the product that is not the program's own folder, stored for the length of a
/// block. What is of the maker in the machine's registry goes.
class StoredHome {
  public:
    StoredHome() { maker.PutStr(L"Home", strFolder, L"Tessaly\\Setup"); }
    std::wstring File(const std::wstring& strName) const { return strFolder + L"\\" + strName; }

  private:
    const std::wstring strFolder = L"C:\\home of a test";
    RegTree maker{HKEY_LOCAL_MACHINE, L"Software\\Orvanta"};
    RegTree former{HKEY_LOCAL_MACHINE, L"Software\\Quenby"};
};
