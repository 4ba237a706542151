#pragma once
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <new>
#include <utility>

/// Elements of a plain type on the heap, owned by this object and zero at the start. There is no
/// block for 0 elements and when out of memory: IsReady is what to test before an element is used.
template <class T>
class HeapArray {
  public:
    HeapArray() = default;
    /// So many elements.
    explicit HeapArray(std::size_t nWanted) noexcept {
        // Beyond that size the compiler's own test would raise an exception in programs that have
        // them.
        // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers may be elements too
        if (nWanted && nWanted <= PTRDIFF_MAX / sizeof(T)) p = new (std::nothrow) T[nWanted]();
        if (p) n = nWanted;
    }
    /// Takes the other's block.
    HeapArray(HeapArray&& other) noexcept
        : p(std::exchange(other.p, nullptr)), n(std::exchange(other.n, 0)) {}
    /// Takes the other's block; what was held is freed.
    HeapArray& operator=(HeapArray&& other) noexcept {
        HeapArray taken(std::move(other));
        std::swap(p, taken.p); // what was held goes with the block
        std::swap(n, taken.n);
        return *this;
    }
    HeapArray(const HeapArray&) = delete; // owns the block
    HeapArray& operator=(const HeapArray&) = delete;
    ~HeapArray() { delete[] p; }

    [[nodiscard]] bool IsReady() const { return p != nullptr; } ///< Whether there is a block.
    std::size_t GetCount() const { return n; }                  ///< The number of elements.
    std::size_t GetByteCount() const { return n * sizeof(T); }  ///< Their size in bytes.
    /// The first element; null without a block.
    T* Get() { return p; }
    const T* Get() const { return p; }
    /// The element at that index, of which there must be one.
    T& operator[](std::size_t nAt) {
        assert(nAt < n);
        return p[nAt];
    }
    const T& operator[](std::size_t nAt) const {
        assert(nAt < n);
        return p[nAt];
    }
    T* begin() { return p; }               ///< The first element, for loops.
    T* end() { return p + n; }             ///< The place behind the last element.
    const T* begin() const { return p; }   ///< The same of what does not change.
    const T* end() const { return p + n; } ///< The same of what does not change.

  private:
    T* p = nullptr;
    std::size_t n = 0;
};

/// A copy of a text with its terminator. Not ready for a null text and when out of memory.
inline HeapArray<wchar_t> CopyToHeap(const wchar_t* psz) {
    HeapArray<wchar_t> copy(psz ? std::wcslen(psz) + 1 : 0);
    if (copy.IsReady()) std::wmemcpy(copy.Get(), psz, copy.GetCount());
    return copy;
}
