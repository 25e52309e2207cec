// yxtools file: asks the File_ functions about a file and carries out single file operations.
#include <yxtools/yxtools.h>

#include <string>

#include "cli.h"

namespace {

const char* const kReasons[] = {"nothing against it", "not found",      "(no reason 2)", "read-only",
                                "access denied",      "names a folder", "in use",        "no folder to create it in"};

const char kUsage[] = "file OPERATION ...  where OPERATION is one of\n"
                      "  probe PATH [MODE]     whether PATH opens in MODE (default 0x03: read and write;\n"
                      "                        0x40 asks whether it could be created), with the reason\n"
                      "  mode PATH             the runtime's mode bits, kind and read-only state\n"
                      "  ext PATH [EXT]        PATH with its extension changed (dropped without EXT)\n"
                      "  copy FROM TO          copy a file over any existing target\n"
                      "  temp DIR [PREFIX]     create a new, empty file with a unique name in DIR";

int RunFile(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"file", kUsage, "probe, mode, ext, copy and temp on files", RunFile};
const cli::Registration registration(kCommand);

int Probe(cli::Context& context, const cli::Args& args)
{
    unsigned long long mode = YXFILE_READ | YXFILE_WRITE;
    if (args.size() > 2 && !cli::ParseNumber(args[2], mode)) {
        return cli::UsageError(kCommand, "MODE is a number, not '" + args[2] + "'");
    }
    unsigned short reason = 0;
    bool creatable = false;
    const bool openable =
        YXBinaryFile::IsOpenable(args[1].c_str(), static_cast<unsigned long>(mode), &reason, &creatable);
    const char* name = reason < sizeof(kReasons) / sizeof(kReasons[0]) ? kReasons[reason] : "?";
    context.result.Set("path", args[1]).Set("mode", mode).Set("openable", openable);
    context.result.Set("reason", static_cast<int>(reason)).Set("reason_name", name).Set("creatable", creatable);
    context.Line("%s in mode 0x%02llX: %s", args[1].c_str(), mode,
                 openable ? (creatable ? "can be created" : "opens") : "refused");
    context.Line("reason %u: %s%s", reason, name, !openable && reason == 0 ? " (another failure)" : "");
    return openable ? 0 : 1;
}

int Mode(cli::Context& context, const _SS<char>& path)
{
    const unsigned short mode = File_GetMod(path);
    const bool exists = File_Exist(path);
    context.result.Set("path", path).Set("exists", exists).Set("mode", static_cast<unsigned>(mode));
    context.result.Set("directory", File_IsDirectory(path)).Set("read_only", File_IsFileReadOnly(path));
    context.Line("%s: %s, mode 0x%04X%s%s", path.c_str(), exists ? "exists" : "not found", mode,
                 File_IsDirectory(path) ? ", a folder" : "", File_IsFileReadOnly(path) ? ", read-only" : "");
    return exists ? 0 : 1;
}

int RunFile(cli::Context& context, const cli::Args& args)
{
    const std::string op = args.empty() ? std::string() : args[0];
    if (op == "probe" && args.size() >= 2 && args.size() <= 3) {
        return Probe(context, args);
    }
    if (op == "mode" && args.size() == 2) {
        return Mode(context, args[1].c_str());
    }
    if (op == "ext" && (args.size() == 2 || args.size() == 3)) {
        _SS<char> path(args[1].c_str());
        const _SS<char> extension(args.size() == 3 ? args[2].c_str() : "");
        File_ChangeFileExtension(path, args.size() == 3 ? &extension : nullptr);
        context.result.Set("path", path);
        context.Line("%s", path.c_str());
        return 0;
    }
    if (op == "copy" && args.size() == 3) {
        const bool copied = File_CopyFile(_SS<char>(args[1].c_str()), _SS<char>(args[2].c_str()));
        context.result.Set("copied", copied);
        context.Line("%s", copied ? "copied" : "not copied");
        return copied ? 0 : 1;
    }
    if (op == "temp" && (args.size() == 2 || args.size() == 3)) {
        _SS<char> name;
        const bool made = File_GetTemp(name, args[1].c_str(), args.size() == 3 ? args[2].c_str() : "");
        context.result.Set("created", made).Set("path", name);
        context.Line("%s", made ? name.c_str() : "no file created");
        return made ? 0 : 1;
    }
    return cli::UsageError(kCommand, op.empty() ? "an operation is needed" : "cannot read '" + op + "' here");
}

} // namespace
