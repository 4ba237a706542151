#include "wnd/wait_cursor.h"

CSWaitCursor::CSWaitCursor()
    : hcurBefore(::SetCursor(::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT)))) {}

CSWaitCursor::~CSWaitCursor() { ::SetCursor(hcurBefore); }
