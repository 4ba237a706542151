#pragma once
// The resources of the library and of the host. Numbers are what callers pass (a negative id of the
// same magnitude names the library's own module), so they do not change.

// Icons, 101 to 199
#define IDI_TESSALY 101

// Dialogs, 200 to 299 and 20100 to 20199: ids of their items behind them
#define IDD_SIMPLE_ABOUT 203
#define IDC_ABOUT_PICTURE 1001
#define IDC_ABOUT_WEB 1002
#define IDC_ABOUT_VERSION 1003 // %s: the version
#define IDC_ABOUT_NOTICE 1004  // %s: the year
#define IDD_ABOUT 20100
#define IDC_ABOUT_NAME 20101
#define IDC_ABOUT_FULL_VERSION 20102
#define IDC_ABOUT_PRODUCT_ICON 20103
#define IDC_ABOUT_WEB_LINK 20104
#define IDC_ABOUT_RATE 20105
#define IDC_ABOUT_TRANSLATE 20106
#define IDC_ABOUT_IMPROVE 20107
#define IDC_ABOUT_SHOW_NOTICE 20108
#define IDC_ABOUT_COPY 20114 // a command alone
#define IDC_ABOUT_DETAILS 20117
#define IDC_ABOUT_TITLE 20118

// The dialogs about updates and their items, 21500 to 21559 and 21800 to 21809
#define IDD_CHECK_FOR_UPDATES 21802
#define IDD_GET_UPDATES 21804
#define IDC_UPDATE_AUTO_CHECK 1008
#define IDC_UPDATE_DESCRIPTION 1009
#define IDC_UPDATE_CONTINUE 1032 // the text beside the button
#define IDC_UPDATE_REMIND_LABEL 1037
#define IDC_UPDATE_QUESTION 1038
#define IDC_UPDATE_DAYS 21503 // %d: days since the last check
#define IDC_UPDATE_YES 21536
#define IDC_UPDATE_NO 21537
#define IDC_UPDATE_TITLE 21542
#define IDC_UPDATE_REMIND 21543

// Icons of captions and buttons, 20070 to 20099
#define IDI_DLG_CLOSE 20074
#define IDI_DLG_CLOSE_HOVER 20075
#define IDI_DLG_MINIMIZE 20076
#define IDI_DLG_MINIMIZE_HOVER 20077

// Bitmaps, 21530 to 21539: strips of an ImageBtn's five frames, of 48 by 48 pixels each
#define IDB_BUTTON_STRIP_1 21530 // continue: an arrow
#define IDB_BUTTON_STRIP_2 21531 // restore a layout: an arrow that turns back, around tiles
#define IDB_BUTTON_STRIP_3 21532 // the web: a globe

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
#define IDS_NO_UPDATE_SERVER 20101
#define IDS_NO_UPDATES 20102
#define IDS_UPDATE_ERROR 20103 // %s: what the server says
#define IDS_COPY 20114
#define IDS_CHECK_DAILY 20121
#define IDS_CHECK_WEEKLY 20122
#define IDS_CHECK_MONTHLY 20123
#define IDS_CHECK_NEVER 20124
#define IDS_REMIND_TOMORROW 20131
#define IDS_REMIND_NEXT_WEEK 20132
#define IDS_REMIND_NEXT_MONTH 20133
#define IDS_REMIND_NEVER 20134
#define IDS_ASK_FOR_UPDATES 20141 // %s: the product's name
#define IDS_LAST_CHECK 20142      // %d: days
#define IDS_UPDATE_AVAILABLE 20143
#define IDS_REGISTRY_NEEDS_ADMIN 21651
#define IDS_WEB_PAGE_NOT_OPENED 22022
