#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/heap_array.h"

#include <cstddef>
#include <span>
#include <string_view>

/// A section of an export, as it was read.
struct ImportSection {
    wchar_t szName[20] = L"";          // as the file has it, for people: cut, signs replaced
    const wchar_t* pszFault = nullptr; // why it cannot be taken; null: it can
    unsigned __int64 qwTime = 0;       // 0 with a fault
    std::size_t nAt = 0;               // where it begins, for MoveTo
};

/// Reads the text of an export (host/commands/export_text.h), which may be anything: every
/// section by itself, so that a damaged one hides no other. Beside that of the text only the memory
/// for one section's records is used, and each character is looked at but a few times.
class ImportReader {
  public:
    enum class Head { Ours, OtherVersion, NotOurs };

    /// The text is borrowed and need not be terminated.
    explicit ImportReader(std::wstring_view textWhole);
    /// False when out of memory: nothing can be read then.
    [[nodiscard]] bool IsReady() const { return records.IsReady(); }

    /// Reads up to the first snapshot's section. Called first.
    Head ReadHead();
    /// Reads the next section; false at the end.
    [[nodiscard]] bool ReadSection(ImportSection& section);
    /// Goes back to a section that was read, which is the next one then.
    void MoveTo(const ImportSection& section) { nPos = section.nAt; }
    /// The records of the section that was read last, if it has no fault.
    std::span<const IconRecord> GetRecords() const { return {records.Get(), nRecords}; }

  private:
    struct Keys;

    [[nodiscard]] bool PeekLine(std::wstring_view& line, std::size_t& nNext) const;
    [[nodiscard]] bool ReadEntry(std::wstring_view& key, std::wstring_view& value);
    const wchar_t* ReadKeys(Keys& keys);
    const wchar_t* TakeIcon(std::wstring_view value);
    const wchar_t* Check(const Keys& keys, unsigned __int64 qwTime) const;
    const wchar_t* ReadBody(std::wstring_view name, unsigned __int64& qwTime);

    std::wstring_view text;
    std::size_t nPos = 0;
    HeapArray<IconRecord> records; // of kMaxCapturedIcons
    unsigned nRecords = 0;
};
