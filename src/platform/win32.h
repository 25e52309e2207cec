// The one place that decides where the Win32 API and its runtime library come from.
//
// On Windows this is <windows.h> and the C runtime. Everywhere else it is our stand-in in
// platform/posix/, which declares the same names, types and constants with Win32's semantics,
// for exactly the calls that the library makes. Library code includes this header and calls
// Win32 by its own names.
#ifndef YXTOOLS_PLATFORM_WIN32_H
#define YXTOOLS_PLATFORM_WIN32_H

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// Network names (mpr) and shares (netapi32).
#include <lm.h>
#include <winnetwk.h>
// The runtime's _vsnprintf (msvcrt.dll), with its -1 when the text does not fit. mingw-w64's own
// C99 formatter (__USE_MINGW_ANSI_STDIO) takes over the standard names only, never this one.
#include <cstdio>
#include <cstdlib>
#include <io.h>
#include <sys/stat.h>
// The runtime's remove and rename, under the names the POSIX stand-in gives them.
namespace crt {
using ::remove;
using ::rename;
} // namespace crt
#else
#include "platform/posix/win32_posix.h"
#endif

#endif
