#pragma once

// Where the maker's products keep their settings, below HKCU and HKLM.

constexpr const wchar_t* kMakerKey = L"Software\\Orvanta";
/// Where they were before; what is left there is moved (RegKey::CS2WA).
constexpr const wchar_t* kFormerMakerKey = L"Software\\Quenby";
