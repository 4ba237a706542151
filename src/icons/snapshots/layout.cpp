#include "icons/snapshots/layout.h"
#include "runtime/base/digest.h"

#include <cstring>

namespace {
/// The size of the value of so many records; 0 if it is more than the registry can be told.
unsigned GetValueSize(unsigned nRecords) {
    unsigned long long cb =
        kMd5Size + static_cast<unsigned long long>(nRecords) * sizeof(IconRecord);
    return cb <= 0xFFFFFFFF ? static_cast<unsigned>(cb) : 0;
}
} // namespace

unsigned CountLayoutRecords(const RegKey& key, const wchar_t* pszName) {
    unsigned cbValue = key.GetBinSize(pszName);
    if (cbValue <= kMd5Size) return 0;
    std::size_t cbRecords = cbValue - kMd5Size;
    if (cbRecords % sizeof(IconRecord)) return 0;
    return static_cast<unsigned>(cbRecords / sizeof(IconRecord));
}

bool ReadLayoutRecords(const RegKey& key, const wchar_t* pszName, IconRecord* pRecords,
                       unsigned nRecords) {
    unsigned cbValue = GetValueSize(nRecords);
    HeapArray<unsigned char> value(cbValue);
    if (!value.IsReady()) return false;
    // A value that grew meanwhile is not read, and the zeros of the block have another digest.
    key.GetBin(pszName, value.Get(), cbValue);
    std::size_t cbRecords = cbValue - kMd5Size;
    unsigned char digest[kMd5Size];
    CalcMD5(digest, value.Get() + kMd5Size, cbRecords);
    if (std::memcmp(digest, value.Get(), kMd5Size) != 0) return false;
    std::memcpy(pRecords, value.Get() + kMd5Size, cbRecords);
    return true;
}

HeapArray<unsigned char> MakeLayoutValue(const IconRecord* pRecords, unsigned nRecords) {
    HeapArray<unsigned char> value(pRecords && nRecords ? GetValueSize(nRecords) : 0);
    if (!value.IsReady()) return value;
    std::size_t cbRecords = value.GetCount() - kMd5Size;
    CalcMD5(value.Get(), pRecords, cbRecords);
    std::memcpy(value.Get() + kMd5Size, pRecords, cbRecords);
    return value;
}

COPYDATASTRUCT MakeRestoreData(std::span<IconRecord> records) {
    return {records.size(), static_cast<DWORD>(records.size_bytes()), records.data()};
}

void SendRestore(HWND hwndListView, std::span<IconRecord> records) {
    COPYDATASTRUCT data = MakeRestoreData(records);
    ::SendMessageW(hwndListView, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
}
