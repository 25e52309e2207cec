#include "frame/lifecycle.h"

#include <cstring>

#include "diagnostics/errorslog_internal.h"
#include "intl/intl_internal.h"
#include "names/nameprovider_internal.h"
#include "text/text_internal.h"
#include "platform/win32.h"
#include "yxtools/frame.h"

namespace yx::frame {

// Each step runs whatever the one before it met: a failed step leaves its pointer null.
//
// Initialisation in the Open state releases and replaces the registries and the default log
// (their initialisers free what their pointers held) rather than leaking them; the regional
// settings of step 1 stay. A host that initialises twice gets new, empty objects either way.
void RunInitialisationSequence()
{
    YXIntl_Create();
    String_InitTables();
    YXNameProvider_InitRegistries(true);
    YXErrorsLog_CreateDefault();
}

// The heap objects go in the reverse order of their creation.
void RunClosingSequence()
{
    YXErrorsLog_DestroyDefault();
    YXNameProvider_InitRegistries(false);
    YXIntl_Destroy();
}

bool IsWin9XRecord(const OSVERSIONINFOA& info)
{
    if (info.dwPlatformId != VER_PLATFORM_WIN32_WINDOWS) {
        return false;
    }
    if (info.dwMajorVersion != 4) {
        return info.dwMajorVersion > 4;
    }
    return info.dwMinorVersion > 0;
}

} // namespace yx::frame

void YXTools_Init()
{
    yx::frame::RunInitialisationSequence();
}

void YXTools_Close()
{
    yx::frame::RunClosingSequence();
}

bool IsWin9XVersion()
{
    OSVERSIONINFOA info;
    std::memset(&info, 0, sizeof(info));
    info.dwOSVersionInfoSize = sizeof(info);
    // The result is not looked at: after a failure the zeroed record answers false.
    GetVersionExA(&info);
    return yx::frame::IsWin9XRecord(info);
}
