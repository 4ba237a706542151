#pragma once
#include <windows.h>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The stored snapshots as the registry holds them, read without any code of the product.

/// One icon's record as it lies in a value.
struct StoredIcon {
    uint32_t nIndex;
    int32_t x;
    int32_t y;
    uint32_t nNameLength;
    uint64_t nNameKey;
    bool operator==(const StoredIcon&) const = default;
};
static_assert(sizeof(StoredIcon) == 24);

struct StoredSnapshot {
    std::wstring strName;
    DWORD dwType = REG_NONE;
    std::vector<BYTE> bytes; // the whole value

    /// The digest at its beginning is that of the rest.
    bool DigestHolds() const;
    /// The records; none if the size is not that of a snapshot.
    std::vector<StoredIcon> Icons() const;
    bool operator==(const StoredSnapshot&) const = default;
};

using Digest = std::array<BYTE, 16>;
/// MD5 as the platform computes it.
Digest PlatformMd5(const void* p, size_t cb);
/// The key under which a snapshot knows an icon of that text.
uint64_t KeyOfName(const std::wstring& strName);
/// The bytes of a good value over these records.
std::vector<BYTE> MakeSnapshotBytes(const std::vector<StoredIcon>& icons);

/// The key HKCU\Software\Orvanta\Tessaly\Data; it is opened anew by each call.
class SnapshotReader {
  public:
    static constexpr const wchar_t* kPath = L"Software\\Orvanta\\Tessaly\\Data";

    bool KeyExists() const;
    /// All values but the default one, by name, the smallest first.
    std::vector<StoredSnapshot> Values() const;
    int Count() const { return static_cast<int>(Values().size()); }
    std::optional<StoredSnapshot> Newest() const;
    std::optional<StoredSnapshot> Named(const std::wstring& strName) const;
    /// The default value's text: the snapshot that was restored last.
    std::optional<std::wstring> Marked() const;
    /// Of the key; 0 if there is none.
    uint64_t LastWriteTime() const;

    /// Removes the key with all below it.
    void Clear() const;
    void Plant(const std::wstring& strName, const std::vector<BYTE>& bytes,
               DWORD dwType = REG_BINARY) const;
};
