// Debugger output and the millisecond counter of the POSIX stand-in.
#ifndef YXTOOLS_PLATFORM_POSIX_DEBUG_POSIX_H
#define YXTOOLS_PLATFORM_POSIX_DEBUG_POSIX_H

// Sends a text to whoever listens, unchanged and without a line end added. The listener is the
// file named by YXTOOLS_DEBUG_OUTPUT, which the text is appended to ("-" is the standard error);
// without one, a debugger attached to the process (a tracer, as gdb is) gets it on the standard
// error. Otherwise the text goes nowhere, as on Windows when nobody listens.
YX_PLATFORM void OutputDebugStringA(LPCSTR lpOutputString);

// Milliseconds since the system started, suspended time included, wrapping at 2^32.
YX_PLATFORM DWORD GetTickCount();

#endif
