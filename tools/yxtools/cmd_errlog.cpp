// yxtools errlog: drives the default error log through its flat interface, one operation after
// the other, and shows each result and notification.
#include <yxtools/yxtools.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

cli::Context* g_context = nullptr;
cli::Json* g_steps = nullptr;

void OnChange(YXErrorsLogManager& manager)
{
    g_steps->push_back({{"notified", manager.GetCount()}});
    g_context->Line("  notified: the log now holds %lu entries", manager.GetCount());
}

cli::Json ShowLog(const cli::Context& context)
{
    cli::Json entries = cli::Json::array();
    const unsigned long count = YXErrorsLog_GetCount(nullptr);
    context.Line("log: %lu entries, newest first", count);
    _SS<char> source;
    _SS<char> description;
    unsigned long flags = 0;
    for (unsigned long i = 0; YXErrorsLog_GetItemAt(i, source, description, &flags, nullptr); ++i) {
        cli::Json entry = {{"index", i}};
        cli::SetText(entry, "source", source);
        cli::SetText(entry, "description", description);
        entry["flags"] = flags;
        entries.push_back(std::move(entry));
        context.Line("  [%lu] %s: %s (flags 0x%08lX)", i, source.c_str(), description.c_str(), flags);
    }
    return entries;
}

bool IsNumber(const std::string& word)
{
    char* end = nullptr;
    std::strtoull(word.c_str(), &end, 0);
    return !word.empty() && word[0] != '-' && end != nullptr && *end == '\0';
}

int Errlog(cli::Context& context, const std::vector<std::string>& words)
{
    cli::Json steps = cli::Json::array();
    g_context = &context;
    g_steps = &steps;
    YXErrorsLog_SetOnChangeProc(OnChange, nullptr);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& op = words[i];
        if (op == "add" && i + 2 < words.size()) {
            const bool hasFlags = i + 3 < words.size() && IsNumber(words[i + 3]);
            const unsigned long long flags = hasFlags ? cli::Number(words[i + 3], "FLAGS") : 0;
            const _SS<char> source(context.In(words[i + 1], "SOURCE").c_str());
            const _SS<char> description(context.In(words[i + 2], "DESCRIPTION").c_str());
            context.Line("add \"%s\" \"%s\" 0x%llX", source.c_str(), description.c_str(), flags);
            const bool added = YXErrorsLog_Add(source, description, static_cast<unsigned long>(flags), nullptr);
            cli::Json step = {{"op", "add"}};
            cli::SetText(step, "source", source);
            cli::SetText(step, "description", description);
            step["added"] = added;
            steps.push_back(std::move(step));
            if (!added) {
                context.Line("  dropped: same texts as the newest entry");
            }
            i += hasFlags ? 3 : 2;
        } else if (op == "clear") {
            context.Line("clear");
            steps.push_back({{"op", "clear"}});
            YXErrorsLog_Clear(nullptr);
        } else if (op == "max" && i + 1 < words.size()) {
            const unsigned long long maximum = cli::Number(words[i + 1], "N");
            context.Line("max %llu%s", maximum, maximum == 0 ? " (ignored: the maximum is at least 1)" : "");
            YXErrorsLog_SetMaxEntries(static_cast<unsigned long>(maximum), nullptr);
            steps.push_back({{"op", "max"}, {"count", YXErrorsLog_GetCount(nullptr)}});
            ++i;
        } else if (op == "show") {
            steps.push_back({{"op", "show"}});
            ShowLog(context);
        } else {
            throw cli::UsageError("OPERATION", "cannot read '" + op + "' here");
        }
    }
    YXErrorsLog_SetOnChangeProc(nullptr, nullptr);
    context.result["steps"] = std::move(steps);
    context.result["entries"] = ShowLog(context);
    return 0;
}

} // namespace

namespace cli {

void AddErrlogCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("errlog", "try the error log: add, clear, max, show");
    auto words = std::make_shared<std::vector<std::string>>();
    command->add_option("OPERATION", *words,
                        "operations, one after the other: add SOURCE DESCRIPTION [FLAGS] (append an entry, "
                        "flags default 0), clear (remove every entry), max N (the maximum number of entries), "
                        "show (list the entries, newest first)");
    context.SetAction(command, [&context, words] { return Errlog(context, *words); });
}

} // namespace cli

namespace {
const cli::Registration registration("errlog", cli::AddErrlogCommand);
}
