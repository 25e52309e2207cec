// yxtools text: the multibyte character walk, the searches, extraction, the locale mappings and the
// fold chain, on text in the ANSI code page that the locale variables choose.
#include <yxtools/yxtools.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

std::string HexOf(const char* p, std::size_t n)
{
    std::string out;
    char digits[4];
    for (std::size_t i = 0; i < n; ++i) {
        std::snprintf(digits, sizeof digits, "%s%02X", i == 0 ? "" : " ", static_cast<unsigned char>(p[i]));
        out += digits;
    }
    return out;
}

int Walk(cli::Context& context, const std::string& text)
{
    cli::Json chars = cli::Json::array();
    const char* p = text.c_str();
    context.Line("%ld characters in %zu bytes (%s code page)", String_NbChar(p), text.size(),
                 String_IsDBCSEnabled() ? "double-byte" : "single-byte");
    while (*p != '\0') {
        // The width of the character is what the walk moves over it.
        const long width = String_IsDBCSEnabled() ? String_NbChar2NbBytes(p, 1) : 1;
        const auto lead = static_cast<unsigned char>(p[0]);
        // The value as the library reads it: a lead byte takes the byte behind it, even where that
        // makes no character with it (a lone lead byte before the terminator reads 0x..00).
        const unsigned value = String_GetTabBLeadByte()[lead] ? (lead << 8) + static_cast<unsigned char>(p[1]) : lead;
        const std::string bytes(p, static_cast<std::size_t>(width));
        cli::Json one = cli::Json::object();
        one["offset"] = p - text.c_str();
        one["value"] = value;
        one["width"] = width;
        cli::SetText(one, "char", bytes);
        chars.push_back(std::move(one));
        context.Line("%6ld  0x%04X  %ld  %-5s  \"%s\"", static_cast<long>(p - text.c_str()), value, width,
                     HexOf(p, static_cast<std::size_t>(width)).c_str(), bytes.c_str());
        p += width;
    }
    context.result["dbcs"] = String_IsDBCSEnabled();
    context.result["characters"] = std::move(chars);
    return 0;
}

struct SearchInput {
    std::string text;
    std::string pattern;
    std::string value;
    long count = 0;
    bool last = false;
};

int Found(cli::Context& context, const std::string& text, const char* found, const char* what)
{
    if (found == nullptr) {
        context.result["offset"] = nullptr;
        context.Line("%s: not found", what);
        return 1;
    }
    const long offset = static_cast<long>(found - text.c_str());
    context.result["offset"] = offset;
    cli::SetText(context.result, "from", found);
    context.Line("%s: offset %ld, \"%s\"", what, offset, found);
    return 0;
}

int SearchChar(cli::Context& context, const SearchInput& in)
{
    const auto value = static_cast<unsigned short>(cli::Number(in.value, "VALUE"));
    if (cli::Number(in.value, "VALUE") > 0xFFFF) {
        throw cli::UsageError("VALUE", "a character value is at most 0xFFFF");
    }
    cli::SetText(context.result, "text", in.text);
    context.result["value"] = value;
    if (in.last) {
        return Found(context, in.text, String_StrRChr(in.text.c_str(), value), "String_StrRChr");
    }
    if (in.count != 0) {
        context.result["count"] = in.count;
        return Found(context, in.text, String_StrChr(in.text.c_str(), value, in.count), "String_StrChr (counted)");
    }
    return Found(context, in.text, String_StrChr(in.text.c_str(), value), "String_StrChr");
}

struct ExtractInput {
    std::string text;
    std::string mode = "from";
    long first = 1;
    long count = 1;
    long size = 256;
};

int Extract(cli::Context& context, const ExtractInput& in)
{
    const unsigned short mode = in.mode == "last" ? YXSTRING_EXTRACT_LAST : YXSTRING_EXTRACT_FROM;
    std::vector<char> dst(static_cast<std::size_t>(in.size) + 2, '\0');
    const bool result = String_Extract(in.text.c_str(), dst.data(), in.size, mode, in.first, in.count);
    cli::SetText(context.result, "text", in.text);
    context.result["result"] = result;
    cli::SetText(context.result, "extract", dst.data());
    context.Line("result:  %s", result ? "true" : "false");
    context.Line("extract: \"%s\"", dst.data());
    return result ? 0 : 1;
}

struct NamedFlag {
    const char* name;
    unsigned long flag;
};

const NamedFlag kFlags[] = {{"fullwidth", YXSTRING_FULLWIDTH}, {"halfwidth", YXSTRING_HALFWIDTH},
                            {"hiragana", YXSTRING_HIRAGANA},   {"katakana", YXSTRING_KATAKANA},
                            {"lower", YXSTRING_LOWERCASE},     {"upper", YXSTRING_UPPERCASE},
                            {"nonspace", YXSTRING_NONSPACE},   {"symbols", YXSTRING_SYMBOLS}};

int Transform(cli::Context& context, const std::string& text, const std::vector<std::string>& names)
{
    unsigned long flags = 0;
    for (const std::string& name : names) {
        bool known = false;
        for (const NamedFlag& f : kFlags) {
            if (name == f.name) {
                flags |= f.flag;
                known = true;
            }
        }
        if (!known) {
            throw cli::UsageError("--flag", "unknown flag " + name);
        }
    }
    std::vector<char> dst(text.size() * 4 + 16, '\0');
    const long length = String_Transform(text.c_str(), dst.data(), static_cast<long>(dst.size()), flags);
    cli::SetText(context.result, "text", text);
    context.result["flags"] = flags;
    context.result["length"] = length;
    if (length < 0) {
        context.result["output"] = nullptr;
        context.Line("flags 0x%02lX: the mapping failed", flags);
        return 1;
    }
    cli::SetText(context.result, "output", std::string(dst.data(), static_cast<std::size_t>(length)));
    context.Line("flags 0x%02lX: \"%s\" (%ld bytes)", flags, dst.data(), length);
    return 0;
}

// The fold tables are made by sending every character through full width, upper case and
// hiragana (and, outside code page 932, the removal of accents): the same chain on the text shows
// what String_Find compares.
int Fold(cli::Context& context, const std::string& text)
{
    // Code page 932 is the double-byte code page whose lead bytes leave out 0xA0..0xDF.
    const bool* lead = String_GetTabBLeadByte();
    const bool japanese = lead[0x81] && !lead[0xA0];
    std::vector<NamedFlag> chain = {
        {"fullwidth", YXSTRING_FULLWIDTH}, {"upper", YXSTRING_UPPERCASE}, {"hiragana", YXSTRING_HIRAGANA}};
    if (!japanese) {
        chain.push_back({"nonspace", YXSTRING_NONSPACE});
    }
    cli::SetText(context.result, "text", text);
    cli::Json steps = cli::Json::array();
    std::string current = text;
    context.Line("%-10s \"%s\"", "text", current.c_str());
    for (const NamedFlag& step : chain) {
        std::vector<char> dst(current.size() * 4 + 16, '\0');
        const long length = String_Transform(current.c_str(), dst.data(), static_cast<long>(dst.size()), step.flag);
        if (length >= 0) {
            current.assign(dst.data(), static_cast<std::size_t>(length));
        }
        cli::Json one = cli::Json::object();
        one["step"] = step.name;
        cli::SetText(one, "output", current);
        steps.push_back(std::move(one));
        context.Line("%-10s \"%s\"", step.name, current.c_str());
    }
    context.result["steps"] = std::move(steps);
    return 0;
}

} // namespace

namespace cli {

void AddTextCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("text", "walk, search, extract, transform and fold multibyte text");
    command->require_subcommand(1);

    auto text = std::make_shared<std::string>();
    CLI::App* walk = command->add_subcommand("walk", "each character with its offset, value and width");
    context.AddText(walk, "TEXT", *text, "the text")->required();
    context.SetAction(walk, [&context, text] { return Walk(context, *text); });

    auto search = std::make_shared<SearchInput>();
    CLI::App* chr = command->add_subcommand("chr", "the first (or last) character of a value");
    context.AddText(chr, "TEXT", search->text, "the text")->required();
    chr->add_option("VALUE", search->value, "the character value (0x8341 for a double-byte one)")->required();
    chr->add_option("--count", search->count, "search the first COUNT bytes, past terminators");
    chr->add_flag("--last", search->last, "the last one (String_StrRChr)");
    context.SetAction(chr, [&context, search] { return SearchChar(context, *search); });

    CLI::App* str = command->add_subcommand("str", "the first place of a pattern, byte for byte (String_StrStr)");
    context.AddText(str, "TEXT", search->text, "the text")->required();
    context.AddText(str, "PATTERN", search->pattern, "the pattern")->required();
    context.SetAction(str, [&context, search] {
        cli::SetText(context.result, "text", search->text);
        cli::SetText(context.result, "pattern", search->pattern);
        return Found(context, search->text, String_StrStr(search->text.c_str(), search->pattern.c_str()),
                     "String_StrStr");
    });

    CLI::App* find = command->add_subcommand("find", "the first place of a pattern with case, width, kana type "
                                                     "and accents folded away (String_Find)");
    context.AddText(find, "TEXT", search->text, "the text")->required();
    context.AddText(find, "PATTERN", search->pattern, "the pattern")->required();
    context.SetAction(find, [&context, search] {
        cli::SetText(context.result, "text", search->text);
        cli::SetText(context.result, "pattern", search->pattern);
        return Found(context, search->text, String_Find(search->text.c_str(), search->pattern.c_str()), "String_Find");
    });

    auto extract = std::make_shared<ExtractInput>();
    CLI::App* extractApp = command->add_subcommand("extract", "characters from a position, or the last ones");
    context.AddText(extractApp, "TEXT", extract->text, "the text")->required();
    extractApp->add_option("--mode", extract->mode, "from (count characters from --first) or last")
        ->check(CLI::IsMember({"from", "last"}));
    extractApp->add_option("--first", extract->first, "1-based position of the first character (mode from)");
    extractApp->add_option("--count", extract->count, "number of characters")->check(CLI::Range(0L, 65536L));
    extractApp->add_option("--size", extract->size, "size of the destination in bytes")->check(CLI::Range(1L, 65536L));
    context.SetAction(extractApp, [&context, extract] { return Extract(context, *extract); });

    auto flags = std::make_shared<std::vector<std::string>>();
    CLI::App* transform = command->add_subcommand("transform", "the user's locale mappings (String_Transform)");
    context.AddText(transform, "TEXT", *text, "the text")->required();
    transform
        ->add_option("--flag", *flags,
                     "fullwidth, halfwidth, hiragana, katakana, lower, upper, nonspace, symbols (repeatable)")
        ->check(
            CLI::IsMember({"fullwidth", "halfwidth", "hiragana", "katakana", "lower", "upper", "nonspace", "symbols"}));
    context.SetAction(transform, [&context, text, flags] { return Transform(context, *text, *flags); });

    CLI::App* fold = command->add_subcommand("fold", "the text through the chain the fold tables are made of");
    context.AddText(fold, "TEXT", *text, "the text")->required();
    context.SetAction(fold, [&context, text] { return Fold(context, *text); });
}

} // namespace cli

namespace {
const cli::Registration registration("text", cli::AddTextCommand);
}
