#ifndef ZORWBX_EXPORT_H
#define ZORWBX_EXPORT_H

// Marks the symbols that the ZorWBx library exports. The same sources build a
// DLL on Windows (export while building, import when consuming) and a shared
// object with default visibility elsewhere.
#if defined(_WIN32)
#if defined(ZORWBX_BUILDING_LIBRARY)
#define ZORWBX_API __declspec(dllexport)
#else
#define ZORWBX_API __declspec(dllimport)
#endif
#else
#define ZORWBX_API __attribute__((visibility("default")))
#endif

#endif
