// yxtools path: cuts paths into their components, tells their kind, and puts paths together.
#include <yxtools/yxtools.h>

#include <memory>
#include <string>

#include "cli.h"

namespace {

const char* const kKindNames[] = {"none",   "file", "https",  "http", "ftp",      "news",
                                  "telnet", "wais", "mailto", "nntp", "prospero", "gopher"};

void ShowKind(cli::Context& context, YXPATHKIND kind)
{
    context.result["kind"] = static_cast<int>(kind);
    context.result["kind_name"] = kKindNames[kind];
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
    cli::SetText(context.result, "path", path);
    context.result["route"] = route;
    cli::SetText(context.result, "drive", drive);
    cli::SetText(context.result, "directory", directory);
    cli::SetText(context.result, "name", name);
    cli::SetText(context.result, "extension", extension);
    context.Line("path:      \"%s\" (%lu bytes, %s route)", path.c_str(), static_cast<unsigned long>(path.size()),
                 route);
    context.Line("drive:     \"%s\"", drive.c_str());
    context.Line("directory: \"%s\"", directory.c_str());
    context.Line("name:      \"%s\"", name.c_str());
    context.Line("extension: \"%s\"", extension.c_str());
    ShowKind(context, kind);
    return 0;
}

struct MakeInput {
    std::string parts[4];
    CLI::Option* options[4] = {};
};

int Make(cli::Context& context, const MakeInput& in)
{
    static const char* const kLabels[] = {"drive", "dir", "name", "ext"};
    _SS<char> parts[4];
    bool given[4] = {};
    for (int i = 0; i < 4; ++i) {
        given[i] = in.options[i]->count() != 0;
        parts[i] = in.parts[i].c_str();
    }
    const auto part = [&](int i) { return given[i] ? &parts[i] : nullptr; };
    _SS<char> output;
    const bool result = YXPath::Make(output, part(0), part(1), part(2), part(3));
    cli::Json inputs = cli::Json::object();
    for (int i = 0; i < 4; ++i) {
        if (given[i]) {
            cli::SetText(inputs, kLabels[i], parts[i]);
        } else {
            inputs[kLabels[i]] = nullptr;
        }
        const std::string shown = given[i] ? "\"" + std::string(parts[i]) + "\"" : std::string("(null)");
        context.Line("%-10s %s", (std::string(kLabels[i]) + ":").c_str(), shown.c_str());
    }
    context.result["parts"] = std::move(inputs);
    cli::SetText(context.result, "output", output);
    context.result["result"] = result;
    context.Line("output:    \"%s\"", output.c_str());
    context.Line("result:    %s", result ? "true" : "false");
    return 0;
}

struct AppendInput {
    std::string path;
    std::string addition;
    CLI::Option* additionOption = nullptr;
    bool trailing = false;
};

int Append(cli::Context& context, const AppendInput& in)
{
    const bool hasAddition = in.additionOption->count() != 0;
    _SS<char> path(in.path.c_str());
    const _SS<char> addition(in.addition.c_str());
    cli::SetText(context.result, "path", path);
    if (hasAddition) {
        cli::SetText(context.result, "addition", addition);
    } else {
        context.result["addition"] = nullptr;
    }
    context.result["trailing"] = in.trailing;
    context.Line("path:      \"%s\"", path.c_str());
    context.Line("addition:  %s%s%s", hasAddition ? "\"" : "", hasAddition ? addition.c_str() : "(null)",
                 hasAddition ? "\"" : "");
    context.Line("trailing:  %s", in.trailing ? "true" : "false");
    YXPath::Append(path, hasAddition ? &addition : nullptr, in.trailing);
    cli::SetText(context.result, "result", path);
    context.Line("result:    \"%s\"", path.c_str());
    return 0;
}

} // namespace

namespace cli {

void AddPathCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("path", "split, kind, make, append and unc-check on paths");
    command->require_subcommand(1);

    auto text = std::make_shared<std::string>();
    CLI::App* split = command->add_subcommand("split", "drive, directory, name, extension and kind of a path");
    context.AddText(split, "PATH", *text, "the path")->required();
    context.SetAction(split, [&context, text] { return Split(context, text->c_str()); });

    CLI::App* kind = command->add_subcommand("kind", "the URL scheme the path starts with");
    context.AddText(kind, "PATH", *text, "the path")->required();
    context.SetAction(kind, [&context, text] {
        const _SS<char> path(text->c_str());
        cli::SetText(context.result, "path", path);
        ShowKind(context, YXPath::GetPathProtocol(path));
        return 0;
    });

    CLI::App* unc = command->add_subcommand("unc-check", "whether the path begins with two backslashes");
    context.AddText(unc, "PATH", *text, "the path")->required();
    context.SetAction(unc, [&context, text] {
        const _SS<char> path(text->c_str());
        const bool isUnc = YXPath::IsUNCPath(path);
        cli::SetText(context.result, "path", path);
        context.result["unc"] = isUnc;
        context.Line("\"%s\" is %sa UNC path", path.c_str(), isUnc ? "" : "not ");
        return 0;
    });

    auto make = std::make_shared<MakeInput>();
    CLI::App* makeApp = command->add_subcommand("make", "join the parts; a part left out is null, which differs "
                                                        "from an empty one (--dir \"\")");
    make->options[0] = context.AddText(makeApp, "--drive", make->parts[0], "the drive");
    make->options[1] = context.AddText(makeApp, "--dir", make->parts[1], "the directory");
    make->options[2] = context.AddText(makeApp, "--name", make->parts[2], "the name");
    make->options[3] = context.AddText(makeApp, "--ext", make->parts[3], "the extension");
    context.SetAction(makeApp, [&context, make] { return Make(context, *make); });

    auto append = std::make_shared<AppendInput>();
    CLI::App* appendApp = command->add_subcommand("append", "join with one \\ at the joint");
    context.AddText(appendApp, "PATH", append->path, "the path")->required();
    append->additionOption = context.AddText(appendApp, "ADDITION", append->addition, "what to append");
    appendApp->add_flag("--trailing", append->trailing, "make the result end in \\");
    context.SetAction(appendApp, [&context, append] { return Append(context, *append); });
}

} // namespace cli

namespace {
const cli::Registration registration("path", cli::AddPathCommand);
}
