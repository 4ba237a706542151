#pragma once
#include "runtime/base/export.h"
#include <windows.h>

class UniPath;

/// A stream of bytes with a position. Results are 1 for success and 0 for failure unless told
/// otherwise; nothing is buffered here. An object belongs to one thread at a time.
class TESSALY_API CoreIOObj {
  public:
    /// Clears the last result: a new stream has none yet.
    CoreIOObj() { SetLastHRESULT(0); } // a new stream has no result yet
    CoreIOObj(const CoreIOObj&) = default;
    CoreIOObj& operator=(const CoreIOObj&) = default;
    virtual ~CoreIOObj();
    virtual void Close() = 0; ///< Closes the stream, if it is open.
    /// The stream is open.
    virtual int IsReady() = 0;
    /// The stream was opened for writing.
    virtual int IsToWrite() = 0;
    /// The length in bytes; 0 if it cannot be told.
    virtual unsigned __int64 GetSize64() = 0;
    /// Cuts or lengthens the stream to the current position, which becomes its end.
    virtual int SetEndOfFile() = 0;
    /// Moves nDistance bytes from the start (FILE_BEGIN, 0), the current position (FILE_CURRENT, 1)
    /// or the end (FILE_END, 2). Returns the new position, or the stream's own value for a failure.
    virtual __int64 MoveTo64(__int64 nDistance, DWORD nMethod) = 0;
    /// Writes through what the platform holds back.
    virtual int Flush() = 0;
    /// Reads cb bytes at the current position, which moves on. 1 only if all of them came;
    /// *pcbDone, which may be null, gets how many did.
    virtual int ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) = 0;
    /// Writes cb bytes at the current position, which moves on. 1 only if all of them went;
    /// *pcbDone, which may be null, gets how many did.
    virtual int WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) = 0;

    /// The current position in bytes from the start.
    __int64 GetFilePos64() { return MoveTo64(0, FILE_CURRENT); }
    /// Moves nBytes on, or back if negative. Returns the new position.
    __int64 Skip(int nBytes) { return MoveTo64(nBytes, FILE_CURRENT); }

    /// The last result of the whole process, cleared by every new stream. A diagnostic of the last
    /// open, which another thread may overwrite: nobody reads success or failure from it.
    // QUIRK: a successful open leaves what the thread's last error was, so that opening an existing
    // file for writing leaves ERROR_ALREADY_EXISTS behind.
    // Test: CoreFileOpen.ForWritingOfAnExistingFileLeavesAlreadyExists
    static long GetLastHRESULT();
    static void SetLastHRESULT(long lNew); ///< Stores a result as the last one.
    /// Stores a platform error as the last result: a positive one becomes 0x8007xxxx, anything else
    /// stays.
    static void SetLastWin32Error(DWORD dwError);
};

/// A stream that owns another one and adds typed reads and writes, which take the value's own size
/// in the machine's byte order. Without an inner stream everything gives 0.
///
/// A copy has the same inner stream: only one of the copies may be destroyed.
class TESSALY_API CoreIO : public CoreIOObj {
  public:
    /// Takes the stream, which the library frees: one that CoreFile::CreateObject or its like made,
    /// or of a class of the program's own, made by new. May be null.
    explicit CoreIO(CoreIOObj* pTaken) : pInner(pTaken) {}
    /// Owns a new file, opened as CoreFile::CreateObject opens it: IsReady tells whether it is. A
    /// null path, or one without a text, is a file that cannot be found.
    CoreIO(UniPath* pPath, int bToWrite);
    CoreIO(const CoreIO&) = default;            // shares the inner stream
    CoreIO& operator=(const CoreIO&) = default; // shares it; the old one is not deleted
    ~CoreIO() override;
    /// A new CoreFile on that path, as CoreFile::CreateObject makes it; the caller owns it.
    [[nodiscard]] static CoreIOObj* CreateFileObject(const wchar_t* pszPath, int bToWrite);

    void Close() override;
    int IsReady() override;
    int IsToWrite() override;
    unsigned __int64 GetSize64() override;
    int SetEndOfFile() override;
    __int64 MoveTo64(__int64 nDistance, DWORD nMethod) override;
    int Flush() override;
    int ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) override;
    int WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) override;

    // A value as it lies in memory. 1; 0 if not all of its bytes moved: then a value that was to be
    // read is not valid.
    [[nodiscard]] int Read(unsigned char& bValue) {
        return ReadBin(&bValue, sizeof(bValue), nullptr);
    }
    [[nodiscard]] int Read(unsigned short& wValue) {
        return ReadBin(&wValue, sizeof(wValue), nullptr);
    }
    [[nodiscard]] int Read(int& nValue) { return ReadBin(&nValue, sizeof(nValue), nullptr); }
    [[nodiscard]] int Read(unsigned& nValue) { return ReadBin(&nValue, sizeof(nValue), nullptr); }
    [[nodiscard]] int Read(unsigned long& nValue) {
        return ReadBin(&nValue, sizeof(nValue), nullptr);
    }
    int Write(unsigned char bValue) { return WriteBin(&bValue, sizeof(bValue), nullptr); }
    int Write(unsigned short wValue) { return WriteBin(&wValue, sizeof(wValue), nullptr); }
    int Write(int nValue) { return WriteBin(&nValue, sizeof(nValue), nullptr); }
    int Write(unsigned nValue) { return WriteBin(&nValue, sizeof(nValue), nullptr); }
    int Write(unsigned long nValue) { return WriteBin(&nValue, sizeof(nValue), nullptr); }
    // These would silently become ints of four bytes, or fit several of the above.
    int Write(char) = delete;
    int Write(signed char) = delete;
    int Write(wchar_t) = delete;
    int Write(short) = delete;
    int Write(bool) = delete;
    int Write(long) = delete;

    /// Reads a short text: one byte with its length and that many bytes, without a terminator.
    /// pszBuffer holds kShortTextSize bytes and is terminated in every case. 1; a text that ends
    /// early gives 0 with what there was.
    [[nodiscard]] int ReadStr(char* pszBuffer);
    static constexpr DWORD kShortTextSize = 256; // the longest, of 255 bytes, and its terminator
    /// Writes a short text as ReadStr reads it. 0 for null, and if not all of it was written.
    // QUIRK: a text of 256 bytes or more is cut to its length modulo 256; lengths are counted up to
    // 32,767. Test: CoreIOStrLength.IsCutModulo256
    int WriteStr(const char* pszText);

  private:
    CoreIOObj* pInner; // owned, by one of the copies; null: everything gives 0
};
