// yxtools unc PATH: the UNC form of a path, with the route it took and why.
#include <yxtools/yxtools.h>

#include <cctype>
#include <memory>
#include <string>

#include "cli.h"
#include "drives_facts.h"

namespace {

std::string Why(const _SS<char>& path, const cli::Json& facts)
{
    if (YXPath::IsUNCPath(path)) {
        return "already a UNC path";
    }
    if (path.size() < 2 || path[1] != ':') {
        return "no drive: a relative path, a rooted path without a drive or a URL";
    }
    const std::string letter = {static_cast<char>(std::toupper(static_cast<unsigned char>(path[0]))), ':'};
    for (const auto& drive : facts["drives"]) {
        if (drive["letter"] == letter) {
            return "drive " + letter + " is " + drive["type_name"].get<std::string>() + ": " +
                   drive["route"].get<std::string>() + " route";
        }
    }
    return "drive " + letter + " is DRIVE_NO_ROOT_DIR: local shares route";
}

int Unc(cli::Context& context, const std::string& path)
{
    const _SS<char> result = YXPath::ToUNC(path.c_str());
    const bool converted = YXPath::IsUNCPath(result) && !YXPath::IsUNCPath(path.c_str());
    const cli::DriveFacts facts = cli::CollectDriveFacts();
    const std::string why = Why(path.c_str(), facts.facts);
    cli::SetText(context.result, "path", path);
    cli::SetText(context.result, "result", result);
    context.result["converted"] = converted;
    context.result["route"] = why;
    context.Line("%s", result.c_str());
    context.Line("route: %s", why.c_str());
    if (!converted) {
        context.Line("unchanged: %s",
                     YXPath::IsUNCPath(path.c_str()) ? "nothing to convert" : "no network name and no share covers it");
    }
    return converted || YXPath::IsUNCPath(path.c_str()) ? 0 : 1;
}

} // namespace

namespace cli {

void AddUncCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("unc", "the UNC form of a path (YXPath::ToUNC), the route taken and why");
    auto path = std::make_shared<std::string>();
    context.AddText(command, "PATH", *path, "a drive path, such as C:\\data\\a.txt")->required();
    context.SetAction(command, [&context, path] { return Unc(context, *path); });
}

} // namespace cli

namespace {
const cli::Registration registration("unc", cli::AddUncCommand);
}
