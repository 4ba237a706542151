#pragma once
// The resources of the library and of the host. Numbers are what callers pass (a negative id of the
// same magnitude names the library's own module), so they do not change.

// Icons, 101 to 199
#define IDI_TESSALY 101

// Strings, 20000 to 21999: in groups of the subsystem that shows them
