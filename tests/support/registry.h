#pragma once
#include "runtime/system/runtime_func.h"

#include <windows.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

// The registry for tests, by the platform's own calls: what a test plants and checks must not come
// through the code under test.

using RegBytes = std::vector<unsigned char>;

inline RegBytes BytesOf(const std::wstring& strText, bool bTerminated = true) {
    const auto* p = reinterpret_cast<const unsigned char*>(strText.c_str());
    return RegBytes(p, p + (strText.size() + (bTerminated ? 1 : 0)) * sizeof(wchar_t));
}

struct RegContent {
    DWORD dwType = REG_NONE;
    RegBytes bytes;
    bool operator==(const RegContent&) const = default;
};

/// Stores just these bytes. (Text without a terminator would be stored with one, should a zero
/// stand behind it in memory: the platform looks there.)
inline LSTATUS SetRegBytes(HKEY hkey, const std::wstring& strName, DWORD dwType, RegBytes bytes) {
    const std::size_t cb = bytes.size();
    bytes.insert(bytes.end(), 2 * sizeof(wchar_t), 0xEE);
    return ::RegSetValueExW(hkey, strName.c_str(), 0, dwType, bytes.data(), static_cast<DWORD>(cb));
}

/// Deletes a key with all below it; links as such, which RegDeleteKey would follow.
inline void DeleteRegTree(HKEY hkeyRoot, const std::wstring& strPath) {
    HKEY hkeyTree = nullptr;
    if (::RegOpenKeyExW(hkeyRoot, strPath.c_str(), REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, &hkeyTree))
        return;
    std::vector<std::wstring> names;
    wchar_t szName[300];
    for (DWORD n = 0, cch = 300;
         ::RegEnumKeyExW(hkeyTree, n, szName, &cch, nullptr, nullptr, nullptr, nullptr) == 0;
         ++n, cch = 300) {
        names.push_back(szName);
    }
    for (const auto& strName : names) DeleteRegTree(hkeyTree, strName);
    using DeleteKeyFunc = LONG WINAPI(HANDLE);
    static RuntimeFunc<DeleteKeyFunc> deleteKey(L"ntdll.dll", "NtDeleteKey");
    deleteKey.Get()(hkeyTree);
    ::RegCloseKey(hkeyTree);
}

/// Makes a key that is listed and can be neither opened nor made nor deleted by name: a link to a
/// key that does not exist. DeleteRegTree takes it away.
inline bool PlantDeadLink(HKEY hkeyRoot, const std::wstring& strPath) {
    HKEY hkeyLink = nullptr;
    if (::RegCreateKeyExW(hkeyRoot, strPath.c_str(), 0, nullptr, REG_OPTION_CREATE_LINK,
                          KEY_ALL_ACCESS | KEY_CREATE_LINK, nullptr, &hkeyLink, nullptr)) {
        return false;
    }
    RegBytes target = BytesOf(L"\\Registry\\User\\NoSuchUser\\Nowhere", false);
    LSTATUS status = SetRegBytes(hkeyLink, L"SymbolicLinkValue", REG_LINK, target);
    ::RegCloseKey(hkeyLink);
    return status == ERROR_SUCCESS;
}

/// A key below HKCU, made for a test and deleted with all below it at the end.
class TestKey {
  public:
    explicit TestKey(const std::wstring& strBelowCurrentUser) : strPath(strBelowCurrentUser) {
        DeleteRegTree(HKEY_CURRENT_USER, strPath);
        Create();
    }
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;
    ~TestKey() {
        ::RegCloseKey(hkey);
        DeleteRegTree(HKEY_CURRENT_USER, strPath);
    }

    /// As a path for RegKey, with what is given added.
    std::wstring Path(const std::wstring& strBelow = L"") const {
        return L"HKCU\\" + strPath + (strBelow.empty() ? L"" : L"\\" + strBelow);
    }
    HKEY Get() const { return hkey; }
    void Create() {
        if (hkey) ::RegCloseKey(hkey);
        hkey = nullptr;
        ::RegCreateKeyExW(HKEY_CURRENT_USER, strPath.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, nullptr);
    }
    void Delete() {
        ::RegCloseKey(hkey);
        hkey = nullptr;
        DeleteRegTree(HKEY_CURRENT_USER, strPath);
    }

    void Put(const std::wstring& strName, DWORD dwType, const RegBytes& bytes,
             const std::wstring& strBelow = L"") {
        HKEY hkeyBelow = nullptr;
        ::RegCreateKeyExW(hkey, strBelow.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          &hkeyBelow, nullptr);
        SetRegBytes(hkeyBelow, strName, dwType, bytes);
        ::RegCloseKey(hkeyBelow);
    }
    void PutStr(const std::wstring& strName, const std::wstring& strText,
                const std::wstring& strBelow = L"") {
        Put(strName, REG_SZ, BytesOf(strText), strBelow);
    }
    void PutDword(const std::wstring& strName, DWORD dwValue) {
        const auto* p = reinterpret_cast<const unsigned char*>(&dwValue);
        Put(strName, REG_DWORD, RegBytes(p, p + sizeof(dwValue)));
    }

    /// All values by name; the default value has the empty name.
    std::map<std::wstring, RegContent> Values() const {
        std::map<std::wstring, RegContent> values;
        static wchar_t szName[16384];
        for (DWORD n = 0;; ++n) {
            DWORD cchName = 16384, cb = 0;
            RegContent content;
            if (::RegEnumValueW(hkey, n, szName, &cchName, nullptr, &content.dwType, nullptr,
                                &cb)) {
                return values;
            }
            content.bytes.resize(cb + 16);
            cb = static_cast<DWORD>(content.bytes.size());
            ::RegQueryValueExW(hkey, szName, nullptr, nullptr, content.bytes.data(), &cb);
            content.bytes.resize(cb);
            values[szName] = content;
        }
    }
    bool HasValue(const std::wstring& strName) const {
        return ::RegQueryValueExW(hkey, strName.c_str(), nullptr, nullptr, nullptr, nullptr) ==
               ERROR_SUCCESS;
    }
    /// The content of one value; no bytes and no type if it is missing.
    RegContent Value(const std::wstring& strName) const {
        auto values = Values();
        auto it = values.find(strName);
        return it == values.end() ? RegContent{} : it->second;
    }
    std::vector<std::wstring> SubKeys() const {
        std::vector<std::wstring> names;
        wchar_t szName[300];
        for (DWORD n = 0;; ++n) {
            DWORD cch = 300;
            if (::RegEnumKeyExW(hkey, n, szName, &cch, nullptr, nullptr, nullptr, nullptr))
                return names;
            names.push_back(szName);
        }
    }
    bool HasSubKey(const std::wstring& strBelow) const {
        HKEY hkeyBelow = nullptr;
        if (::RegOpenKeyExW(hkey, strBelow.c_str(), 0, KEY_READ, &hkeyBelow)) return false;
        ::RegCloseKey(hkeyBelow);
        return true;
    }
    /// Moves with every change of the key's values.
    unsigned long long LastWrite() const {
        FILETIME ft{};
        ::RegQueryInfoKeyW(hkey, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr, &ft);
        return static_cast<unsigned long long>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime;
    }

    /// A dead link as a child. The guard takes it away.
    bool PlantUndeletable(const std::wstring& strBelow) { return PlantDeadLink(hkey, strBelow); }

  private:
    std::wstring strPath;
    HKEY hkey = nullptr;
};
