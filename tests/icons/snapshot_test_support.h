#pragma once
#include "icons/agent/icon_record.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/digest.h"
#include "support/registry.h"

#include <string>
#include <vector>

// The product's own store for tests, planted and looked at with the platform's calls.

constexpr const wchar_t* kStoreKey = L"Software\\Orvanta\\Tessaly\\Data"; // below HKCU

using Layout = std::vector<IconRecord>;

inline Layout MakeLayout(unsigned nIcons, int nSeed = 0) {
    Layout layout;
    for (unsigned n = 0; n < nIcons; ++n) {
        std::wstring strName = L"icon " + std::to_wstring(n);
        auto cch = static_cast<unsigned>(strName.size());
        POINT pt{static_cast<LONG>(75 * n + nSeed), static_cast<LONG>(100 - 7 * n)};
        layout.push_back({n, pt, cch, MakeNameKey(strName.c_str(), cch)});
    }
    return layout;
}

/// A value as the store writes it.
inline RegBytes MakeSnapshotValue(const Layout& layout) {
    RegBytes bytes(kMd5Size + layout.size() * sizeof(IconRecord));
    memcpy(bytes.data() + kMd5Size, layout.data(), bytes.size() - kMd5Size);
    CalcMD5(bytes.data(), bytes.data() + kMd5Size, bytes.size() - kMd5Size);
    return bytes;
}

inline std::wstring NameOf(unsigned __int64 qwTime) {
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, qwTime);
    return szName;
}

/// The key in which the product keeps its snapshots, empty at first.
class SnapshotKey : public TestKey {
  public:
    SnapshotKey() : TestKey(kStoreKey) {}
    void Plant(unsigned __int64 qwTime, const Layout& layout) {
        Put(NameOf(qwTime), REG_BINARY, MakeSnapshotValue(layout));
    }
};
