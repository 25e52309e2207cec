// Export decoration and the fixed-width types shared by every YXTools header.
#ifndef YXTOOLS_CONFIG_H
#define YXTOOLS_CONFIG_H

#include <cstdint>

// YXTOOLS_API marks the exported interface. The library is built with hidden visibility, so
// anything without it stays inside. YXTOOLS_STATIC is set by the internal archive that white-box
// tests link; hosts never set it.
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

// YXTOOLS_API_INLINE marks an exported function that its header also defines inline, so that a
// host's compiler can inline it. The library exports its own copy; a host compiles the definition
// itself, so on Windows it is not imported (an inline function cannot be).
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

// Functions exported with plain, undecorated names.
#define YXTOOLS_PLAIN extern "C" YXTOOLS_API

#endif
