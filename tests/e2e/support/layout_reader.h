#pragma once
#include "e2e/support/snapshot_reader.h"

// What is remembered per set of displays, read and planted without any code of the product.

/// The sub key of one set-up.
struct StoredLayout {
    std::wstring strName;                   // of the sub key
    std::optional<StoredSnapshot> displays; // its values, if they are there
    std::optional<StoredSnapshot> layout;
    std::optional<StoredSnapshot> used;

    /// The text of the set-up, if it is stored as a text.
    std::wstring Displays() const;
    /// Nothing if the value is not there or none of 64 bits.
    std::optional<uint64_t> Used() const;
    bool operator==(const StoredLayout&) const = default;
};

/// The key HKCU\Software\Orvanta\Tessaly\Displays; it is opened anew by each call.
class LayoutReader {
  public:
    static constexpr const wchar_t* kPath = L"Software\\Orvanta\\Tessaly\\Displays";

    /// Of the sub key for the set-up of that text.
    static std::wstring NameFor(const std::wstring& strDisplays);

    bool KeyExists() const;
    /// "RestoreOnChange" with its type; nothing if there is none.
    std::optional<StoredSnapshot> Switch() const;
    std::vector<StoredLayout> All() const; // by name
    int Count() const { return static_cast<int>(All().size()); }
    std::optional<StoredLayout> Of(const std::wstring& strDisplays) const;
    /// The records of a good layout of that set-up; none if there is none.
    std::vector<StoredIcon> IconsOf(const std::wstring& strDisplays) const;

    /// Removes the key with all below it, also if it is a link.
    void Clear() const;
    void PlantSwitch(DWORD dwOn) const;
    /// A whole sub key.
    void Plant(const std::wstring& strDisplays, const std::vector<StoredIcon>& icons,
               uint64_t nUsed) const;
    /// One value of the set-up's sub key, which is made if it is not there.
    void PlantValue(const std::wstring& strDisplays, const wchar_t* pszValue, DWORD dwType,
                    const std::vector<BYTE>& bytes) const;
    void DeleteValue(const std::wstring& strDisplays, const wchar_t* pszValue) const;
    /// From now on the key can be neither opened nor made.
    void Block() const;
};

/// As the value of a text is stored.
std::vector<BYTE> TextBytes(const std::wstring& str);
