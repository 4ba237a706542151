#include "e2e/support/snapshot_reader.h"

#include <windows.h>
#include <wincrypt.h>
#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {
constexpr size_t kHeaderBytes = 16;
constexpr DWORD kMaxNameLength = 16384; // of a value's name, with its terminator

class OpenedKey {
  public:
    explicit OpenedKey(bool bWrite) {
        if (bWrite) {
            ::RegCreateKeyExW(HKEY_CURRENT_USER, SnapshotReader::kPath, 0, nullptr, 0,
                              KEY_ALL_ACCESS, nullptr, &hkey, nullptr);
        } else {
            ::RegOpenKeyExW(HKEY_CURRENT_USER, SnapshotReader::kPath, 0, KEY_READ, &hkey);
        }
    }
    ~OpenedKey() {
        if (hkey) ::RegCloseKey(hkey);
    }
    OpenedKey(const OpenedKey&) = delete;
    OpenedKey& operator=(const OpenedKey&) = delete;
    HKEY Get() const { return hkey; }

  private:
    HKEY hkey = nullptr;
};

std::optional<StoredSnapshot> ReadValue(HKEY hkey, const std::wstring& strName) {
    StoredSnapshot value;
    value.strName = strName;
    DWORD cb = 0;
    if (::RegQueryValueExW(hkey, strName.c_str(), nullptr, &value.dwType, nullptr, &cb)) return {};
    value.bytes.resize(cb);
    if (::RegQueryValueExW(hkey, strName.c_str(), nullptr, &value.dwType, value.bytes.data(),
                           &cb)) {
        return {};
    }
    value.bytes.resize(cb);
    return value;
}
} // namespace

Digest PlatformMd5(const void* p, size_t cb) {
    HCRYPTPROV hprov = 0;
    HCRYPTHASH hhash = 0;
    Digest digest{};
    DWORD cbDigest = static_cast<DWORD>(digest.size());
    bool bDone =
        ::CryptAcquireContextW(&hprov, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) &&
        ::CryptCreateHash(hprov, CALG_MD5, 0, 0, &hhash) &&
        ::CryptHashData(hhash, static_cast<const BYTE*>(p), static_cast<DWORD>(cb), 0) &&
        ::CryptGetHashParam(hhash, HP_HASHVAL, digest.data(), &cbDigest, 0);
    if (hhash) ::CryptDestroyHash(hhash);
    if (hprov) ::CryptReleaseContext(hprov, 0);
    if (!bDone) throw std::runtime_error("the platform computes no MD5");
    return digest;
}

uint64_t KeyOfName(const std::wstring& strName) {
    Digest digest = PlatformMd5(strName.data(), strName.size() * sizeof(wchar_t));
    uint64_t nKey = 0;
    memcpy(&nKey, digest.data(), sizeof(nKey));
    return nKey;
}

std::vector<BYTE> MakeSnapshotBytes(const std::vector<StoredIcon>& icons) {
    size_t cb = icons.size() * sizeof(StoredIcon);
    Digest digest = PlatformMd5(icons.data(), cb);
    std::vector<BYTE> bytes(kHeaderBytes + cb);
    std::copy(digest.begin(), digest.end(), bytes.begin());
    if (cb) memcpy(bytes.data() + kHeaderBytes, icons.data(), cb);
    return bytes;
}

bool StoredSnapshot::DigestHolds() const {
    if (bytes.size() < kHeaderBytes) return false;
    Digest digest = PlatformMd5(bytes.data() + kHeaderBytes, bytes.size() - kHeaderBytes);
    return std::equal(digest.begin(), digest.end(), bytes.begin());
}

std::vector<StoredIcon> StoredSnapshot::Icons() const {
    if (bytes.size() <= kHeaderBytes || (bytes.size() - kHeaderBytes) % sizeof(StoredIcon))
        return {};
    std::vector<StoredIcon> icons((bytes.size() - kHeaderBytes) / sizeof(StoredIcon));
    memcpy(icons.data(), bytes.data() + kHeaderBytes, icons.size() * sizeof(StoredIcon));
    return icons;
}

bool SnapshotReader::KeyExists() const { return OpenedKey(false).Get() != nullptr; }

std::vector<StoredSnapshot> SnapshotReader::Values() const {
    OpenedKey key(false);
    std::vector<StoredSnapshot> values;
    std::wstring strBuffer(kMaxNameLength, L'\0');
    for (DWORD n = 0; key.Get(); ++n) {
        DWORD cch = kMaxNameLength;
        if (::RegEnumValueW(key.Get(), n, strBuffer.data(), &cch, nullptr, nullptr, nullptr,
                            nullptr)) {
            break;
        }
        if (cch == 0) continue; // the default value
        if (auto value = ReadValue(key.Get(), strBuffer.substr(0, cch))) values.push_back(*value);
    }
    std::sort(values.begin(), values.end(),
              [](const auto& a, const auto& b) { return a.strName < b.strName; });
    return values;
}

std::optional<StoredSnapshot> SnapshotReader::Newest() const {
    std::vector<StoredSnapshot> values = Values();
    if (values.empty()) return std::nullopt;
    return values.back();
}

std::optional<StoredSnapshot> SnapshotReader::Named(const std::wstring& strName) const {
    OpenedKey key(false);
    return key.Get() ? ReadValue(key.Get(), strName) : std::nullopt;
}

std::optional<std::wstring> SnapshotReader::Marked() const {
    std::optional<StoredSnapshot> value = Named(L"");
    if (!value || value->dwType != REG_SZ) return std::nullopt;
    std::wstring str(value->bytes.size() / sizeof(wchar_t), L'\0');
    memcpy(str.data(), value->bytes.data(), str.size() * sizeof(wchar_t));
    return std::wstring(str.c_str()); // up to the stored terminator
}

uint64_t SnapshotReader::LastWriteTime() const {
    OpenedKey key(false);
    FILETIME time{};
    if (!key.Get() || ::RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr, nullptr, &time)) {
        return 0;
    }
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

void SnapshotReader::Clear() const { ::RegDeleteTreeW(HKEY_CURRENT_USER, kPath); }

void SnapshotReader::Plant(const std::wstring& strName, const std::vector<BYTE>& bytes,
                           DWORD dwType) const {
    OpenedKey key(true);
    if (::RegSetValueExW(key.Get(), strName.c_str(), 0, dwType, bytes.data(),
                         static_cast<DWORD>(bytes.size()))) {
        throw std::runtime_error("the value could not be planted");
    }
}
