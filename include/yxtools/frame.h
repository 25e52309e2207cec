/// @file
/// The library frame: initialisation and shutdown of the process-wide objects, and the platform
/// probe. Load and unload run the same sequences by themselves; a host calls these only to start
/// the process-wide objects afresh.
#ifndef YXTOOLS_FRAME_H
#define YXTOOLS_FRAME_H

#include "yxtools/config.h"

/// Creates the process-wide objects: the regional settings, the multibyte tables, the two
/// name provider registries and the default error log, in that order.
YXTOOLS_API void YXTools_Init();

/// Releases the default error log, then the registries, then the regional settings. The
/// multibyte tables and the trace manager stay until the library is unloaded.
YXTOOLS_API void YXTools_Close();

/// True on the Windows 9x platform from version 4.10 on.
YXTOOLS_API bool IsWin9XVersion();

#endif
