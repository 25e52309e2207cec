// The initialisation and closing sequences, shared by YXTools_Init/YXTools_Close and the
// platform's load and unload hooks.
#ifndef YXTOOLS_FRAME_LIFECYCLE_H
#define YXTOOLS_FRAME_LIFECYCLE_H

#include "platform/win32.h"

namespace yx::frame {

void RunInitialisationSequence();
void RunClosingSequence();

// The decision of IsWin9XVersion on a version record: the Windows 9x platform from 4.10 on.
bool IsWin9XRecord(const OSVERSIONINFOA& info);

// Static construction order inside the library (GCC init_priority, lower runs first and is
// destroyed last): the trace manager before the load hook, so that trace output works before
// any initialiser has run and until the closing sequence is over.
#define YX_INIT_PRIORITY_TRACE_MANAGER 1000
#define YX_INIT_PRIORITY_LOAD_HOOK 2000

} // namespace yx::frame

#if defined(_WIN32)
// The library's entry procedure (entry.cpp), which the runtime calls with each load notification.
extern "C" BOOL WINAPI DllMain(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved);
#endif

#endif
