// Calendar arithmetic: one signed line of day numbers, the two date records, and comparison.
//
// Day 0 is 15 October 1582, the first day of the Gregorian calendar. Its rules run on in both
// directions without a break, through a year 0 and negative years (0 and -400 are leap years).
// A date-time is a double: the day number plus the fraction of the day.
//
// Day numbers are 32-bit on every build, also where long is wider: a wider value is cut to its
// low 32 bits.
#ifndef YXTOOLS_CALENDAR_H
#define YXTOOLS_CALENDAR_H

#include "yxtools/config.h"

// A date in 4 bytes, with no padding.
#pragma pack(push, 1)
struct DISKDATE {
    short m_nYear;           // -32768 to 32767, year 0 and negative years included
    unsigned char m_byDay;   // 1 to 31
    unsigned char m_byMonth; // 1 to 12
};
#pragma pack(pop)
static_assert(sizeof(DISKDATE) == 4, "DISKDATE is 4 bytes");

// A date and a time to the second, in six 16-bit fields, 12 bytes. The year is read as signed;
// only the low bytes of the day and the month count in conversions.
struct DISKDATETIME {
    unsigned short m_wYear;
    unsigned short m_wDay;
    unsigned short m_wMonth;
    unsigned short m_wHour;   // 0 to 23
    unsigned short m_wMinute; // 0 to 59
    unsigned short m_wSecond; // 0 to 59
};
static_assert(sizeof(DISKDATETIME) == 12, "DISKDATETIME is 12 bytes");

// Bits of the result of YXDate_CompareDateTime.
constexpr short YXDATE_DATE_EARLIER = 0x01;
constexpr short YXDATE_DATE_LATER = 0x02;
constexpr short YXDATE_DATE_SAME = 0x04; // also: the dates were not compared
constexpr short YXDATE_TIME_EARLIER = 0x08;
constexpr short YXDATE_TIME_LATER = 0x10;
constexpr short YXDATE_TIME_SAME = 0x20;

// Flags of YXDate_CompareDateTime.
constexpr unsigned long YXDATE_COMPARE_DATES_ONLY = 0x0001;
constexpr unsigned long YXDATE_COMPARE_TIMES_ONLY = 0x0002;

// The local time now, to the second.
YXTOOLS_API void YXDate_GetDate(DISKDATETIME& now);

// The day number of a date. Nothing is validated: a day past the end of its month runs on into
// the next ones, day 0 is the last day of the month before. The month must be 1 to 12.
YXTOOLS_API long YXDate_DateToGregorian(DISKDATE const& date);
// The same for a year, month and day (in that order): the year's 16 bits, the low bytes of the
// month and the day.
YXTOOLS_API long YXDate_DateToGregorian(unsigned short year, unsigned short month, unsigned short day);

// The day number of the date plus the time of day as a fraction.
YXTOOLS_API double YXDate_DateToGregorianTime(DISKDATETIME const& dateTime);

// The date of a day number; a year beyond 16 bits is cut to them. Always true.
YXTOOLS_API bool YXDate_GregorianToDate(long dayNumber, DISKDATE& date);
// The same into the date fields of a date-time record; its time fields stay as they are.
YXTOOLS_API bool YXDate_GregorianToDate(long dayNumber, DISKDATETIME& dateTime);

// The date and the time (each field truncated) of a date-time value. Always true.
YXTOOLS_API bool YXDate_GregorianTimeToDate(double value, DISKDATETIME& dateTime);

// Compares first with second, or with the local time now when second is null. flags: 0 the date,
// then the time when the dates are the same; YXDATE_COMPARE_DATES_ONLY the dates only;
// YXDATE_COMPARE_TIMES_ONLY the times only. The result holds the YXDATE_ bits above.
YXTOOLS_API short YXDate_CompareDateTime(DISKDATETIME const& first, DISKDATETIME const* second, unsigned long flags);

#endif
