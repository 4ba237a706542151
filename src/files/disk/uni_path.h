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
    // Path tells whether a text is held then.
    /// Open with the path.
    explicit UniPath(const wchar_t* pszPath) { static_cast<void>(Open(pszPath)); }
    /// Open with the other object's text.
    explicit UniPath(UniPath* pOther) { static_cast<void>(Open(pOther)); }
    UniPath(const UniPath&) = default;            // shares the text
    UniPath& operator=(const UniPath&) = default; // shares it; the old one is not freed
    virtual ~UniPath();

    /// Forgets the text without freeing it.
    void Init();
    /// Takes a copy of the path, cut at 259 characters, for the text that was held, which is freed.
    /// 1; 0 without memory, or with null, and then no text is held.
    [[nodiscard]] int Open(const wchar_t* pszPath);
    /// Takes a copy of the other object's text, with the same result; without one none is held.
    [[nodiscard]] int Open(UniPath* pOther);
    /// Frees the text. None is held then.
    void Free();

    /// The text, which may be changed within its 260 characters; null without one.
    wchar_t* Path() const { return nKind == 0 ? pszText : nullptr; }
    /// Puts the text's file name (LocateFileName) into cchOut characters, cut to fit. 1 if there is
    /// a text.
    int GetFileName(wchar_t* pszOut, unsigned cchOut) const;
    /// Puts the whole text into cchOut characters, cut to fit. 1 if there is a text.
    int GetDisplayPath(wchar_t* pszOut, unsigned cchOut) const;

    /// There is a folder under that path (::FolderExists).
    int IsContainer() const;
    /// 1 if there is a file under that path (::FileExists).
    int FileExists() const;
    /// Somebody else keeps the file open, or it cannot be written (::IsFileInUse).
    int IsFileInUse() const;
    /// The file or folder has the read-only attribute.
    int IsReadOnly() const;
    /// The two texts are equal but for case; a slash is not a backslash here. 0 without a text.
    int IsSameAs(const UniPath* pOther) const;

    /// Tells the shell of an SHCNE_... event about the path.
    void SHChangeNotify(long nEvent) const;
    /// Cuts the last name off (StripFileNameAndBackslash). 1 if there is a text.
    int MakeParentFolder();

  protected:
    int nKind = 0;              // 0: a path in the file system
    wchar_t* pszText = nullptr; // owned; kPathChars characters, null without a text
};
