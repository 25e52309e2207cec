// yxtools path: cuts paths into their components, tells their kind, and puts paths together.
#include <yxtools/yxtools.h>

#include <string>

#include "cli.h"

namespace {

const char* const kKindNames[] = {"none",   "file", "https",  "http", "ftp",      "news",
                                  "telnet", "wais", "mailto", "nntp", "prospero", "gopher"};

const char kUsage[] = "path OPERATION ...  where OPERATION is one of\n"
                      "  split PATH                        drive, directory, name, extension and kind\n"
                      "  kind PATH                         the URL scheme the path starts with\n"
                      "  make [--drive D] [--dir D] [--name N] [--ext E]\n"
                      "                                    join the parts; a part left out is null, which\n"
                      "                                    differs from an empty one ('--dir \"\"')\n"
                      "  append PATH [ADDITION] [--trailing]\n"
                      "                                    join with one `\\` at the joint; --trailing makes\n"
                      "                                    the result end in `\\`\n"
                      "  unc-check PATH                    whether the path begins with two backslashes";

int RunPath(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"path", kUsage, "split, kind, make, append and unc-check on paths", RunPath};
const cli::Registration registration(kCommand);

void ShowKind(cli::Context& context, YXPATHKIND kind)
{
    context.result.Set("kind", static_cast<int>(kind));
    context.result.Set("kind_name", kKindNames[kind]);
    context.Line("kind:      %d (%s)", static_cast<int>(kind), kKindNames[kind]);
}

int Split(cli::Context& context, const _SS<char>& path)
{
    _SS<char> drive;
    _SS<char> directory;
    _SS<char> name;
    _SS<char> extension;
    YXPATHKIND kind = YXPATHKIND_NONE;
    YXPath::Split(path, &drive, &directory, &name, &extension, &kind);
    const char* route = path.size() < 255 ? "runtime" : "long";
    context.result.Set("path", path).Set("route", route);
    context.result.Set("drive", drive).Set("directory", directory).Set("name", name).Set("extension", extension);
    context.Line("path:      \"%s\" (%lu bytes, %s route)", path.c_str(), static_cast<unsigned long>(path.size()),
                 route);
    context.Line("drive:     \"%s\"", drive.c_str());
    context.Line("directory: \"%s\"", directory.c_str());
    context.Line("name:      \"%s\"", name.c_str());
    context.Line("extension: \"%s\"", extension.c_str());
    ShowKind(context, kind);
    return 0;
}

int Make(cli::Context& context, const cli::Args& args)
{
    const char* const options[] = {"--drive", "--dir", "--name", "--ext"};
    _SS<char> parts[4];
    bool given[4] = {};
    for (std::size_t i = 1; i < args.size(); i += 2) {
        std::size_t which = 0;
        while (which < 4 && args[i] != options[which]) {
            ++which;
        }
        if (which == 4 || i + 1 >= args.size()) {
            return cli::UsageError(kCommand, "make takes --drive, --dir, --name and --ext, each with a text");
        }
        parts[which] = args[i + 1].c_str();
        given[which] = true;
    }
    const auto part = [&](int i) { return given[i] ? &parts[i] : nullptr; };
    _SS<char> output;
    const bool result = YXPath::Make(output, part(0), part(1), part(2), part(3));
    cli::Json& inputs = context.result.Child("parts", cli::Json::Object());
    for (int i = 0; i < 4; ++i) {
        const char* label = options[i] + 2;
        inputs.Set(label, given[i] ? cli::Json(parts[i]) : cli::Json());
        const std::string shown = given[i] ? "\"" + std::string(parts[i]) + "\"" : std::string("(null)");
        context.Line("%-10s %s", (std::string(label) + ":").c_str(), shown.c_str());
    }
    context.result.Set("output", output).Set("result", result);
    context.Line("output:    \"%s\"", output.c_str());
    context.Line("result:    %s", result ? "true" : "false");
    return 0;
}

int Append(cli::Context& context, const cli::Args& args)
{
    bool trailing = false;
    cli::Args texts;
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--trailing") {
            trailing = true;
        } else {
            texts.push_back(args[i]);
        }
    }
    if (texts.empty() || texts.size() > 2) {
        return cli::UsageError(kCommand, "append takes a path and at most one addition");
    }
    _SS<char> path(texts[0].c_str());
    const _SS<char> addition(texts.size() == 2 ? texts[1].c_str() : "");
    context.result.Set("path", path);
    context.result.Set("addition", texts.size() == 2 ? cli::Json(addition) : cli::Json());
    context.result.Set("trailing", trailing);
    context.Line("path:      \"%s\"", path.c_str());
    context.Line("addition:  %s%s%s", texts.size() == 2 ? "\"" : "", texts.size() == 2 ? addition.c_str() : "(null)",
                 texts.size() == 2 ? "\"" : "");
    context.Line("trailing:  %s", trailing ? "true" : "false");
    YXPath::Append(path, texts.size() == 2 ? &addition : nullptr, trailing);
    context.result.Set("result", path);
    context.Line("result:    \"%s\"", path.c_str());
    return 0;
}

int RunPath(cli::Context& context, const cli::Args& args)
{
    const std::string operation = args.empty() ? std::string() : args[0];
    if (operation == "make") {
        return Make(context, args);
    }
    if (operation == "append") {
        return Append(context, args);
    }
    if (args.size() != 2) {
        return cli::UsageError(kCommand, "expected an operation and one path");
    }
    const _SS<char> path(args[1].c_str());
    if (operation == "split") {
        return Split(context, path);
    }
    if (operation == "kind") {
        context.result.Set("path", path);
        ShowKind(context, YXPath::GetPathProtocol(path));
        return 0;
    }
    if (operation == "unc-check") {
        const bool unc = YXPath::IsUNCPath(path);
        context.result.Set("path", path).Set("unc", unc);
        context.Line("\"%s\" is %sa UNC path", path.c_str(), unc ? "" : "not ");
        return 0;
    }
    return cli::UsageError(kCommand, "unknown operation '" + operation + "'");
}

} // namespace
