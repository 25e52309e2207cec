// Internals of the calendar: the two halves of the comparison. The day arithmetic is in the
// public header.
#ifndef YXTOOLS_CALENDAR_CALENDAR_INTERNAL_H
#define YXTOOLS_CALENDAR_CALENDAR_INTERNAL_H

#include "yxtools/calendar.h"

// 0x01, 0x02 or 0x04: the date of first is earlier, later or the same.
short YXDate_CompareDate(DISKDATETIME const& first, DISKDATETIME const& second);
// 0x08, 0x10 or 0x20: the time of day of first is earlier, later or the same.
short YXDate_CompareTime(DISKDATETIME const& first, DISKDATETIME const& second);

#endif
