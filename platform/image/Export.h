/// @file
/// Marks what the image library exports. Its objects cross library boundaries, so it is a shared library.
#pragma once

/// @def KVIMAGE_API
/// On a class or function that crosses the boundary of the library.
#if defined(_WIN32)
#if defined(KVIMAGE_BUILDING)
#define KVIMAGE_API __declspec(dllexport)
#else
#define KVIMAGE_API __declspec(dllimport)
#endif
#else
#define KVIMAGE_API __attribute__((visibility("default")))
#endif
