#pragma once
// Ids of the templates in control_templates.rc: 500 to 549. Items have ids from 1000 on.

#define IDD_HTML 500       // rich texts of every kind, visible
#define IDD_HTML_POPUP 501 // a title line and a page, without a caption, visible
#define IDD_HTML_SMALL 502 // one text that is too high for its item; not visible by itself
#define IDD_HTML_ZERO 503  // an item with the id 0, visible

#define IDC_HTML_EDIT 1000
#define IDC_HTML_LINK 1021 // SS_NOTIFY; a link of its own id and one of the next
#define IDC_HTML_BOLD 1030
#define IDC_HTML_DEAF 1031 // a link, without SS_NOTIFY
#define IDC_HTML_KEYS 1040 // SS_NOTIFY, a tab stop
#define IDC_HTML_WRAP 1050 // SS_NOTIFY, narrow, for links of several lines
#define IDC_HTML_EMPTY 1060
#define IDC_HTML_BUTTON 1070
#define IDC_HTML_TITLE 21542
