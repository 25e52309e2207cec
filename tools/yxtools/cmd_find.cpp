// yxtools find: the entries of one folder that match a pattern, as YXFilesFinder gives them.
#include <yxtools/yxtools.h>

#include "cli.h"

namespace {

int RunFind(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"find", "find DIR PATTERN  (the folder is used as given: end it in `\\`)",
                            "the entries of a folder that match a pattern", RunFind};
const cli::Registration registration(kCommand);

int RunFind(cli::Context& context, const cli::Args& args)
{
    if (args.size() != 2) {
        return cli::UsageError(kCommand, "a folder and a pattern are needed");
    }
    YXFilesFinder finder(args[0].c_str(), args[1].c_str());
    cli::Json& entries = context.result.Child("entries", cli::Json::Array());
    _SS<char> file;
    long count = 0;
    while (finder.GetNextFile(file)) {
        entries.Push(file);
        context.Line("%s", file.c_str());
        ++count;
    }
    context.result.Set("count", count);
    if (count == 0) {
        context.Line("(nothing found)");
    }
    return 0;
}

} // namespace
