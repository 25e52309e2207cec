// yxtools: a host program for trying the YXTools library from the command line.
#include <cstdio>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "cli.h"

namespace {

bool StandardOutputIsTerminal()
{
#if defined(_WIN32)
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

// yxtools help [COMMAND...]: the help of the program or of a command.
void AddHelpCommand(CLI::App& app, cli::Context& context)
{
    CLI::App* help = app.add_subcommand("help", "the help of the program, or of a command ('help path split')");
    auto words = std::make_shared<std::vector<std::string>>();
    help->add_option("COMMAND", *words, "the command, and its sub-commands");
    context.SetAction(help, [&app, &context, words] {
        const CLI::App* target = &app;
        std::string parents;
        for (const std::string& word : *words) {
            const CLI::App* sub = nullptr;
            try {
                sub = target->get_subcommand(word);
            } catch (const CLI::OptionNotFound&) {
            }
            if (sub == nullptr || word == "help") {
                throw cli::UsageError("COMMAND", "no command '" + word + "' here");
            }
            parents += (parents.empty() ? "" : " ") + target->get_name();
            target = sub;
        }
        const std::string text = target->help(parents);
        if (context.json) {
            context.result["help"] = text;
        } else {
            std::printf("%s", text.c_str());
        }
        return 0;
    });
}

int Run(int argc, char** argv)
{
    cli::Context context;
    context.interactive = StandardOutputIsTerminal();

    CLI::App app("Tries the YXTools library from the command line. Output is plain text in the terminal's "
                 "encoding, or one JSON document (UTF-8) with --json. Exit status: 0 done, 1 the library "
                 "said no, 2 a usage error.",
                 "yxtools");
    // Options of the program are accepted before or after the command: a command passes what it does
    // not know up to its parent.
    app.fallthrough();
    app.add_flag("--json", context.json, "write one JSON document instead of lines");
    app.add_flag("--hex", context.hex,
                 "text arguments are given as hex bytes in the ANSI code page (\"43 3A 5C\"), exactly as "
                 "the library receives them");
    app.require_subcommand(0, 1);
    AddHelpCommand(app, context);
    cli::AddCommands(app, context);

    int status = 0;
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            std::printf("%s", app.help().c_str());
            return 2;
        }
        status = context.Run(app);
    } catch (const CLI::ParseError& error) {
        // --help is a request, everything else a usage error that names the argument.
        return app.exit(error) == 0 ? 0 : 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "yxtools: %s\n", error.what());
        return 1;
    }
    if (context.json) {
        std::printf("%s\n", context.result.dump().c_str());
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    // What the commands do not catch themselves (a failed allocation while the parser is set up,
    // say) ends the program with status 1 and its message, never with an escaped exception.
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "yxtools: %s\n", error.what());
    } catch (...) {
        std::fprintf(stderr, "yxtools: unexpected failure\n");
    }
    return 1;
}
