#include "files/text/text_probe.h"
#include "files/disk/uni_path.h"
#include "files/stream/core_file.h"
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <algorithm>
#include <cstring>

namespace {
constexpr DWORD kReadPiece = 0x40000000; // the most that is asked of one read

/// n characters, or n for each of nTimes, and a terminator, as far as 32 bits can tell.
DWORD TextSize(unsigned __int64 n, unsigned nTimes) {
    return static_cast<DWORD>(std::min<unsigned __int64>(n * nTimes + 1, kTextSizeUnknown));
}

/// The line feeds that have no carriage return before them, the first byte's too.
DWORD CountLoneLineFeeds(const BYTE* p, DWORD cb) {
    DWORD n = 0;
    for (DWORD i = 0; i < cb; ++i) n += p[i] == '\n' && (i == 0 || p[i - 1] != '\r');
    return n;
}

TextProbe ProbeUtf8(const BYTE* p, DWORD cb, DWORD cbFile) {
    constexpr DWORD cbMark = sizeof(kUtf8Mark);
    const DWORD nLone = CountLoneLineFeeds(p + cbMark, cb - cbMark);
    TextProbe probe = {nLone ? fmtUtf8Lf : fmtUtf8, kTextSizeUnknown};
    if (cbFile == kTextSizeUnknown) return probe;
    if (cbFile > kTextProbeSize) {
        probe.cch = TextSize(cbFile - cbMark, nLone ? 2 : 1);
        return probe;
    }
    int cch = 0;
    if (cb > cbMark) {
        cch = ::MultiByteToWideChar(CP_UTF8, 0, reinterpret_cast<const char*>(p + cbMark),
                                    static_cast<int>(cb - cbMark), nullptr, 0);
    }
    probe.cch = TextSize(static_cast<DWORD>(cch) + nLone, 1);
    return probe;
}

/// The last line feed decides, of those that are not the first byte.
CSFileTextFmt ProbeBytes(const BYTE* p, DWORD cb) {
    CSFileTextFmt fmt = fmtAnsi;
    for (DWORD i = 0; i < cb; ++i) {
        if (!IsPrintableChar(static_cast<char>(p[i]))) return fmtBinary;
        if (p[i] == '\n' && i > 0) fmt = p[i - 1] == '\r' ? fmtAnsi : fmtAnsiLf;
    }
    return fmt;
}

/// How pipes tell that the other side is gone.
bool IsEndOfStream(DWORD dwError) {
    return dwError == ERROR_BROKEN_PIPE || dwError == ERROR_PIPE_NOT_CONNECTED ||
           dwError == ERROR_HANDLE_EOF;
}
} // namespace

const wchar_t* PathOf(const UniPath* pPath) { return pPath ? pPath->Path() : nullptr; }

bool StartsWithUtf8Mark(const BYTE* pBytes, std::size_t cb) {
    return cb >= sizeof(kUtf8Mark) && std::memcmp(pBytes, kUtf8Mark, sizeof(kUtf8Mark)) == 0;
}

TextProbe ProbeText(const BYTE* pBlock, DWORD cbBlock, DWORD cbFile) {
    const bool bUnknown = cbFile == kTextSizeUnknown;
    if (cbBlock >= 2) {
        const auto wFirst = static_cast<wchar_t>(pBlock[0] | pBlock[1] << 8);
        if (wFirst == kUtf16Mark || wFirst == kUtf16MarkReversed) {
            const DWORD cch = bUnknown ? kTextSizeUnknown : TextSize((cbFile - 2) / 2, 1);
            return {wFirst == kUtf16Mark ? fmtUnicode : fmtUnicodeBE, cch};
        }
    }
    if (StartsWithUtf8Mark(pBlock, cbBlock)) return ProbeUtf8(pBlock, cbBlock, cbFile);
    const CSFileTextFmt fmt = ProbeBytes(pBlock, cbBlock);
    return {fmt, bUnknown ? kTextSizeUnknown : TextSize(cbFile, fmt == fmtAnsiLf ? 2 : 1)};
}

bool ReadUpTo(CoreFile& file, void* pBuffer, unsigned __int64 cb, unsigned __int64* pcbDone) {
    *pcbDone = 0;
    while (*pcbDone < cb) {
        const auto cbPiece =
            static_cast<DWORD>(std::min<unsigned __int64>(cb - *pcbDone, kReadPiece));
        DWORD cbMoved = 0;
        ::SetLastError(NO_ERROR); // a read that meets the end succeeds, with nothing
        const int bAll = file.ReadBin(static_cast<BYTE*>(pBuffer) + *pcbDone, cbPiece, &cbMoved);
        const DWORD dwError = bAll ? NO_ERROR : ::GetLastError();
        *pcbDone += cbMoved;
        if (bAll) continue;
        // More of a message, or a piece of what a pipe is going to tell.
        if (cbMoved && (dwError == NO_ERROR || dwError == ERROR_MORE_DATA)) continue;
        return dwError == NO_ERROR || IsEndOfStream(dwError);
    }
    return true;
}
