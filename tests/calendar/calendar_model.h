// A plain model of the calendar's conversions that walks its blocks as a person counts them:
// 400-year cycles, 100-year and 4-year blocks, years, then the months, in 64 bits. Shared by the
// model tests and the calendar fuzz target.
#ifndef YXTOOLS_TESTS_CALENDAR_MODEL_H
#define YXTOOLS_TESTS_CALENDAR_MODEL_H

#include <cstdint>

namespace calendar_model {

constexpr int kMonthDays[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

inline bool IsLeap(std::int64_t year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

inline std::int64_t FloorDiv(std::int64_t a, std::int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

// Day number of a year, a month byte and a day byte: the days of the years before, then of the
// months before, counting at most the twelve months of the year (month 0 is January, and months
// past 12 are the January after).
inline long ModelDayNumber(std::int16_t year, unsigned month, unsigned day)
{
    const std::int64_t before = year - 1;
    std::int64_t days = 365 * before + FloorDiv(before, 4) - FloorDiv(before, 100) + FloorDiv(before, 400);
    for (unsigned m = 1; m < month && m <= 12; ++m) {
        days += kMonthDays[m] + (m == 2 && IsLeap(year) ? 1 : 0);
    }
    return static_cast<long>(days + day - 577736);
}

struct Date {
    int year;
    int month;
    int day;
    bool operator==(const Date& other) const { return year == other.year && month == other.month && day == other.day; }
};

// The date of a day number by whole blocks, in 64 bits, its year cut to 16 bits at the end: the
// 400-year cycles, then 100-year blocks (four on the last day of a cycle), 4-year blocks and up to
// three common years, then the months. Day 366 of a common year is 1 January of the next.
inline Date ModelDate(std::int32_t dayNumber)
{
    const std::int64_t c = std::int64_t{dayNumber} + 577735; // days since 1 January of year 1
    const std::int64_t cycles = FloorDiv(c, 146097);
    std::int64_t rest = c - 146097 * cycles;
    std::int64_t year = 400 * cycles;
    std::int64_t dayOfYear = 1;
    if (rest != 0) {
        year += 100 * (rest / 36524);
        rest %= 36524;
        if (rest == 0) {
            dayOfYear = 366; // of the year the blocks end with
        } else {
            year += 4 * (rest / 1461);
            rest %= 1461;
            for (int i = 0; i < 3 && rest > 365; ++i) {
                year += 1;
                rest -= 365;
            }
            year += 1;
            dayOfYear = rest + 1;
        }
    } else {
        year += 1;
    }
    int month = 1;
    for (; month <= 12; ++month) {
        const int length = kMonthDays[month] + (month == 2 && IsLeap(year) ? 1 : 0);
        if (dayOfYear <= length) {
            break;
        }
        dayOfYear -= length;
    }
    if (month > 12) {
        year += 1;
        month = 1;
    }
    return {static_cast<std::int16_t>(static_cast<std::uint16_t>(year)), month, static_cast<int>(dayOfYear)};
}

} // namespace calendar_model

#endif
