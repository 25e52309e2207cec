// yxtools version: the library's version and the platform it was built for.
#include <yxtools/yxtools.h>

#include "cli.h"
#include "edge.h"

namespace cli {

void AddVersionCommand(CLI::App& app, Context& context)
{
    CLI::App* version = app.add_subcommand("version", "the library's version and platform");
    context.SetAction(version, [&context] {
#if defined(_WIN32)
        const char* platform = "windows";
#else
        const char* platform = "posix";
#endif
        context.result["version"] = YXTOOLS_VERSION_STRING;
        context.result["platform"] = platform;
        context.result["win9x"] = IsWin9XVersion();
        context.result["code_page"] = edge::AnsiCodePage();
        context.result["terminal"] = edge::TerminalEncoding();
        context.Line("YXTools %s (%s build)", YXTOOLS_VERSION_STRING, platform);
        context.Line("IsWin9XVersion: %s", IsWin9XVersion() ? "true" : "false");
        context.Line("ANSI code page %u, terminal %s", edge::AnsiCodePage(), edge::TerminalEncoding().c_str());
        return 0;
    });
}

} // namespace cli

namespace {
const cli::Registration registration("version", cli::AddVersionCommand);
}
