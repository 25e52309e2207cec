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

#include "calendar_model.h"

namespace {

using calendar_model::Date;
using calendar_model::ModelDate;
using calendar_model::ModelDayNumber;

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
