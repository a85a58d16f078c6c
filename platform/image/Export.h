// Marks what the image library exports. Its objects cross library boundaries, so it is a shared library.
#pragma once

#if defined(_WIN32)
#if defined(KVIMAGE_BUILDING)
#define KVIMAGE_API __declspec(dllexport)
#else
#define KVIMAGE_API __declspec(dllimport)
#endif
#else
#define KVIMAGE_API __attribute__((visibility("default")))
#endif
