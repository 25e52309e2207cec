// The calendar against the standard library's proleptic Gregorian calendar (C++20 <chrono>).
#include <gtest/gtest.h>

#include <chrono>

#include <yxtools/calendar.h>

namespace {

using namespace std::chrono;

// Our day number of 1 January 1970, the standard library's day 0.
constexpr long kUnixEpoch = 141427;

// Both directions and both overloads for one date; counts a disagreement.
void Check(const year_month_day& civil, int& failures)
{
    const long number = static_cast<long>(sys_days{civil}.time_since_epoch().count()) + kUnixEpoch;
    const int y = static_cast<int>(civil.year());
    const auto m = static_cast<unsigned short>(static_cast<unsigned>(civil.month()));
    const auto d = static_cast<unsigned short>(static_cast<unsigned>(civil.day()));
    DISKDATE date{};
    YXDate_GregorianToDate(number, date);
    const long back = YXDate_DateToGregorian(date);
    const long fromFields = YXDate_DateToGregorian(static_cast<unsigned short>(y), m, d);
    if (date.m_nYear != y || date.m_byMonth != m || date.m_byDay != d || back != number || fromFields != number) {
        ++failures;
        ADD_FAILURE() << y << "-" << m << "-" << d << " is day " << number << ": got " << date.m_nYear << "-"
                      << int{date.m_byMonth} << "-" << int{date.m_byDay} << ", back " << back << ", from fields "
                      << fromFields;
    }
}

TEST(CalendarAgainstChrono, EveryDayNumberFromMinusToPlus800000)
{
    int failures = 0;
    for (long n = -800000; n <= 800000 && failures < 10; ++n) {
        Check(year_month_day{sys_days{days{n - kUnixEpoch}}}, failures);
    }
}

// The edges of every year the records hold (chrono's years end at -32767).
TEST(CalendarAgainstChrono, YearEdgesOfEverySixteenBitYear)
{
    int failures = 0;
    for (int y = -32767; y <= 32767 && failures < 10; ++y) {
        const year yy{y};
        const year_month_day edges[] = {yy / January / 1, yy / February / last, yy / March / 1, yy / December / 31};
        for (const year_month_day& civil : edges) {
            Check(civil, failures);
        }
    }
}

} // namespace
