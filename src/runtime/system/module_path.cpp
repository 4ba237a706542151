#include "runtime/system/module_path.h"

int GetModulePath(HINSTANCE hinst, wchar_t (&szPath)[MAX_PATH]) {
    DWORD cch = ::GetModuleFileNameW(hinst, szPath, MAX_PATH);
    if (cch > 0 && cch < MAX_PATH) return 1; // XP cuts a longer one without a terminator
    szPath[0] = 0;
    return 0;
}
