#pragma once

#define IDD_BENCH 100
#define ID_FIRST 1000 // the controls' ids follow each other
#define CONTROL_COUNT 50
