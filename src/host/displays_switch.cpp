#include "host/displays_switch.h"
#include "icons/displays/restore_on_change.h"
#include "resources/resource_ids.h"
#include "runtime/messages/msg.h"

#include <windows.h>

namespace {
DisplaysAnswer TellWhether(bool bQuiet) {
    bool bOn = GetRestoreOnChange() != 0;
    if (!bQuiet)
        Msg(nullptr, MB_ICONINFORMATION,
            bOn ? L"Tessaly puts the icons back when the displays change."
                : L"Tessaly does not put the icons back when the displays change.");
    return bOn ? DisplaysAnswer::Done : DisplaysAnswer::IsOff;
}
} // namespace

DisplaysAnswer RunDisplays(Displays what, bool bQuiet) {
    if (what == Displays::Tell) return TellWhether(bQuiet);
    if (SetRestoreOnChange(what == Displays::On)) return DisplaysAnswer::Done;
    if (!bQuiet) Msg(nullptr, MB_ICONWARNING, -IDS_REGISTRY_NOT_WRITTEN);
    return DisplaysAnswer::NotWritten;
}
