/// @file
/// Marks the library's exported interface. KVSUBSTANCE_STATIC is set by whoever links the static form.
#pragma once

/// @def KVSUBSTANCE_API
/// On a class or function that crosses the boundary of the library.
#if defined(_WIN32) && !defined(KVSUBSTANCE_STATIC)
#if defined(KVSUBSTANCE_BUILDING)
#define KVSUBSTANCE_API __declspec(dllexport)
#else
#define KVSUBSTANCE_API __declspec(dllimport)
#endif
#elif defined(_WIN32)
#define KVSUBSTANCE_API
#else
#define KVSUBSTANCE_API __attribute__((visibility("default")))
#endif
