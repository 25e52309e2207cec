/// @file
/// Export decoration and the fixed-width types shared by every YXTools header.
#ifndef YXTOOLS_CONFIG_H
#define YXTOOLS_CONFIG_H

#include <cstdint>

/// YXTOOLS_API marks the exported interface. The library is built with hidden visibility, so
/// anything without it stays inside. YXTOOLS_STATIC is set by the internal archive that white-box
/// tests link; hosts never set it.
#if defined(YXTOOLS_STATIC)
#define YXTOOLS_API
#elif defined(_WIN32)
#if defined(YXTOOLS_BUILDING)
#define YXTOOLS_API __declspec(dllexport)
#else
#define YXTOOLS_API __declspec(dllimport)
#endif
#else
#define YXTOOLS_API __attribute__((visibility("default")))
#endif

/// Functions exported with plain, undecorated names.
#define YXTOOLS_PLAIN extern "C" YXTOOLS_API

#endif
