#pragma once

// The text of registry paths. RegKey's FindLastSubkeyName and GetParentSubkeyName are in the same
// source.

/// Between the components of a path.
constexpr wchar_t kRegSeparator = L'\\';

/// The part of the path that lies below the other one, compared component by component, ignoring
/// case and doubled, leading and trailing backslashes; empty if the two are the same, null if the
/// path does not lie there. Everything lies below the empty path.
const wchar_t* FindRegPathBelow(const wchar_t* pszPath, const wchar_t* pszOther);
