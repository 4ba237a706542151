#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Shows the wait cursor for the length of a block, then the cursor that it replaced. The end
/// leaves the thread's last error alone.
class TESSALY_API CSWaitCursor {
  public:
    CSWaitCursor();
    ~CSWaitCursor();
    CSWaitCursor(const CSWaitCursor&) = delete;
    CSWaitCursor& operator=(const CSWaitCursor&) = delete;

  private:
    HCURSOR hcurBefore;
};
