#pragma once
// The product's version: the one place that states it. CMakeLists.txt reads the plain numbers, the
// resources and the code take the rest.
#define TESSALY_VERSION_MAJOR 1
#define TESSALY_VERSION_MINOR 1
#define TESSALY_VERSION_BUILD 0
#define TESSALY_REVISION 2409

// What the version resources, the installer and the names of what is released say. These and the
// numbers are read by scripts/package as they stand here.
#define TESSALY_NAME_TEXT "Tessaly"
#define TESSALY_MAKER_TEXT "Orvanta"
#define TESSALY_COPYRIGHT_TEXT "Copyright (c) 2017 Orvanta"
/// The day of the release; what is released is dated by it, at 00:00 UTC.
#define TESSALY_RELEASE_DATE_TEXT "2026-11-22"

// The text of one token, or of several without blanks between them, whose macros are expanded
// first.
#define TESSALY_TEXT_OF(tokens) TESSALY_TEXT_OF_EXPANDED(tokens)
#define TESSALY_TEXT_OF_EXPANDED(tokens) #tokens

// clang-format off: a blank after a point would stand in the text
/// "1.1"
#define TESSALY_VERSION_SHORT_TEXT TESSALY_TEXT_OF(TESSALY_VERSION_MAJOR.TESSALY_VERSION_MINOR)
/// "2409"
#define TESSALY_REVISION_TEXT TESSALY_TEXT_OF(TESSALY_REVISION)
/// "1.1.0.2409", as the version resources state it
#define TESSALY_VERSION_TEXT                                                                       \
    TESSALY_TEXT_OF(                                                                               \
        TESSALY_VERSION_MAJOR.TESSALY_VERSION_MINOR.TESSALY_VERSION_BUILD.TESSALY_REVISION)
/// The same as the four numbers of a version resource
#define TESSALY_VERSION_NUMBERS                                                                    \
    TESSALY_VERSION_MAJOR, TESSALY_VERSION_MINOR, TESSALY_VERSION_BUILD, TESSALY_REVISION
// clang-format on
