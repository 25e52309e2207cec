// yxtools drives: each drive letter, where it leads, its type and where that came from, and the
// shares of this computer that UNC conversion would see.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "cli.h"
#include "drives_facts.h"

namespace {

// The facts are UTF-8 already (they are JSON's texts): lines of them are printed as they are.
void Print(const cli::Context& context, const char* format, ...) CLI_PRINTF(2, 3);
void Print(const cli::Context& context, const char* format, ...)
{
    if (context.json) {
        return;
    }
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    std::putchar('\n');
}

int Drives(cli::Context& context)
{
    const cli::DriveFacts facts = cli::CollectDriveFacts();
    const cli::Json& f = facts.facts;
    context.result = f;
    context.result["problems"] = facts.problems;
    Print(context, "computer: %s", f["computer"].get<std::string>().c_str());
    for (const auto& drive : f["drives"]) {
        Print(context, "%s  %d %-17s %-13s -> %s", drive["letter"].get<std::string>().c_str(), drive["type"].get<int>(),
              drive["type_name"].get<std::string>().c_str(), drive["route"].get<std::string>().c_str(),
              drive["target"].get<std::string>().c_str());
        if (drive.contains("remote_name")) {
            Print(context, "    remote name %s", drive["remote_name"].get<std::string>().c_str());
        }
        Print(context, "    from %s", drive["source"].get<std::string>().c_str());
    }
    Print(context, "shares (NetShareEnum status %d):", f["shares_status"].get<int>());
    for (const auto& share : f["shares"]) {
        const std::string path = share["path"].is_null() ? "(no path)" : share["path"].get<std::string>();
        Print(context, "  %-12s type 0x%08lX %-40s %s", share["name"].get<std::string>().c_str(),
              share["type"].get<unsigned long>(), path.c_str(),
              share["considered"].get<bool>() ? "considered" : "skipped");
    }
    for (const std::string& problem : facts.problems) {
        Print(context, "problem: %s", problem.c_str());
    }
    return 0;
}

} // namespace

namespace cli {

void AddDrivesCommand(CLI::App& app, Context& context)
{
    CLI::App* drives = app.add_subcommand(
        "drives", "each drive letter, its target, its type and where that came from; the shares UNC conversion sees");
    context.SetAction(drives, [&context] { return Drives(context); });
}

} // namespace cli

namespace {
const cli::Registration registration("drives", cli::AddDrivesCommand);
} // namespace
