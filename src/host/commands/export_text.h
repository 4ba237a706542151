#pragma once
#include "icons/agent/icon_record.h"
#include "host/commands/command_text.h"
#include "icons/snapshots/command_result.h"

#include <span>

// The text file that snapshots are taken to another computer with: ASCII, lines that end in CR LF.

/// The file's number of the form; another one is another version's.
constexpr unsigned kExportFormat = 1;

/// The lines before the first snapshot.
void AddExportHead(CommandText& text);
/// A snapshot's section, with a blank line before it.
void AddExportSection(CommandText& text, unsigned __int64 qwTime,
                      std::span<const IconRecord> records);
/// The line's value of "Time": UTC, whole seconds. False for a time stamp that is no date.
[[nodiscard]] bool FormatExportTime(wchar_t (&szText)[32], unsigned __int64 qwTime);

/// Makes the text the file's content, whole or not at all: Done, FileFailed, NoMemory. It goes to a
/// new file of another name in the same folder, which then takes the place of one that is there.
CommandResult WriteExportFile(const wchar_t* pszPath, const CommandText& text);
