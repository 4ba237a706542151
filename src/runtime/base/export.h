#pragma once

/// Marks what the library exports. The build of the library defines TESSALY_BUILD, users of the
/// static library (the tests) TESSALY_STATIC; everybody else imports.
#if defined(TESSALY_BUILD)
#define TESSALY_API __declspec(dllexport)
#elif defined(TESSALY_STATIC)
#define TESSALY_API
#else
#define TESSALY_API __declspec(dllimport)
#endif
