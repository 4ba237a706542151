#pragma once
#include "runtime/base/export.h"
#include <windows.h>

struct IFileOperation; // shobjidl.h; for older targets files/operations/file_operation_object.h

// What CSFile::IFileOp, whose class stands in files/text/cs_file.h, is told.
constexpr unsigned kFileOpMove = 1;   // into another folder
constexpr unsigned kFileOpCopy = 2;   // into another folder
constexpr unsigned kFileOpDelete = 3; // a file or folder
constexpr unsigned kFileOpRename = 4; // within its folder

/// Owns the platform's file operation object, and COM on the calling thread where nobody had
/// initialised it. An object belongs to the thread that made it.
class TESSALY_API MyFileOperation {
  public:
    /// Calls Recreate: Get tells whether there is an object.
    MyFileOperation();
    MyFileOperation(const MyFileOperation&) = delete; // owns the interface
    MyFileOperation& operator=(const MyFileOperation&) = delete;
    /// Releases the interface, and then ends COM if this object began it.
    virtual ~MyFileOperation();
    /// Releases the interface that is held and makes another one. COM is initialised for the
    /// thread, single-threaded and without OLE 1 DDE, if the platform says that it is not. 1; 0 if
    /// there is no interface, as before Windows Vista.
    [[nodiscard]] int Recreate();
    /// Borrowed; null if there is none.
    IFileOperation* Get() const { return pOperation; }

  private:
    void ReleaseOperation();

    IFileOperation* pOperation = nullptr; // owned
    int bCoInitialized = 0;               // this object called CoInitializeEx
};

/// A counted handle on a set of files. Owns nothing: copies share the set.
class TESSALY_API FileSet {
  public:
    /// The number of entries; 0 without a set.
    unsigned GetCount() const;

    void* pSet = nullptr; // borrowed
    unsigned nCount = 0;  // entries of pSet
};
