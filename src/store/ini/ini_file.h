#pragma once
#include "runtime/base/export.h"

class Parser;

/// Reads and writes ini text in UTF-16. A pass walks a block of text and hands every comment, blank
/// line and variable to CallBack; a file is rewritten from what MakeData generates. Nothing is
/// kept: subclasses keep what they want as it passes. Text that does not fit the grammar ends a
/// pass quietly. Results are 1 for success and 0 for failure unless told otherwise.
///
/// Only a ";" at the start of a line opens a comment; there are no quotes, escapes or continued
/// lines. What stands before the first section header is not reported, comments excepted.
///
/// An object belongs to one thread for the length of a pass.
class TESSALY_API IniFile {
  public:
    /// The kind of event, and what comes with it: section, name, value.
    enum CallBackFlag {
        cbBegin = 0,   // null, null, null
        cbComment = 1, // the section, the comment with its ";" (empty for a blank line), null
        cbVar = 2,     // the section, the variable's name, its value
        cbEnd = 3,     // null, null, null
    };
    static constexpr unsigned kTextSize = 256;   // characters of a name, section or comment
    static constexpr unsigned kValueSize = 1025; // of a value; both with the terminator

    /// The path is cut at 259 characters; null is an empty one.
    explicit IniFile(const wchar_t* pszFile = nullptr);
    IniFile(const IniFile&) = delete; // owns the parser
    IniFile& operator=(const IniFile&) = delete;
    virtual ~IniFile();

    /// Returns how many characters the file needs, and fills a buffer of that size unless it is
    /// null. WriteSec and WriteVar, called in the same order both times, do both.
    virtual unsigned MakeData(wchar_t* pszOut);
    /// Called for each part of the text; 0 stops the pass. Before the first section header the
    /// section is empty.
    virtual int CallBack(CallBackFlag nFlag, const wchar_t* pszSection, const wchar_t* pszName,
                         const wchar_t* pszValue);

    const wchar_t* GetPath() const { return szPath; } ///< The file's path; empty for none.
    /// The file to read and write from now on; cut and null as in the constructor.
    void SetPath(const wchar_t* pszFile);
    /// Reads the file, which is shared with readers, and runs ReadAll. 0 also for an empty file.
    int ReadData();
    /// Runs a pass; cchText 0 means up to the terminator. 1 if it ran to its end and the last
    /// CallBack gave nonzero. A text with nothing in it gives 0 after cbBegin. The parser may
    /// stay over the caller's text, where the pass ended: call none of the steps below once that
    /// text is gone, or DeleteParser first.
    int ReadAll(const wchar_t* pszText, unsigned cchText);
    /// Rewrites the file, read-only or not, with FF FE in front. If there is nothing to write the
    /// file is deleted.
    // QUIRK: 1 also if the file could not be deleted or was written in part.
    // Tests: IniFileWrite.FileThatCannotBeDeletedGivesOne, IniFileWrite.FullDiskGivesOne
    int WriteData();

    /// Emit a section header or a variable with its line end: each character is counted, and
    /// stored if pszOut, which is moved on, is not null.
    static void WriteSec(wchar_t*& pszOut, const wchar_t* pszName, unsigned& nCount);
    static void WriteVar(wchar_t*& pszOut, const wchar_t* pszName, const wchar_t* pszValue,
                         unsigned& nCount);

    /// The steps of a pass, for CallBack to pull with: 1 if there was such a thing here. Outside a
    /// pass 0. Buffers are of kTextSize characters, for GetVal of kValueSize; longer texts are cut.
    int GetComment(wchar_t* pszBuffer);
    /// The name of the section that begins here, otherwise as GetComment.
    int GetSec(wchar_t* pszBuffer);
    /// A name: it runs to the first "=", without the blanks before it. Otherwise as GetComment.
    // QUIRK: a line without "=" runs on into the next one, so that a name may hold line breaks.
    // Test: IniFileReadPass.Reports/LineWithoutEqualsSignJoinsTheNext
    int GetVar(wchar_t* pszBuffer);
    /// What stands behind the "=", up to the line's end, otherwise as GetComment.
    int GetVal(wchar_t* pszBuffer);
    /// Ends what a pass has left. Always 0.
    int DeleteParser();

    /// Finds a file of that name in the folder that the platform was started from, as the setup
    /// wrote it down. pszFound, of 260 characters, gets its path; the member keeps it as its own.
    // QUIRK: folder and name together are cut at 19 characters. Test: BootFile.IsCutAt19Characters
    static int FindBootFile(const wchar_t* pszName, wchar_t* pszFound);
    int FindBootFile(const wchar_t* pszName);

  private:
    static constexpr unsigned kPathSize = 260;

    int Stop(int bGoOn) { return bGoOn ? 1 : DeleteParser(); }
    int ReportComments(const wchar_t* pszSection);
    int ReportVariables(const wchar_t* pszSection);
    int ReadSections();

    wchar_t szPath[kPathSize] = {};
    Parser* pParser = nullptr; // of the present pass, or the last one
};
