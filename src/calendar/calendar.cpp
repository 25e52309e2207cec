#include <cmath>
#include <cstdint>
#include <limits>

#include "calendar/calendar_internal.h"
#include "platform/win32.h"

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

// The conversions between day numbers and dates are inline in the header; taking their addresses
// here makes the library emit and export its own copies too (nothing else would, since no code
// here needs them out of line).
[[maybe_unused]] __attribute__((used)) long (*const kToDayNumber)(DISKDATE const&) = &YXDate_DateToGregorian;
[[maybe_unused]] __attribute__((used)) long (*const kFieldsToDayNumber)(unsigned short, unsigned short,
                                                                        unsigned short) = &YXDate_DateToGregorian;
[[maybe_unused]] __attribute__((used)) bool (*const kToDate)(long, DISKDATE&) = &YXDate_GregorianToDate;
[[maybe_unused]] __attribute__((used)) bool (*const kToDateTime)(long, DISKDATETIME&) = &YXDate_GregorianToDate;

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
