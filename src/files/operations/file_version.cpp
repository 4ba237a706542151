#include "files/operations/file_version.h"
#include "files/disk/path_fs.h"
#include "files/path/path_chars.h"
#include "runtime/base/heap_array.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/text_format.h"

#include <windows.h>
#include <algorithm>
#include <cstring>
#include <cwchar>

namespace {
constexpr const wchar_t* kVersionModule = L"version.dll"; // mapped only by those who ask
constexpr unsigned kPartBits = 16;
constexpr unsigned kPartMask = 0xFFFF;
constexpr unsigned kKeptParts = 3; // of a version whose build number goes

constexpr RuntimeFunc<decltype(::GetFileVersionInfoSizeW)> kGetInfoSize(kVersionModule,
                                                                        "GetFileVersionInfoSizeW");
constexpr RuntimeFunc<decltype(::GetFileVersionInfoW)> kGetInfo(kVersionModule,
                                                                "GetFileVersionInfoW");
constexpr RuntimeFunc<decltype(::VerQueryValueW)> kQueryValue(kVersionModule, "VerQueryValueW");

/// The resource's bytes; not ready if the file has none.
HeapArray<BYTE> ReadVersionBlock(const wchar_t* pszPath) {
    auto* pfnGetSize = kGetInfoSize.Get();
    auto* pfnGet = kGetInfo.Get();
    if (!pfnGetSize || !pfnGet) return {};
    DWORD nUnused = 0;
    HeapArray<BYTE> block(pfnGetSize(pszPath, &nUnused));
    if (!block.IsReady() ||
        !pfnGet(pszPath, 0, static_cast<DWORD>(block.GetCount()), block.Get())) {
        return {};
    }
    return block;
}

/// The digits that a part begins with; what stands behind them does not count.
unsigned __int64 ReadPart(const wchar_t* psz) {
    unsigned __int64 n = 0;
    for (; IsNumChar(*psz); ++psz) n = n * 10 + static_cast<unsigned>(*psz - L'0');
    return n;
}

unsigned GetPart(unsigned __int64 nVersion, unsigned nFromRight) {
    return static_cast<unsigned>(nVersion >> nFromRight * kPartBits & kPartMask);
}
} // namespace

unsigned __int64 GetFileVersion(const wchar_t* pszPath, VS_FIXEDFILEINFO* pInfo) {
    if (!IsFileExists(pszPath)) return 0;
    HeapArray<BYTE> block = ReadVersionBlock(pszPath);
    auto* pfnQuery = kQueryValue.Get();
    void* pValue = nullptr;
    UINT cb = 0;
    if (!block.IsReady() || !pfnQuery || !pfnQuery(block.Get(), L"\\", &pValue, &cb)) return 0;
    VS_FIXEDFILEINFO info;
    if (!pValue || cb < sizeof(info)) return 0;
    std::memcpy(&info, pValue, sizeof(info));
    if (info.dwSignature != VS_FFI_SIGNATURE) return 0;
    if (pInfo) *pInfo = info;
    return static_cast<unsigned __int64>(info.dwFileVersionMS) << 32 | info.dwFileVersionLS;
}

int GetFileVersionStr(wchar_t* pszOut, unsigned cchOut, unsigned __int64 nVersion) {
    wchar_t sz[sizeof("65535.65535.65535.65535")];
    FormatText(sz, L"%d.%d.%d.%d", GetPart(nVersion, 3), GetPart(nVersion, 2), GetPart(nVersion, 1),
               GetPart(nVersion, 0));
    return CopyTextCut(pszOut, cchOut, sz);
}

int GetFileVersionStr(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszPath,
                      VS_FIXEDFILEINFO* pInfo) {
    return GetFileVersionStr(pszOut, cchOut, GetFileVersion(pszPath, pInfo));
}

unsigned __int64 ParseFileVersionStr(wchar_t* pszText) {
    if (!pszText || !*pszText) return 0;
    unsigned __int64 nVersion = 0;
    for (wchar_t* psz = pszText; psz;) {
        wchar_t* pDot = std::wcschr(psz, L'.');
        if (pDot) *pDot = 0;
        nVersion = (nVersion << kPartBits) + ReadPart(psz);
        psz = pDot ? pDot + 1 : nullptr;
    }
    return nVersion;
}

void StripBuildNumberIfAny(wchar_t* pszOut, unsigned cchOut, const wchar_t* pszText) {
    wchar_t sz[kPathChars];
    CopyPath(sz, pszText);
    unsigned nParts = 1;
    for (wchar_t* psz = sz; *psz; ++psz) {
        if (*psz != L'.' || nParts++ < kKeptParts) continue;
        *psz = 0;
        break;
    }
    CopyTextCut(pszOut, cchOut, sz);
}
