#pragma once
#include "runtime/base/heap_array.h"

#include <cstddef>

/// A text that grows. What does not fit into memory any more is left out, and IsWhole says so.
class CommandText {
  public:
    /// Appends a formatted piece, in the dialect of FormatText, of at most 1,023 characters.
    void Add(const wchar_t* pszFormat, ...);
    /// Appends another text, of any length.
    void Append(const CommandText& other) { AddPiece(other.Get(), other.GetLength()); }
    /// A line feed between lines: nothing before the first one.
    void NextLine();
    [[nodiscard]] bool IsWhole() const { return bWhole; }
    /// The text with its terminator; the empty text without memory.
    const wchar_t* Get() const { return text.IsReady() ? text.Get() : L""; }
    std::size_t GetLength() const { return cch; }

  private:
    void AddPiece(const wchar_t* psz, std::size_t cchPiece);

    HeapArray<wchar_t> text;
    std::size_t cch = 0;
    bool bWhole = true;
};
