#pragma once
#include "tessaly.h"

/// A dialog without a resource: the template is put together in memory. Modeless; on the heap,
/// where it deletes itself with its window.
class MemoryDialog : public CSDlg {
  public:
    /// Opens one. 1; 0 if that was not possible.
    static int Open(HWND hwndParent);

  private:
    int CreateFromMemory(HWND hwndParent);
};
