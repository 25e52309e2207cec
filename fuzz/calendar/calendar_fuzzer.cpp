// The calendar's calls over arbitrary day numbers, dates, times and flags, against the block-
// walking model of the calendar tests: every conversion exactly, a day number and its date both
// ways, date-times back to their second, and the bits of a comparison.
#include <cstdint>

#include <yxtools/calendar.h>

#include "calendar/calendar_model.h"
#include "fuzz_support.h"

namespace {

using calendar_model::ModelDate;
using calendar_model::ModelDayNumber;

// Day numbers whose years lie well inside 16 bits, so that a date converts back to its number.
constexpr std::int32_t kRoundTrip = 11000000;

long ModelDayNumberOf(const DISKDATETIME& t)
{
    return ModelDayNumber(static_cast<std::int16_t>(t.m_wYear), t.m_wMonth & 0xFFU, t.m_wDay & 0xFFU);
}

std::int32_t SecondsOf(const DISKDATETIME& t)
{
    return (std::int32_t{t.m_wHour} * 60 + t.m_wMinute) * 60 + t.m_wSecond;
}

DISKDATETIME AnyDateTime(FuzzInput& in)
{
    DISKDATETIME t{};
    t.m_wYear = in.U16();
    t.m_wDay = in.U16();
    t.m_wMonth = in.U16();
    t.m_wHour = in.Byte() % 30;
    t.m_wMinute = in.Byte() % 70;
    t.m_wSecond = in.Byte() % 70;
    return t;
}

void DayNumberToDate(FuzzInput& in)
{
    const auto n = static_cast<std::int32_t>(in.U32());
    DISKDATE date{};
    FUZZ_CHECK(YXDate_GregorianToDate(n, date));
    const calendar_model::Date model = ModelDate(n);
    FUZZ_CHECK(date.m_nYear == model.year && date.m_byMonth == model.month && date.m_byDay == model.day);
    if (n > -kRoundTrip && n < kRoundTrip) {
        FUZZ_CHECK(YXDate_DateToGregorian(date) == n);
    }
    // The date-time form fills the date fields alike and leaves the time alone.
    DISKDATETIME t{};
    t.m_wHour = 7;
    FUZZ_CHECK(YXDate_GregorianToDate(n, t));
    FUZZ_CHECK(static_cast<short>(t.m_wYear) == model.year && t.m_wMonth == model.month && t.m_wDay == model.day &&
               t.m_wHour == 7);
}

void DateToDayNumber(FuzzInput& in)
{
    const std::uint16_t year = in.U16();
    const std::uint16_t month = in.U16();
    const std::uint16_t day = in.U16();
    const long model = ModelDayNumber(static_cast<std::int16_t>(year), month & 0xFFU, day & 0xFFU);
    FUZZ_CHECK(YXDate_DateToGregorian(year, month, day) == model);
    DISKDATE date{};
    date.m_nYear = static_cast<short>(year);
    date.m_byMonth = static_cast<unsigned char>(month);
    date.m_byDay = static_cast<unsigned char>(day);
    FUZZ_CHECK(YXDate_DateToGregorian(date) == model);
}

// A valid date and time to a value and back: the same instant, or at most one second before it.
void DateTimeRoundTrip(FuzzInput& in)
{
    DISKDATETIME t{};
    t.m_wYear = static_cast<unsigned short>(static_cast<std::int16_t>(in.U16() % 60000 - 30000));
    t.m_wMonth = static_cast<unsigned short>(in.Below(12) + 1);
    t.m_wDay = static_cast<unsigned short>(in.Below(28) + 1);
    t.m_wHour = static_cast<unsigned short>(in.Below(24));
    t.m_wMinute = static_cast<unsigned short>(in.Below(60));
    t.m_wSecond = static_cast<unsigned short>(in.Below(60));
    DISKDATETIME back{};
    FUZZ_CHECK(YXDate_GregorianTimeToDate(YXDate_DateToGregorianTime(t), back));
    const std::int64_t before = std::int64_t{ModelDayNumberOf(t)} * 86400 + SecondsOf(t);
    const std::int64_t after = std::int64_t{ModelDayNumberOf(back)} * 86400 + SecondsOf(back);
    FUZZ_CHECK(before - after >= 0 && before - after <= 1);
}

void Compare(FuzzInput& in)
{
    const DISKDATETIME a = AnyDateTime(in);
    const DISKDATETIME b = in.Byte() % 4 == 0 ? a : AnyDateTime(in);
    const unsigned long flags = in.U32();
    const long da = ModelDayNumberOf(a);
    const long db = ModelDayNumberOf(b);
    const std::int32_t sa = SecondsOf(a);
    const std::int32_t sb = SecondsOf(b);
    short model = YXDATE_DATE_SAME;
    const bool timesOnly = (flags & YXDATE_COMPARE_TIMES_ONLY) != 0;
    if (!timesOnly) {
        model = da < db ? YXDATE_DATE_EARLIER : da > db ? YXDATE_DATE_LATER : YXDATE_DATE_SAME;
    }
    if ((flags & YXDATE_COMPARE_DATES_ONLY) == 0 && (timesOnly || model == YXDATE_DATE_SAME)) {
        model = static_cast<short>(model | (sa < sb   ? YXDATE_TIME_EARLIER
                                            : sa > sb ? YXDATE_TIME_LATER
                                                      : YXDATE_TIME_SAME));
    }
    FUZZ_CHECK(YXDate_CompareDateTime(a, &b, flags) == model);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput in(data, size);
    while (!in.Done()) {
        switch (in.Byte() % 4) {
        case 0:
            DayNumberToDate(in);
            break;
        case 1:
            DateToDayNumber(in);
            break;
        case 2:
            DateTimeRoundTrip(in);
            break;
        default:
            Compare(in);
            break;
        }
    }
    return 0;
}
