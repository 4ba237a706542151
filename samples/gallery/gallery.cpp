// The gallery: what the dialogs of the library can do, a page for each family. Each source is one
// dialog or page, to be read and copied from.
#include "main_dialog.h"

#include <commctrl.h>

int WINAPI wWinMain(HINSTANCE hinst, HINSTANCE, PWSTR, int) {
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_WIN95_CLASSES};
    ::InitCommonControlsEx(&controls);

    // From here on the library's settings are this program's: the windows' places go to this key.
    AppInstance app(hinst, L"Gallery");
    app.SetAppRootKey(L"HKCU\\Software\\Tessaly Gallery");

    MainDialog dialog(hinst);
    if (!dialog.Modeless(IDD_MAIN, hinst, nullptr, 1)) return 1;
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
        // Keys belong to the dialog in front: the main one, or a modeless one above it.
        HWND hwndActive = ::GetActiveWindow();
        if (hwndActive && ::IsDialogMessageW(hwndActive, &msg)) continue;
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
    return 0;
}
