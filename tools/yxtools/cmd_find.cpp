// yxtools find: the entries of one folder that match a pattern, as YXFilesFinder gives them.
#include <yxtools/yxtools.h>

#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

struct Input {
    std::string folder;
    std::string pattern;
};

int Find(cli::Context& context, const Input& in)
{
    YXFilesFinder finder(in.folder.c_str(), in.pattern.c_str());
    std::vector<std::string> entries;
    _SS<char> file;
    while (finder.GetNextFile(file)) {
        entries.emplace_back(file.c_str());
        context.Line("%s", file.c_str());
    }
    cli::SetTexts(context.result, "entries", entries);
    context.result["count"] = entries.size();
    if (entries.empty()) {
        context.Line("(nothing found)");
    }
    return 0;
}

} // namespace

namespace cli {

void AddFindCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("find", "the entries of a folder that match a pattern");
    auto in = std::make_shared<Input>();
    context.AddText(command, "DIR", in->folder, "the folder, used as given: end it in \\")->required();
    context.AddText(command, "PATTERN", in->pattern, "the pattern (* and ?)")->required();
    context.SetAction(command, [&context, in] { return Find(context, *in); });
}

} // namespace cli

namespace {
const cli::Registration registration("find", cli::AddFindCommand);
}
