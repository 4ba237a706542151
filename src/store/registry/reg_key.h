#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// One open registry key, and the only road to the registry. It shows nothing and raises nothing:
/// every failure is a 0, a null handle, an empty text or a default, and results are 1 for success
/// unless told otherwise. Without a key every operation behaves as its platform call does on a null
/// handle: reads give the default, writes 0.
///
/// A value name may be null, which names the key's default (unnamed) value. A flag is nonzero for
/// yes. What is open for reading has KEY_READ; an open for writing has KEY_ALL_ACCESS and makes
/// every missing key on its way.
///
/// A copy has the same handle and index: only one of the two may close it (Detach the other). An
/// object belongs to one thread at a time.
class TESSALY_API RegKey {
  public:
    /// What to do with one entry, so that one list of entries can be tested, installed and removed.
    /// Callers compute with these numbers.
    enum Op {
        OpTest = 0,       // is it there with this content?
        OpDelete = 1,     // take it away
        OpSet = 2,        // write it if OpTest says no; a subkey is replaced by an empty one
        OpGet = 3,        // read it
        OpTestAbsent = 4, // is it missing?
        OpTestNoCase = 5, // as OpTest, texts compared without case
        OpSetAlways = 6,  // write it without looking
    };

    RegKey() = default;
    RegKey(const wchar_t* pszPath, int bWrite); ///< Open: GetHandle tells whether the key is open.
    RegKey(const wchar_t* pszPath, Op op);
    RegKey(const wchar_t* pszPath, const wchar_t* pszSubpath, int bWrite);
    RegKey(RegKey& parent, const wchar_t* pszSubkey, int bWrite);
    RegKey(RegKey& parent, const wchar_t* pszSubkey, Op op);
    RegKey(const RegKey&) = default;            // shares the handle
    RegKey& operator=(const RegKey&) = default; // shares the handle; the old one is not closed
    virtual ~RegKey();

    /// Opens a key; the handle is overwritten, and what was held not closed: Close first. After a
    /// failure the handle is null. A textual path starts with a root: "HKCLS", "HKCU", "HKLM",
    /// "HKU" or the long names, in any case; components before it are passed over, as are empty
    /// ones. Two texts are joined with a backslash, cut at 255 characters.
    int Open(const wchar_t* pszPath, int bWrite);
    int Open(const wchar_t* pszPath, Op op);
    int Open(const wchar_t* pszPath, const wchar_t* pszSubpath, int bWrite);
    int Open(RegKey& parent, const wchar_t* pszSubkey, int bWrite);
    int Open(RegKey& parent, const wchar_t* pszSubkey, Op op);
    /// Leaves the last nLevels components of the path unopened.
    int OpenParent(const wchar_t* pszPath, int bWrite, int nLevels);
    /// Closes what is held and takes the handle. Always 1; the int is not used.
    int Attach(HKEY hkeyTaken, int);
    /// Forgets the handle without closing it.
    void Detach() { hkey = nullptr; }
    /// Closes the handle, if there is one.
    void Close();
    /// Has the platform write what was changed to the disk.
    int Flush();
    /// The handle, which stays the object's; null without a key.
    HKEY GetHandle() const { return hkey; }
    /// Whether an open for that operation is one for writing: 1 for OpDelete and OpSet only.
    // QUIRK: OpSetAlways opens read-only; who means to use it opens with a write flag of 1.
    // Test: RegKeyOpen.OpSetAlwaysOpensForReadingOnly
    static int IsWritable(Op op) { return op == OpDelete || op == OpSet; }

    /// The value's type; 0 if it cannot be queried.
    DWORD GetValueType(const wchar_t* pszName) const;
    /// Whether there is such a value. One of type REG_NONE counts as absent.
    int FindValue(const wchar_t* pszName) const { return GetValueType(pszName) != REG_NONE; }
    /// The first four bytes of a value of any type; shorter ones are filled up with zeros, longer
    /// ones give the default.
    int GetInt(const wchar_t* pszName, int nDefault) const;
    DWORD GetDword(const wchar_t* pszName, DWORD dwDefault) const;
    /// The text of a value of any type, which must fit pszBuffer of cchBuffer characters with its
    /// terminator. Otherwise the default is copied there, cut to fit (it may be pszBuffer itself,
    /// to keep what stands there); null empties. Returns the length of what the buffer then holds.
    int GetStr(const wchar_t* pszName, wchar_t* pszBuffer, int cchBuffer,
               const wchar_t* pszDefault) const;
    /// Characters needed with a terminator; 0 if the value is missing or has no bytes.
    unsigned GetStrSize(const wchar_t* pszName) const;
    /// Bytes stored; 0 if the value is missing.
    unsigned GetBinSize(const wchar_t* pszName) const;
    /// Reads the bytes of any type. A value longer than cbMax is not read, but its type is told;
    /// with cbMax 0 the caller vouches for the buffer.
    int GetBin(const wchar_t* pszName, void* pBuffer, unsigned cbMax,
               DWORD* pdwType = nullptr) const;

    /// Writes the value. With bCompare the registry is left untouched if the value has that content
    /// already, whatever its type; the result is then 1 too. PutBin always compares.
    int PutDword(const wchar_t* pszName, DWORD dwValue, int bCompare);
    int PutInt(const wchar_t* pszName, int nValue);
    int PutStr(const wchar_t* pszName, const wchar_t* pszText, int bCompare);
    /// PutStr, but a null or empty text deletes the value.
    int PutStrOrDelEmpty(const wchar_t* pszName, const wchar_t* pszText, int bCompare);
    /// Writes bytes of that type (REG_...), unless they are there already.
    int PutBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes, DWORD dwType);

    /// Deletes the value; 1 also if FindValue says that it is not there.
    int DelValue(const wchar_t* pszName);
    /// Deletes the subkey with all that it holds. 0 if it could not be deleted; 1 if there is none,
    /// and 1 for one that cannot be opened for writing.
    int DelSubKey(const wchar_t* pszSubkey);
    /// Empties the key of subkeys and values; the key itself stays. Always 1.
    int DelAll();

    /// 1 if the key has no subkey and no value but the default one, which does not count. Sets
    /// the index of the enumerations to 0. A key that is not open is not empty.
    int IsKeyEmpty();
    /// Deletes the subkey if it is empty by IsKeyEmpty; 0 if it is not, or could not be deleted. 1
    /// if there is none, and 1 for one that cannot be opened for writing.
    int DelSubKeyIfEmpty(const wchar_t* pszSubkey);
    /// Deletes the values whose names start with the prefix: null takes all, an empty prefix all
    /// but the default value. Names of more than 256 characters are passed over. Always 1.
    int DelValuesStartingWith(const wchar_t* pszPrefix, int bNoCase);

    /// Copies one value with its type. 0 if it is missing, has no bytes or could not be copied.
    int CopyValueTo(RegKey& target, const wchar_t* pszName) const;
    /// Copies all values and, with all that they hold, all subkeys into target, over what is there.
    /// What cannot be read or made is passed over, as are subkeys more than 512 levels down, the
    /// platform's own limit, so that a copy into a key below its source ends. Always 1.
    int CopyTo(RegKey& target);
    /// Copies the subkey to the new name and deletes the old one, which is the result; 0 without a
    /// change if the old one cannot be read or the new one not be made, if the new one is the old
    /// one or lies below it, and if it lies above it and the old one has a part whose new place
    /// would be in the old one. A new one that exists keeps what it has besides.
    int RenameSubkey(const wchar_t* pszOld, const wchar_t* pszNew);
    /// The place behind the last backslash, the start if there is none. Null for no path.
    static const wchar_t* FindLastSubkeyName(const wchar_t* pszPath);
    /// The path in front of FindLastSubkeyName, without the backslash, cut to fit cchOut; empty if
    /// there is no backslash. 0, with an empty text, for a null or empty path.
    static int GetParentSubkeyName(const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut);

    /// Moves a product's settings from the maker's earlier root below Software to the present one,
    /// in HKCU if bUser, else in HKLM. Once the new key exists the old one is left alone. 0 only if
    /// the new key cannot be made.
    static int CS2WA(int bUser, const wchar_t* pszName);

    /// Writes the key with all below it into a hive file, which needs the privilege SE_BACKUP_NAME.
    /// A file that is there is deleted first, whatever its attributes, and the new one gets them;
    /// otherwise it gets FILE_ATTRIBUTE_ARCHIVE. The platform's status is kept in lError.
    static int SaveKey(HKEY hkeySaved, const wchar_t* pszFile, SECURITY_ATTRIBUTES* pSecurity);
    /// SaveKey of the open key.
    int Save(const wchar_t* pszFile) const { return SaveKey(hkey, pszFile, nullptr); }
    /// Hangs a hive file up as a subkey of HKEY_LOCAL_MACHINE or HKEY_USERS. Needs SE_BACKUP_NAME
    /// and SE_RESTORE_NAME.
    static int LoadKey(HKEY hkeyParent, const wchar_t* pszSubkey, const wchar_t* pszFile);
    /// Takes a hive file down that LoadKey has hung up; it needs the same two.
    static int UnLoadKey(HKEY hkeyParent, const wchar_t* pszSubkey);

    /// The operations of the same names, on the value whose name is the two texts joined with
    /// pszFmtPrefix, cut at 255 characters; a null one counts as empty. Those that write compare
    /// first; PutBinPrefix writes REG_BINARY.
    ///@{
    int DelValuePrefix(const wchar_t* pszPrefix, const wchar_t* pszName);
    int GetIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nDefault) const;
    DWORD GetDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, DWORD dwDefault) const;
    unsigned GetBinSizePrefix(const wchar_t* pszPrefix, const wchar_t* pszName) const;
    int GetBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, void* pBuffer,
                     unsigned cbMax) const;
    int GetStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, wchar_t* pszBuffer,
                     int cchBuffer, const wchar_t* pszDefault) const;
    int PutIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nValue);
    int PutDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, DWORD dwValue);
    int PutStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const wchar_t* pszText);
    int PutBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const void* pBytes,
                     unsigned cbBytes);
    ///@}

    /// Names in the platform's order. One index serves both kinds, so walks cannot be interleaved.
    /// All give 0 only for "no more": an error, such as a name that does not fit or a key that is
    /// not open, gives 1 and an empty name. Test the open first.
    ///@{
    int GetFirstSubKey(wchar_t* pszBuffer, int cchBuffer);
    int GetNextSubKey(wchar_t* pszBuffer, int cchBuffer);
    int GetSubKeyByIndex(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const;
    int GetFirstValue(wchar_t* pszBuffer, int cchBuffer);
    int GetNextValue(wchar_t* pszBuffer, int cchBuffer);
    int GetValueByIndex(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const;
    ///@}
    /// A name by its index with the platform's status, for walks that tell errors apart.
    LSTATUS ReadSubKeyName(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const;
    /// The same of a value.
    LSTATUS ReadValueName(DWORD nAt, wchar_t* pszBuffer, int cchBuffer) const;

    /// Performs op on one entry. On a text, pszText of cchText characters is what is expected or
    /// written, and the place where OpGet reads to. OpTest calls a missing value and an empty one
    /// the same; OpSet of the number 0 deletes the value. Unknown operations do nothing and give 1.
    int ProcessEntry(Op op, const wchar_t* pszName, wchar_t* pszText, unsigned cchText);
    int ProcessEntry(Op op, const wchar_t* pszName, const wchar_t* pszText);
    int ProcessEntry(Op op, const wchar_t* pszName, DWORD& dwValue);
    int ProcessEntry(Op op, const wchar_t* pszName, int& nValue);
    /// Performs op on a subkey, of which OpSet and OpSetAlways make an empty one, and flushes this
    /// key; the operations that only look do nothing. Always 1.
    int ProcessSubKey(Op op, const wchar_t* pszSubkey);

    /// Begins the text log: from here to EndLog, opening a path, PutDword, PutStr and DelValue
    /// leave the registry alone and append a line to pszBuffer instead, which the caller has made
    /// large enough, or null to count only. All else still works on keys that are open: PutBin,
    /// DelSubKey, DelAll, ProcessSubKey and Open below a key write. The log is the whole process'
    /// and has no lock.
    static void StartLog(wchar_t* pszBuffer);
    /// Ends the log and terminates its text. Returns the size in characters with the terminator; 0
    /// if nothing was logged.
    static unsigned EndLog();

    static int bLogMode;                // the log is on
    static wchar_t* pszLog;             // the next free place in the log's buffer; may be null
    static unsigned nLogSizeChars;      // characters logged so far
    static long lError;                 // the status of the last hive that was saved
    static const wchar_t* pszFmtPrefix; // joins a prefix and a name

  protected:
    /// Opens a textual path but for its last nLevels components. Null on failure.
    static HKEY OpenKey(const wchar_t* pszPath, int bWrite, int nLevels);
    static HKEY OpenKey(HKEY hkeyParent, const wchar_t* pszSubkey, int bWrite);

  private:
    static int Log(const wchar_t* pszFormat, ...);
    bool QuerySize(const wchar_t* pszName, DWORD& cbValue) const;
    bool ReadStr(const wchar_t* pszName, wchar_t* pszBuffer, int cchBuffer) const;
    bool HoldsStr(const wchar_t* pszName, const wchar_t* pszText) const;
    bool HoldsBin(const wchar_t* pszName, const void* pBytes, unsigned cbBytes) const;
    bool TestStr(const wchar_t* pszName, const wchar_t* pszText, int bNoCase) const;
    void CopyTree(RegKey& target, int nLevelsLeft);
    void CopyValues(RegKey& target);
    void DelSubKeys(int bEmptyFirst);
    void DelValues();

    HKEY hkey = nullptr;
    DWORD nIndex = 0; // of the last name that a walk read
};
