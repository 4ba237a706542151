#pragma once
// The resources of the library and of the host. Numbers are what callers pass (a negative id of the
// same magnitude names the library's own module), so they do not change.

// Icons, 101 to 199
#define IDI_TESSALY 101

// Strings, 20000 to 22999: in groups of the subsystem that shows them
#define IDS_REGISTRY_NOT_WRITTEN 20001
#define IDS_OPEN_WEB_PAGE 20007
#define IDS_NOT_ON_THIS_EDITION 20008
#define IDS_NO_HTML_HELP 20010
#define IDS_FILE_OVERWRITE 20011    // %s: the file's name
#define IDS_FILE_NOT_CREATED 20012  // %s: the file's name
#define IDS_FILE_NOT_WRITTEN 20013  // %s: the file's name
#define IDS_HELP_FILE_MISSING 20015 // %s: the file's path
#define IDS_ABOUT 20022
#define IDS_NO_UPDATES 20102
#define IDS_REGISTRY_NEEDS_ADMIN 21651
#define IDS_WEB_PAGE_NOT_OPENED 22022
