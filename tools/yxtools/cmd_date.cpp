// yxtools date: dates to day numbers and back, date-times to their values and back, the
// comparison of two date-times, and the local time now.
#include <yxtools/yxtools.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"

namespace {

std::string DateText(long year, unsigned month, unsigned day)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%s%04ld-%02u-%02u", year < 0 ? "-" : "", year < 0 ? -year : year, month,
                  day);
    return buffer;
}

std::string DateText(const DISKDATE& date)
{
    return DateText(date.m_nYear, date.m_byMonth, date.m_byDay);
}

std::string DateTimeText(const DISKDATETIME& t)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), " %02u:%02u:%02u", t.m_wHour, t.m_wMinute, t.m_wSecond);
    return DateText(static_cast<short>(t.m_wYear), t.m_wMonth, t.m_wDay) + buffer;
}

std::string ValueText(double value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.17g", value);
    return buffer;
}

// Y-M-D or Y-M-DTh:m:s; hasTime tells which. The month must be 1 to 12, the rest must fit its field.
bool ParseDateTime(const std::string& text, DISKDATETIME& t, bool& hasTime)
{
    long year = 0;
    unsigned month = 0;
    unsigned day = 0;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    int used = 0;
    if (std::sscanf(text.c_str(), "%ld-%u-%u%n", &year, &month, &day, &used) != 3) {
        return false;
    }
    hasTime = static_cast<std::size_t>(used) != text.size();
    if (hasTime) {
        int more = 0;
        const std::string rest = text.substr(static_cast<std::size_t>(used));
        if (std::sscanf(rest.c_str(), "T%u:%u:%u%n", &hour, &minute, &second, &more) != 3 ||
            static_cast<std::size_t>(more) != rest.size()) {
            return false;
        }
    }
    if (year < -32768 || year > 32767 || month < 1 || month > 12 || day > 255 || hour > 0xFFFF || minute > 0xFFFF ||
        second > 0xFFFF) {
        return false;
    }
    t = DISKDATETIME{};
    t.m_wYear = static_cast<unsigned short>(year);
    t.m_wMonth = static_cast<unsigned short>(month);
    t.m_wDay = static_cast<unsigned short>(day);
    t.m_wHour = static_cast<unsigned short>(hour);
    t.m_wMinute = static_cast<unsigned short>(minute);
    t.m_wSecond = static_cast<unsigned short>(second);
    return true;
}

// A whole day number within 32 bits, or a date-time value with a point.
bool ParseNumberValue(const std::string& text, double& value, bool& whole)
{
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    if (text.empty() || end == nullptr || *end != '\0') {
        return false;
    }
    whole = text.find_first_of(".eE") == std::string::npos;
    return !whole || (value >= -2147483648.0 && value <= 2147483647.0);
}

int Convert(cli::Context& context, const std::string& text, cli::Json& out)
{
    DISKDATETIME t{};
    bool hasTime = false;
    double value = 0;
    bool whole = false;
    out["input"] = text;
    if (ParseDateTime(text, t, hasTime)) {
        if (hasTime) {
            value = YXDate_DateToGregorianTime(t);
            DISKDATETIME back{};
            YXDate_GregorianTimeToDate(value, back);
            out["kind"] = "date-time";
            out["value"] = value;
            out["back"] = DateTimeText(back);
            context.Line("%s is %s; %s is %s", DateTimeText(t).c_str(), ValueText(value).c_str(),
                         ValueText(value).c_str(), DateTimeText(back).c_str());
        } else {
            const long number = YXDate_DateToGregorian(static_cast<unsigned short>(t.m_wYear), t.m_wMonth, t.m_wDay);
            DISKDATE back{};
            YXDate_GregorianToDate(number, back);
            out["kind"] = "date";
            out["dayNumber"] = number;
            out["back"] = DateText(back);
            context.Line("%s is day %ld; day %ld is %s",
                         DateText(static_cast<short>(t.m_wYear), t.m_wMonth, t.m_wDay).c_str(), number, number,
                         DateText(back).c_str());
        }
    } else if (ParseNumberValue(text, value, whole)) {
        if (whole) {
            const auto number = static_cast<long>(value);
            DISKDATE date{};
            YXDate_GregorianToDate(number, date);
            const long back = YXDate_DateToGregorian(date);
            out["kind"] = "day number";
            out["date"] = DateText(date);
            out["back"] = back;
            context.Line("day %ld is %s; %s is day %ld", number, DateText(date).c_str(), DateText(date).c_str(), back);
        } else {
            YXDate_GregorianTimeToDate(value, t);
            const double back = YXDate_DateToGregorianTime(t);
            out["kind"] = "value";
            out["dateTime"] = DateTimeText(t);
            out["back"] = back;
            context.Line("%s is %s; %s is %s", ValueText(value).c_str(), DateTimeText(t).c_str(),
                         DateTimeText(t).c_str(), ValueText(back).c_str());
        }
    } else {
        throw cli::UsageError("VALUE", "cannot read '" + text + "' as a date, date-time or day number");
    }
    return 0;
}

struct CompareInput {
    std::string first;
    std::string second;
    unsigned long flags = 0;
};

int Compare(cli::Context& context, const CompareInput& in)
{
    DISKDATETIME first{};
    DISKDATETIME second{};
    bool hasTime = false;
    const bool now = in.second == "now";
    if (!ParseDateTime(in.first, first, hasTime)) {
        throw cli::UsageError("FIRST", "'" + in.first + "' is not a date Y-M-D or a date-time Y-M-DTh:m:s");
    }
    if (!now && !ParseDateTime(in.second, second, hasTime)) {
        throw cli::UsageError("SECOND", "'" + in.second + "' is not a date Y-M-D, a date-time Y-M-DTh:m:s or now");
    }
    const unsigned long flags = in.flags;
    const short result = YXDate_CompareDateTime(first, now ? nullptr : &second, flags);
    context.result["first"] = DateTimeText(first);
    context.result["second"] = now ? std::string("now") : DateTimeText(second);
    context.result["flags"] = flags;
    context.result["result"] = result;
    context.Line("%s with %s, flags %lu: 0x%02X", DateTimeText(first).c_str(),
                 now ? "the local time now" : DateTimeText(second).c_str(), flags, static_cast<unsigned>(result));
    static const struct {
        short bit;
        const char* meaning;
    } kBits[] = {
        {YXDATE_DATE_EARLIER, "the date of the first is earlier"},
        {YXDATE_DATE_LATER, "the date of the first is later"},
        {YXDATE_DATE_SAME, "the dates are the same, or were not compared"},
        {YXDATE_TIME_EARLIER, "the time of the first is earlier"},
        {YXDATE_TIME_LATER, "the time of the first is later"},
        {YXDATE_TIME_SAME, "the times are the same"},
    };
    cli::Json bits = cli::Json::array();
    for (const auto& b : kBits) {
        if ((result & b.bit) != 0) {
            bits.push_back(b.meaning);
            context.Line("  0x%02X %s", static_cast<unsigned>(b.bit), b.meaning);
        }
    }
    context.result["bits"] = std::move(bits);
    return 0;
}

int Today(cli::Context& context)
{
    DISKDATETIME now{};
    YXDate_GetDate(now);
    const long number = YXDate_DateToGregorian(now.m_wYear, now.m_wMonth, now.m_wDay);
    const double value = YXDate_DateToGregorianTime(now);
    context.result["now"] = DateTimeText(now);
    context.result["dayNumber"] = number;
    context.result["value"] = value;
    context.Line("now: %s, day %ld, value %s", DateTimeText(now).c_str(), number, ValueText(value).c_str());
    return 0;
}

int Convert(cli::Context& context, const std::vector<std::string>& values)
{
    cli::Json conversions = cli::Json::array();
    for (const std::string& text : values) {
        cli::Json conversion = cli::Json::object();
        Convert(context, text, conversion);
        conversions.push_back(std::move(conversion));
    }
    context.result["conversions"] = std::move(conversions);
    return 0;
}

} // namespace

namespace cli {

void AddDateCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("date", "calendar: day numbers, date-time values, comparison, today");
    auto values = std::make_shared<std::vector<std::string>>();
    command->add_option("VALUE", *values,
                        "a date Y-M-D (year -32768 to 32767, 0 and negative years included), a date-time "
                        "Y-M-DTh:m:s, a day number (15 October 1582 is 0), or a date-time value with a point "
                        "(152443.5); each is converted and back");
    context.SetAction(command, [&context, values] {
        if (values->empty()) {
            throw UsageError("VALUE", "what to convert?");
        }
        return Convert(context, *values);
    });

    auto compare = std::make_shared<CompareInput>();
    CLI::App* compareApp = command->add_subcommand("compare", "compares two dates or date-times");
    compareApp->add_option("FIRST", compare->first, "a date or date-time")->required();
    compareApp->add_option("SECOND", compare->second, "a date or date-time, or now: the local time")->required();
    compareApp->add_option("FLAGS", compare->flags, "0 date then time, 1 dates only, 2 times only")
        ->check(CLI::Range(0UL, 0xFFFFFFFFUL));
    context.SetAction(compareApp, [&context, compare] { return Compare(context, *compare); });

    CLI::App* today = command->add_subcommand("today", "the local time now, its day number and its value");
    context.SetAction(today, [&context] { return Today(context); });
}

} // namespace cli

namespace {
const cli::Registration registration("date", cli::AddDateCommand);
}
