#include "runtime/base/dll_buf.h"

#include <cstdlib>

void FreeDllBuf(void* pBuffer) { std::free(pBuffer); }
