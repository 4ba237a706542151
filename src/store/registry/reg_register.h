#pragma once
#include "store/registry/reg_key.h"

// Registering parts of a product with the platform. Each function runs one list of steps, with any
// operation: RegKey::OpSet registers, OpDelete unregisters, OpTest tells whether the registration
// stands. 1 if all steps passed. The first step that fails ends the list with 0 and what was done
// stays: OpDelete over the same list cleans up. Without a class, name of a subkey or driver (null
// or empty) nothing is done, 0.
//
// QUIRK: RegKey::OpSetAlways is no operation for these lists: keys are open for writing with OpSet
// and OpDelete only, so that it empties the first subkey of a list, writes nothing and gives 0.
// Test: RegisterCom.SetAlwaysEmptiesTheClass
//
// pszClsid is the class as text, with its braces; pszName what the class is called; pszDllPath the
// library that has it. With bNotify the shell is told that associations changed.

/// Registers the class below HKEY_CLASSES_ROOT\CLSID with its "InProcServer32", threads
/// "Apartment". Setting it starts from an empty key. The shell is told whatever the operation was.
TESSALY_API int RegisterComServer(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                                  const wchar_t* pszClsid, int bNotify);

/// Registers the class, and its entry in the list of approved shell extensions. The shell is not
/// told.
TESSALY_API int RegisterShellExtObject(RegKey::Op op, const wchar_t* pszName,
                                       const wchar_t* pszDllPath, const wchar_t* pszClsid);

/// Registers the class, its entry in the list of approved shell extensions, and then the class as a
/// handler of the kind pszHandlerKind ("ContextMenuHandlers") under the name pszName for each type
/// ("*", "Folder"). ppszTypes ends with a null or empty text; null is an empty list. The shell is
/// told after OpSet and OpDelete.
TESSALY_API int RegisterShellExt(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                                 const wchar_t* pszClsid, const wchar_t* const* ppszTypes,
                                 const wchar_t* pszHandlerKind, int bNotify);
/// RegisterShellExt with the kind "ContextMenuHandlers".
TESSALY_API int SetupCtxMenuRegistry(RegKey::Op op, const wchar_t* pszName,
                                     const wchar_t* pszDllPath, const wchar_t* pszClsid,
                                     const wchar_t* const* ppszTypes, int bNotify);

/// Registers the class, and its entry in the list of browser helper objects. The shell is told
/// after OpSet and OpDelete.
// QUIRK: OpTest asks only whether that list exists, not whether the class is in it.
// Test: RegisterBrowserHelper.TestDoesNotLookForTheEntryInTheList
TESSALY_API int RegisterBHO(RegKey::Op op, const wchar_t* pszName, const wchar_t* pszDllPath,
                            const wchar_t* pszClsid, int bNotify);

/// Lets a driver start in the two safe modes, under its name and as "<name>.sys", cut at 64
/// characters.
TESSALY_API int RegisterDriverForSafeMode(RegKey::Op op, const wchar_t* pszName);
