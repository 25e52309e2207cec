// GetLocalTime in a zone 9 hours east of UTC without daylight saving time (TZ=JST-9 from the
// start of the process, which Wine reads when it starts).
#include <gtest/gtest.h>

#include <ctime>

#include "platform/win32.h"

namespace {

bool Matches(const SYSTEMTIME& local, std::time_t utcSeconds)
{
    const std::time_t shifted = utcSeconds + 9 * 3600;
    const std::tm* t = std::gmtime(&shifted);
    return local.wYear == t->tm_year + 1900 && local.wMonth == t->tm_mon + 1 && local.wDay == t->tm_mday &&
           local.wDayOfWeek == t->tm_wday && local.wHour == t->tm_hour && local.wMinute == t->tm_min &&
           local.wSecond == t->tm_sec;
}

TEST(GetLocalTimeContract, IsTheClockInTheProcessZone)
{
    const std::time_t from = std::time(nullptr);
    SYSTEMTIME local{};
    GetLocalTime(&local);
    // time() may read a coarse clock that lags the precise one by a tick: allow the next second.
    const std::time_t to = std::time(nullptr) + 1;
    bool matched = false;
    for (std::time_t t = from; t <= to && !matched; ++t) {
        matched = Matches(local, t);
    }
    EXPECT_TRUE(matched) << local.wYear << "-" << local.wMonth << "-" << local.wDay << " " << local.wHour << ":"
                         << local.wMinute << ":" << local.wSecond << " (day of week " << local.wDayOfWeek << ")";
    EXPECT_LT(local.wMilliseconds, 1000);
}

} // namespace
