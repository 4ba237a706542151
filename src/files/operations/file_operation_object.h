#pragma once
#include <windows.h>
#include <shobjidl.h>

// The platform's file operation object, which Windows has from Vista on: where a program that is to
// run before it too asks for older headers, they leave it out.

#ifndef FOFX_DONTDISPLAYSOURCEPATH
#define FOFX_DONTDISPLAYSOURCEPATH 0x04000000 // shobjidl_core.h
#endif

#ifndef __IFileOperation_INTERFACE_DEFINED__

struct IFileOperationProgressSink;
struct IOperationsProgressDialog;
struct IPropertyChangeArray;

extern "C" const CLSID CLSID_FileOperation;
extern "C" const IID IID_IFileOperation;

/// As shobjidl_core.h declares it.
struct IFileOperation : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Advise(IFileOperationProgressSink* pSink,
                                             DWORD* pnCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD nCookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOperationFlags(DWORD nFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetProgressMessage(LPCWSTR pszMessage) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetProgressDialog(IOperationsProgressDialog* pDialog) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetProperties(IPropertyChangeArray* pProperties) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetOwnerWindow(HWND hwnd) = 0;
    virtual HRESULT STDMETHODCALLTYPE ApplyPropertiesToItem(IShellItem* pItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE ApplyPropertiesToItems(IUnknown* pItems) = 0;
    virtual HRESULT STDMETHODCALLTYPE RenameItem(IShellItem* pItem, LPCWSTR pszNewName,
                                                 IFileOperationProgressSink* pSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE RenameItems(IUnknown* pItems, LPCWSTR pszNewName) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveItem(IShellItem* pItem, IShellItem* pFolder,
                                               LPCWSTR pszNewName,
                                               IFileOperationProgressSink* pSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveItems(IUnknown* pItems, IShellItem* pFolder) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyItem(IShellItem* pItem, IShellItem* pFolder,
                                               LPCWSTR pszCopyName,
                                               IFileOperationProgressSink* pSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyItems(IUnknown* pItems, IShellItem* pFolder) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteItem(IShellItem* pItem,
                                                 IFileOperationProgressSink* pSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteItems(IUnknown* pItems) = 0;
    virtual HRESULT STDMETHODCALLTYPE NewItem(IShellItem* pFolder, DWORD nAttributes,
                                              LPCWSTR pszName, LPCWSTR pszTemplateName,
                                              IFileOperationProgressSink* pSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE PerformOperations() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAnyOperationsAborted(BOOL* pbAborted) = 0;
};

#endif
