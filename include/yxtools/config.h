/// @file
/// Export decoration and the fixed-width types shared by every YXTools header.
#ifndef YXTOOLS_CONFIG_H
#define YXTOOLS_CONFIG_H

#include <cstdint>

/// @def YXTOOLS_API
/// Marks the exported interface: dllexport while the library is built (YXTOOLS_BUILDING) and
/// dllimport for a host on Windows, default visibility on POSIX. The library is built with hidden
/// visibility, so anything without it stays inside. YXTOOLS_STATIC, set by the internal archive
/// that the library's white-box tests link, leaves it empty; hosts set neither macro.
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

/// @def YXTOOLS_API_INLINE
/// Marks an exported function that its header also defines inline, so that a host's compiler can
/// inline it. The library exports its own copy; a host compiles the definition itself, so on
/// Windows it is not imported (an inline function cannot be).
#if defined(YXTOOLS_STATIC)
#define YXTOOLS_API_INLINE
#elif defined(_WIN32)
#if defined(YXTOOLS_BUILDING)
#define YXTOOLS_API_INLINE __declspec(dllexport)
#else
#define YXTOOLS_API_INLINE
#endif
#else
#define YXTOOLS_API_INLINE __attribute__((visibility("default")))
#endif

/// @def YXTOOLS_PLAIN
/// Marks functions exported with plain, undecorated (C) names, as the YXHugePtr_,
/// YXNameProvider_ and hole manager creation functions are.
#define YXTOOLS_PLAIN extern "C" YXTOOLS_API

#endif
