#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <shlobj.h> // IShellLinkW

class iPersistFile;
class iShellLink;

// Shortcut files. COM is the caller's, on its thread, unless told otherwise. Results are 1 for
// success and 0 for failure unless told otherwise; null paths of shortcuts and targets fail.
// Buffers without a size have 260 characters.

// Making and changing

/// Makes a shortcut to the target; null arguments are none. A file that is there is replaced.
TESSALY_API int CreateLink(const wchar_t* pszTarget, const wchar_t* pszLink,
                           const wchar_t* pszArgs);
/// Gives a shortcut that is there another target and, unless null, other arguments.
TESSALY_API int UpdateLink(const wchar_t* pszTarget, const wchar_t* pszLink,
                           const wchar_t* pszArgs);
/// The file and the index of the icon that the shortcut asks for; the file is empty for none.
TESSALY_API int GetShortcutIcon(const wchar_t* pszLink, wchar_t* pszOut, int* pnIndex);
TESSALY_API int SetShortcutIcon(const wchar_t* pszLink, const wchar_t* pszIcon, int nIndex);

// Following

/// The path of the shortcut's target, through the objects of the caller. A path that is no shortcut
/// is its own target. Unless bNoResolve the link is looked after (IShellLinkW::Resolve) with nFlags
/// (SLR_...) and hwnd. 0, with an empty pszOut, on failure.
TESSALY_API int ResolveLink(HWND hwnd, iShellLink& link, iPersistFile& file, const wchar_t* pszPath,
                            wchar_t* pszOut, DWORD nFlags, int bNoResolve);
/// Replaces a path, in place, by that of the shortcut's target; a path that is no shortcut stays.
/// With bQuiet nothing is asked, looked for or changed. A shortcut that cannot be followed stays
/// too; one that leads to nothing that exists becomes empty, and so does any path to nothing.
// QUIRK: a target that no file system has stays empty even if the shell knows its name: only a path
// comes through. Test: ResolveShortcut.TargetOutsideTheFileSystemGivesNothing
TESSALY_API void ResolveShortcut(HWND hwnd, wchar_t* pszPath, int bQuiet);
/// The path of the shortcut's target as it was stored, without looking after it. With bShellName an
/// existing one is spelled as the shell does. A path that is no shortcut is its own target. 0, with
/// pszOut as it was, if the shortcut cannot be read.
TESSALY_API int GetShortcutTargetPath(wchar_t* pszOut, const wchar_t* pszPath, int bShellName);

// The same through bare interfaces, for threads that may have no COM.

/// Makes a link object and its file interface. Where the thread has no COM it is initialised, and
/// *pbInitialized is then 1, otherwise 0. 0, with nulls and nothing to undo, on failure.
[[nodiscard]] TESSALY_API int CoreResolveShortcut_Init(IShellLinkW** ppLink, IPersistFile** ppFile,
                                                       int* pbInitialized);
/// Gives back what CoreResolveShortcut_Init made, and leaves nulls and 0.
TESSALY_API void CoreResolveShortcut_Done(IShellLinkW** ppLink, IPersistFile** ppFile,
                                          int* pbInitialized);
/// The path of the shortcut's target as it was stored, cut to cchOut characters. A path that is no
/// shortcut is its own target. 0, with an empty pszOut, on failure. The window is not used.
TESSALY_API int CoreResolveShortcut(HWND hwndUnused, IShellLinkW* pLink, IPersistFile* pFile,
                                    const wchar_t* pszPath, wchar_t* pszOut, unsigned cchOut);
/// The same with objects of its own; where that gives no text, pszOut gets the path itself. 1 if
/// the target was found.
TESSALY_API int CoreResolveShortcut(HWND hwndUnused, const wchar_t* pszPath, wchar_t* pszOut,
                                    unsigned cchOut);
