#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// One of several components of a product that share the library: while it lives, and no newer one
/// does, its module, component name and registry root go before those of the library. Made by host
/// applications, usually on their stack.
class TESSALY_API AppInstance {
  public:
    /// The component's name is borrowed and must outlive the object; null for none, and then there
    /// is no root either.
    AppInstance(HINSTANCE hinstApp, const wchar_t* pszComponentName);
    AppInstance(const AppInstance&) = delete; // the list knows its address
    AppInstance& operator=(const AppInstance&) = delete;
    /// Also drops the product's pushed root.
    virtual ~AppInstance();

    void SetAppRootKey(const wchar_t* pszRoot);
    /// Null if there is no root or it is empty.
    const wchar_t* GetAppRootKey();
    HINSTANCE GetInstance() const { return hinst; }
    /// Null if there is none.
    const wchar_t* GetComponent() const { return pszComponent; }

    /// The life of the list's lock, for the library's start and end alone.
    static void StartLock();
    static void StopLock();

  private:
    HINSTANCE hinst;
    const wchar_t* pszComponent;   // borrowed
    wchar_t* pszRootKey = nullptr; // owned
    int nRootKeyLength = 0;
};
