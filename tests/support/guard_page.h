#pragma once
#include <windows.h>
#include <cstring>
#include <string_view>

/// Memory whose last byte lies right before a page that may not be touched: reading or writing one
/// byte too far ends the test program.
class GuardedMemory {
  public:
    explicit GuardedMemory(std::size_t cbWanted) : cb(cbWanted) {
        std::size_t cbPages = (cb + kPage - 1) / kPage * kPage;
        pBase = static_cast<char*>(
            ::VirtualAlloc(nullptr, cbPages + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD dwOld = 0;
        ::VirtualProtect(pBase + cbPages, kPage, PAGE_NOACCESS, &dwOld);
        pData = pBase + cbPages - cb;
    }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;
    ~GuardedMemory() { ::VirtualFree(pBase, 0, MEM_RELEASE); }

    void* Get() const { return pData; }
    std::size_t GetSize() const { return cb; }

  private:
    static constexpr std::size_t kPage = 4096;
    std::size_t cb;
    char* pBase = nullptr;
    char* pData = nullptr;
};

/// A terminated text whose terminator is the last thing that may be read.
class GuardedText {
  public:
    explicit GuardedText(std::wstring_view str) : memory((str.size() + 1) * sizeof(wchar_t)) {
        auto* psz = static_cast<wchar_t*>(memory.Get());
        std::memcpy(psz, str.data(), str.size() * sizeof(wchar_t));
        psz[str.size()] = 0;
    }
    const wchar_t* Get() const { return static_cast<const wchar_t*>(memory.Get()); }

  private:
    GuardedMemory memory;
};

/// Guarded memory for many small pieces in turn: each piece ends where the memory ends, and takes
/// the place of the one before it.
class GuardedArea {
  public:
    explicit GuardedArea(std::size_t cbLargest) : memory(cbLargest) {}
    /// A piece of that many bytes, filled with a pattern that is no text's end.
    void* Put(std::size_t cb) {
        auto* p = static_cast<char*>(memory.Get()) + (memory.GetSize() - cb);
        std::memset(p, 0xEE, cb);
        return p;
    }
    /// A piece that holds a terminated text.
    wchar_t* Put(std::wstring_view str) {
        auto* psz = static_cast<wchar_t*>(Put((str.size() + 1) * sizeof(wchar_t)));
        std::memcpy(psz, str.data(), str.size() * sizeof(wchar_t));
        psz[str.size()] = 0;
        return psz;
    }

  private:
    GuardedMemory memory;
};
