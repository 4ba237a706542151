#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// What the rooms at the bottom of the source tree have to know of the product that they are part
// of. They may not include its identity (app/identity), which stands above them: during the
// library's start it tells them here.

/// The module that this library is part of: its resources come from there, and its window classes
/// are registered with it. Null before the library's start.
TESSALY_API HINSTANCE GetLibraryInstance();

/// Sets that module; for the library's start alone.
void SetLibraryInstance(HINSTANCE hinst);

/// How the product is asked. Nothing is remembered here: module and name can change at any time.
struct CurrentProduct {
    HINSTANCE (*pfnGetModule)();        // of the current application, or the library
    const wchar_t* (*pfnGetName)();     // the title of message boxes; borrowed, never null
    unsigned short (*pfnGetId)();       // the number by which the maker's programs know each other
    const wchar_t* (*pfnGetHelpFile)(); // the name of the file; borrowed, never null
    const wchar_t* (*pfnGetRootKey)();  // the path of the settings' key; borrowed, never null
    unsigned (*pfnGetIconId)() = nullptr; // a signed id (runtime/messages/res_str.h); null: no icon
};

/// The product as it was set; until then its module is the library, its texts are empty and its
/// number is 0.
const CurrentProduct& GetCurrentProduct();

/// Sets the product; for the library's start alone, on one thread.
void SetCurrentProduct(const CurrentProduct& product);
