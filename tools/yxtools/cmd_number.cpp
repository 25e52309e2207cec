// yxtools number: numbers to text and back under the regional settings in force.
#include <yxtools/yxtools.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "cli.h"

namespace {

// The settings the conversions read, shown before every answer; a copy reads no profile.
class Settings : public YXIntl {
public:
    explicit Settings(const YXIntl& intl) : YXIntl(intl) {}
    static void Show(cli::Context& context, const YXIntl& intl)
    {
        const Settings s(intl);
        cli::Json settings = cli::Json::object();
        cli::SetText(settings, "decimal", s.m_sDecimal);
        cli::SetText(settings, "thousand", s.m_sThousand);
        settings["lzero"] = s.m_iLzero;
        settings["digits"] = s.m_iDigits;
        context.result["settings"] = std::move(settings);
        context.Line("settings: decimal \"%s\", thousands \"%s\", iLzero %ld, iDigits %ld", s.m_sDecimal.c_str(),
                     s.m_sThousand.c_str(), s.m_iLzero, s.m_iDigits);
    }
};

struct Input {
    std::string text;
    long scale = 0;
    double value = 0;
    long number = 0;
    double factor = 1.0;
    short precision = -1000;
    std::string separator;
    CLI::Option* precisionOption = nullptr;
    CLI::Option* separatorOption = nullptr;
    CLI::Option* factorOption = nullptr;
};

const YXIntl& Intl()
{
    YXIntl* intl = YXIntl_Get();
    if (intl == nullptr) {
        throw cli::UsageError("intl", "the library has no regional settings");
    }
    return *intl;
}

int Parse(cli::Context& context, const Input& in)
{
    const YXIntl& intl = Intl();
    intl.InitInternationalValues();
    Settings::Show(context, intl);
    const _SS<char> text(in.text.c_str());
    bool ok = false;
    unsigned long offset = 0;
    const double value = intl.TextToNumeric(text, &ok, &offset);
    bool okLong = false;
    unsigned long offsetLong = 0;
    const long number = intl.TextToLong(text, in.scale, &okLong, &offsetLong);
    cli::SetText(context.result, "text", text);
    context.result["numeric"] = {{"value", value}, {"ok", ok}, {"error_offset", offset}};
    context.result["long"] = {{"value", number}, {"scale", in.scale}, {"ok", okLong}, {"error_offset", offsetLong}};
    context.Line("text:     \"%s\"", text.c_str());
    context.Line("numeric:  %.17g (ok %s, offset %lu)", value, ok ? "true" : "false", offset);
    context.Line("long:     %ld with scale %ld (ok %s, offset %lu)", number, in.scale, okLong ? "true" : "false",
                 offsetLong);
    return ok ? 0 : 1;
}

int Format(cli::Context& context, const Input& in)
{
    const YXIntl& intl = Intl();
    intl.InitInternationalValues();
    _SS<char> text;
    if (in.separatorOption->count() != 0) {
        intl.NumericToText(in.value, text, _SS<char>(in.separator.c_str()), in.precision);
    } else {
        intl.NumericToText(in.value, text, in.precision);
    }
    Settings::Show(context, intl);
    context.result["value"] = in.value;
    context.result["precision"] = in.precision;
    cli::SetText(context.result, "text", text);
    context.Line("value:    %.17g, precision %d", in.value, in.precision);
    context.Line("text:     \"%s\"", text.c_str());
    return 0;
}

int Long(cli::Context& context, const Input& in)
{
    const YXIntl& intl = Intl();
    intl.InitInternationalValues();
    Settings::Show(context, intl);
    _SS<char> text;
    context.result["value"] = in.number;
    if (in.factorOption->count() != 0) {
        intl.NumericToText(in.number, in.factor, text, in.precision);
        context.result["factor"] = in.factor;
        context.result["precision"] = in.precision;
        context.Line("value:    %ld units of %g, precision %d", in.number, in.factor, in.precision);
    } else {
        intl.LongToText(in.number, text);
        context.Line("value:    %ld", in.number);
    }
    cli::SetText(context.result, "text", text);
    context.Line("text:     \"%s\"", text.c_str());
    return 0;
}

} // namespace

namespace cli {

void AddNumberCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("number", "numbers to text and back under the regional settings");
    command->require_subcommand(1);
    auto in = std::make_shared<Input>();

    CLI::App* parse = command->add_subcommand("parse", "TextToNumeric and TextToLong of a text");
    context.AddText(parse, "TEXT", in->text, "the text, as a user types it")->required();
    parse->add_option("--scale", in->scale, "TextToLong's scale: a power of ten to divide (or multiply) by")
        ->check(CLI::Range(-1000L, 1000L));
    context.SetAction(parse, [&context, in] { return Parse(context, *in); });

    CLI::App* format = command->add_subcommand("format", "NumericToText of a number");
    format->add_option("VALUE", in->value, "the number")->required();
    format
        ->add_option("--precision", in->precision,
                     "decimals: 0 or above drops trailing zeros, -1000 takes iDigits, below 0 keeps zeros")
        ->check(CLI::Range(-32768, 32767));
    in->separatorOption = context.AddText(format, "--sep", in->separator, "a decimal separator for this call");
    context.SetAction(format, [&context, in] { return Format(context, *in); });

    CLI::App* longApp = command->add_subcommand("long", "LongToText, or NumericToText of a count of --factor units");
    longApp->add_option("VALUE", in->number, "the whole number")->required();
    in->factorOption = longApp->add_option("--factor", in->factor, "the unit the value counts, such as 0.001");
    longApp->add_option("--precision", in->precision, "with --factor: 0 or above drops trailing zeros")
        ->check(CLI::Range(-32768, 32767));
    context.SetAction(longApp, [&context, in] { return Long(context, *in); });
}

} // namespace cli

namespace {
const cli::Registration registration("number", cli::AddNumberCommand);
}
