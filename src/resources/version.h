#pragma once
// The product's version as the version resources state it.
#define TESSALY_VERSION_NUMBERS 1, 1, 0, 2409
#define TESSALY_VERSION_TEXT "1.1.0.2409"
