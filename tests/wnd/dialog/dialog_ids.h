#pragma once
// Ids of the templates in dialog_templates.rc: 300 to 349. Items have ids from 1000 on.

#define IDD_DIALOG_PLAIN 300   // visible; a label and the OK button
#define IDD_DIALOG_HIDDEN 301  // the same, not visible by itself
#define IDD_DIALOG_ITEMS 302   // every common kind of item, not visible by itself
#define IDD_DIALOG_TABS 303    // visible, for the walk with the keyboard
#define IDD_DIALOG_NO_FONT 304 // so that WM_INITDIALOG is the first message of its procedure
#define IDD_DIALOG_PAGE 305    // a child window

// The items of IDD_DIALOG_ITEMS in their order, between a label and the buttons IDOK, IDCANCEL and
// IDHELP.
#define IDC_EDIT 1000
#define IDC_NUMBER 1001
#define IDC_CHECK 1002
#define IDC_RADIO_1 1003
#define IDC_RADIO_2 1004
#define IDC_RADIO_3 1005
#define IDC_BUTTON 1006
#define IDC_FORMAT 1007 // a label with a format as its text
#define IDC_COMBO 1008
#define IDC_LIST 1009
#define IDC_SPIN 1010
#define IDC_PROGRESS 1011
#define IDC_UNSEEN 1012
#define IDC_DISABLED 1013
#define IDC_SCROLL 1014
#define IDC_LIST_VIEW 1015
#define IDC_FRAME 1016
#define IDC_OWNER_DRAWN 1017
#define IDC_MULTI_LINE 1018
#define IDC_NO_ITEM 1999 // in no template
