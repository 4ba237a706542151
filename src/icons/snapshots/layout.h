#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/heap_array.h"
#include "store/registry/reg_key.h"

#include <span>

// A layout as a registry value, which is the MD5 of its records, 16 bytes, and one or more
// IconRecords; and as what is sent to the shell side. A value name may be null, as a RegKey's.

/// The number of records of the value; 0 if it is absent or its size is none of a layout. Neither
/// type nor digest is looked at.
unsigned CountLayoutRecords(const RegKey& key, const wchar_t* pszName);
/// Copies the records of a value that has nRecords of them. False, with pRecords as it was, if its
/// digest fails, if it has another size, and when out of memory.
[[nodiscard]] bool ReadLayoutRecords(const RegKey& key, const wchar_t* pszName,
                                     IconRecord* pRecords, unsigned nRecords);
/// The bytes of the value, to be stored as REG_BINARY. Not ready for no records, for more than a
/// value can hold, and when out of memory.
HeapArray<unsigned char> MakeLayoutValue(const IconRecord* pRecords, unsigned nRecords);

/// What the list view is sent by WM_COPYDATA for it; the records are borrowed.
COPYDATASTRUCT MakeRestoreData(std::span<IconRecord> records);
/// Has the shell side move the icons that the records name, and returns when it has; messages that
/// are sent to the caller's windows are handled meanwhile.
void SendRestore(HWND hwndListView, std::span<IconRecord> records);
