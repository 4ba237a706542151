#pragma once
#include "support/guard_page.h"
#include <windows.h>
#include <random>
#include <string>

/// A buffer of that many characters between two pages that may not be touched: its end lies right
/// before one. Filled with what is no terminator.
class PathBuffer {
  public:
    explicit PathBuffer(std::wstring_view str = L"", std::size_t cchWanted = MAX_PATH)
        : cch(cchWanted), memory(cchWanted * sizeof(wchar_t)) {
        std::memset(memory.Get(), 0xEE, memory.GetSize());
        Set(str);
    }
    operator wchar_t*() const { return static_cast<wchar_t*>(memory.Get()); }
    std::wstring Str() const { return std::wstring(static_cast<wchar_t*>(memory.Get())); }
    void Set(std::wstring_view str) {
        if (cch <= str.size()) return;
        str.copy(*this, str.size());
        (*this)[str.size()] = 0;
    }

  private:
    std::size_t cch;
    GuardedMemory memory;
};

/// A buffer for paths that starts right behind a page that may not be touched.
class FrontGuardedPath {
  public:
    FrontGuardedPath() {
        pBase = static_cast<char*>(
            ::VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD dwOld = 0;
        ::VirtualProtect(pBase, kPage, PAGE_NOACCESS, &dwOld);
    }
    FrontGuardedPath(const FrontGuardedPath&) = delete;
    FrontGuardedPath& operator=(const FrontGuardedPath&) = delete;
    ~FrontGuardedPath() { ::VirtualFree(pBase, 0, MEM_RELEASE); }
    wchar_t* Put(std::wstring_view str) {
        auto* psz = reinterpret_cast<wchar_t*>(pBase + kPage);
        str.copy(psz, str.size());
        psz[str.size()] = 0;
        return psz;
    }

  private:
    static constexpr std::size_t kPage = 4096;
    char* pBase = nullptr;
};

/// Texts put together from what paths, names and commands are made of; most are short, some around
/// the length where path buffers end.
class RandomPaths {
  public:
    explicit RandomPaths(unsigned nSeed) : random(nSeed) {}
    std::wstring Next(std::size_t cchMost = 262) {
        std::size_t cch = Below(12);
        if (Below(24) == 0) cch = 250 + Below(16);
        std::wstring str;
        while (str.size() < cch) {
            str += kPieces[Below(std::size(kPieces))];
            if (cch >= 250) str.append(Below(40), L'n');
        }
        if (str.size() > cchMost) str.resize(cchMost);
        return str;
    }
    std::size_t Below(std::size_t n) { return random() % n; }

  private:
    static constexpr std::wstring_view kPieces[] = {
        L"\\",     L"\\",   L"\\\\", L"/",          L"/",    L":", L"C:",     L"c:\\",
        L"a",      L"b",    L"bc",   L"A",          L"z",    L".", L".",      L" ",
        L"\t",     L"\"",   L"\"",   L"%1",         L"%",    L"*", L"?",      L"<",
        L"|",      L"&#",   L"46",   L"58;",        L"&#46", L";", L"\u00E9", L"\u00C9",
        L"\u2013", L":NT:", L"FAT",  L"%TSLY_TEST%"};
    std::mt19937 random;
};

constexpr int kRandomInputs = 200000;

inline bool IsSep(wchar_t ch) { return ch == L'\\' || ch == L'/'; }
