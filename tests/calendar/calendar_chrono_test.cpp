// The calendar against the standard library's proleptic Gregorian calendar (C++20 <chrono>).
#include <gtest/gtest.h>

#include <chrono>

#include <yxtools/calendar.h>

namespace {

using namespace std::chrono;

// Our day number of 1 January 1970, the standard library's day 0.
constexpr long kUnixEpoch = 141427;

year_month_day CivilDate(long dayNumber)
{
    return year_month_day{sys_days{days{dayNumber - kUnixEpoch}}};
}

long ChronoDayNumber(const year_month_day& date)
{
    return static_cast<long>(sys_days{date}.time_since_epoch().count()) + kUnixEpoch;
}

TEST(CalendarAgainstChrono, EveryDayNumberFromMinusToPlus800000)
{
    long failures = 0;
    for (long n = -800000; n <= 800000 && failures < 10; ++n) {
        const year_month_day civil = CivilDate(n);
        DISKDATE date{};
        YXDate_GregorianToDate(n, date);
        const bool sameDate = date.m_nYear == static_cast<int>(civil.year()) &&
                              date.m_byMonth == static_cast<unsigned>(civil.month()) &&
                              date.m_byDay == static_cast<unsigned>(civil.day());
        const long back = YXDate_DateToGregorian(date);
        if (!sameDate || back != n) {
            ++failures;
            ADD_FAILURE() << "day " << n << ": got " << date.m_nYear << "-" << int{date.m_byMonth} << "-"
                          << int{date.m_byDay} << " and back " << back << ", chrono says "
                          << static_cast<int>(civil.year()) << "-" << static_cast<unsigned>(civil.month()) << "-"
                          << static_cast<unsigned>(civil.day());
        }
    }
}

// The edges of every year the records hold (chrono's years end at -32767).
TEST(CalendarAgainstChrono, YearEdgesOfEverySixteenBitYear)
{
    long failures = 0;
    for (int y = -32767; y <= 32767 && failures < 10; ++y) {
        const year yy{y};
        const year_month_day edges[] = {yy / January / 1, yy / February / last, yy / March / 1, yy / December / 31};
        for (const year_month_day& civil : edges) {
            const auto month = static_cast<unsigned short>(static_cast<unsigned>(civil.month()));
            const auto day = static_cast<unsigned short>(static_cast<unsigned>(civil.day()));
            const long number = YXDate_DateToGregorian(static_cast<unsigned short>(y), month, day);
            DISKDATE date{};
            YXDate_GregorianToDate(ChronoDayNumber(civil), date);
            if (number != ChronoDayNumber(civil) || date.m_nYear != y || date.m_byMonth != month ||
                date.m_byDay != day) {
                ++failures;
                ADD_FAILURE() << y << "-" << month << "-" << day << ": number " << number << ", chrono "
                              << ChronoDayNumber(civil);
            }
        }
    }
}

} // namespace
