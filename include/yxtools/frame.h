/// @file
/// The library frame: initialisation and shutdown of the process-wide objects, and the platform
/// probe. Load and unload run the same sequences by themselves; a host calls these only to start
/// the process-wide objects afresh.
///
/// At load the trace manager is made first, then the sequence of YXTools_Init runs; at unload the
/// sequence of YXTools_Close runs, the trace manager last. On POSIX a constructor and destructor
/// pair of the shared object runs them; on Windows `DllMain` does, at `DLL_PROCESS_ATTACH` and
/// `DLL_PROCESS_DETACH` (thread notifications do nothing, and all four report success).
#ifndef YXTOOLS_FRAME_H
#define YXTOOLS_FRAME_H

#include "yxtools/config.h"

/// Creates the process-wide objects: the regional settings, the multibyte tables, the two
/// name provider registries and the default error log, in that order. Called while the library
/// is open, it releases the default error log and the registries and makes new, empty ones; the
/// regional settings stay. No other thread may use these objects during the call.
YXTOOLS_API void YXTools_Init();

/// Releases the default error log, then the registries, then the regional settings. The
/// multibyte tables and the trace manager stay until the library is unloaded. No other thread
/// may use these objects during the call.
YXTOOLS_API void YXTools_Close();

/// True on the Windows 9x platform from version 4.10 on.
YXTOOLS_API bool IsWin9XVersion();

#endif
