/// @file
/// Marks what the base library exports. Its objects cross library boundaries, so it is a shared library.
#pragma once

/// @def KVBASE_API
/// On a class or function that crosses the boundary of the library.
#if defined(_WIN32)
#if defined(KVBASE_BUILDING)
#define KVBASE_API __declspec(dllexport)
#else
#define KVBASE_API __declspec(dllimport)
#endif
#else
#define KVBASE_API __attribute__((visibility("default")))
#endif
