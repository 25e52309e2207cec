#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>

#include <yxtools/calendar.h>

namespace {

struct Ymd {
    int year;
    int month;
    int day;
};

DISKDATETIME MakeDateTime(Ymd d, int hour = 0, int minute = 0, int second = 0)
{
    return DISKDATETIME{static_cast<unsigned short>(d.year),  static_cast<unsigned short>(d.day),
                        static_cast<unsigned short>(d.month), static_cast<unsigned short>(hour),
                        static_cast<unsigned short>(minute),  static_cast<unsigned short>(second)};
}

// The three-number overload; the chrono test runs the record overload over every day.
long NumberOf(Ymd d)
{
    return YXDate_DateToGregorian(static_cast<unsigned short>(d.year), static_cast<unsigned short>(d.month),
                                  static_cast<unsigned short>(d.day));
}

// "year-month-day hour:minute:second", the year read as signed.
std::string Text(const DISKDATETIME& t)
{
    char text[64];
    std::snprintf(text, sizeof(text), "%d-%u-%u %u:%u:%u", static_cast<short>(t.m_wYear), t.m_wMonth, t.m_wDay,
                  t.m_wHour, t.m_wMinute, t.m_wSecond);
    return text;
}

std::string DateOf(long dayNumber)
{
    DISKDATE date{};
    EXPECT_TRUE(YXDate_GregorianToDate(dayNumber, date));
    return Text(MakeDateTime({date.m_nYear, date.m_byMonth, date.m_byDay}));
}

std::string TimeOf(double value)
{
    DISKDATETIME t{};
    EXPECT_TRUE(YXDate_GregorianTimeToDate(value, t));
    return Text(t);
}

double ValueOf(Ymd d, int hour = 0, int minute = 0, int second = 0)
{
    return YXDate_DateToGregorianTime(MakeDateTime(d, hour, minute, second));
}

TEST(CalendarKnownDates, ConvertBothWays)
{
    const struct {
        Ymd date;
        long number;
    } cases[] = {
        {{1582, 10, 15}, 0},         // the first Gregorian day
        {{1582, 10, 14}, -1},        // the reform's ten days are not skipped
        {{1970, 1, 1}, 141427},      //
        {{2000, 1, 1}, 152384},      //
        {{2000, 2, 29}, 152443},     // 2000 divides by 400: leap
        {{2000, 3, 1}, 152444},      //
        {{2000, 12, 31}, 152749},    // last day of a 400-year cycle
        {{1901, 1, 1}, 116225},      // first day behind a common 100-year block
        {{1, 1, 1}, -577735},        //
        {{0, 12, 31}, -577736},      // year 0 exists and is leap
        {{32767, 12, 31}, 11390164}, // the ends of the 16-bit years
        {{-32768, 1, 1}, -12546367},
    };
    for (const auto& c : cases) {
        const std::string date = Text(MakeDateTime(c.date));
        EXPECT_EQ(NumberOf(c.date), c.number) << date;
        EXPECT_EQ(DateOf(c.number), date);
    }
}

// Nothing is validated: days run on into the next months, or back; only the low bytes count.
TEST(CalendarUncheckedInput, DaysRunOnAcrossMonths)
{
    const struct {
        Ymd date;
        Ymd same;
    } cases[] = {
        {{1900, 2, 29}, {1900, 3, 1}},  // 1900 divides by 100, not 400: common
        {{2000, 3, 0}, {2000, 2, 29}},  // day 0 is the last day of the month before
        {{2001, 1, 0}, {2000, 12, 31}}, //
        {{2001, 13, 1}, {2002, 1, 1}},  // months past 12 add one whole year: the next January
        {{2001, 0, 1}, {2001, 1, 1}},   // and month 0 counts as January
    };
    for (const auto& c : cases) {
        EXPECT_EQ(NumberOf(c.date), NumberOf(c.same)) << Text(MakeDateTime(c.date));
    }
    EXPECT_EQ(DateOf(115919), "1900-3-1 0:0:0");
    EXPECT_EQ(YXDate_DateToGregorian(2000, 0x0102, 0x301D), 152443); // month 2, day 29
    EXPECT_EQ(YXDate_DateToGregorian(0xFFFF, 12, 31), -578102);      // year -1
    DISKDATETIME t = MakeDateTime({2000, 2, 29});
    t.m_wMonth |= 0x0500;
    t.m_wDay |= 0x0100;
    EXPECT_EQ(YXDate_DateToGregorianTime(t), 152443.0);
}

TEST(CalendarLimits, YearIsCutTo16BitsAndDayNumbersTo32)
{
    EXPECT_EQ(DateOf(11390164 + 1), "-32768-1-1 0:0:0");   // 32768 wraps
    EXPECT_EQ(DateOf(-12546367 - 1), "32767-12-31 0:0:0"); // -32769 wraps
    // The ends of the 32-bit day numbers: years 5881193 and -5878028, cut to 16 bits.
    EXPECT_EQ(DateOf(std::numeric_limits<std::int32_t>::max()), "-17047-4-24 0:0:0");
    EXPECT_EQ(DateOf(std::numeric_limits<std::int32_t>::min()), "20212-4-5 0:0:0");
    if (sizeof(long) > 4) { // a wider long gives the same date on both builds
        EXPECT_EQ(DateOf(static_cast<long>((1ULL << 32) + 152443)), "2000-2-29 0:0:0");
    }
}

TEST(CalendarDateTime, ValuesAndTheirFieldsBothWays)
{
    DISKDATETIME t = MakeDateTime({1999, 9, 9}, 13, 14, 15);
    EXPECT_TRUE(YXDate_GregorianToDate(152443, t));
    EXPECT_EQ(Text(t), "2000-2-29 13:14:15");

    EXPECT_EQ(ValueOf({1582, 10, 15}, 12), 0.5);
    EXPECT_EQ(ValueOf({1582, 10, 15}, 0, 0, 1), 1.1574074074074073e-05);
    EXPECT_EQ(ValueOf({1582, 10, 14}, 18), -0.25);

    EXPECT_EQ(TimeOf(0.5), "1582-10-15 12:0:0");
    EXPECT_EQ(TimeOf(152443.0 + (60.0 - 0.9) / 86400), "2000-2-29 0:0:59"); // truncated, not rounded
    // Each field on its own: the minute falls just short, and the seconds make up a whole one.
    EXPECT_EQ(TimeOf(ValueOf({1582, 10, 15}, 2, 53, 0)), "1582-10-15 2:52:60");
    // Before day 0 the whole part is rounded down, so that a value keeps its date and time; values
    // beyond the 32-bit day numbers take the nearest one, and NaN day 0.
    EXPECT_EQ(TimeOf(-0.5), "1582-10-14 12:0:0");
    EXPECT_EQ(TimeOf(-577735.75), "0-12-31 6:0:0");
    // So close below a whole number that the fraction rounds to a full day: the last second.
    EXPECT_EQ(TimeOf(-1e-20), "1582-10-14 23:59:59");
    EXPECT_EQ(TimeOf(std::nan("")), "1582-10-15 0:0:0");
    EXPECT_EQ(TimeOf(1e300), DateOf(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(TimeOf(-std::numeric_limits<double>::infinity()), DateOf(std::numeric_limits<std::int32_t>::min()));
}

// The terms are added second, minute, hour, then the day number, each step in double: any other
// order gives another last bit for these times.
TEST(CalendarDateTime, TermsAddInTheirOrder)
{
    const struct {
        Ymd date;
        int hour;
        int minute;
        int second;
        double value;
    } cases[] = {
        {{1582, 10, 15}, 1, 1, 2, 0x1.5b363bec474d0p-5},
        {{1582, 10, 16}, 1, 1, 59, 0x1.0b04ee2cc0a9fp+0},
        {{1582, 10, 16}, 0, 1, 4, 0x1.00308b91419cap+0},
        {{2000, 2, 29}, 0, 1, 1, 0x1.29bd801722834p+17},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(YXDate_DateToGregorianTime(MakeDateTime(c.date, c.hour, c.minute, c.second)), c.value)
            << c.date.year << "-" << c.date.month << "-" << c.date.day << " " << c.hour << ":" << c.minute << ":"
            << c.second;
    }
}

// Every second of a day goes to a value and back: the same instant or one second less, never
// another date. Near day 0, where a value holds its fraction to many more places, a whole minute
// can come back as second 60 of the minute before; at the day numbers of the present it cannot.
TEST(CalendarDateTime, RoundTripOfEverySecondLosesAtMostOne)
{
    for (const Ymd day : {Ymd{2024, 1, 1}, Ymd{1970, 1, 1}, Ymd{1582, 10, 15}, Ymd{1066, 10, 14}, Ymd{-100, 3, 1}}) {
        const DISKDATETIME in = MakeDateTime(day);
        int shortSeconds = 0;
        int sixties = 0;
        for (int s = 0; s < 86400; ++s) {
            DISKDATETIME out{};
            YXDate_GregorianTimeToDate(ValueOf(day, s / 3600, s / 60 % 60, s % 60), out);
            const int back = (out.m_wHour * 60 + out.m_wMinute) * 60 + out.m_wSecond;
            ASSERT_TRUE(out.m_wYear == in.m_wYear && out.m_wMonth == in.m_wMonth && out.m_wDay == in.m_wDay &&
                        out.m_wHour < 24 && out.m_wMinute < 60 && out.m_wSecond <= 60 && (back == s || back == s - 1))
                << "second " << s << " came back as " << Text(out);
            shortSeconds += back != s ? 1 : 0;
            sixties += out.m_wSecond == 60 ? 1 : 0;
        }
        if (day.year == 2024) {
            // At the day numbers of the present about half of the seconds come back short.
            EXPECT_GT(shortSeconds, 86400 / 4);
            EXPECT_LT(shortSeconds, 86400 * 3 / 4);
            EXPECT_EQ(sixties, 0);
            EXPECT_EQ(TimeOf(ValueOf(day, 0, 0, 1)), "2024-1-1 0:0:0");
        }
    }
}

TEST(CalendarCompare, BitsForEachFlagValue)
{
    const DISKDATETIME a = MakeDateTime({2000, 2, 29}, 10, 0, 0);
    const DISKDATETIME sameDateLater = MakeDateTime({2000, 2, 29}, 10, 0, 1);
    const DISKDATETIME laterDateEarlierTime = MakeDateTime({2000, 3, 1}, 9, 0, 0);
    const struct {
        DISKDATETIME second;
        short byFlags[4];
    } cases[] = {
        {a, {0x24, 0x04, 0x24, 0x04}},
        {sameDateLater, {0x0C, 0x04, 0x0C, 0x04}},
        {laterDateEarlierTime, {0x01, 0x01, 0x14, 0x04}}, // different dates: no time bit
        {MakeDateTime({-5, 2, 29}, 10, 0, 0), {0x02, 0x02, 0x24, 0x04}},
    };
    for (const auto& c : cases) {
        for (unsigned long flags = 0; flags < 4; ++flags) {
            EXPECT_EQ(YXDate_CompareDateTime(a, &c.second, flags), c.byFlags[flags]) << Text(c.second) << " " << flags;
        }
    }
    // The reverse order gives the mirrored bits; bits above the two flags are ignored.
    EXPECT_EQ(YXDate_CompareDateTime(sameDateLater, &a, 0), 0x14);
    EXPECT_EQ(YXDate_CompareDateTime(laterDateEarlierTime, &a, 0x100), 0x02);
    // Day numbers are compared, not fields: 29 February 1900 is 1 March; the day's high byte doesn't count.
    DISKDATETIME march = MakeDateTime({1900, 3, 1});
    march.m_wDay |= 0x0200;
    EXPECT_EQ(YXDate_CompareDateTime(MakeDateTime({1900, 2, 29}), &march, 0), 0x24);
}

// The local time, in UTC here, is the C runtime's clock; a null second record is now.
TEST(CalendarNow, GetDateAndTheNullRecordAreNow)
{
    const std::time_t from = std::time(nullptr);
    DISKDATETIME now{};
    YXDate_GetDate(now);
    // time() may read a coarse clock that lags the precise one by a tick: allow the next second.
    const std::time_t to = std::time(nullptr) + 1;
    bool found = false;
    for (std::time_t t = from; t <= to; ++t) {
        const std::tm* utc = std::gmtime(&t);
        found = found || Text(now) == Text(MakeDateTime({utc->tm_year + 1900, utc->tm_mon + 1, utc->tm_mday},
                                                        utc->tm_hour, utc->tm_min, utc->tm_sec));
    }
    EXPECT_TRUE(found) << Text(now);
    const long today = YXDate_DateToGregorian(now.m_wYear, now.m_wMonth, now.m_wDay);
    DISKDATETIME other = now;
    YXDate_GregorianToDate(today - 1, other);
    EXPECT_EQ(YXDate_CompareDateTime(other, nullptr, 1), 0x01);
    YXDate_GregorianToDate(today + 1, other);
    EXPECT_EQ(YXDate_CompareDateTime(other, nullptr, 1), 0x02);
}

} // namespace
