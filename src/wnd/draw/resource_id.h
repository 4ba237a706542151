#pragma once
#include <windows.h>

/// Where a positive resource id without a module is looked for.
enum class DefaultModule {
    kLibrary,    // the library
    kApplication // the module of the current AppInstance, or the library if there is none
};

/// A resource by its module and its number, as LoadImageW and its relatives take them.
struct ResourceRef {
    HINSTANCE hinst;
    LPCWSTR pszName; // MAKEINTRESOURCEW of the id
};

/// Resolves a signed resource id: a negative one is the library's, whatever module is named, and
/// its number the absolute value; a positive one is hinst's or, for null, the default module's. The
/// low 16 bits are the number.
ResourceRef ResolveResourceId(int nId, HINSTANCE hinst, DefaultModule defaultModule);
