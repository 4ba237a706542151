#include "files/text/cs_file.h"
#include "files/stream/core_file.h"
#include "files/text/text_probe.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <utility>

constinit DWORD CSFile::dwAllocationGranularity = 0;

namespace {
/// Threads that come here at once find the same value.
DWORD FindAllocationGranularity() {
    SYSTEM_INFO info;
    ::GetSystemInfo(&info);
    return info.dwAllocationGranularity;
}

/// A file's mapping and one view of it.
struct Mapped {
    OwnedHandle mapping;
    void* pBase = nullptr; // null: not mapped
};

/// Maps cbView bytes, 0 for all, from nStart on, of a mapping of cbMapping bytes.
Mapped MapPart(HANDLE hFile, bool bToWrite, ULONGLONG cbMapping, DWORD nStart, SIZE_T cbView) {
    ULARGE_INTEGER cb;
    cb.QuadPart = cbMapping;
    Mapped mapped;
    mapped.mapping =
        OwnedHandle(::CreateFileMappingW(hFile, nullptr, bToWrite ? PAGE_READWRITE : PAGE_READONLY,
                                         cb.HighPart, cb.LowPart, nullptr));
    if (!mapped.mapping) return mapped;
    mapped.pBase = ::MapViewOfFile(
        mapped.mapping.Get(), bToWrite ? FILE_MAP_ALL_ACCESS : FILE_MAP_READ, 0, nStart, cbView);
    return mapped;
}
} // namespace

CSFile::~CSFile() = default; // the base closes the file

void CSFile::Close() {
    CloseMap();
    CoreFile::Close();
}

unsigned __int64 CSFile::GetSize64() { return CoreFile::GetSize64(); }

unsigned __int64 CSFile::GetSize64(const UniPath* pPath) {
    const wchar_t* pszPath = PathOf(pPath);
    return pszPath ? CoreFile::GetSize64(pszPath) : 0;
}

void* CSFile::OpenMap(DWORD nOffset, DWORD nSizeLow, DWORD nSizeHigh) {
    CloseMap();
    if (!CoreFile::IsReady()) { // the platform would map memory that belongs to no file
        ::SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (!dwAllocationGranularity) dwAllocationGranularity = FindAllocationGranularity();
    const DWORD nRest = nOffset % dwAllocationGranularity; // views start at multiples of it only
    const DWORD nStart = nOffset - nRest;
    const SIZE_T cbView = nSizeLow ? static_cast<SIZE_T>(nRest) + nSizeLow : 0;
    ULARGE_INTEGER cbMapping;
    cbMapping.LowPart = nSizeLow;
    cbMapping.HighPart = nSizeHigh;

    Mapped mapped = MapPart(hFile, bWrite != 0, cbMapping.QuadPart, nStart, cbView);
    // A mapping just as large as the view ends before it, unless the view is at the file's start.
    if (!mapped.pBase && mapped.mapping && nOffset && cbMapping.QuadPart) {
        mapped = MapPart(hFile, bWrite != 0, cbMapping.QuadPart + nOffset, nStart, cbView);
    }
    if (!mapped.pBase) return nullptr;
    hMapping = mapped.mapping.Release();
    pView = mapped.pBase;
    return static_cast<BYTE*>(pView) + nRest;
}

void CSFile::CloseMap() {
    if (pView) ::UnmapViewOfFile(std::exchange(pView, nullptr));
    if (hMapping) ::CloseHandle(std::exchange(hMapping, nullptr));
}
