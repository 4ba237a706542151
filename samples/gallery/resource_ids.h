// Ids of the gallery's resources. Those of controls are unique over all dialogs: a page passes
// clicks on to the main dialog.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

#define IDI_GALLERY 1

// Dialogs
#define IDD_MAIN 100
#define IDD_DIALOGS 101
#define IDD_EDITS 102
#define IDD_TEXTS 103
#define IDD_RICH_TEXT 104
#define IDD_BUTTONS 105
#define IDD_UPDATES 106
#define IDD_PROGRESS 107
#define IDD_NOTE 110
#define IDD_SIZABLE 111
#define IDD_FOLD 112

// Strings
#define IDS_TIP 200
#define IDS_STEP 201

// Main dialog
#define IDC_PAGES 1000
#define IDC_PAGE_SLOT 1001

// Page "Dialogs"
#define IDC_RUN_GROUP 1100
#define IDC_MODAL 1101
#define IDC_MODELESS 1102
#define IDC_OWN_LOOP 1103
#define IDC_FROM_MEMORY 1104
#define IDC_RESULT 1105
#define IDC_ALIGN_GROUP 1110
#define IDC_CENTERED 1111 // the three in the order of CSDlgAlign
#define IDC_CASCADED 1112
#define IDC_AT_MOUSE 1113
#define IDC_LAYOUT_GROUP 1120
#define IDC_SIZABLE 1121
#define IDC_SIZABLE_TEXT 1122
#define IDC_FOLD 1123
#define IDC_FOLD_TEXT 1124

// Dialog "Note"
#define IDC_NAME 1200
#define IDC_BODY 1201

// Dialog "Resizable"
#define IDC_NOTES 1210

// Dialog "Folding"
#define IDC_FOLD_FRAME 1220
#define IDC_FOLD_ADDRESS 1221
#define IDC_STREET_LABEL 1222
#define IDC_STREET 1223
#define IDC_TOWN_LABEL 1224
#define IDC_TOWN 1225
#define IDC_FOLD_GIFT 1226
#define IDC_GIFT_LABEL 1227
#define IDC_GIFT 1228
#define IDC_FOLD_BELOW 1229

// Page "Edits and combos"
#define IDC_EDIT_GROUP 1300
#define IDC_SOFT_EDIT 1301
#define IDC_READ_ONLY 1302
#define IDC_KEEP_SELECTION 1303
#define IDC_COLOUR 1304
#define IDC_BALLOON 1305
#define IDC_BALLOON_RESULT 1306
#define IDC_DROP_PATH 1307
#define IDC_DROP_FOLDER 1308
#define IDC_COMBO_GROUP 1310
#define IDC_TYPED 1311
#define IDC_TYPED_TEXT 1312
#define IDC_LIST 1313
#define IDC_UP 1314
#define IDC_DOWN 1315

// Page "Texts"
#define IDC_HELP_GROUP 1400
#define IDC_HELP_TEXT 1401
#define IDC_HELP_PAGE 1402
#define IDC_TIP_GROUP 1410
#define IDC_TIP_TEXT 1411
#define IDC_TIP_STRING 1412
#define IDC_WORK 1413
#define IDC_FIT_GROUP 1420
#define IDC_FITTED 1421
#define IDC_TIME_GROUP 1430
#define IDC_SECONDS 1431
#define IDC_SECONDS_SPIN 1432
#define IDC_COUNT_DOWN 1433
#define IDC_TIME_LONG 1434
#define IDC_TIME_SHORT 1435

// Page "Rich text": a control with links has ten ids, one for each of its commands
#define IDC_TAGS 1500
#define IDC_WRAPPED 1510
#define IDC_DRAWN 1520
#define IDC_NARROW 1530
#define IDC_TAGS_GROUP 1540
#define IDC_LINKS_GROUP 1541
#define IDC_LINK_PRESSED 1542
#define IDC_LIVE_GROUP 1543
#define IDC_MARKUP 1544

// Page "Buttons": the first of each row; the checked one and the disabled one follow
#define IDC_GO 1600
#define IDC_UNDO 1603
#define IDC_WEB 1606
#define IDC_APP 1609
#define IDC_ICON_CLOSE 1612
#define IDC_ICON_MINIMIZE 1615
#define IDC_FACE 1618
#define IDC_LINK 1621
#define IDC_STRIP_GROUP 1630
#define IDC_ICON_GROUP 1631
#define IDC_LABEL_GROUP 1632
#define IDC_BUTTON_PRESSED 1633

// Page "Updates"
#define IDC_QUESTION_GROUP 1700
#define IDC_DAYS 1701
#define IDC_ASK 1702
#define IDC_OFFER_GROUP 1710
#define IDC_DESCRIPTION 1711
#define IDC_MORE_LABEL 1712
#define IDC_MORE_INFO 1713
#define IDC_OFFER 1714
#define IDC_REMINDER_LABEL 1720
#define IDC_REMINDER 1721
#define IDC_UPDATE_ANSWER 1722

// Page "Progress"
#define IDC_JOB_GROUP 1800
#define IDC_ON_THIS_THREAD 1801
#define IDC_ON_OWN_THREAD 1802
#define IDC_DELAY 1803
#define IDC_LINES 1804
#define IDC_STEPS 1805
#define IDC_CAN_CANCEL 1806
#define IDC_BY_TICKER 1807
#define IDC_RUN_JOB 1808
#define IDC_JOB_RESULT 1809
#define IDC_BAR_GROUP 1820
#define IDC_BAR 1821
#define IDC_BAR_TEXT 1822
#define IDC_BAR_GO 1823
#define IDC_BAR_PAUSE 1824
#define IDC_BAR_MARQUEE 1825
#define IDC_BAR_TASKBAR 1826
#define IDC_DIGEST_GROUP 1830
#define IDC_FOLDER 1831
#define IDC_BROWSE 1832
#define IDC_DIGEST 1833
#define IDC_DIGESTS 1834
#define IDC_DIGEST_RESULT 1835
