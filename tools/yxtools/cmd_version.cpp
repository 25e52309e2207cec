#include <yxtools/yxtools.h>

#include "cli.h"

namespace {

int RunVersion(cli::Context& context, const cli::Args& args)
{
#if defined(_WIN32)
    const char* platform = "windows";
#else
    const char* platform = "posix";
#endif
    context.result.Set("version", YXTOOLS_VERSION_STRING);
    context.result.Set("platform", platform);
    context.result.Set("win9x", IsWin9XVersion());
    context.Line("YXTools %s (%s build)", YXTOOLS_VERSION_STRING, platform);
    context.Line("IsWin9XVersion: %s", IsWin9XVersion() ? "true" : "false");
    return 0;
}

const cli::Registration registration({"version", "version", "the library's version and platform", RunVersion});

} // namespace
