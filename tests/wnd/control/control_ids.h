#pragma once
// Ids of the templates in control_templates.rc: 400 to 449. Items have ids from 1000 on.
#define IDD_CONTROLS 400
#define IDD_EDITS 401
#define IDD_COMBOS 402

#define IDC_EDIT 1010
#define IDC_OTHER_EDIT 1011
#define IDC_EMPTY_EDIT 1012
#define IDC_MULTI_EDIT 1013
#define IDC_BUTTON 1020
#define IDC_OWNER_DRAWN 1021
#define IDC_HELP_BUTTON 9
#define IDC_FORMAT 1030
#define IDC_HOSTILE_FORMAT 1031
#define IDC_COMBO 1040
#define IDC_COMBO_LIST 1041
#define IDC_COMBO_SORTED 1042
#define IDC_COMBO_SIMPLE 1043
#define IDC_MISSING 1999
