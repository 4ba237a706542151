#pragma once
#include "store/registry/reg_key.h"

/// Where the maker's products keep their settings, below HKCU and HKLM.
constexpr const wchar_t* kMakerKey = L"Software\\Orvanta";
/// Where they were before; what is left there is moved (RegKey::CS2WA).
constexpr const wchar_t* kFormerMakerKey = L"Software\\Quenby";

// What the maker's products keep for the whole machine and what a user may be barred from.
// pszProduct is the product's name (ProductInfo::GetName). Without one, null, the result is 0; so
// it is with one that makes the key's path longer than 256 characters (Restricted: 255).

/// Performs op on the value "Home" of HKLM\Software\Orvanta\<product>\Setup, the folder in which
/// the product was installed: pszText, cchText characters, is what is expected or written, and the
/// place where OpGet reads to. Reading falls back to the maker's former root; OpSet and OpDelete
/// first move what is there (RegKey::CS2WA) and make the key. The result is that of
/// RegKey::ProcessEntry; 0 without a key.
TESSALY_API int ProcessHomeFolder(RegKey::Op op, const wchar_t* pszProduct, wchar_t* pszText,
                                  unsigned cchText);
/// Reads that folder into pszOut, MAX_PATH characters. 1 if there is one; otherwise 0, and pszOut
/// is empty.
TESSALY_API int GetHomeFolder(const wchar_t* pszProduct, wchar_t* pszOut);

/// Nonzero if the user is barred from the feature of that name: the number pszName in
/// HKCU\Software\Orvanta\<product>\Setup\Restrictions. 0 if it is not there or pszName is null.
TESSALY_API int Restricted(const wchar_t* pszProduct, const wchar_t* pszName);

/// 1 if the user may write to the maker's key of the machine, which is tried: HKLM\Software\Orvanta
/// is made if it is missing, and gets a value "Temp" for a moment.
TESSALY_API int IsPowerUser();
