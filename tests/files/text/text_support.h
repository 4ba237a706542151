#pragma once
#include "files/text/cs_file.h"
#include "runtime/base/dll_buf.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <string>
#include <string_view>

// What the tests of text files share, and what the formats are, written down a second time.

/// Bytes with zeros in them.
template <std::size_t n>
std::string Bytes(const char (&sz)[n]) {
    return std::string(sz, n - 1);
}

inline const std::string kUtf8 = "\xEF\xBB\xBF", kUtf16 = "\xFF\xFE", kUtf16BE = "\xFE\xFF";

/// What ReadText gave.
struct TextRead {
    bool bText = false; // it gave one
    std::wstring str;
    unsigned cch = 0xEEEE;
    CSFileTextFmt fmt = fmtUnknown;
};

inline TextRead ReadTextOf(const std::wstring& strPath, CSFileTextFmt fmt = fmtUnknown,
                           wchar_t chReplacement = L'?') {
    TextRead read;
    read.fmt = fmt;
    wchar_t* psz = CSFile::ReadText(strPath.c_str(), &read.cch, &read.fmt, chReplacement);
    if (!psz) return read;
    read.bText = true;
    if (read.cch == 0 || psz[read.cch - 1] != L'\0') {
        ADD_FAILURE() << "no terminator, " << read.cch;
    } else {
        read.str.assign(psz, read.cch - 1);
    }
    FreeDllBuf(psz);
    return read;
}

inline std::wstring Converted(UINT nCodePage, std::string_view bytes) {
    if (bytes.empty()) return L"";
    int cb = static_cast<int>(bytes.size());
    std::wstring str(
        static_cast<std::size_t>(::MultiByteToWideChar(nCodePage, 0, bytes.data(), cb, nullptr, 0)),
        L'\0');
    ::MultiByteToWideChar(nCodePage, 0, bytes.data(), cb, str.data(), static_cast<int>(str.size()));
    return str;
}

inline bool IsTextCharacter(unsigned ch) {
    return (ch >= 32 && ch != 127) || ch == 9 || ch == 10 || ch == 12 || ch == 13 || ch == 26;
}

inline std::wstring Sanitized(std::wstring str, wchar_t chReplacement) {
    for (wchar_t& ch : str)
        if (!IsTextCharacter(ch)) ch = chReplacement;
    return str;
}

/// The number of line feeds without a carriage return, of which one at the start counts or does
/// not.
inline DWORD BareLineFeeds(std::string_view bytes, bool bFirstToo) {
    DWORD nCount = 0;
    for (std::size_t i = bFirstToo ? 0 : 1; i < bytes.size(); ++i)
        nCount += bytes[i] == '\n' && (i == 0 || bytes[i - 1] != '\r');
    return nCount;
}

inline std::wstring WithCarriageReturns(const std::wstring& str, bool bFirstToo) {
    std::wstring strOut;
    for (std::size_t i = 0; i < str.size(); ++i) {
        bool bBare = str[i] == L'\n' && (i == 0 ? bFirstToo : str[i - 1] != L'\r');
        if (bBare) strOut += L'\r';
        strOut += str[i];
    }
    return strOut;
}

/// The format of a file with these bytes, and the number of characters that GetTextSize tells.
struct ToldText {
    CSFileTextFmt fmt = fmtUnknown;
    DWORD cch = 0;
};

inline ToldText TellText(const std::string& bytes) {
    const auto cb = static_cast<DWORD>(bytes.size());
    if (cb == 0) return {};
    if (cb == 1) return {fmtAnsi, 2};
    const std::string block = bytes.substr(0, 8192);
    if (block.starts_with(kUtf16)) return {fmtUnicode, (cb - 2) / 2 + 1};
    if (block.starts_with(kUtf16BE)) return {fmtUnicodeBE, (cb - 2) / 2 + 1};
    if (block.starts_with(kUtf8)) {
        const std::string_view text = std::string_view(block).substr(3);
        DWORD nBare = BareLineFeeds(text, true);
        CSFileTextFmt fmt = nBare ? fmtUtf8Lf : fmtUtf8;
        if (cb > 8192) return {fmt, (cb - 3) * (nBare ? 2 : 1) + 1};
        return {fmt, static_cast<DWORD>(Converted(CP_UTF8, text).size()) + nBare + 1};
    }
    CSFileTextFmt fmt = fmtAnsi;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (!IsTextCharacter(static_cast<unsigned char>(block[i]))) return {fmtBinary, cb + 1};
        if (block[i] == '\n' && i > 0) fmt = block[i - 1] == '\r' ? fmtAnsi : fmtAnsiLf;
    }
    return {fmt, cb * (fmt == fmtAnsiLf ? 2 : 1) + 1};
}

/// The text of a file with these bytes, read in that format.
inline std::wstring DecodeText(std::string_view bytes, CSFileTextFmt fmt, wchar_t chReplacement) {
    if (fmt == fmtUnicode || fmt == fmtUnicodeBE) {
        if (bytes.starts_with(fmt == fmtUnicode ? kUtf16 : kUtf16BE)) bytes.remove_prefix(2);
        std::wstring str;
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
            auto n0 = static_cast<unsigned char>(bytes[i]),
                 n1 = static_cast<unsigned char>(bytes[i + 1]);
            str += static_cast<wchar_t>(fmt == fmtUnicode ? n0 | n1 << 8 : n1 | n0 << 8);
        }
        return str;
    }
    if (fmt == fmtUtf8 || fmt == fmtUtf8Lf) {
        if (bytes.starts_with(kUtf8)) bytes.remove_prefix(3);
        std::wstring str = Sanitized(Converted(CP_UTF8, bytes), chReplacement);
        return fmt == fmtUtf8 ? str : WithCarriageReturns(str, true);
    }
    if (fmt == fmtAnsiLf) {
        std::wstring str;
        for (char ch : bytes) str += static_cast<wchar_t>(static_cast<signed char>(ch));
        return Sanitized(WithCarriageReturns(str, false), chReplacement);
    }
    return Sanitized(Converted(::GetACP(), bytes), chReplacement);
}
