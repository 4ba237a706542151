#include "runtime/messages/wait_cursor.h"

CSWaitCursor::CSWaitCursor()
    : hcurBefore(::SetCursor(::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT)))) {}

CSWaitCursor::~CSWaitCursor() {
    DWORD dwError = ::GetLastError(); // of what the block was for; the platform writes its own
    ::SetCursor(hcurBefore);
    ::SetLastError(dwError);
}
