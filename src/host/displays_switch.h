#pragma once

/// What to do about putting the icons back when the displays change.
enum class Displays { None, Tell, On, Off };

enum class DisplaysAnswer { Done, IsOff, NotWritten };

/// Turns it on or off, or tells whether it is on: Done or IsOff then. Shows what it was asked, and
/// that it could not be written; nothing at all with bQuiet. Not for None.
DisplaysAnswer RunDisplays(Displays what, bool bQuiet);
