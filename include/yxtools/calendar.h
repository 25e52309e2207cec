/// @file
/// Calendar arithmetic: one signed line of day numbers, the two date records, and comparison.
///
/// Day 0 is 15 October 1582, the first day of the Gregorian calendar. Its rules run on in both
/// directions without a break, through a year 0 and negative years (0 and -400 are leap years).
/// A date-time is a double: the day number plus the fraction of the day.
///
/// Day numbers are 32-bit on every build, also where long is wider: a wider value is cut to its
/// low 32 bits.
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
YXTOOLS_API long YXDate_DateToGregorian(DISKDATE const& date);
/// The same for a year, month and day (in that order): the year's 16 bits, the low bytes of the
/// month and the day.
YXTOOLS_API long YXDate_DateToGregorian(unsigned short year, unsigned short month, unsigned short day);

/// The day number of the date plus the time of day as a fraction. The value is worked out in
/// `double` at every step (no wider intermediates, no fused multiply-add), so that both builds give
/// the same bits.
YXTOOLS_API double YXDate_DateToGregorianTime(DISKDATETIME const& dateTime);

/// The date of a day number; a year beyond 16 bits is cut to them. Always true.
YXTOOLS_API bool YXDate_GregorianToDate(long dayNumber, DISKDATE& date);
/// The same into the date fields of a date-time record; its time fields stay as they are.
YXTOOLS_API bool YXDate_GregorianToDate(long dayNumber, DISKDATETIME& dateTime);

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

#endif
