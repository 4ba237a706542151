#pragma once
#include "files/stream/core_io.h"
#include "runtime/base/export.h"

#include <windows.h>

/// A file as a stream: one platform handle, and every read and write one platform call. Also the
/// utilities for whole files, which take a path. Several names are those of platform functions,
/// which inside the class are reached with "::".
///
/// Results are 1 for success and 0 for failure unless told otherwise; GetLastError then tells why.
/// A path that is null or empty is a file that cannot be found.
class TESSALY_API CoreFile : public CoreIOObj {
  public:
    CoreFile() = default;
    CoreFile(const wchar_t* pszPath, int bToWrite); ///< Open: IsReady tells whether it is.
    CoreFile(const wchar_t* pszPath, DWORD nAccess, DWORD nShare, DWORD nDisposition, DWORD nFlags);
    CoreFile(const CoreFile&) = delete; // owns the handle
    CoreFile& operator=(const CoreFile&) = delete;
    ~CoreFile() override;
    /// Forgets the handle without closing it.
    void InitCoreFile();

    /// Opens a file. For writing (and reading, shared with nobody) a missing file is made; one that
    /// exists keeps its contents, with the position at its start: only SetEndOfFile cuts. For
    /// reading the file is shared with readers only and must exist.
    // QUIRK: a handle that is held is not closed first and is lost.
    // Test: CoreFileOpen.DoesNotCloseTheHandleThatIsHeld
    [[nodiscard]] int Open(const wchar_t* pszPath, int bToWrite);
    /// Opens with the caller's values; those go to CreateFileW as they are. IsToWrite then tells
    /// whether nAccess has GENERIC_WRITE.
    [[nodiscard]] int Open(const wchar_t* pszPath, DWORD nAccess, DWORD nShare, DWORD nDisposition,
                           DWORD nFlags);
    /// A new object, opened like Open(pszPath, bToWrite), which the caller deletes. Null only
    /// without memory: after a failed open IsReady is 0.
    [[nodiscard]] static CoreFile* CreateObject(const wchar_t* pszPath, int bToWrite);

    void Close() override;
    int IsReady() override;
    int IsToWrite() override;
    unsigned __int64 GetSize64() override;
    int SetEndOfFile() override;
    /// Moves the position (CoreIOObj::MoveTo64). The new one; -1 on failure.
    __int64 MoveTo64(__int64 nDistance, DWORD nMethod) override;
    int Flush() override;
    /// Reads cb bytes. With cb 0 it gives 1 whatever the file, and *pcbDone stays. A read that
    /// meets the end gives 0.
    int ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) override;
    /// Writes cb bytes. With cb 0 it gives 1 whatever the file, and *pcbDone stays.
    int WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) override;

    /// The low half of the new position, INVALID_SET_FILE_POINTER on failure. With nHigh 0 the
    /// distance is the signed nLow alone.
    DWORD MoveTo(long nLow, DWORD nMethod, long nHigh);
    /// Moves to the end. The low half of the new position, INVALID_SET_FILE_POINTER on failure.
    DWORD MoveToEnd();
    /// The low half of the size; 0 on failure, or if it is 0xFFFFFFFF. pnHigh may be null.
    DWORD GetSize(DWORD* pnHigh);
    /// The times of the open file, in UTC; each pointer may be null.
    int GetTime(FILETIME* pftCreation, FILETIME* pftAccess, FILETIME* pftWrite);
    /// Sets the times that are not null, in UTC.
    int SetTime(const FILETIME* pftCreation, const FILETIME* pftAccess, const FILETIME* pftWrite);
    /// Reads cb bytes there and writes them here, through pBuffer of that size.
    int CopyBinFrom(CoreFile& source, void* pBuffer, DWORD cb);
    /// Whether the file is stored compressed; 0 as well if the file system does not know.
    int GetCompression();
    /// nState is a COMPRESSION_FORMAT_... value, 0 for none.
    int SetCompression(int nState);

    /// Writes the mark of a text in UTF-16LE, FF FE, if the position is the start of the file;
    /// otherwise 0, and nothing is written.
    int WriteUnicodeMarker();
    int WriteUTF8Marker(); ///< Writes EF BB BF, otherwise as WriteUnicodeMarker.
    /// Formats with the platform's printf rules, cut at 1,023 characters, and writes the text as
    /// UTF-16LE or as bytes, without a terminator. A line feed at the end gets its carriage return
    /// if it has none. An empty text gives 1.
    // QUIRK: a text of one line feed alone stays as it is. Test:
    // CoreFilePutsLine.CompletesTheLineEnd
    int puts(const wchar_t* pszFormat, ...);
    int puts(const char* pszFormat, ...);

    // Whole files by their path

    /// What the platform tells about a file or folder (FindFirstFileW), into *pData, which may be
    /// null and stays as it is if there is none.
    static int GetInfo(const wchar_t* pszPath, WIN32_FIND_DATAW* pData);
    /// The low half of a file's size; *pnHigh, which may be null, gets the high one. Both are 0 if
    /// there is no such file.
    static DWORD GetSize(const wchar_t* pszPath, DWORD* pnHigh);
    /// A file's size in bytes; 0 if there is no such file.
    static unsigned __int64 GetSize64(const wchar_t* pszPath);
    /// Times in UTC; each pointer may be null. They stay as they are if there is no such file.
    static int GetTime(const wchar_t* pszPath, FILETIME* pftCreation, FILETIME* pftAccess,
                       FILETIME* pftWrite);
    /// Sets the times that are given. A missing file is made, empty.
    static int SetTime(const wchar_t* pszPath, const FILETIME* pftCreation,
                       const FILETIME* pftAccess, const FILETIME* pftWrite);
    /// FILE_ATTRIBUTE_... of a file or folder; INVALID_FILE_ATTRIBUTES if there is none.
    static DWORD GetAttrib(const wchar_t* pszPath);
    /// Whether there may be something under that path.
    // QUIRK: 0 only for a file that is plainly missing; a missing folder on the way or a refused
    // access, or a null or empty path, gives 1, and callers count on it. Test:
    // CoreFileStatic.CanFind
    static int CanFind(const wchar_t* pszPath);
    /// Deletes a file; folders are refused. With bNotify the shell is told of a success.
    static int Delete(const wchar_t* pszPath, int bNotify);
    /// Renames or moves a file or folder (MoveFileW); nothing is overwritten. With bNotify the
    /// shell is told of a success.
    static int RenameFile(const wchar_t* pszOld, const wchar_t* pszNew, int bNotify);
    /// Copies contents and compression, not times and attributes. A target that exists is
    /// overwritten and cut to length; one whose copy failed is deleted. With bNotify the shell is
    /// told of the target.
    // QUIRK: only the low half of the size counts, so files of 4 GiB and over are copied in part.
    // Test: CoreFileCopyHigh.OnlyTheLowHalfOfTheSizeCounts
    [[nodiscard]] static int CopyFileW(const wchar_t* pszSource, const wchar_t* pszTarget,
                                       int bNotify);
    /// Copies like CopyFileW with bNotify, over a target that must survive a failed copy: it waits
    /// under its own name with ".temp" behind it, cut at 259 characters, and comes back if the copy
    /// fails, whose last error stays. A file of that name is deleted first; a folder there is left
    /// alone. If the name would be that of the source, or the target's again, nothing is touched
    /// and the result is 0.
    [[nodiscard]] static int CopyFileSafe(const wchar_t* pszSource, const wchar_t* pszTarget);
    /// Reads exactly cb bytes from the start of the file; 0 if it has fewer.
    [[nodiscard]] static int ReadFile(const wchar_t* pszPath, void* pBuffer, unsigned cb);
    /// Makes pBytes the file's contents. After a write that failed or was short the rest of the
    /// old contents stays, and the result is 0.
    [[nodiscard]] static int WriteFile(const wchar_t* pszPath, const void* pBytes, unsigned cb);

  protected:
    HANDLE hFile = INVALID_HANDLE_VALUE; // INVALID_HANDLE_VALUE: closed
    int bWrite = 0;                      // what IsToWrite gives
};

/// Gives a file other attributes for its lifetime, as to take away "read-only" while it is
/// rewritten. pszFilePath must outlive the guard. A file that cannot be queried is left alone.
class TESSALY_API CoreFileAttrib {
  public:
    /// Gives the file those attributes (FILE_ATTRIBUTE_...).
    CoreFileAttrib(const wchar_t* pszFilePath, DWORD nAttributes);
    CoreFileAttrib(const CoreFileAttrib&) = delete; // puts the attributes back once
    CoreFileAttrib& operator=(const CoreFileAttrib&) = delete;
    ~CoreFileAttrib();
    /// The file could be queried.
    int IsValid() const { return nSaved != INVALID_FILE_ATTRIBUTES; }

  private:
    const wchar_t* pszPath;
    DWORD nSaved; // INVALID_FILE_ATTRIBUTES: the file could not be queried
};
