// The conversions against a plain model that walks the calendar's blocks as a person counts them:
// 400-year cycles, 100-year and 4-year blocks, years, then the months. Beyond the standard
// library's range it checks the whole 32-bit line of day numbers, whose years are cut to 16 bits,
// and the month bytes outside 1 to 12.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <yxtools/calendar.h>

namespace {

constexpr int kMonthDays[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

bool IsLeap(std::int64_t year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

// Day number of a year, a month byte and a day byte: the days of the years before, then of the
// months before, counting at most the twelve months of the year (month 0 is January, and months
// past 12 are the January after).
long ModelDayNumber(std::int16_t year, unsigned month, unsigned day)
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
Date ModelDate(std::int32_t dayNumber)
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

Date Convert(std::int32_t dayNumber)
{
    DISKDATE date{};
    EXPECT_TRUE(YXDate_GregorianToDate(dayNumber, date));
    return {date.m_nYear, date.m_byMonth, date.m_byDay};
}

// Day numbers from the whole 32-bit line: random ones with a fixed seed, the ends, and those
// around the first day of each 4096th cycle of 400 years (the years repeat their 16 bits there).
TEST(CalendarAgainstModel, DayNumbersOfTheWhole32BitLine)
{
    std::vector<std::int32_t> numbers = {std::numeric_limits<std::int32_t>::min(),
                                         std::numeric_limits<std::int32_t>::min() + 1,
                                         std::numeric_limits<std::int32_t>::max(),
                                         std::numeric_limits<std::int32_t>::max() - 1,
                                         -1,
                                         0};
    for (std::int64_t k = -4; k <= 4; ++k) {
        for (std::int64_t d = -400; d <= 400; ++d) {
            const std::int64_t n = k * 4096 * 146097 - 578041 + d; // 1 March of year 0, then 4096 cycles on
            if (n >= std::numeric_limits<std::int32_t>::min() && n <= std::numeric_limits<std::int32_t>::max()) {
                numbers.push_back(static_cast<std::int32_t>(n));
            }
        }
    }
    std::mt19937 random(1582);
    std::uniform_int_distribution<std::int32_t> pick(std::numeric_limits<std::int32_t>::min(),
                                                     std::numeric_limits<std::int32_t>::max());
    for (int i = 0; i < 300000; ++i) {
        numbers.push_back(pick(random));
    }
    int failures = 0;
    for (const std::int32_t n : numbers) {
        const Date model = ModelDate(n);
        const Date date = Convert(n);
        if (!(date == model) && ++failures <= 10) {
            ADD_FAILURE() << "day " << n << ": " << date.year << "-" << date.month << "-" << date.day << ", model "
                          << model.year << "-" << model.month << "-" << model.day;
        }
    }
}

// Every 16-bit year with every month byte, on the first, a late and an out-of-range day.
TEST(CalendarAgainstModel, EveryYearAndMonthByte)
{
    int failures = 0;
    for (int y = -32768; y <= 32767; ++y) {
        for (unsigned month = 0; month < 256; month += month < 15 ? 1 : 60) {
            for (const unsigned day : {0U, 1U, 29U, 255U}) {
                const auto year = static_cast<std::int16_t>(y);
                const long model = ModelDayNumber(year, month, day);
                const long number =
                    YXDate_DateToGregorian(static_cast<unsigned short>(year), static_cast<unsigned short>(month), day);
                DISKDATE record{year, static_cast<unsigned char>(day), static_cast<unsigned char>(month)};
                if ((number != model || YXDate_DateToGregorian(record) != model) && ++failures <= 10) {
                    ADD_FAILURE() << y << "-" << month << "-" << day << ": " << number << ", model " << model;
                }
            }
        }
    }
}

} // namespace
