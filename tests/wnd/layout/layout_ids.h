#pragma once
// Ids of the templates in layout_templates.rc: 350 to 399. Items have ids from 1000 on.
#define IDD_LAYOUT_ITEMS 350
#define IDD_LAYOUT_EMPTY 351
#define IDD_LAYOUT_SIZING 352
#define IDD_LAYOUT_MAIN 353
#define IDD_LAYOUT_PAGE 354
#define IDD_LAYOUT_VISIBLE 355

#define IDC_LAYOUT_LABEL 1000
#define IDC_LAYOUT_BUTTON 1001
#define IDC_LAYOUT_EDIT 1002
#define IDC_LAYOUT_SLOT 1003
#define IDC_LAYOUT_FRAME 1004
#define IDC_LAYOUT_OTHER 1005
#define IDC_LAYOUT_COMBO 1006
