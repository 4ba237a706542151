#pragma once
// Ids of the resources in test_resources.rc.
#define IDS_TEST_PLAIN 101
#define IDS_TEST_NUMBER_AND_TEXT 102
#define IDS_TEST_HOSTILE_FORMAT 103
#define IDS_TEST_EMPTY_WHEN_FORMATTED 104
#define IDR_TEST_FILE 201
#define IDR_TEST_OTHER_TYPE 202
#define IDI_TEST 5
#define IDB_TEST_STRIP 6
