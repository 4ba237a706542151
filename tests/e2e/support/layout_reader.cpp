#include "e2e/support/layout_reader.h"

#include <winternl.h>
#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {
std::wstring SubPath(const std::wstring& strName) {
    return std::wstring(LayoutReader::kPath) + L"\\" + strName;
}

/// A key of the user's, open for reading or made for writing; null if it isn't there.
class UserKey {
  public:
    UserKey(const std::wstring& strPath, bool bWrite) {
        if (bWrite) {
            ::RegCreateKeyExW(HKEY_CURRENT_USER, strPath.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &hkey, nullptr);
        } else {
            ::RegOpenKeyExW(HKEY_CURRENT_USER, strPath.c_str(), 0, KEY_READ, &hkey);
        }
    }
    ~UserKey() {
        if (hkey) ::RegCloseKey(hkey);
    }
    UserKey(const UserKey&) = delete;
    UserKey& operator=(const UserKey&) = delete;
    HKEY Get() const { return hkey; }

    std::optional<StoredSnapshot> Read(const wchar_t* pszName) const {
        StoredSnapshot value;
        value.strName = pszName;
        DWORD cb = 0;
        if (!hkey || ::RegQueryValueExW(hkey, pszName, nullptr, &value.dwType, nullptr, &cb))
            return {};
        value.bytes.resize(cb);
        if (::RegQueryValueExW(hkey, pszName, nullptr, &value.dwType, value.bytes.data(), &cb))
            return {};
        value.bytes.resize(cb);
        return value;
    }
    void Write(const wchar_t* pszName, DWORD dwType, const void* p, size_t cb) const {
        if (!hkey || ::RegSetValueExW(hkey, pszName, 0, dwType, static_cast<const BYTE*>(p),
                                      static_cast<DWORD>(cb))) {
            throw std::runtime_error("the value could not be planted");
        }
    }

  private:
    HKEY hkey = nullptr;
};

StoredLayout ReadLayout(const std::wstring& strName) {
    UserKey key(SubPath(strName), false);
    return {strName, key.Read(L"Displays"), key.Read(L"Layout"), key.Read(L"Used")};
}
} // namespace

std::wstring StoredLayout::Displays() const {
    if (!displays || displays->dwType != REG_SZ) return {};
    std::wstring str(displays->bytes.size() / sizeof(wchar_t), L'\0');
    memcpy(str.data(), displays->bytes.data(), str.size() * sizeof(wchar_t));
    return str.c_str(); // up to the stored terminator
}

std::optional<uint64_t> StoredLayout::Used() const {
    uint64_t n = 0;
    if (!used || used->dwType != REG_QWORD || used->bytes.size() != sizeof(n)) return {};
    memcpy(&n, used->bytes.data(), sizeof(n));
    return n;
}

std::wstring LayoutReader::NameFor(const std::wstring& strDisplays) {
    std::wstring strName;
    for (BYTE b : PlatformMd5(strDisplays.data(), strDisplays.size() * sizeof(wchar_t))) {
        wchar_t sz[3];
        swprintf(sz, 3, L"%02X", b);
        strName += sz;
    }
    return strName;
}

bool LayoutReader::KeyExists() const { return UserKey(kPath, false).Get() != nullptr; }

std::optional<StoredSnapshot> LayoutReader::Switch() const {
    return UserKey(kPath, false).Read(L"RestoreOnChange");
}

std::vector<StoredLayout> LayoutReader::All() const {
    UserKey key(kPath, false);
    std::vector<StoredLayout> layouts;
    wchar_t szName[300];
    for (DWORD n = 0, cch = 300; key.Get() && !::RegEnumKeyExW(key.Get(), n, szName, &cch, nullptr,
                                                               nullptr, nullptr, nullptr);
         ++n, cch = 300) {
        layouts.push_back(ReadLayout(szName));
    }
    std::sort(layouts.begin(), layouts.end(),
              [](const auto& a, const auto& b) { return a.strName < b.strName; });
    return layouts;
}

std::optional<StoredLayout> LayoutReader::Of(const std::wstring& strDisplays) const {
    std::wstring strName = NameFor(strDisplays);
    if (!UserKey(SubPath(strName), false).Get()) return std::nullopt;
    return ReadLayout(strName);
}

std::vector<StoredIcon> LayoutReader::IconsOf(const std::wstring& strDisplays) const {
    std::optional<StoredLayout> found = Of(strDisplays);
    if (!found || !found->layout || !found->layout->DigestHolds()) return {};
    return found->layout->Icons();
}

void LayoutReader::Clear() const {
    HKEY hkey = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, kPath, REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, &hkey))
        return;
    for (const StoredLayout& layout : All()) ::RegDeleteTreeW(hkey, layout.strName.c_str());
    // By its handle: by its name, a link would be followed.
    using DeleteKey = NTSTATUS NTAPI(HANDLE);
    auto* pfn = reinterpret_cast<DeleteKey*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")));
    pfn(hkey);
    ::RegCloseKey(hkey);
}

void LayoutReader::PlantSwitch(DWORD dwOn) const {
    UserKey(kPath, true).Write(L"RestoreOnChange", REG_DWORD, &dwOn, sizeof(dwOn));
}

void LayoutReader::Plant(const std::wstring& strDisplays, const std::vector<StoredIcon>& icons,
                         uint64_t nUsed) const {
    std::vector<BYTE> bytes = MakeSnapshotBytes(icons), text = TextBytes(strDisplays);
    UserKey key(SubPath(NameFor(strDisplays)), true);
    key.Write(L"Displays", REG_SZ, text.data(), text.size());
    key.Write(L"Layout", REG_BINARY, bytes.data(), bytes.size());
    key.Write(L"Used", REG_QWORD, &nUsed, sizeof(nUsed));
}

void LayoutReader::PlantValue(const std::wstring& strDisplays, const wchar_t* pszValue,
                              DWORD dwType, const std::vector<BYTE>& bytes) const {
    UserKey(SubPath(NameFor(strDisplays)), true)
        .Write(pszValue, dwType, bytes.data(), bytes.size());
}

void LayoutReader::DeleteValue(const std::wstring& strDisplays, const wchar_t* pszValue) const {
    ::RegDeleteValueW(UserKey(SubPath(NameFor(strDisplays)), true).Get(), pszValue);
}

void LayoutReader::Block() const {
    Clear();
    const std::wstring strTarget = L"\\Registry\\User\\NoSuchUser\\Nowhere";
    HKEY hkey = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, kPath, 0, nullptr, REG_OPTION_CREATE_LINK,
                          KEY_ALL_ACCESS | KEY_CREATE_LINK, nullptr, &hkey, nullptr) ||
        ::RegSetValueExW(hkey, L"SymbolicLinkValue", 0, REG_LINK,
                         reinterpret_cast<const BYTE*>(strTarget.data()),
                         static_cast<DWORD>(strTarget.size() * sizeof(wchar_t)))) {
        throw std::runtime_error("the key could not be blocked");
    }
    ::RegCloseKey(hkey);
}

std::vector<BYTE> TextBytes(const std::wstring& str) {
    const auto* p = reinterpret_cast<const BYTE*>(str.c_str());
    return {p, p + (str.size() + 1) * sizeof(wchar_t)};
}
