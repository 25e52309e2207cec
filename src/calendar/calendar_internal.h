// Internals of the calendar: the day arithmetic on fixed-width numbers, and the two halves of
// the comparison.
#ifndef YXTOOLS_CALENDAR_CALENDAR_INTERNAL_H
#define YXTOOLS_CALENDAR_CALENDAR_INTERNAL_H

#include <cstdint>

#include "yxtools/calendar.h"

namespace yx::calendar {

// Day number of 1 January of year 1.
constexpr std::int32_t kFirstDayOfYearOne = -577735;

// The day number of a year, a month (1 to 12) and a day.
std::int32_t DayNumber(std::int16_t year, unsigned month, unsigned day);

// The date of a day number, its year cut to 16 bits.
DISKDATE DateOf(std::int32_t dayNumber);

} // namespace yx::calendar

// 0x01, 0x02 or 0x04: the date of first is earlier, later or the same.
short YXDate_CompareDate(DISKDATETIME const& first, DISKDATETIME const& second);
// 0x08, 0x10 or 0x20: the time of day of first is earlier, later or the same.
short YXDate_CompareTime(DISKDATETIME const& first, DISKDATETIME const& second);

#endif
