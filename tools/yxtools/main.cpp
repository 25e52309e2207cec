// yxtools: a host program for trying the YXTools library from the command line.
#include <cstdio>
#include <cstring>
#include <string>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "cli.h"

namespace {

void PrintHelp()
{
    std::printf("usage: yxtools [--json] COMMAND [ARGS...]\n\n"
                "Tries the YXTools library from the command line. Output is plain text, or one JSON\n"
                "document with --json.\n\ncommands:\n");
    for (const auto& [name, command] : cli::Commands()) {
        std::printf("  %-10s %s\n", name.c_str(), command.summary);
    }
    std::printf("\n'yxtools help COMMAND' shows a command's arguments.\n");
}

int Help(const cli::Args& args)
{
    if (args.empty()) {
        PrintHelp();
        return 0;
    }
    const auto it = cli::Commands().find(args[0]);
    if (it == cli::Commands().end()) {
        std::fprintf(stderr, "yxtools: unknown command '%s'\n", args[0].c_str());
        return 2;
    }
    std::printf("usage: yxtools %s\n\n%s\n", it->second.usage, it->second.summary);
    return 0;
}

bool StandardOutputIsTerminal()
{
#if defined(_WIN32)
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

} // namespace

int main(int argc, char** argv)
{
    cli::Context context;
    context.interactive = StandardOutputIsTerminal();
    cli::Args words;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--json") == 0) {
            context.json = true;
        } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            words.insert(words.begin(), "help");
        } else {
            words.emplace_back(argv[i]);
        }
    }
    if (words.empty()) {
        PrintHelp();
        return 2;
    }
    const std::string name = words.front();
    const cli::Args args(words.begin() + 1, words.end());
    if (name == "help") {
        return Help(args);
    }
    const auto it = cli::Commands().find(name);
    if (it == cli::Commands().end()) {
        std::fprintf(stderr, "yxtools: unknown command '%s' (try 'yxtools --help')\n", name.c_str());
        return 2;
    }
    const int status = it->second.run(context, args);
    if (context.json && status == 0) {
        std::printf("%s\n", context.result.Dump().c_str());
    }
    return status;
}
