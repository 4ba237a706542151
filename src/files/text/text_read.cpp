#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "files/text/text_encoding.h"
#include "files/text/text_probe.h"
#include "runtime/base/dll_buf.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <algorithm>
#include <cstdlib>
#include <cwchar>

namespace {
// What a caller, or this library, gets: not HeapArray's, whose zeros cost as much as the reading.
using OwnedDllBuf = OwnedHandleOf<void*, &::FreeDllBuf>;

/// Room for a text of unknown length: each time so much more, and the last one is all there is.
constexpr unsigned kStreamRoom[] = {0x10000, 0x100000, 0x1000000, 0x10000000, 0xFFFFFFFE};

/// The most bytes that go through one conversion: the platform counts with a signed int.
constexpr std::size_t kConvertPiece = 0x40000000;
/// A byte below this is a character of its own in every code page, and no part of another one.
constexpr char kNoTrailByte = 0x30;
/// How far back a piece is cut, so that no character is in two of them.
constexpr std::size_t kCutSearch = 0x10000;

/// The length of the next piece to convert, of cb bytes.
std::size_t FindPiece(const char* p, std::size_t cb) {
    if (cb <= kConvertPiece) return cb;
    for (std::size_t n = kConvertPiece; n > kConvertPiece - kCutSearch; --n) {
        if (p[n - 1] >= 0 && p[n - 1] < kNoTrailByte) return n;
    }
    std::size_t n = kConvertPiece; // no blank far and wide: at least no part of UTF-8's
    while (n > kConvertPiece - 4 && (p[n] & 0xC0) == 0x80) --n;
    return n;
}

/// Converts cb bytes into cch characters, without a terminator. Their number; kTextSizeUnknown if
/// they do not fit.
DWORD ConvertBytes(UINT nCodePage, const char* p, std::size_t cb, wchar_t* pszOut, DWORD cch) {
    DWORD n = 0;
    while (cb) {
        const std::size_t cbPiece = FindPiece(p, cb);
        const auto cchRoom = static_cast<int>(std::min<DWORD>(cch - n, INT_MAX));
        // Without room the platform would only count.
        const int nMade = cchRoom == 0
                              ? 0
                              : ::MultiByteToWideChar(nCodePage, 0, p, static_cast<int>(cbPiece),
                                                      pszOut + n, cchRoom);
        if (nMade <= 0) return kTextSizeUnknown;
        n += static_cast<DWORD>(nMade);
        p += cbPiece;
        cb -= cbPiece;
    }
    return n;
}

/// Each byte becomes a character.
// QUIRK: as a signed byte and in no code page, so that E9 becomes U+FFE9: only in this format.
// Test: TextAnsiLf.BytesAreWidenedWithTheirSign
DWORD WidenBytes(const char* p, std::size_t cb, wchar_t* pszOut, DWORD cch) {
    if (cb > cch) return kTextSizeUnknown;
    for (std::size_t i = 0; i < cb; ++i) {
        pszOut[i] = static_cast<wchar_t>(static_cast<signed char>(p[i]));
    }
    return static_cast<DWORD>(cb);
}

/// Puts a carriage return before each line feed that has none, in a text of n characters with room
/// for cch; the first character counts only if bFirst. The new length; kTextSizeUnknown if it does
/// not fit.
DWORD AddCarriageReturns(wchar_t* psz, DWORD n, DWORD cch, bool bFirst) {
    auto isLone = [psz, bFirst](DWORD i) {
        return psz[i] == L'\n' && (i == 0 ? bFirst : psz[i - 1] != L'\r');
    };
    DWORD nLone = 0;
    for (DWORD i = 0; i < n; ++i) nLone += isLone(i);
    if (nLone > cch - n) return kTextSizeUnknown;
    const DWORD nAll = n + nLone;
    for (DWORD iTo = nAll; iTo != n;) { // from the end, where there is room; equal: all have theirs
        --n;
        const bool bLone = isLone(n);
        psz[--iTo] = psz[n];
        if (bLone) psz[--iTo] = L'\r';
    }
    return nAll;
}

/// Bytes of one of the formats that are not UTF-16 become a text with a terminator.
DWORD ConvertText(const BYTE* pBytes, std::size_t cb, CSFileTextFmt fmt, wchar_t* pszOut,
                  DWORD cchOut, wchar_t chReplacement) {
    const DWORD cch = cchOut - 1;
    const auto* p = reinterpret_cast<const char*>(pBytes);
    DWORD n = 0;
    if (fmt == fmtUtf8 || fmt == fmtUtf8Lf) {
        const std::size_t cbMark = StartsWithUtf8Mark(pBytes, cb) ? sizeof(kUtf8Mark) : 0;
        n = ConvertBytes(CP_UTF8, p + cbMark, cb - cbMark, pszOut, cch);
    } else if (fmt == fmtAnsiLf) {
        n = WidenBytes(p, cb, pszOut, cch);
    } else {
        n = ConvertBytes(::GetACP(), p, cb, pszOut, cch);
    }
    if (n != kTextSizeUnknown && (fmt == fmtUtf8Lf || fmt == fmtAnsiLf)) {
        n = AddCarriageReturns(pszOut, n, cch, fmt == fmtUtf8Lf);
    }
    if (n == kTextSizeUnknown) return n;
    CSFile::Sanitize(pszOut, n, chReplacement);
    pszOut[n] = 0;
    return n + 1;
}

/// Reads the whole file, of cb bytes or of unknown size, and converts it.
DWORD ReadBytes(CoreFile& file, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut, DWORD cchOut,
                wchar_t chReplacement) {
    const unsigned __int64 cbBuffer =
        cb == kTextSizeUnknown ? static_cast<unsigned __int64>(cchOut) * 2 : cb;
    OwnedDllBuf buffer(std::malloc(cbBuffer + 1));
    unsigned __int64 cbRead = 0;
    if (!buffer || !ReadUpTo(file, buffer.Get(), cbBuffer, &cbRead)) return 0;
    if (cb == kTextSizeUnknown && cbRead == cbBuffer) return kTextSizeUnknown; // there may be more
    return ConvertText(static_cast<const BYTE*>(buffer.Get()), cbRead, fmt, pszOut, cchOut,
                       chReplacement);
}

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
    return ReadBytes(file, cb, fmt, pszOut, cch, chReplacement);
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
