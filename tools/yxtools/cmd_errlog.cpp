// yxtools errlog: drives the default error log through its flat interface, one operation after
// the other, and shows each result and notification.
#include <yxtools/yxtools.h>

#include "cli.h"

namespace {

cli::Context* g_context = nullptr;
cli::Json* g_steps = nullptr;

void OnChange(YXErrorsLogManager& manager)
{
    g_steps->Push(cli::Json::Object()).Set("notified", manager.GetCount());
    g_context->Line("  notified: the log now holds %lu entries", manager.GetCount());
}

cli::Json ShowLog(const cli::Context& context)
{
    cli::Json entries = cli::Json::Array();
    const unsigned long count = YXErrorsLog_GetCount(nullptr);
    context.Line("log: %lu entries, newest first", count);
    _SS<char> source;
    _SS<char> description;
    unsigned long flags = 0;
    for (unsigned long i = 0; YXErrorsLog_GetItemAt(i, source, description, &flags, nullptr); ++i) {
        cli::Json& entry = entries.Push(cli::Json::Object());
        entry.Set("index", i);
        entry.Set("source", source);
        entry.Set("description", description);
        entry.Set("flags", flags);
        context.Line("  [%lu] %s: %s (flags 0x%08lX)", i, source.c_str(), description.c_str(), flags);
    }
    return entries;
}

const char kUsage[] = "errlog [OPERATION...]  where OPERATION is one of\n"
                      "  add SOURCE DESCRIPTION [FLAGS]   append an entry (flags default 0)\n"
                      "  clear                            remove every entry\n"
                      "  max N                            set the maximum number of entries\n"
                      "  show                             list the entries, newest first";

int RunErrlog(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"errlog", kUsage, "try the error log: add, clear, max, show", RunErrlog};
const cli::Registration registration(kCommand);

int RunErrlog(cli::Context& context, const cli::Args& args)
{
    cli::Json& steps = context.result.Child("steps", cli::Json::Array());
    g_context = &context;
    g_steps = &steps;
    YXErrorsLog_SetOnChangeProc(OnChange, nullptr);
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& op = args[i];
        if (op == "add" && i + 2 < args.size()) {
            unsigned long long flags = 0;
            const bool hasFlags = i + 3 < args.size() && cli::ParseNumber(args[i + 3], flags);
            const _SS<char> source(args[i + 1].c_str());
            const _SS<char> description(args[i + 2].c_str());
            context.Line("add \"%s\" \"%s\" 0x%llX", source.c_str(), description.c_str(), flags);
            const bool added = YXErrorsLog_Add(source, description, static_cast<unsigned long>(flags), nullptr);
            cli::Json& step = steps.Push(cli::Json::Object());
            step.Set("op", "add");
            step.Set("source", source);
            step.Set("description", description);
            step.Set("added", added);
            if (!added) {
                context.Line("  dropped: same texts as the newest entry");
            }
            i += hasFlags ? 3 : 2;
        } else if (op == "clear") {
            context.Line("clear");
            steps.Push(cli::Json::Object()).Set("op", "clear");
            YXErrorsLog_Clear(nullptr);
        } else if (op == "max" && i + 1 < args.size()) {
            unsigned long long maximum = 0;
            if (!cli::ParseNumber(args[i + 1], maximum)) {
                return cli::UsageError(kCommand, "max takes a whole number, not '" + args[i + 1] + "'");
            }
            context.Line("max %llu%s", maximum, maximum == 0 ? " (ignored: the maximum is at least 1)" : "");
            YXErrorsLog_SetMaxEntries(static_cast<unsigned long>(maximum), nullptr);
            steps.Push(cli::Json::Object()).Set("op", "max").Set("count", YXErrorsLog_GetCount(nullptr));
            ++i;
        } else if (op == "show") {
            steps.Push(cli::Json::Object()).Set("op", "show");
            ShowLog(context);
        } else {
            return cli::UsageError(kCommand, "cannot read '" + op + "' here");
        }
    }
    YXErrorsLog_SetOnChangeProc(nullptr, nullptr);
    context.result.Set("entries", ShowLog(context));
    return 0;
}

} // namespace
