#pragma once
#include <windows.h>
#include <string>
#include <vector>

// What the test desktop and its users say to each other. A command is one line of fields, a reply
// is "ok" or "error" with a reason, and then rows of fields. The command travels as WM_COPYDATA to
// the desktop's message-only window, the reply through a file mapping that the caller made.

/// The command window's class; it is a child of HWND_MESSAGE.
constexpr const wchar_t* kCommandWindowClass = L"TessalyTestDesktopCommands";
/// COPYDATASTRUCT::dwData of a command. The data is the mapping's name, '\n' and the command's row,
/// in UTF-16, not terminated.
constexpr ULONG_PTR kCommandTag = 0x4B534454; // "TDSK"
/// Size of the reply's mapping: the text's length in characters as a DWORD, then the text. A
/// thousand items with names of 400 characters need less than a quarter.
constexpr DWORD kReplyBytes = 4 * 1024 * 1024;

/// What the command window returns. 0 is none of these: it was not the desktop who answered.
enum CommandResult : LRESULT { kAnswered = 1, kNotUnderstood, kNotWritten };

using Row = std::vector<std::wstring>;

/// Fields joined by tabs; backslash, tab, newline and carriage return are escaped.
std::wstring JoinRow(const Row& row);
Row SplitRow(const std::wstring& strLine);
/// Rows joined by newlines. An empty text is no row, not one empty row.
std::wstring JoinRows(const std::vector<Row>& rows);
std::vector<Row> SplitRows(const std::wstring& str);
