#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "files/text/text_encoding.h"
#include "files/text/text_probe.h"
#include "runtime/base/dll_buf.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <shlobj.h>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {
/// The bytes of a text, as a caller would get them.
struct TextData {
    OwnedHandleOf<BYTE*, [](BYTE* p) { ::FreeDllBuf(p); }> block;
    DWORD cb = 0; // without the terminator

    explicit operator bool() const { return static_cast<bool>(block); }
    /// Room for so many bytes and a terminator of two. False without memory, and if 32 bits cannot
    /// count them.
    bool Allocate(unsigned __int64 cbWanted) {
        if (cbWanted > kTextSizeUnknown - 1) return false;
        block.Reset(static_cast<BYTE*>(std::malloc(cbWanted + sizeof(wchar_t))));
        if (!block) return false;
        cb = static_cast<DWORD>(cbWanted);
        std::memset(block.Get() + cb, 0, sizeof(wchar_t));
        return true;
    }
};

TextData MakeUtf16(const wchar_t* pszText, std::size_t cch, bool bReverse, bool bMarker) {
    TextData data;
    const std::size_t cbMark = bMarker ? sizeof(kUtf16Mark) : 0;
    if (!data.Allocate(cch * sizeof(wchar_t) + cbMark)) return data;
    std::memcpy(data.block.Get(), &kUtf16Mark, cbMark);
    std::memcpy(data.block.Get() + cbMark, pszText, cch * sizeof(wchar_t));
    if (bReverse) ReverseUnicodeBytes(data.block.Get(), data.cb);
    return data;
}

TextData MakeBytes(const wchar_t* pszText, std::size_t cch, UINT nCodePage, std::size_t cbMark) {
    TextData data;
    if (cch > INT_MAX) return data; // more than the platform converts
    const auto nChars = static_cast<int>(cch);
    int cb = 0;
    if (nChars) {
        cb = ::WideCharToMultiByte(nCodePage, 0, pszText, nChars, nullptr, 0, nullptr, nullptr);
        if (cb <= 0) return data;
    }
    if (!data.Allocate(static_cast<unsigned>(cb) + cbMark)) return data;
    std::memcpy(data.block.Get(), kUtf8Mark, cbMark);
    if (nChars) {
        ::WideCharToMultiByte(nCodePage, 0, pszText, nChars,
                              reinterpret_cast<char*>(data.block.Get() + cbMark), cb, nullptr,
                              nullptr);
    }
    return data;
}

/// Each pair of carriage return and line feed becomes a line feed.
void DropCarriageReturns(TextData& data) {
    if (!data) return;
    BYTE* p = data.block.Get();
    DWORD nTo = 0;
    for (DWORD i = 0; i < data.cb; ++i) {
        if (p[i] == '\r' && i + 1 < data.cb && p[i + 1] == '\n') continue;
        p[nTo++] = p[i];
    }
    std::memset(p + nTo, 0, sizeof(wchar_t));
    data.cb = nTo;
}

TextData MakeTextData(const wchar_t* pszText, CSFileTextFmt fmt, bool bMarker) {
    TextData data;
    if (!pszText) return data;
    const std::size_t cch = std::wcslen(pszText);
    switch (fmt) {
    case fmtUnicode:
    case fmtUnicodeBE: return MakeUtf16(pszText, cch, fmt == fmtUnicodeBE, bMarker);
    case fmtUtf8:
    case fmtUtf8Lf: data = MakeBytes(pszText, cch, CP_UTF8, bMarker ? sizeof(kUtf8Mark) : 0); break;
    case fmtAnsi:
    case fmtAnsiLf: data = MakeBytes(pszText, cch, ::GetACP(), 0); break;
    default: // no text
        return data;
    }
    if (fmt == fmtUtf8Lf || fmt == fmtAnsiLf) DropCarriageReturns(data);
    return data;
}

void NotifyShell(LONG nEvent, const wchar_t* pszPath) {
    ::SHChangeNotify(nEvent, SHCNF_PATHW, pszPath, nullptr);
}
} // namespace

BYTE* CSFile::PrepareTextData(const wchar_t* pszText, CSFileTextFmt fmt, DWORD* pcb, int bMarker) {
    TextData data = MakeTextData(pszText, fmt, bMarker != 0);
    if (pcb) *pcb = data.cb;
    return data.block.Release();
}

int CSFile::WriteText(const wchar_t* pszPath, const wchar_t* pszText, CSFileTextFmt fmt,
                      int bNotify) {
    // Before the file is opened, which makes it: without the data nothing is touched.
    TextData data = MakeTextData(pszText, fmt, true);
    if (!data) return 0;
    const bool bExisted = GetAttrib(pszPath) != INVALID_FILE_ATTRIBUTES;
    CoreFile file(pszPath, 1);
    if (!file.IsReady() || !file.WriteBin(data.block.Get(), data.cb, nullptr)) return 0;
    if (!file.SetEndOfFile() || !file.Flush()) return 0;
    file.Close();
    if (bNotify) NotifyShell(bExisted ? SHCNE_UPDATEITEM : SHCNE_CREATE, pszPath);
    return 1;
}

int CSFile::AppendText(const wchar_t* pszPath, const wchar_t* pszText, int bNotify) {
    DWORD cb = GetFileSizeForText(pszPath);
    CSFileTextFmt fmt = fmtUnknown;
    if (!GetTextSize(pszPath, &cb, &fmt) || fmt == fmtUnknown) return 0;
    TextData data = MakeTextData(pszText, fmt, false);
    if (!data) return 0;
    CoreFile file(pszPath, 1);
    if (!file.IsReady() || file.MoveTo64(0, FILE_END) < 0) return 0;
    ::SetLastError(NO_ERROR); // opening leaves one behind, which is none
    if (!file.WriteBin(data.block.Get(), data.cb, nullptr)) {
        if (::GetLastError() == NO_ERROR) ::SetLastError(ERROR_WRITE_FAULT);
        return 0;
    }
    if (!file.SetEndOfFile()) return 0;
    file.Close();
    if (bNotify) NotifyShell(SHCNE_UPDATEITEM, pszPath);
    return 1;
}

int CSFile::WriteText(const UniPath* pPath, const wchar_t* pszText, CSFileTextFmt fmt,
                      int bNotify) {
    return WriteText(PathOf(pPath), pszText, fmt, bNotify);
}

int CSFile::AppendText(const UniPath* pPath, const wchar_t* pszText, int bNotify) {
    return AppendText(PathOf(pPath), pszText, bNotify);
}
