#pragma once
#include "runtime/base/export.h"

// The form in which paths of the system's and the product's own files are kept, so that they still
// hold on another machine: "%S\NAME" for a file in the system folder, "%W\NAME" in the Windows
// folder, "%_\NAME" in the product's home folder (GetHomeDir). Outputs are path buffers of 260
// characters and may be the input; what is longer is cut.

/// Gives the path that form if it lies right in one of the three folders; otherwise a copy. A null
/// path counts as empty.
// QUIRK: a folder's path with a separator at its end counts as lying in itself, so that the Windows
// folder's gives "%W\windows". Test: MakeCanonicalPathTest.FolderWithASeparatorLiesInItself
TESSALY_API void MakeCanonicalPath(const wchar_t* pszPath, wchar_t* pszOut);
/// The reverse. 1 for a text that starts with "%"; any other is copied, with 0, and null gives an
/// empty one. The letter counts with its case; if it is none of the three, what follows it remains,
/// behind a backslash.
TESSALY_API int GetPathFromCanonical(const wchar_t* pszText, wchar_t* pszOut);
