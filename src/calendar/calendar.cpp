#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "calendar/calendar_internal.h"
#include "platform/win32.h"

namespace yx::calendar {

namespace {

// Month lengths, indexed by the month; a leap year's 29th of February is added where it counts.
constexpr std::int32_t kMonthDays[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

constexpr std::int32_t kDaysIn400Years = 146097;
constexpr std::int32_t kDaysIn100Years = 36524; // a block whose last year is common
constexpr std::int32_t kDaysIn4Years = 1461;    // a block whose last year is leap

// Also for year 0 and negative years: the remainder is 0 exactly when the year divides.
bool IsLeapYear(std::int32_t year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// Days of a common year before each month, made from the table above; index 13 is the whole year.
constexpr auto kDaysBefore = [] {
    std::array<std::int32_t, 14> days{};
    for (std::size_t m = 2; m < days.size(); ++m) {
        days[m] = days[m - 1] + kMonthDays[m - 1];
    }
    return days;
}();

// Days of a year before a month (0 to 13), with the leap day when the year has one.
std::int32_t DaysBefore(std::int32_t month, bool leapYear)
{
    return kDaysBefore[static_cast<std::size_t>(month)] + static_cast<std::int32_t>(leapYear & (month > 2));
}

// Division rounding toward minus infinity, for a positive divisor.
std::int32_t FloorDiv(std::int32_t value, std::int32_t divisor)
{
    const std::int32_t quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

} // namespace

std::int32_t DayNumber(std::int16_t year, unsigned month, unsigned day)
{
    const std::int32_t before = std::int32_t{year} - 1; // whole years before this one
    std::int32_t days = 365 * before + FloorDiv(before, 4) - FloorDiv(before, 100) + FloorDiv(before, 400);
    // A month beyond 12 is no valid input; the months added stop at December so that nothing is
    // read past the table, which makes any month beyond 12 the January after. Month 0 counts as
    // January.
    days += DaysBefore(month > 13 ? 13 : static_cast<std::int32_t>(month), IsLeapYear(year));
    return days + static_cast<std::int32_t>(day) + kFirstDayOfYearOne - 1;
}

DISKDATE DateOf(std::int32_t dayNumber)
{
    // Days since 1 January of year 1; 64 bits so that the largest day numbers don't overflow.
    const std::int64_t sinceYearOne = std::int64_t{dayNumber} - kFirstDayOfYearOne;
    std::int64_t cycles = sinceYearOne / kDaysIn400Years;
    if (sinceYearOne % kDaysIn400Years < 0) {
        --cycles;
    }
    auto rest = static_cast<std::int32_t>(sinceYearOne - cycles * kDaysIn400Years);
    auto year = static_cast<std::int32_t>(400 * cycles);
    std::int32_t dayOfYear = 0;
    if (rest == 0) {
        year += 1;
        dayOfYear = 1;
    } else {
        // Up to 4 blocks of 100 years: 4 only on the last day of a cycle, a leap year's day 366.
        const std::int32_t centuries = rest / kDaysIn100Years;
        year += 100 * centuries;
        rest -= centuries * kDaysIn100Years;
        if (rest == 0) {
            dayOfYear = 366;
        } else {
            const std::int32_t blocks = rest / kDaysIn4Years;
            year += 4 * blocks;
            rest -= blocks * kDaysIn4Years;
            // Whole years of 365 days while more than 365 days are left, at most three: day 366
            // of a block's year stays, and becomes the first day of the next year below. A rest of 0
            // gives no year.
            const std::int32_t years = std::min((rest - 1) / 365, 3);
            year += years;
            rest -= 365 * years;
            year += 1;
            dayOfYear = rest + 1;
        }
    }
    const bool leapYear = IsLeapYear(year);
    // No month has more than 32 days, so this is the month or the one before it (or December
    // for day 366 of a common year, which runs past it).
    std::int32_t month = (dayOfYear - 1) / 32 + 1;
    month += dayOfYear > DaysBefore(month + 1, leapYear) ? 1 : 0;
    if (month > 12) {
        // Day 366 of a common year: the first day of a block of 100 or 4 years, or of a year in a
        // block of 4, comes out this way.
        year += 1;
        month = 1;
        dayOfYear = 1;
    } else {
        dayOfYear -= DaysBefore(month, leapYear);
    }
    DISKDATE date{};
    date.m_nYear = static_cast<short>(static_cast<std::uint16_t>(year));
    date.m_byDay = static_cast<unsigned char>(dayOfYear);
    date.m_byMonth = static_cast<unsigned char>(month);
    return date;
}

} // namespace yx::calendar

using yx::calendar::DateOf;
using yx::calendar::DayNumber;

namespace {

// Fractions of a day, each the nearest double.
constexpr double kHour = 1.0 / 24;
constexpr double kMinute = 1.0 / 1440;
constexpr double kSecond = 1.0 / 86400;
static_assert(kHour == 0.041666666666666664 && kMinute == 0.0006944444444444445 && kSecond == 1.1574074074074073e-05,
              "the fractions of a day are the nearest doubles");

std::int32_t DayNumberOf(DISKDATETIME const& dateTime)
{
    return DayNumber(static_cast<std::int16_t>(dateTime.m_wYear), dateTime.m_wMonth & 0xFFu, dateTime.m_wDay & 0xFFu);
}

} // namespace

void YXDate_GetDate(DISKDATETIME& now)
{
    SYSTEMTIME local{};
    GetLocalTime(&local);
    now.m_wYear = local.wYear;
    now.m_wDay = local.wDay;
    now.m_wMonth = local.wMonth;
    now.m_wHour = local.wHour;
    now.m_wMinute = local.wMinute;
    now.m_wSecond = local.wSecond;
}

long YXDate_DateToGregorian(DISKDATE const& date)
{
    return DayNumber(date.m_nYear, date.m_byMonth, date.m_byDay);
}

long YXDate_DateToGregorian(unsigned short year, unsigned short month, unsigned short day)
{
    return DayNumber(static_cast<std::int16_t>(year), month & 0xFFu, day & 0xFFu);
}

double YXDate_DateToGregorianTime(DISKDATETIME const& dateTime)
{
    // Each step is rounded to double: no wider intermediates (x86-64 computes doubles in SSE2
    // registers) and no fused multiply-add (the ISO language mode keeps the compiler from
    // contracting). Which seconds come back one short from YXDate_GregorianTimeToDate depends on
    // this, and is so the same on every build.
    double value = dateTime.m_wSecond * kSecond;
    value += dateTime.m_wMinute * kMinute;
    value += dateTime.m_wHour * kHour;
    value += DayNumberOf(dateTime);
    return value;
}

bool YXDate_GregorianToDate(long dayNumber, DISKDATE& date)
{
    date = DateOf(static_cast<std::int32_t>(dayNumber));
    return true;
}

bool YXDate_GregorianToDate(long dayNumber, DISKDATETIME& dateTime)
{
    const DISKDATE date = DateOf(static_cast<std::int32_t>(dayNumber));
    dateTime.m_wYear = static_cast<unsigned short>(date.m_nYear);
    dateTime.m_wDay = date.m_byDay;
    dateTime.m_wMonth = date.m_byMonth;
    return true;
}

bool YXDate_GregorianTimeToDate(double value, DISKDATETIME& dateTime)
{
    // The day is the whole part rounded down, not toward zero: a value before day 0 then keeps a
    // fraction from 0 to 1, and gives back the date and time that YXDate_DateToGregorianTime made
    // it of (-0.5 is 14 October 1582, 12:00:00) instead of negative time fields. From day 0 on
    // both roundings are the same.
    double whole = std::floor(value);
    double fraction = value - whole;
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    if (!(whole >= kLowest && whole <= kHighest)) {
        // Beyond the 32-bit day numbers (or not a number): the nearest day number, or day 0 for
        // NaN, at 00:00:00.
        whole = value < 0 ? kLowest : value > 0 ? kHighest : 0.0;
        fraction = 0.0;
    } else if (fraction >= 1.0) {
        // A value just below a negative whole number can round to a full day here; it is the
        // last instant of the day before.
        fraction = std::nextafter(1.0, 0.0);
    }
    YXDate_GregorianToDate(static_cast<long>(whole), dateTime);
    // Each field truncated on its own, in double arithmetic throughout. Where the fraction is
    // exact to many places (near day 0), the minute can fall just short of a whole one while the
    // seconds make it up: 02:53:00 reads 02:52:60, the same instant.
    const auto hour = static_cast<std::int32_t>(24.0 * fraction);
    const auto minute = static_cast<std::int32_t>(1440.0 * fraction - 60.0 * hour);
    const auto second = static_cast<std::int32_t>((86400.0 * fraction - 60.0 * minute) - 3600.0 * hour);
    dateTime.m_wHour = static_cast<unsigned short>(hour);
    dateTime.m_wMinute = static_cast<unsigned short>(minute);
    dateTime.m_wSecond = static_cast<unsigned short>(second);
    return true;
}

short YXDate_CompareDate(DISKDATETIME const& first, DISKDATETIME const& second)
{
    const std::int32_t a = DayNumberOf(first);
    const std::int32_t b = DayNumberOf(second);
    return a < b ? YXDATE_DATE_EARLIER : a > b ? YXDATE_DATE_LATER : YXDATE_DATE_SAME;
}

short YXDate_CompareTime(DISKDATETIME const& first, DISKDATETIME const& second)
{
    const auto secondsOf = [](DISKDATETIME const& t) {
        return (std::int32_t{t.m_wHour} * 60 + t.m_wMinute) * 60 + t.m_wSecond;
    };
    const std::int32_t a = secondsOf(first);
    const std::int32_t b = secondsOf(second);
    return a < b ? YXDATE_TIME_EARLIER : a > b ? YXDATE_TIME_LATER : YXDATE_TIME_SAME;
}

short YXDate_CompareDateTime(DISKDATETIME const& first, DISKDATETIME const* second, unsigned long flags)
{
    DISKDATETIME now{};
    if (second == nullptr) {
        YXDate_GetDate(now);
        second = &now;
    }
    short result = YXDATE_DATE_SAME;
    const bool timesOnly = (flags & YXDATE_COMPARE_TIMES_ONLY) != 0;
    if (!timesOnly) {
        result = YXDate_CompareDate(first, *second);
    }
    if ((flags & YXDATE_COMPARE_DATES_ONLY) == 0 && (timesOnly || result == YXDATE_DATE_SAME)) {
        result = static_cast<short>(result | YXDate_CompareTime(first, *second));
    }
    return result;
}
