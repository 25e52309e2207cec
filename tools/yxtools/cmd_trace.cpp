// yxtools trace: the trace channel of the loaded library. Its settings are read once, when the
// library loads; the command shows what the registry held then, sends lines, and on POSIX shows
// the virtual screen that the strip is drawn on.
#include <yxtools/yxtools.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

struct Options {
    std::vector<std::string> lines;
    long indent = 0;
};

// The settings as the library's manager read them at this process's load: the same reads in the
// same order, with the same defaults, from a registry that has not changed since.
int Settings(cli::Context& context)
{
    const _SS<char> section("Trace");
    const auto cu = YXRegistry::CurrentUser;
    const long output = YXRegistry::ReadLongParam(section, "Output", 1, cu, nullptr);
    context.result["output"] = output;
    context.Line("Output %ld:%s%s%s", output, (output & 1) != 0 ? " debugger" : "", (output & 4) != 0 ? " file" : "",
                 (output & 2) != 0 ? " screen" : "");
    if ((output & 2) != 0) {
        const long top = YXRegistry::ReadLongParam(section, "ScreenTop", 0, cu, nullptr);
        const long left = YXRegistry::ReadLongParam(section, "ScreenLeft", 0, cu, nullptr);
        long count = YXRegistry::ReadLongParam(section, "ScreenLineCount", 10, cu, nullptr);
        count = static_cast<int>(count) == 0 ? 10 : count;
        context.result["screen"] = {{"top", top}, {"left", left}, {"rows", count}};
        context.Line("screen strip: %ld rows from (%ld, %ld)", count, left, top);
    }
    if ((output & 4) != 0) {
        _SS<char> file;
        YXRegistry::ReadStringParam(section, "FileName", &file, _SS<char>(), cu, nullptr);
        cli::SetText(context.result, "file", file);
        context.Line("file: %s", file.empty() ? "(none)" : file.c_str());
    }
    return 0;
}

void Send(const Options& o)
{
    YXTraceManager::AddIndent(o.indent);
    for (const std::string& line : o.lines) {
        YXTraceManager::Trace("%s", line.c_str());
    }
}

int Screen(cli::Context& context, const Options& o)
{
#if defined(_WIN32)
    Send(o);
    context.result["rows"] = cli::Json::array();
    context.Line("the Windows build draws the strip on the display itself");
    return 0;
#else
    // The virtual screen writes its cells to YXTOOLS_SCREEN after each drawing.
    const std::filesystem::path copy =
        std::filesystem::temp_directory_path() / ("yxtools-screen-" + std::to_string(std::rand()));
    setenv("YXTOOLS_SCREEN", copy.c_str(), 1);
    Send(o);
    unsetenv("YXTOOLS_SCREEN");
    std::ifstream in(copy);
    std::string line;
    cli::Json rows = cli::Json::array();
    while (std::getline(in, line)) {
        const std::size_t colon = line.find(": ");
        int y = 0;
        int x = 0;
        std::sscanf(line.c_str(), "%d %d", &y, &x);
        cli::Json row = {{"y", y}, {"x", x}};
        cli::SetText(row, "text", line.substr(colon + 2));
        rows.push_back(std::move(row));
        context.Line("%s", line.c_str());
    }
    std::error_code error;
    std::filesystem::remove(copy, error);
    if (rows.empty()) {
        context.Line("nothing drawn: bit 2 of Output was not set when the library loaded");
    }
    context.result["rows"] = std::move(rows);
    return 0;
#endif
}

} // namespace

namespace cli {

void AddTraceCommand(CLI::App& app, Context& context)
{
    CLI::App* trace = app.add_subcommand("trace", "the trace channel: its settings, lines sent to it, its screen");
    trace->require_subcommand(1);
    auto o = std::make_shared<Options>();

    CLI::App* settings = trace->add_subcommand("settings", "the settings the library read when it loaded");
    context.SetAction(settings, [&context] { return Settings(context); });

    CLI::App* send = trace->add_subcommand("send", "trace each LINE (no line end is added)");
    context.AddTexts(send, "LINE", o->lines, "the lines")->required();
    send->add_option("--indent", o->indent, "blanks added to the indentation first (may be negative)");
    context.SetAction(send, [&context, o] {
        Send(*o);
        context.result["sent"] = o->lines.size();
        context.Line("%zu lines sent", o->lines.size());
        return 0;
    });

    CLI::App* screen = trace->add_subcommand("screen", "trace each LINE and show the screen strip's cells");
    context.AddTexts(screen, "LINE", o->lines, "the lines")->required();
    screen->add_option("--indent", o->indent, "blanks added to the indentation first (may be negative)");
    context.SetAction(screen, [&context, o] { return Screen(context, *o); });
}

} // namespace cli

namespace {
const cli::Registration registration("trace", cli::AddTraceCommand);
}
