#pragma once
#include "runtime/base/export.h"

/// One path, in 260 characters on the heap. Without a text, and with a kind that is not 0, every
/// operation does nothing and gives 0 or an empty text; this system makes no other kind.
///
/// A copy shares the text: only one of the copies may be destroyed, opened anew or freed. To copy
/// the text as well, give the constructor or Open the object's address.
class TESSALY_API UniPath {
  public:
    UniPath() = default;
    explicit UniPath(const wchar_t* pszPath) { Open(pszPath); }
    explicit UniPath(UniPath* pOther) { Open(pOther); }
    UniPath(const UniPath&) = default;            // shares the text
    UniPath& operator=(const UniPath&) = default; // shares it; the old one is not freed
    virtual ~UniPath();

    /// Forgets the text without freeing it.
    void Init();
    /// Takes a copy of the path, cut at 259 characters, for the text that was held, which is freed.
    /// 1; 0 without memory, or with null, and then no text is held.
    int Open(const wchar_t* pszPath);
    /// The same with the other object's text.
    int Open(UniPath* pOther);
    void Free();

    /// The text, which may be changed within its 260 characters; null without one.
    wchar_t* Path() const { return nKind == 0 ? pszText : nullptr; }
    /// What LocateFileName finds, and the whole text, into cchOut characters, cut to fit. 1 if
    /// there is a text.
    int GetFileName(wchar_t* pszOut, unsigned cchOut) const;
    int GetDisplayPath(wchar_t* pszOut, unsigned cchOut) const;

    // A folder, a file, by GetFileAttributes2.
    int IsContainer() const;
    int FileExists() const;
    /// The function of that name.
    int IsFileInUse() const;
    int IsReadOnly() const;
    /// Equal texts but for case; the separators count.
    int IsSameAs(const UniPath* pOther) const;

    /// Tells the shell of that SHCNE_... event.
    void SHChangeNotify(long nEvent) const;
    /// Cuts the last name off (StripFileNameAndBackslash). 1 if there is a text.
    int MakeParentFolder();

  protected:
    int nKind = 0;              // 0: a path in the file system
    wchar_t* pszText = nullptr; // owned; kPathChars characters, null without a text
};
