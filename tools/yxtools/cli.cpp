#include "cli.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "edge.h"

namespace cli {

namespace {

std::map<std::string, AddCommand>& Table()
{
    static std::map<std::string, AddCommand> table;
    return table;
}

// The deepest command given that has an action.
const std::function<int()>* FindAction(const CLI::App& app,
                                       const std::map<const CLI::App*, std::function<int()>>& actions)
{
    for (const CLI::App* sub : app.get_subcommands()) {
        if (const std::function<int()>* deeper = FindAction(*sub, actions)) {
            return deeper;
        }
    }
    const auto found = actions.find(&app);
    return found == actions.end() ? nullptr : &found->second;
}

} // namespace

CLI::Option* Context::AddText(CLI::App* app, const std::string& name, std::string& target,
                              const std::string& description)
{
    CLI::Option* option = app->add_option(name, target, description);
    m_texts.push_back({option, &target, nullptr});
    return option;
}

CLI::Option* Context::AddTexts(CLI::App* app, const std::string& name, std::vector<std::string>& target,
                               const std::string& description)
{
    CLI::Option* option = app->add_option(name, target, description);
    m_texts.push_back({option, nullptr, &target});
    return option;
}

std::string Context::In(const std::string& word, const std::string& name) const
{
    std::string ansi;
    if (hex) {
        if (!edge::FromHex(word, ansi)) {
            throw UsageError(name, "'" + word + "' is not hex bytes (pairs of hex digits, spaces between allowed)");
        }
    } else if (!edge::FromTerminal(word, ansi)) {
        throw UsageError(name, "'" + word + "' has no exact form in code page " + std::to_string(edge::AnsiCodePage()) +
                                   "; give its bytes with --hex");
    }
    return ansi;
}

void Context::SetAction(CLI::App* app, std::function<int()> action)
{
    m_actions[app] = std::move(action);
}

void Context::Line(const char* format, ...) const
{
    if (json) {
        return;
    }
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string line(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(&line[0], line.size() + 1, format, again);
    va_end(again);
    const std::string shown = edge::ToTerminal(line).text;
    std::fwrite(shown.data(), 1, shown.size(), stdout);
    std::putchar('\n');
}

int Context::Run(const CLI::App& app)
{
    for (const Text& text : m_texts) {
        if (text.option->count() == 0) {
            continue; // a default: the command's own text, already ANSI
        }
        const std::string name = text.option->get_name();
        if (text.single != nullptr) {
            *text.single = In(*text.single, name);
        } else {
            for (std::string& word : *text.list) {
                word = In(word, name);
            }
        }
    }
    const std::function<int()>* action = FindAction(app, m_actions);
    if (action == nullptr) {
        throw CLI::CallForHelp();
    }
    return (*action)();
}

void SetText(Json& object, const std::string& key, const std::string& ansi)
{
    edge::Converted converted = edge::ToUtf8(ansi);
    object[key] = std::move(converted.text);
    if (!converted.lossless) {
        object[key + "_hex"] = edge::ToHex(ansi);
    }
}

void SetTexts(Json& object, const std::string& key, const std::vector<std::string>& ansi)
{
    Json texts = Json::array();
    Json bytes = Json::array();
    bool lossless = true;
    for (const std::string& text : ansi) {
        edge::Converted converted = edge::ToUtf8(text);
        lossless = lossless && converted.lossless;
        texts.push_back(std::move(converted.text));
        bytes.push_back(edge::ToHex(text));
    }
    object[key] = std::move(texts);
    if (!lossless) {
        object[key + "_hex"] = std::move(bytes);
    }
}

unsigned long long Number(const std::string& word, const std::string& name)
{
    char* end = nullptr;
    const unsigned long long value = std::strtoull(word.c_str(), &end, 0);
    if (word.empty() || word[0] == '-' || word[0] == ' ' || end == nullptr || *end != '\0') {
        throw UsageError(name, "'" + word + "' is not a whole number");
    }
    return value;
}

Registration::Registration(const char* name, AddCommand add)
{
    Table().emplace(name, add);
}

void AddCommands(CLI::App& app, Context& context)
{
    for (const auto& entry : Table()) {
        entry.second(app, context);
    }
}

} // namespace cli
