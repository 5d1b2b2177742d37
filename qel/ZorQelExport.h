#ifndef ZORQEL_EXPORT_H
#define ZORQEL_EXPORT_H

// Marks the symbols that ZorQelUtilities exports. The same sources build a
// DLL on Windows (export while building, import when consuming) and a shared
// object with default visibility elsewhere.
#if defined(_WIN32)
#if defined(ZORQEL_BUILDING_LIBRARY)
#define ZORQEL_API __declspec(dllexport)
#else
#define ZORQEL_API __declspec(dllimport)
#endif
#else
#define ZORQEL_API __attribute__((visibility("default")))
#endif

#endif
