// yxtools date: dates to day numbers and back, date-times to their values and back, the
// comparison of two date-times, and the local time now.
#include <yxtools/yxtools.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "cli.h"

namespace {

const char kUsage[] = "date VALUE... | date compare FIRST SECOND|now [FLAGS] | date today\n"
                      "  VALUE is a date Y-M-D (year -32768 to 32767, 0 and negative years included),\n"
                      "        a date-time Y-M-DTh:m:s, a day number (15 October 1582 is 0), or a\n"
                      "        date-time value with a point (152443.5); each is converted and back\n"
                      "  compare FIRST SECOND [FLAGS]  compares two dates or date-times; SECOND 'now' is\n"
                      "        the local time; FLAGS 0 date then time, 1 dates only, 2 times only\n"
                      "  today the local time now, its day number and its value";

int RunDate(cli::Context& context, const cli::Args& args);

const cli::Command kCommand{"date", kUsage, "calendar: day numbers, date-time values, comparison, today", RunDate};
const cli::Registration registration(kCommand);

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
    out.Set("input", text);
    if (ParseDateTime(text, t, hasTime)) {
        if (hasTime) {
            value = YXDate_DateToGregorianTime(t);
            DISKDATETIME back{};
            YXDate_GregorianTimeToDate(value, back);
            out.Set("kind", "date-time").Set("value", value).Set("back", DateTimeText(back));
            context.Line("%s is %s; %s is %s", DateTimeText(t).c_str(), ValueText(value).c_str(),
                         ValueText(value).c_str(), DateTimeText(back).c_str());
        } else {
            const long number = YXDate_DateToGregorian(static_cast<unsigned short>(t.m_wYear), t.m_wMonth, t.m_wDay);
            DISKDATE back{};
            YXDate_GregorianToDate(number, back);
            out.Set("kind", "date").Set("dayNumber", number).Set("back", DateText(back));
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
            out.Set("kind", "day number").Set("date", DateText(date)).Set("back", back);
            context.Line("day %ld is %s; %s is day %ld", number, DateText(date).c_str(), DateText(date).c_str(), back);
        } else {
            YXDate_GregorianTimeToDate(value, t);
            const double back = YXDate_DateToGregorianTime(t);
            out.Set("kind", "value").Set("dateTime", DateTimeText(t)).Set("back", back);
            context.Line("%s is %s; %s is %s", ValueText(value).c_str(), DateTimeText(t).c_str(),
                         DateTimeText(t).c_str(), ValueText(back).c_str());
        }
    } else {
        return cli::UsageError(kCommand, "cannot read '" + text + "' as a date, date-time or day number");
    }
    return 0;
}

int Compare(cli::Context& context, const cli::Args& args)
{
    if (args.size() < 3 || args.size() > 4) {
        return cli::UsageError(kCommand, "compare takes two dates or date-times and, maybe, flags");
    }
    DISKDATETIME first{};
    DISKDATETIME second{};
    bool hasTime = false;
    const bool now = args[2] == "now";
    if (!ParseDateTime(args[1], first, hasTime) || (!now && !ParseDateTime(args[2], second, hasTime))) {
        return cli::UsageError(kCommand, "compare takes dates Y-M-D or date-times Y-M-DTh:m:s");
    }
    unsigned long long flags = 0;
    if (args.size() == 4 && !cli::ParseNumber(args[3], flags)) {
        return cli::UsageError(kCommand, "flags are a whole number, not '" + args[3] + "'");
    }
    const short result = YXDate_CompareDateTime(first, now ? nullptr : &second, static_cast<unsigned long>(flags));
    context.result.Set("first", DateTimeText(first)).Set("second", now ? std::string("now") : DateTimeText(second));
    context.result.Set("flags", flags).Set("result", static_cast<int>(result));
    context.Line("%s with %s, flags %llu: 0x%02X", DateTimeText(first).c_str(),
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
    cli::Json& bits = context.result.Child("bits", cli::Json::Array());
    for (const auto& b : kBits) {
        if ((result & b.bit) != 0) {
            bits.Push(b.meaning);
            context.Line("  0x%02X %s", static_cast<unsigned>(b.bit), b.meaning);
        }
    }
    return 0;
}

int Today(cli::Context& context)
{
    DISKDATETIME now{};
    YXDate_GetDate(now);
    const long number = YXDate_DateToGregorian(now.m_wYear, now.m_wMonth, now.m_wDay);
    const double value = YXDate_DateToGregorianTime(now);
    context.result.Set("now", DateTimeText(now)).Set("dayNumber", number).Set("value", value);
    context.Line("now: %s, day %ld, value %s", DateTimeText(now).c_str(), number, ValueText(value).c_str());
    return 0;
}

int RunDate(cli::Context& context, const cli::Args& args)
{
    if (args.empty()) {
        return cli::UsageError(kCommand, "what to convert?");
    }
    if (args[0] == "compare") {
        return Compare(context, args);
    }
    if (args[0] == "today" && args.size() == 1) {
        return Today(context);
    }
    cli::Json& conversions = context.result.Child("conversions", cli::Json::Array());
    for (const std::string& text : args) {
        const int status = Convert(context, text, conversions.Push(cli::Json::Object()));
        if (status != 0) {
            return status;
        }
    }
    return 0;
}

} // namespace
