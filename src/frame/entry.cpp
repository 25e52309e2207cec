// The platform's load and unload hooks. Both run the sequences of lifecycle.cpp and report
// success whatever the sequences met.
#include "frame/lifecycle.h"
#include "platform/win32.h"

#if defined(_WIN32)

// The C runtime constructs the library's static objects before the attach notification and
// destroys them after the detach notification, which keeps the trace manager outermost.
extern "C" BOOL WINAPI DllMain(HINSTANCE /*hinstDLL*/, DWORD fdwReason, LPVOID /*lpvReserved*/)
{
    switch (fdwReason) {
    case DLL_PROCESS_ATTACH:
        yx::frame::RunInitialisationSequence();
        break;
    case DLL_PROCESS_DETACH:
        yx::frame::RunClosingSequence();
        break;
    default:
        break;
    }
    return TRUE;
}

#else

namespace {
// A static object whose construction is the load and whose destruction is the unload. Its
// priority puts it after the trace manager at load and before it at unload.
struct LoadHook {
    LoadHook() { yx::frame::RunInitialisationSequence(); }
    ~LoadHook() { yx::frame::RunClosingSequence(); }
    LoadHook(const LoadHook&) = delete;
    LoadHook& operator=(const LoadHook&) = delete;
};
const LoadHook g_loadHook __attribute__((init_priority(YX_INIT_PRIORITY_LOAD_HOOK)));
} // namespace

#endif
