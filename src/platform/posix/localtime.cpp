#include <ctime>

#include "platform/win32.h"

void GetLocalTime(LPSYSTEMTIME lpSystemTime)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    // localtime_r need not look at TZ again after its first use; tzset makes a change of zone
    // visible to the next call, as a change of the system's zone is on Windows.
    tzset();
    tm local{};
    localtime_r(&now.tv_sec, &local);
    lpSystemTime->wYear = static_cast<WORD>(local.tm_year + 1900);
    lpSystemTime->wMonth = static_cast<WORD>(local.tm_mon + 1);
    lpSystemTime->wDayOfWeek = static_cast<WORD>(local.tm_wday);
    lpSystemTime->wDay = static_cast<WORD>(local.tm_mday);
    lpSystemTime->wHour = static_cast<WORD>(local.tm_hour);
    lpSystemTime->wMinute = static_cast<WORD>(local.tm_min);
    // A leap second (tm_sec 60) is folded into 59: Windows never reports second 60.
    lpSystemTime->wSecond = static_cast<WORD>(local.tm_sec > 59 ? 59 : local.tm_sec);
    lpSystemTime->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
}
