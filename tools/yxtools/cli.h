// The framework of the yxtools command: CLI11 parses, nlohmann/json writes, and the Context holds
// the one edge where text changes encoding (edge.h).
//
// Adding a command `name`:
//   1. Write tools/yxtools/cmd_name.cpp (the folder's sources are globbed). In it, define
//        void cli::AddNameCommand(CLI::App& app, cli::Context& context)
//      which adds the command to `app` with app.add_subcommand("name", "one line of summary") and its
//      sub-commands, options and positionals to that, and register it once at file scope:
//        const cli::Registration registration("name", cli::AddNameCommand);
//      Commands are added in the order of their names; nothing else has to be edited.
//   2. Numbers are typed options (add_option with an unsigned, a long...) and their ranges are
//      checked by the parser (->check(CLI::Range(1, 100))), so a bad value is a usage error that
//      names the argument. --help works at every level by itself.
//   3. Text for the library is declared with context.AddText(...) (or AddTexts): it reaches the
//      command in the ANSI code page, converted from the terminal's encoding or read as hex bytes
//      with --hex. Text that arrives some other way (words of an operation list) goes through
//      context.In(word, "NAME").
//   4. Each leaf says what it does with context.SetAction(sub, [&context, in] { return ...; }). An
//      action runs after the whole command line is parsed and its text converted; it returns 0 when
//      done and 1 when the library said no. It throws cli::UsageError("ARG", "why") for a usage
//      error the parser cannot see (exit status 2).
//   5. Output: context.Line(printf format, ...) for people, with library text passed as it is (ANSI):
//      the whole line is converted for the terminal. For JSON, fill context.result; library text goes
//      in through cli::SetText / cli::SetTexts, which add a `<key>_hex` member with the exact bytes
//      when the text does not convert losslessly. JSON is printed after the action (status 0 or 1).
//   6. Tests: tests/cli/ runs the built command as a process (tests/cli/run_command.h).
#ifndef YXTOOLS_CLI_H
#define YXTOOLS_CLI_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

// Lines are printed with the C library's vprintf; on mingw-w64 that is its C99 formatter (the C++
// runtime selects it), so %zu and %lld hold on both builds.
#if defined(_WIN32)
#define CLI_PRINTF(fmt, args) __attribute__((format(gnu_printf, fmt, args)))
#else
#define CLI_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#endif

namespace cli {

// JSON objects keep their members in the order they were set.
using Json = nlohmann::ordered_json;

// A usage error found after parsing; names the argument, exits with status 2.
class UsageError : public CLI::ValidationError {
public:
    UsageError(const std::string& argument, const std::string& message) : CLI::ValidationError(argument, message) {}
};

class Context {
public:
    bool json = false;        // --json: one JSON document instead of lines
    bool hex = false;         // --hex: text arguments are given as hex bytes
    bool interactive = false; // standard output is a terminal
    Json result = Json::object();

    // A text argument of `app`, handed to the command in the ANSI code page.
    CLI::Option* AddText(CLI::App* app, const std::string& name, std::string& target, const std::string& description);
    CLI::Option* AddTexts(CLI::App* app, const std::string& name, std::vector<std::string>& target,
                          const std::string& description);

    // One word of text from the command line, in the ANSI code page; `name` names it in errors.
    std::string In(const std::string& word, const std::string& name) const;

    // What runs when `app` is the command given.
    void SetAction(CLI::App* app, std::function<int()> action);

    // A line for people (ignored with --json); text in it is the library's, in the ANSI code page.
    void Line(const char* format, ...) const CLI_PRINTF(2, 3);

    // After parsing: converts the text arguments and runs the action of the command given. Throws
    // CLI::ParseError for usage errors.
    int Run(const CLI::App& app);

private:
    struct Text {
        CLI::Option* option;
        std::string* single;
        std::vector<std::string>* list;
    };
    std::vector<Text> m_texts;
    std::map<const CLI::App*, std::function<int()>> m_actions;
};

// Library text (ANSI code page) as a JSON string member; adds `<key>_hex` with the exact bytes when
// the text does not convert to UTF-8 losslessly.
void SetText(Json& object, const std::string& key, const std::string& ansi);
// The same for a list of texts: `<key>` is an array of strings, `<key>_hex` (when one is lossy) the
// array of their bytes.
void SetTexts(Json& object, const std::string& key, const std::vector<std::string>& ansi);

// Parses a whole number (decimal, 0x hex or 0 octal, as the options do); a usage error naming `name`
// when the word is not one.
unsigned long long Number(const std::string& word, const std::string& name);

using AddCommand = void (*)(CLI::App&, Context&);

// Registers a command's adding function; used once at file scope in each command's file.
struct Registration {
    Registration(const char* name, AddCommand add);
};

// Adds every registered command to the parser, in the order of their names.
void AddCommands(CLI::App& app, Context& context);

} // namespace cli

#endif
