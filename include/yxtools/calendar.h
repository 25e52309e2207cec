/// @file
/// Calendar arithmetic: one signed line of day numbers, the two date records, and comparison.
///
/// Day 0 is 15 October 1582, the first day of the Gregorian calendar. Its rules run on in both
/// directions without a break, through a year 0 and negative years (0 and -400 are leap years).
/// A date-time is a double: the day number plus the fraction of the day.
///
/// Day numbers are 32-bit on every build, also where long is wider: a wider value is cut to its
/// low 32 bits.
///
/// The conversions between day numbers and dates are defined at the end of this header, where a
/// host's compiler inlines them into its loops: a call into the library would cost as much as the
/// conversion itself. The library exports them as well.
#ifndef YXTOOLS_CALENDAR_H
#define YXTOOLS_CALENDAR_H

#include "yxtools/config.h"

#pragma pack(push, 1)
/// A date in 4 bytes, with no padding. Nothing is validated: conversions read the fields as they
/// stand.
struct DISKDATE {
    short m_nYear;           ///< -32768 to 32767, year 0 and negative years included
    unsigned char m_byDay;   ///< 1 to 31
    unsigned char m_byMonth; ///< 1 to 12
};
#pragma pack(pop)
static_assert(sizeof(DISKDATE) == 4, "DISKDATE is 4 bytes");

/// A date and a time to the second, in six 16-bit fields, 12 bytes. The year is read as signed;
/// only the low bytes of the day and the month count in conversions.
struct DISKDATETIME {
    unsigned short m_wYear;   ///< the year, read as a signed 16-bit number
    unsigned short m_wDay;    ///< 1 to 31 (only the low byte counts)
    unsigned short m_wMonth;  ///< 1 to 12 (only the low byte counts)
    unsigned short m_wHour;   ///< 0 to 23
    unsigned short m_wMinute; ///< 0 to 59
    unsigned short m_wSecond; ///< 0 to 59
};
static_assert(sizeof(DISKDATETIME) == 12, "DISKDATETIME is 12 bytes");

/// @name Bits of the result of YXDate_CompareDateTime
/// @{
constexpr short YXDATE_DATE_EARLIER = 0x01; ///< the first date is earlier than the second
constexpr short YXDATE_DATE_LATER = 0x02;   ///< the first date is later
constexpr short YXDATE_DATE_SAME = 0x04;    ///< the dates are the same (also: the dates were not compared)
constexpr short YXDATE_TIME_EARLIER = 0x08; ///< the first time of day is earlier
constexpr short YXDATE_TIME_LATER = 0x10;   ///< the first time of day is later
constexpr short YXDATE_TIME_SAME = 0x20;    ///< the times of day are the same
/// @}

/// @name Flags of YXDate_CompareDateTime
/// @{
constexpr unsigned long YXDATE_COMPARE_DATES_ONLY = 0x0001; ///< compare the dates only
constexpr unsigned long YXDATE_COMPARE_TIMES_ONLY = 0x0002; ///< compare the times of day only
/// @}

/// The local time now, to the second, in @p now.
YXTOOLS_API void YXDate_GetDate(DISKDATETIME& now);

/// The day number of a date. Nothing is validated: a day past the end of its month runs on into
/// the next ones, day 0 is the last day of the month before. A month above 12 counts the whole
/// year, giving the January after; month 0 counts as January.
YXTOOLS_API_INLINE long YXDate_DateToGregorian(DISKDATE const& date);
/// The same for a year, month and day (in that order): the year's 16 bits, the low bytes of the
/// month and the day.
YXTOOLS_API_INLINE long YXDate_DateToGregorian(unsigned short year, unsigned short month, unsigned short day);

/// The day number of the date plus the time of day as a fraction. The value is worked out in
/// `double` at every step (no wider intermediates, no fused multiply-add), so that both builds give
/// the same bits.
YXTOOLS_API double YXDate_DateToGregorianTime(DISKDATETIME const& dateTime);

/// The date of a day number; a year beyond 16 bits is cut to them. Always true.
YXTOOLS_API_INLINE bool YXDate_GregorianToDate(long dayNumber, DISKDATE& date);
/// The same into the date fields of a date-time record; its time fields stay as they are.
YXTOOLS_API_INLINE bool YXDate_GregorianToDate(long dayNumber, DISKDATETIME& dateTime);

/// The date and the time of a date-time value. Always true.
///
/// The day is the value rounded down, so -0.5 is 14 October 1582, 12:00:00. A value beyond the
/// 32-bit day numbers gives the nearest one at 00:00:00, and NaN gives day 0. The time fields are
/// truncated one by one: near day 0 a whole minute can read as second 60 of the minute before
/// (02:53:00 as 02:52:60).
YXTOOLS_API bool YXDate_GregorianTimeToDate(double value, DISKDATETIME& dateTime);

/// Compares first with second, or with the local time now when second is null. flags: 0 the date,
/// then the time when the dates are the same; YXDATE_COMPARE_DATES_ONLY the dates only;
/// YXDATE_COMPARE_TIMES_ONLY the times only. The result holds the YXDATE_ bits above.
YXTOOLS_API short YXDate_CompareDateTime(DISKDATETIME const& first, DISKDATETIME const* second, unsigned long flags);

// --- the conversions between day numbers and dates ------------------------------------------------

namespace yx::calendar {

// The arithmetic runs on years that begin on 1 March. The leap day is then the last day of its
// year, so a date's place in its year doesn't depend on whether the year is leap, and the month
// lengths from March on repeat 31 30 31 30 31 every five months, 153 days, which a linear formula
// gives. January and February are the 11th and 12th months of the year before.
//
// The years of a date are lifted by whole 400-year cycles, which repeat the same days, and a day
// number is taken modulo 4096 cycles, so that every quantity is non-negative and fits 32 bits: the
// divisions are then unsigned divisions by constants, which the compiler turns into
// multiplications, nothing branches, and a host's compiler can vectorise a loop of conversions.

constexpr std::int32_t kFirstDayOfYearOne = -577735; // day number of 1 January of year 1
constexpr std::int32_t kDaysIn400Years = 146097;
constexpr std::uint32_t kDaysIn4Years = 1461; // the leap year last, in years from March

// Day number of 1 March of year 0: year 0 is leap, so it begins 366 days before year 1, and its
// January and February come first.
constexpr std::int32_t kMarchOfYearZero = kFirstDayOfYearOne - 366 + 31 + 29;

// Cycles added to the year of a date: the year before -32768 comes out above 0.
constexpr std::int32_t kDateLiftCycles = 82;

// The days of 4096 cycles: 1638400 years, 25 x 65536, which leave a 16-bit year as it is. A day
// number counts only modulo this many days, which keeps the arithmetic in 32 bits, also for the
// largest day numbers.
constexpr std::uint32_t kDaysOfSameYears = 4096 * kDaysIn400Years;
static_assert(4096 * 400 % 65536 == 0 && 4 * std::uint64_t{kDaysOfSameYears} + 3 <= UINT32_MAX,
              "the days of 4096 cycles leave a 16-bit year as it is and fit 32 bits four times over");

// Days from 1 March to the first of a month counted from March (0 to 11): 153 days every five
// months, rounded so that months of 31 and 30 days alternate as they do.
constexpr std::uint32_t DaysBeforeMonth(std::uint32_t monthFromMarch)
{
    return (153 * monthFromMarch + 2) / 5;
}

// Days from 1 March of year 0 to 1 March of a year from March (>= 0): a leap day every 4th year,
// none every 100th, again one every 400th.
constexpr std::uint32_t DaysBeforeYear(std::uint32_t yearFromMarch)
{
    const std::uint32_t centuries = yearFromMarch / 100;
    return kDaysIn4Years * yearFromMarch / 4 - centuries + centuries / 4;
}

// The day number of a year, a month byte and a day byte.
inline std::int32_t DayNumber(std::int16_t year, unsigned month, unsigned day)
{
    // A month beyond 12 is no valid input; it stops at 13, the January after, so that nothing runs
    // past December. Month 0 counts as January.
    const std::uint32_t m = month < 1 ? 1 : month > 13 ? 13 : month;
    // January and February belong to the year from March before; month 13 is the 11th month of
    // this one.
    const std::uint32_t yearBefore = m < 3 ? 1 : 0;
    const auto yearFromMarch = static_cast<std::uint32_t>(year + 400 * kDateLiftCycles) - yearBefore;
    const std::uint32_t monthFromMarch = m + 12 * yearBefore - 3;
    // At most 1461 x 65567 / 4 days and a few more: well inside 32 bits.
    const std::uint32_t days = DaysBeforeYear(yearFromMarch) + DaysBeforeMonth(monthFromMarch) + day;
    constexpr std::int32_t kDayOne = kMarchOfYearZero - 1 - kDateLiftCycles * kDaysIn400Years;
    return static_cast<std::int32_t>(days) + kDayOne;
}

// The date of a day number, its year cut to 16 bits.
inline DISKDATE DateOf(std::int32_t dayNumber)
{
    // Days since 1 March of year 0, modulo the days of 4096 cycles: the day number is first lifted
    // by 2^31 to make it unsigned, and what the lift adds modulo those days is taken away again.
    constexpr std::uint32_t kLift = (std::uint64_t{1} << 31) % kDaysOfSameYears;
    constexpr std::uint32_t kFromMarch = (kDaysOfSameYears - kLift - kMarchOfYearZero) % kDaysOfSameYears;
    const std::uint32_t lifted = (static_cast<std::uint32_t>(dayNumber) ^ 0x80000000U) % kDaysOfSameYears;
    std::uint32_t days = lifted + kFromMarch;
    days -= days >= kDaysOfSameYears ? kDaysOfSameYears : 0;
    // Four centuries to a cycle, 36524 1/4 days each on average; the fourth is one day longer, as
    // it ends with the leap day of a year that divides by 400. Counting quarter days from three
    // quarters in puts each century's first day on its first whole day.
    const std::uint32_t quarterDays = 4 * days + 3;
    const std::uint32_t centuries = quarterDays / kDaysIn400Years;
    const std::uint32_t dayOfCentury = quarterDays % kDaysIn400Years / 4;
    // Years of a century the same way: four of 365 1/4 days, the leap one last.
    const std::uint32_t yearQuarterDays = 4 * dayOfCentury + 3;
    const std::uint32_t yearOfCentury = yearQuarterDays / kDaysIn4Years;
    const std::uint32_t dayOfYear = yearQuarterDays % kDaysIn4Years / 4; // 0 is 1 March
    // The month is the inverse of DaysBeforeMonth.
    const std::uint32_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const std::uint32_t dayOfMonth = dayOfYear - DaysBeforeMonth(monthFromMarch) + 1;
    // January and February (day 306 on) belong to the calendar year after.
    const std::uint32_t yearAfter = dayOfYear >= 306 ? 1 : 0;
    DISKDATE date{};
    date.m_nYear = static_cast<short>(static_cast<std::uint16_t>(100 * centuries + yearOfCentury + yearAfter));
    date.m_byDay = static_cast<unsigned char>(dayOfMonth);
    date.m_byMonth = static_cast<unsigned char>(monthFromMarch + 3 - 12 * yearAfter);
    return date;
}

} // namespace yx::calendar

inline long YXDate_DateToGregorian(DISKDATE const& date)
{
    return yx::calendar::DayNumber(date.m_nYear, date.m_byMonth, date.m_byDay);
}

inline long YXDate_DateToGregorian(unsigned short year, unsigned short month, unsigned short day)
{
    return yx::calendar::DayNumber(static_cast<std::int16_t>(year), month & 0xFFU, day & 0xFFU);
}

inline bool YXDate_GregorianToDate(long dayNumber, DISKDATE& date)
{
    date = yx::calendar::DateOf(static_cast<std::int32_t>(dayNumber));
    return true;
}

inline bool YXDate_GregorianToDate(long dayNumber, DISKDATETIME& dateTime)
{
    const DISKDATE date = yx::calendar::DateOf(static_cast<std::int32_t>(dayNumber));
    dateTime.m_wYear = static_cast<unsigned short>(date.m_nYear);
    dateTime.m_wDay = date.m_byDay;
    dateTime.m_wMonth = date.m_byMonth;
    return true;
}

#endif
