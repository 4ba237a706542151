#pragma once
// Ids of the templates in button_templates.rc: 450 to 499. Items have ids from 1000 on.
#define IDD_BUTTONS 450
#define IDC_PICTURE 1000
#define IDC_PLAIN 1001
#define IDC_LINK 1002
#define IDC_OTHER_PICTURE 1003
