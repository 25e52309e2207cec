// yxtools file: asks the File_ functions about a file and carries out single file operations.
#include <yxtools/yxtools.h>

#include <memory>
#include <string>

#include "cli.h"

namespace {

const char* const kReasons[] = {"nothing against it", "not found",      "(no reason 2)", "read-only",
                                "access denied",      "names a folder", "in use",        "no folder to create it in"};

struct Input {
    std::string path;
    std::string second; // the extension, the target of a copy, or the prefix of a temporary name
    CLI::Option* secondOption = nullptr;
    unsigned long mode = YXFILE_READ | YXFILE_WRITE;
};

int Probe(cli::Context& context, const Input& in)
{
    unsigned short reason = 0;
    bool creatable = false;
    const bool openable = YXBinaryFile::IsOpenable(in.path.c_str(), in.mode, &reason, &creatable);
    const char* name = reason < sizeof(kReasons) / sizeof(kReasons[0]) ? kReasons[reason] : "?";
    cli::SetText(context.result, "path", in.path);
    context.result["mode"] = in.mode;
    context.result["openable"] = openable;
    context.result["reason"] = reason;
    context.result["reason_name"] = name;
    context.result["creatable"] = creatable;
    context.Line("%s in mode 0x%02lX: %s", in.path.c_str(), in.mode,
                 openable ? (creatable ? "can be created" : "opens") : "refused");
    context.Line("reason %u: %s%s", reason, name, !openable && reason == 0 ? " (another failure)" : "");
    return openable ? 0 : 1;
}

int Mode(cli::Context& context, const _SS<char>& path)
{
    const unsigned short mode = File_GetMod(path);
    const bool exists = File_Exist(path);
    cli::SetText(context.result, "path", path);
    context.result["exists"] = exists;
    context.result["mode"] = mode;
    context.result["directory"] = File_IsDirectory(path);
    context.result["read_only"] = File_IsFileReadOnly(path);
    context.Line("%s: %s, mode 0x%04X%s%s", path.c_str(), exists ? "exists" : "not found", mode,
                 File_IsDirectory(path) ? ", a folder" : "", File_IsFileReadOnly(path) ? ", read-only" : "");
    return exists ? 0 : 1;
}

} // namespace

namespace cli {

void AddFileCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("file", "probe, mode, ext, copy and temp on files");
    command->require_subcommand(1);
    auto in = std::make_shared<Input>();

    CLI::App* probe = command->add_subcommand("probe", "whether PATH opens in MODE, with the reason");
    context.AddText(probe, "PATH", in->path, "the file")->required();
    probe
        ->add_option("MODE", in->mode,
                     "YXFILE_ flags (default 0x03: read and write; 0x40 asks whether it could be created)")
        ->check(CLI::Range(0UL, 0xFFFFFFFFUL));
    context.SetAction(probe, [&context, in] { return Probe(context, *in); });

    CLI::App* mode = command->add_subcommand("mode", "the runtime's mode bits, kind and read-only state");
    context.AddText(mode, "PATH", in->path, "the file")->required();
    context.SetAction(mode, [&context, in] { return Mode(context, in->path.c_str()); });

    CLI::App* ext = command->add_subcommand("ext", "PATH with its extension changed (dropped without EXT)");
    context.AddText(ext, "PATH", in->path, "the path")->required();
    in->secondOption = context.AddText(ext, "EXT", in->second, "the new extension");
    context.SetAction(ext, [&context, in] {
        _SS<char> path(in->path.c_str());
        const _SS<char> extension(in->second.c_str());
        File_ChangeFileExtension(path, in->secondOption->count() != 0 ? &extension : nullptr);
        SetText(context.result, "path", path);
        context.Line("%s", path.c_str());
        return 0;
    });

    CLI::App* copy = command->add_subcommand("copy", "copy a file over any existing target");
    context.AddText(copy, "FROM", in->path, "the file to copy")->required();
    context.AddText(copy, "TO", in->second, "the copy")->required();
    context.SetAction(copy, [&context, in] {
        const bool copied = File_CopyFile(_SS<char>(in->path.c_str()), _SS<char>(in->second.c_str()));
        context.result["copied"] = copied;
        context.Line("%s", copied ? "copied" : "not copied");
        return copied ? 0 : 1;
    });

    CLI::App* temp = command->add_subcommand("temp", "create a new, empty file with a unique name in DIR");
    context.AddText(temp, "DIR", in->path, "the folder")->required();
    context.AddText(temp, "PREFIX", in->second, "the start of the name");
    context.SetAction(temp, [&context, in] {
        _SS<char> name;
        const bool made = File_GetTemp(name, in->path.c_str(), in->second.c_str());
        context.result["created"] = made;
        SetText(context.result, "path", name);
        context.Line("%s", made ? name.c_str() : "no file created");
        return made ? 0 : 1;
    });
}

} // namespace cli

namespace {
const cli::Registration registration("file", cli::AddFileCommand);
}
