#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "files/text/text_convert.h"
#include "files/text/text_encoding.h"
#include "files/text/text_probe.h"
#include "runtime/base/dll_buf.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <algorithm>
#include <cstdlib>

namespace {
// What a caller, or this library, gets: not HeapArray's, whose zeros cost as much as the reading.
using OwnedDllBuf = OwnedHandleOf<void*, &::FreeDllBuf>;

/// Room for a text of unknown length: each time so much more, and the last one is all there is.
constexpr unsigned kStreamRoom[] = {0x10000, 0x100000, 0x1000000, 0x10000000, 0xFFFFFFFE};

/// Reads a file of UTF-16, of cb bytes or of unknown size, straight into the text.
DWORD ReadUtf16(CoreFile& file, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut, DWORD cchOut) {
    wchar_t chFirst = 0;
    unsigned __int64 cbRead = 0;
    if (!ReadUpTo(file, &chFirst, std::min<DWORD>(cb, sizeof(chFirst)), &cbRead)) return 0;
    DWORD n = 0;
    if (cbRead == sizeof(chFirst)) {
        const bool bMark = chFirst == (fmt == fmtUnicode ? kUtf16Mark : kUtf16MarkReversed);
        if (!bMark) pszOut[n++] = chFirst;
        const unsigned __int64 cbRoom = static_cast<unsigned __int64>(cchOut - n) * sizeof(wchar_t);
        // A last lone byte is no character.
        const unsigned __int64 cbRest = cb == kTextSizeUnknown ? cbRoom : (cb - 2) & ~1u;
        if (cbRest > cbRoom || !ReadUpTo(file, pszOut + n, cbRest, &cbRead)) {
            return cbRest > cbRoom ? kTextSizeUnknown : 0;
        }
        if (cbRead == cbRoom) return kTextSizeUnknown; // no room for the terminator
        n += static_cast<DWORD>(cbRead / sizeof(wchar_t));
    }
    pszOut[n] = 0;
    if (fmt == fmtUnicodeBE) ReverseUnicodeBytes(pszOut, n);
    return n + 1;
}
} // namespace

DWORD CSFile::GetFileSizeForText(const wchar_t* pszPath) {
    CSFile file(pszPath, 0);
    if (!file.IsReady()) return 0;
    LARGE_INTEGER cb;
    // Of pipes and devices the platform tells what waits there by now.
    if (::GetFileType(file.hFile) != FILE_TYPE_DISK || !::GetFileSizeEx(file.hFile, &cb)) {
        return kTextSizeUnknown;
    }
    return cb.HighPart ? 0 : cb.LowPart;
}

DWORD CSFile::GetTextSize(const wchar_t* pszPath, DWORD* pcb, CSFileTextFmt* pFmt) {
    if (pFmt) *pFmt = fmtUnknown;
    CoreFile file(pszPath, 0);
    if (!file.IsReady() || !pcb) return 0;
    if (*pcb == 1) {
        if (pFmt) *pFmt = fmtAnsi;
        return 2;
    }
    if (!pFmt && *pcb != kTextSizeUnknown) {
        const unsigned __int64 cch = static_cast<unsigned __int64>(*pcb) * 2 + 1;
        return static_cast<DWORD>(std::min<unsigned __int64>(cch, kTextSizeUnknown));
    }
    HeapArray<BYTE> block(kTextProbeSize);
    unsigned __int64 cbRead = 0;
    if (!block.IsReady() || !ReadUpTo(file, block.Get(), std::min(*pcb, kTextProbeSize), &cbRead) ||
        !cbRead) {
        return 0;
    }
    const auto cbBlock = static_cast<DWORD>(cbRead);
    if (*pcb == kTextSizeUnknown && cbBlock < kTextProbeSize) *pcb = cbBlock;
    const TextProbe probe = ProbeText(block.Get(), cbBlock, *pcb);
    if (pFmt) *pFmt = probe.fmt;
    return probe.cch;
}

DWORD CSFile::GetText(const wchar_t* pszPath, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut,
                      unsigned cchOut, wchar_t chReplacement) {
    CoreFile file(pszPath, 0);
    if (!file.IsReady()) return 0;
    if (!pszOut || !cchOut) return kTextSizeUnknown;
    const DWORD cch = std::min<DWORD>(cchOut, kTextSizeUnknown - 1); // as a result it is a count
    if (fmt == fmtUnicode || fmt == fmtUnicodeBE) return ReadUtf16(file, cb, fmt, pszOut, cch);
    return ReadAsText(file, cb, fmt, pszOut, cch, chReplacement);
}

wchar_t* CSFile::ReadText(const wchar_t* pszPath, unsigned* pcch, CSFileTextFmt* pFmt,
                          wchar_t chReplacement) {
    unsigned cchUnasked = 0;
    CSFileTextFmt fmtUnasked = fmtUnknown;
    if (!pcch) pcch = &cchUnasked;
    if (!pFmt) pFmt = &fmtUnasked;
    *pcch = 0;
    DWORD cb = GetFileSizeForText(pszPath);
    if (!cb) return nullptr;
    const DWORD cchNeeded = GetTextSize(pszPath, &cb, *pFmt == fmtUnknown ? pFmt : nullptr);
    const bool bKnown = cchNeeded != kTextSizeUnknown;
    if (!cchNeeded || (bKnown && *pFmt == fmtUnknown)) return nullptr;

    for (unsigned cchRoom : kStreamRoom) {
        if (bKnown) cchRoom = cchNeeded;
        OwnedDllBuf text(std::malloc(static_cast<std::size_t>(cchRoom) * sizeof(wchar_t)));
        if (!text) return nullptr;
        const DWORD cch =
            GetText(pszPath, cb, *pFmt, static_cast<wchar_t*>(text.Get()), cchRoom, chReplacement);
        if (cch && cch != kTextSizeUnknown) {
            *pcch = cch;
            return static_cast<wchar_t*>(text.Release());
        }
        if (!cch || bKnown) return nullptr;
    }
    return nullptr;
}

DWORD CSFile::GetFileSizeForText(const UniPath* pPath) { return GetFileSizeForText(PathOf(pPath)); }

DWORD CSFile::GetTextSize(const UniPath* pPath, DWORD* pcb, CSFileTextFmt* pFmt) {
    return GetTextSize(PathOf(pPath), pcb, pFmt);
}

DWORD CSFile::GetText(const UniPath* pPath, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut,
                      unsigned cchOut, wchar_t chReplacement) {
    return GetText(PathOf(pPath), cb, fmt, pszOut, cchOut, chReplacement);
}

wchar_t* CSFile::ReadText(const UniPath* pPath, unsigned* pcch, CSFileTextFmt* pFmt,
                          wchar_t chReplacement) {
    return ReadText(PathOf(pPath), pcch, pFmt, chReplacement);
}
