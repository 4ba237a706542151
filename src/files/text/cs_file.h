#pragma once
#include "files/stream/core_file.h"
#include "files/text/text_encoding.h"
#include "runtime/base/export.h"

#include <windows.h>

class UniPath;
enum WipeMethod : int; // files/operations/file_wipe.h

/// Tells of the progress of a wipe, after each piece: nPass counts from 0, cbWritten the bytes that
/// this pass has written so far. 0 cancels: the pass ends, and the file stays in the end.
using WipeCallback = int (*)(void* pContext, int nPass, unsigned __int64 cbWritten);

/// A file with a view of it in memory, and what programs do with whole files: read and write texts,
/// copy, delete by lists, wipe. The texts' members stand in files/text, the rest in
/// files/operations, where the headers with the flags lie too.
///
/// Results are 1 for success and 0 for failure unless told otherwise; GetLastError then tells why.
/// A path that is null or empty, and a UniPath that is null or without a text, is a file that
/// cannot be found.
class TESSALY_API CSFile : public CoreFile {
  public:
    CSFile() = default;
    /// CoreFile::Open: IsReady tells whether it is.
    CSFile(const wchar_t* pszPath, int bToWrite) : CoreFile(pszPath, bToWrite) {}
    CSFile(const wchar_t* pszPath, DWORD nAccess, DWORD nShare, DWORD nDisposition, DWORD nFlags)
        : CoreFile(pszPath, nAccess, nShare, nDisposition, nFlags) {}
    CSFile(const CSFile&) = delete; // owns the handles
    CSFile& operator=(const CSFile&) = delete;
    /// Closes the file only.
    // QUIRK: a view that is open stays mapped; who does not want that calls Close or CloseMap
    // before. Test: TextQuirks.TheDestructorLeavesTheViewOpen
    ~CSFile() override;

    /// Closes the view, the mapping and the file, in that order.
    void Close() override;
    unsigned __int64 GetSize64() override;
    using CoreFile::GetSize64;
    /// The size of a file (CoreFile::GetSize64); 0 without a text.
    static unsigned __int64 GetSize64(const UniPath* pPath);

    /// Maps cb bytes (nSizeLow) of the open file from nOffset on, which may be any, and returns the
    /// first of them; with nSizeLow 0 all up to the end. The mapping's size is nSizeHigh and
    /// nSizeLow, and nOffset more if the view would end behind it: both 0 mean the whole file, and
    /// a file that is open for writing grows to more than it has. A view that was open is closed
    /// first. Null on failure, and then no view is open. The view is writable if the file is.
    [[nodiscard]] void* OpenMap(DWORD nOffset, DWORD nSizeLow, DWORD nSizeHigh);
    /// Closes the view and its mapping, if there is one.
    void CloseMap();
    /// What a view's place is a multiple of; 0 before the first view of the process.
    static DWORD dwAllocationGranularity;

    // Texts. Each member takes the path as a text or as a UniPath.

    /// The size in bytes of a file, as the members below take it. 0 if it cannot be opened, is
    /// empty, or has 4 GiB or more; kTextSizeUnknown for a stream that does not tell, as a pipe.
    [[nodiscard]] static DWORD GetFileSizeForText(const wchar_t* pszPath);
    [[nodiscard]] static DWORD GetFileSizeForText(const UniPath* pPath);
    /// The number of characters, with the terminator, that suffice for a file's text, and its
    /// encoding in *pFmt. *pcb is the size that GetFileSizeForText gave; one that was unknown is
    /// known afterwards if the stream ended within kTextProbeSize bytes. With a null pFmt and a
    /// known size the file is not read; neither is one of one byte, which is fmtAnsi. 0, and
    /// fmtUnknown, if it cannot be read; kTextSizeUnknown if the number cannot be told.
    [[nodiscard]] static DWORD GetTextSize(const wchar_t* pszPath, DWORD* pcb, CSFileTextFmt* pFmt);
    [[nodiscard]] static DWORD GetTextSize(const UniPath* pPath, DWORD* pcb, CSFileTextFmt* pFmt);
    /// Reads a file's text, of cb bytes as above and of that encoding, into cchOut characters. All
    /// lines of the formats with LF alone get their CR; control characters of all but UTF-16 become
    /// chReplacement (Sanitize). The number of characters stored, with the terminator;
    /// kTextSizeUnknown if they did not fit, and then what pszOut holds is of no use; 0 if the file
    /// cannot be opened or read, and without memory.
    [[nodiscard]] static DWORD GetText(const wchar_t* pszPath, DWORD cb, CSFileTextFmt fmt,
                                       wchar_t* pszOut, unsigned cchOut, wchar_t chReplacement);
    [[nodiscard]] static DWORD GetText(const UniPath* pPath, DWORD cb, CSFileTextFmt fmt,
                                       wchar_t* pszOut, unsigned cchOut, wchar_t chReplacement);
    /// Reads a file's text whole. *pFmt fmtUnknown asks for its encoding, which it gets; any other
    /// is taken as it is. Null stands for fmtUnknown. *pcch, which may be null, gets the number of
    /// characters with the terminator, 0 without a text. The caller frees the text with FreeDllBuf.
    /// Null if the file is empty or cannot be read, and without memory.
    [[nodiscard]] static wchar_t* ReadText(const wchar_t* pszPath, unsigned* pcch,
                                           CSFileTextFmt* pFmt, wchar_t chReplacement);
    [[nodiscard]] static wchar_t* ReadText(const UniPath* pPath, unsigned* pcch,
                                           CSFileTextFmt* pFmt, wchar_t chReplacement);
    /// Makes a text the file's contents, with the encoding's mark. A missing file is made. With
    /// bNotify the shell is told of a success. After a write that failed the file is left as it
    /// stands then. 0 without touching the file for a null text, for fmtUnknown and fmtBinary, and
    /// without memory.
    [[nodiscard]] static int WriteText(const wchar_t* pszPath, const wchar_t* pszText,
                                       CSFileTextFmt fmt, int bNotify);
    [[nodiscard]] static int WriteText(const UniPath* pPath, const wchar_t* pszText,
                                       CSFileTextFmt fmt, int bNotify);
    /// Puts a text behind what stands in a file, in the file's own encoding. 0 for one that is
    /// missing, empty or not a text; a write that was short sets ERROR_WRITE_FAULT if it sets no
    /// other error. With bNotify the shell is told of a success.
    [[nodiscard]] static int AppendText(const wchar_t* pszPath, const wchar_t* pszText,
                                        int bNotify);
    [[nodiscard]] static int AppendText(const UniPath* pPath, const wchar_t* pszText, int bNotify);
    /// Each of nCount characters that is no part of a text file (IsPrintableChar) becomes the
    /// replacement. Null does nothing.
    static void Sanitize(wchar_t* pszText, unsigned nCount, wchar_t chReplacement);
    static void Sanitize(char* pszText, unsigned nCount, char chReplacement);

    // Whole files: copies, lists, wiping. Flags: files/operations/file_copy.h

    /// Makes the target equal to the source, or with kCopyVerifyOnly tells whether it is; nFlags
    /// decide about files that are missing, of which a path that is null or empty is none: with
    /// such a one nothing is touched, and the result is 0. A program file (".exe", ".dll", ".sys")
    /// whose version is older than the target's is not copied, which counts as done. Times and
    /// attributes go along, but for an empty source. A copy that fails leaves the target as it
    /// stands then. Of a size only the low half counts, so that files of 4 GiB and over are copied
    /// in part. 1 if the target is right in the end.
    [[nodiscard]] static int Copy(const wchar_t* pszTarget, const wchar_t* pszSource, DWORD nFlags);
    /// Writes a list for CopyByList, or for DeleteByList if pszSourceFolder is null, into pszOut:
    /// for each of the names, each terminated, with a terminator behind the last, the target's path
    /// and the source's. Returns the number of characters that takes, with the list's own
    /// terminator; pszOut, which may be null, must have room for so many.
    static unsigned MakeCopyList(const wchar_t* pszTargetFolder, const wchar_t* pszSourceFolder,
                                 const wchar_t* pszNames, wchar_t* pszOut);
    /// Copies each pair, target then source, of a list. Stops at the first failure, or with
    /// kListGoOn goes on and gives 0 at the end. A target without a source is a failure, and is not
    /// touched. An empty list, or null, gives 1.
    [[nodiscard]] static int CopyByList(const wchar_t* pszList, DWORD nFlags);
    /// Deletes each file of a list of paths; folders and what is missing are passed over. Stops and
    /// results as CopyByList. With kListNotify the shell is told of each.
    [[nodiscard]] static int DeleteByList(const wchar_t* pszList, DWORD nFlags);
    /// Copies a list with its last terminator into cchOut characters. 0, and nothing is written, if
    /// it does not fit or either is null.
    [[nodiscard]] static int CopyDoubleZeroTerminatedList(wchar_t* pszOut, unsigned cchOut,
                                                          const wchar_t* pszList);

    /// Overwrites a file, its name too, and deletes it; a missing one is made first. pfnCallback
    /// may be null. A link is renamed and deleted itself, and what it leads to stays as it is. 0 if
    /// it cannot be opened, as when somebody else has it open, a folder or read-only; if nobody
    /// tells whether it is a link; if a write failed; if it was cancelled, and then all passes have
    /// begun and the file stays, overwritten; and if it could not be renamed, and then it has its
    /// name again. With bNotify the shell is told.
    [[nodiscard]] static int WipeDelete(const wchar_t* pszPath, WipeMethod nMethod, int bNotify,
                                        WipeCallback pfnCallback, void* pContext);
    /// Renames a file, or a link itself, twice, to names that fill the path: of U+5555 alone, then
    /// of U+AAAA. pszPath has 260 characters and holds the final name; on failure the name that the
    /// file bears by then.
    [[nodiscard]] static int WipeRename(wchar_t* pszPath);
    /// A name that WipeRename gives: empty, or made up of U+5555 and U+AAAA only. Null is empty.
    static int IsWipedName(const wchar_t* pszName);

    /// Moves, copies, deletes or renames a file or folder (kFileOpMove and so on,
    /// files/operations/file_operation.h) by the platform's file operation object, without asking
    /// or showing anything; hwnd, which may be null, owns what is shown all the same. Moves and
    /// copies go into the folder pTarget, under pszNewName or, if that is null, their own; renaming
    /// takes the new name; what an operation does not take is not looked at. GetLastHRESULT tells
    /// what the object said.
    [[nodiscard]] static int IFileOp(HWND hwnd, unsigned nOp, const UniPath* pSource,
                                     const UniPath* pTarget, const wchar_t* pszNewName);

  protected:
    /// A text's bytes in an encoding, with its mark if bMarker, for the caller to free with
    /// FreeDllBuf; *pcb gets their number. Line ends become LF alone in the formats that have it.
    /// Null, and 0, for fmtUnknown and fmtBinary, a null text, one of 4 GiB, and without memory.
    [[nodiscard]] static BYTE* PrepareTextData(const wchar_t* pszText, CSFileTextFmt fmt,
                                               DWORD* pcb, int bMarker);

  private:
    HANDLE hMapping = nullptr; // null: no view is open
    void* pView = nullptr;     // the view's base, below what OpenMap gave
};
