#include "host/commands/export_text.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/digest.h"
#include "runtime/base/ownership.h"
#include "runtime/text/text_format.h"

#include <algorithm>
#include <cwchar>

namespace {
/// The part of a full path up to its last backslash, which stays. False if it does not fit.
bool CopyFolder(wchar_t (&szFolder)[MAX_PATH], const wchar_t* pszPath) {
    const wchar_t* pszEnd = std::wcsrchr(pszPath, L'\\');
    if (!pszEnd || pszEnd - pszPath + 2 > MAX_PATH) return false;
    std::copy(pszPath, pszEnd + 1, szFolder);
    szFolder[pszEnd + 1 - pszPath] = 0;
    return true;
}

/// Writes a new file through to the disk.
bool WriteNew(const wchar_t* pszPath, const HeapArray<char>& bytes) {
    HANDLE hOpened = ::CreateFileW(pszPath, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hOpened == INVALID_HANDLE_VALUE) return false;
    OwnedHandle file(hOpened);
    auto cb = static_cast<DWORD>(bytes.GetCount());
    DWORD cbDone = 0;
    return ::WriteFile(file.Get(), bytes.Get(), cb, &cbDone, nullptr) && cbDone == cb &&
           ::FlushFileBuffers(file.Get());
}
} // namespace

bool FormatExportTime(wchar_t (&szText)[32], unsigned __int64 qwTime) {
    SYSTEMTIME st{};
    if (!ToUtcTime(qwTime, st)) return false;
    wchar_t szTime[kTimeTextSize];
    FormatTime(szTime, st);
    FormatText(szText, L"%sZ", szTime);
    return true;
}

void AddExportHead(CommandText& text) {
    text.Add(L"; Icon layouts of Tessaly. Times are UTC.\r\n[Tessaly]\r\nFormat=%u\r\n",
             kExportFormat);
}

void AddExportSection(CommandText& text, unsigned __int64 qwTime,
                      std::span<const IconRecord> records) {
    wchar_t szName[kSnapshotNameLength + 1], szTime[32] = L"";
    FormatSnapshotName(szName, qwTime);
    static_cast<void>(FormatExportTime(szTime, qwTime));
    text.Add(L"\r\n[%s]\r\nTime=%s\r\nIcons=%u\r\nDigest=", szName, szTime,
             static_cast<unsigned>(records.size()));
    unsigned char digest[kMd5Size];
    CalcMD5(digest, records.data(), records.size_bytes());
    for (unsigned char b : digest) text.Add(L"%02x", b);
    text.Add(L"\r\n");
    for (const IconRecord& record : records) {
        text.Add(L"Icon=%u %ld %ld %u %08X%08X\r\n", record.nIndex, record.pt.x, record.pt.y,
                 record.cchName, static_cast<unsigned>(record.qwNameKey >> 32),
                 static_cast<unsigned>(record.qwNameKey));
    }
}

CommandResult WriteExportFile(const wchar_t* pszPath, const CommandText& text) {
    HeapArray<char> bytes(text.GetLength());
    if (!text.IsWhole() || !bytes.IsReady()) return CommandResult::NoMemory;
    std::transform(text.Get(), text.Get() + text.GetLength(), bytes.begin(),
                   [](wchar_t ch) { return static_cast<char>(ch); });

    wchar_t szFull[MAX_PATH], szFolder[MAX_PATH], szNew[MAX_PATH];
    DWORD cch = ::GetFullPathNameW(pszPath, MAX_PATH, szFull, nullptr);
    if (!cch || cch >= MAX_PATH || !CopyFolder(szFolder, szFull) ||
        !::GetTempFileNameW(szFolder, L"tsl", 0, szNew)) {
        return CommandResult::FileFailed;
    }
    ScopeExit remove([&] { ::DeleteFileW(szNew); });
    if (!WriteNew(szNew, bytes) ||
        !::MoveFileExW(szNew, szFull, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return CommandResult::FileFailed;
    }
    remove.Dismiss();
    return CommandResult::Done;
}
