#pragma once
// Ids of the templates in ctrl_templates.rc: 550 to 559. Items have ids from 1000 on.
#define IDD_PROGRESS_CTRL 550

#define IDC_TEST_BAR 1000
#define IDC_TEST_LINE0 1001
#define IDC_TEST_LINE1 1002
#define IDC_TEST_LINE2 1003
#define IDC_TEST_LINE3 1004
