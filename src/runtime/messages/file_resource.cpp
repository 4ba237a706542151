#include "runtime/messages/file_resource.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/msg.h"
#include "runtime/messages/res_str.h"

namespace {
constexpr const wchar_t* kFileDataType = L"FILE_DATA";

/// What to do with the place where the file is to be.
enum class Decision { Write, LeaveAsDone, LeaveAsFailed };

/// The first flag that is given counts; without one the user does.
Decision Decide(HWND hwnd, const wchar_t* pszFile, unsigned nFlags) {
    if (::GetFileAttributesW(pszFile) == INVALID_FILE_ATTRIBUTES) return Decision::Write;
    if (nFlags & kExistingFileFails) return Decision::LeaveAsFailed;
    if (nFlags & kExistingFileStays) return Decision::LeaveAsDone;
    if (nFlags & kExistingFileOverwritten) return Decision::Write;
    int nAnswer = MsgFmt(hwnd, MB_YESNO | MB_ICONEXCLAMATION, -IDS_FILE_OVERWRITE, pszFile);
    return nAnswer == IDYES ? Decision::Write : Decision::LeaveAsFailed;
}

bool WriteAll(HANDLE hFile, const void* pData, DWORD cb) {
    DWORD cbWritten = 0;
    return ::WriteFile(hFile, pData, cb, &cbWritten, nullptr) && cbWritten == cb;
}
} // namespace

const void* LoadFileResource(DWORD* pcb, int nId, HINSTANCE hinst, const wchar_t* pszType) {
    if (pcb) *pcb = 0;
    if (nId == 0) return nullptr;
    if (nId < 0) hinst = GetLibraryInstance(); // unlike strings, whatever module is named
    ConvertResourceId(nId, hinst);
    if (nId < 0 || nId > 0xFFFF) return nullptr; // FindResourceW would take it for a name's address
    HRSRC hrsrc = ::FindResourceW(hinst, MAKEINTRESOURCEW(nId), pszType ? pszType : kFileDataType);
    if (!hrsrc) return nullptr;
    HGLOBAL hLoaded = ::LoadResource(hinst, hrsrc);
    const void* pData = hLoaded ? ::LockResource(hLoaded) : nullptr;
    if (pData && pcb) *pcb = ::SizeofResource(hinst, hrsrc);
    return pData;
}

int CreateFileFromResource(HWND hwnd, const wchar_t* pszFile, int nId, HINSTANCE hinst,
                           unsigned nFlags) {
    Decision decision = Decide(hwnd, pszFile, nFlags);
    if (decision != Decision::Write) return decision == Decision::LeaveAsDone;
    DWORD cb = 0;
    const void* pData = LoadFileResource(&cb, nId, hinst);
    if (!pData) return 0;
    HANDLE hFile = ::CreateFileW(pszFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        MsgFmt(hwnd, MB_ICONERROR, -IDS_FILE_NOT_CREATED, pszFile);
        return 0;
    }
    OwnedHandle file(hFile);
    if (WriteAll(file.Get(), pData, cb)) return 1;
    file.Reset(); // an open file cannot be deleted
    MsgFmt(hwnd, MB_ICONERROR, -IDS_FILE_NOT_WRITTEN, pszFile);
    ::DeleteFileW(pszFile);
    return 0;
}
