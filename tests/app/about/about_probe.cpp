// Another program with the library that shows its About box; ends when that is closed.
#include "app/about/about.h"
#include "app/start/library_start.h"

int wmain() {
    LibraryStart(::GetModuleHandleW(nullptr));
    ShowAboutOrActivate();
    LibraryStop();
    return 0;
}
