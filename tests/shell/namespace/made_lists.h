#pragma once
#include "support/guard_page.h"
#include <windows.h>
#include <shtypes.h>
#include <cstring>
#include <string>
#include <vector>

// Item id lists made byte by byte, as the platform lays them out, and what they should be.

using Bytes = std::vector<BYTE>;
/// The data of each item, without its count.
using Items = std::vector<Bytes>;

inline void PutWord(Bytes& bytes, std::size_t n) {
    bytes.push_back(static_cast<BYTE>(n));
    bytes.push_back(static_cast<BYTE>(n >> 8));
}
/// The bytes of a list of these items, its end included.
inline Bytes ListBytes(const Items& items) {
    Bytes bytes;
    for (const auto& item : items) {
        PutWord(bytes, item.size() + 2);
        bytes.insert(bytes.end(), item.begin(), item.end());
    }
    PutWord(bytes, 0);
    return bytes;
}
/// As a list; it is the vector's own memory.
inline ITEMIDLIST* AsList(const Bytes& bytes) {
    return reinterpret_cast<ITEMIDLIST*>(const_cast<BYTE*>(bytes.data()));
}
/// The bytes from there on.
inline Bytes BytesAt(const void* p, std::size_t cb) {
    const auto* pFirst = static_cast<const BYTE*>(p);
    return p ? Bytes(pFirst, pFirst + cb) : Bytes();
}
/// An item whose data is that text with its terminator, as the made namespace has them.
inline Bytes TextItem(const std::wstring& strText) {
    const auto* p = reinterpret_cast<const BYTE*>(strText.c_str());
    return Bytes(p, p + (strText.size() + 1) * sizeof(wchar_t));
}
inline Bytes TextList(const std::vector<std::wstring>& names) {
    Items items;
    for (const auto& strName : names) items.push_back(TextItem(strName));
    return ListBytes(items);
}

/// Bytes whose last one lies right before a page that may not be read.
class GuardedBytes {
  public:
    explicit GuardedBytes(const Bytes& bytes) : memory(bytes.size()) {
        if (!bytes.empty()) std::memcpy(memory.Get(), bytes.data(), bytes.size());
    }
    void* Get() const { return memory.Get(); }
    ITEMIDLIST* List() const { return static_cast<ITEMIDLIST*>(memory.Get()); }

  private:
    GuardedMemory memory;
};
