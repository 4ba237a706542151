#include "store/ini/ini_file.h"
#include "files/disk/path_fs.h"
#include "files/stream/core_file.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_copy.h"
#include "store/ini/parser.h"
#include "store/registry/reg_key.h"

#include <cwchar>
#include <new>

namespace {
constexpr wchar_t kByteOrderMark = 0xFEFF;
constexpr unsigned long long kMaxBlock = 0xFFFFFFFF; // bytes, as the platform writes at once
} // namespace

// An object and what its subclasses override

IniFile::IniFile(const wchar_t* pszFile) { SetPath(pszFile); }

IniFile::~IniFile() { DeleteParser(); }

unsigned IniFile::MakeData(wchar_t*) { return 0; }

int IniFile::CallBack(CallBackFlag, const wchar_t*, const wchar_t*, const wchar_t*) { return 1; }

void IniFile::SetPath(const wchar_t* pszFile) {
    ::lstrcpynW(szPath, pszFile ? pszFile : L"", kPathSize);
}

int IniFile::DeleteParser() {
    delete pParser;
    pParser = nullptr;
    return 0;
}

// The steps of a pass

int IniFile::GetComment(wchar_t* pszBuffer) {
    if (!pParser || !pszBuffer || !pParser->SkipWhite()) return 0;
    if (!pParser->IsCR() && pParser->GetCurrentChar() != L';') return 0;
    pParser->CopyToLineEnd(pszBuffer, kTextSize);
    pParser->SkipCR();
    return 1;
}

int IniFile::GetSec(wchar_t* pszBuffer) {
    if (!pParser || !pszBuffer) return 0;
    pParser->SkipWhiteLines();
    if (!pParser->MustBe(L'[')) return 0;
    pParser->CopyToChar(L']', pszBuffer, kTextSize);
    if (!pParser->NotEnd()) return 0;
    pParser->SkipLine();
    return 1;
}

int IniFile::GetVar(wchar_t* pszBuffer) {
    if (!pParser || !pszBuffer) return 0;
    pParser->SkipWhiteLines();
    if (!pParser->NotEnd()) return 0;
    if (pParser->GetCurrentChar() == L'[' || pParser->GetCurrentChar() == L';') return 0;
    unsigned cch = pParser->CopyToChar(L'=', pszBuffer, kTextSize);
    if (!pParser->MustBe(L'=')) return 0;
    while (cch && pszBuffer[cch - 1] == L' ') pszBuffer[--cch] = 0; // "name =": tabs stay
    return 1;
}

int IniFile::GetVal(wchar_t* pszBuffer) {
    if (!pParser || !pszBuffer) return 0;
    pParser->SkipWhite();
    pParser->CopyToLineEnd(pszBuffer, kValueSize);
    pParser->SkipCR();
    return 1;
}

// Whole passes. A callback that gives 0 ends them, and may have given the parser up besides.

int IniFile::ReportComments(const wchar_t* pszSection) {
    wchar_t szComment[kTextSize];
    while (GetComment(szComment)) {
        if (!Stop(CallBack(cbComment, pszSection, szComment, nullptr))) return 0;
    }
    return 1;
}

int IniFile::ReportVariables(const wchar_t* pszSection) {
    wchar_t szName[kTextSize], szValue[kValueSize];
    while (GetVar(szName)) {
        GetVal(szValue);
        if (!Stop(CallBack(cbVar, pszSection, szName, szValue))) return 0;
        if (!ReportComments(pszSection)) return 0;
    }
    return 1;
}

int IniFile::ReadSections() {
    wchar_t szSection[kTextSize] = {};
    if (!ReportComments(szSection)) return 0;
    while (GetSec(szSection)) {
        if (!ReportComments(szSection) || !ReportVariables(szSection)) return 0;
    }
    return CallBack(cbEnd, nullptr, nullptr, nullptr) != 0;
}

int IniFile::ReadAll(const wchar_t* pszText, unsigned cchText) {
    DeleteParser();
    pParser = new (std::nothrow) Parser(pszText, cchText);
    if (!pParser) return 0;
    if (!CallBack(cbBegin, nullptr, nullptr, nullptr)) return 0;
    // The callback may have given the parser up, here as anywhere.
    if (!pParser || !pParser->SkipUnicodePrefix()) return 0;
    return ReadSections();
}

// Files

int IniFile::ReadData() {
    if (!*szPath) return 0; // an object for a text alone
    CoreFile file(szPath, 0);
    if (!file.IsReady()) return 0;
    DWORD cb = file.GetSize(nullptr);
    if (!cb || cb > kMaxBlock - sizeof(wchar_t)) return 0;
    HeapArray<wchar_t> text(cb / sizeof(wchar_t) + 1); // a zero completes an odd last byte
    if (!text.IsReady()) return 0;
    file.ReadBin(text.Get(), cb, nullptr); // what could not be read stays zero
    int nResult = ReadAll(text.Get(), cb / sizeof(wchar_t) + cb % sizeof(wchar_t));
    // The parser outlives the pass, the text does not.
    DeleteParser();
    return nResult;
}

int IniFile::WriteData() {
    // Measured and then written by the same routine, so that the block is just large enough.
    unsigned cch = MakeData(nullptr);
    if (!cch) {
        ::DeleteFileW(szPath);
        return 1;
    }
    if (cch > kMaxBlock / sizeof(wchar_t)) return 0;
    HeapArray<wchar_t> text(cch);
    if (!text.IsReady()) return 0;
    MakeData(text.Get());
    CoreFileAttrib attrib(szPath, FILE_ATTRIBUTE_NORMAL); // put back when the file is closed
    CoreFile file(szPath, GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    if (!file.IsReady()) return 0;
    file.WriteBin(&kByteOrderMark, sizeof(kByteOrderMark), nullptr);
    file.WriteBin(text.Get(), static_cast<DWORD>(text.GetByteCount()), nullptr);
    return 1;
}

void IniFile::WriteSec(wchar_t*& pszOut, const wchar_t* pszName, unsigned& nCount) {
    CopyStr(pszOut, L"[", nCount);
    CopyStr(pszOut, pszName, nCount);
    CopyStr(pszOut, L"]\r\n", nCount);
}

void IniFile::WriteVar(wchar_t*& pszOut, const wchar_t* pszName, const wchar_t* pszValue,
                       unsigned& nCount) {
    CopyStr(pszOut, pszName, nCount);
    CopyStr(pszOut, L"=", nCount);
    CopyStr(pszOut, pszValue, nCount);
    CopyStr(pszOut, L"\r\n", nCount);
}

int IniFile::FindBootFile(const wchar_t* pszName, wchar_t* pszFound) {
    constexpr unsigned kMaxValue = 80; // bytes
    constexpr int kBootPathSize = 20;
    if (!pszName || !pszFound) return 0;
    RegKey key;
    if (!key.Open(L"HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Setup", 0)) return 0;
    wchar_t szValue[kMaxValue / sizeof(wchar_t) + 1] = {}; // a value may come unterminated
    if (!key.GetBin(L"BootDir", szValue, kMaxValue) || !*szValue) return 0;
    wchar_t szFile[kBootPathSize];
    ::lstrcpynW(szFile, szValue, kBootPathSize);
    int cch = ::lstrlenW(szFile);
    if (szFile[cch - 1] != L'\\' && szFile[cch - 1] != L'/' && cch + 1 < kBootPathSize) {
        szFile[cch++] = L'\\';
    }
    ::lstrcpynW(szFile + cch, pszName, kBootPathSize - cch);
    if (!FileExists(szFile)) return 0;
    ::lstrcpynW(pszFound, szFile, kPathSize);
    return 1;
}

int IniFile::FindBootFile(const wchar_t* pszName) { return FindBootFile(pszName, szPath); }
