#include "host/displays_switch.h"
#include "host/commands/command_outcome.h"
#include "host/commands/output.h"
#include "icons/displays/restore_on_change.h"

namespace {
DisplaysAnswer TellWhether(bool bQuiet) {
    bool bOn = GetRestoreOnChange() != 0;
    if (!bQuiet)
        TellUser(bOn ? L"Tessaly puts the icons back when the displays change."
                     : L"Tessaly does not put the icons back when the displays change.",
                 false, false);
    return bOn ? DisplaysAnswer::Done : DisplaysAnswer::IsOff;
}
} // namespace

DisplaysAnswer RunDisplays(Displays what, bool bQuiet) {
    if (what == Displays::Tell) return TellWhether(bQuiet);
    if (SetRestoreOnChange(what == Displays::On)) return DisplaysAnswer::Done;
    if (!bQuiet) {
        CommandText told;
        DescribeResult(CommandResult::NotWritten, told);
        TellUser(told.Get(), true, true);
    }
    return DisplaysAnswer::NotWritten;
}
