#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include <yxtools/calendar.h>

namespace {

struct Ymd {
    int year;
    int month;
    int day;
};

DISKDATE MakeDate(Ymd d)
{
    DISKDATE date{};
    date.m_nYear = static_cast<short>(d.year);
    date.m_byMonth = static_cast<unsigned char>(d.month);
    date.m_byDay = static_cast<unsigned char>(d.day);
    return date;
}

DISKDATETIME MakeDateTime(Ymd d, int hour = 0, int minute = 0, int second = 0)
{
    DISKDATETIME t{};
    t.m_wYear = static_cast<unsigned short>(d.year);
    t.m_wMonth = static_cast<unsigned short>(d.month);
    t.m_wDay = static_cast<unsigned short>(d.day);
    t.m_wHour = static_cast<unsigned short>(hour);
    t.m_wMinute = static_cast<unsigned short>(minute);
    t.m_wSecond = static_cast<unsigned short>(second);
    return t;
}

void ExpectDate(const DISKDATE& date, Ymd expected)
{
    EXPECT_EQ(date.m_nYear, expected.year);
    EXPECT_EQ(date.m_byMonth, expected.month);
    EXPECT_EQ(date.m_byDay, expected.day);
}

DISKDATE DateOf(long dayNumber)
{
    DISKDATE date{};
    EXPECT_TRUE(YXDate_GregorianToDate(dayNumber, date));
    return date;
}

// Valid dates and their numbers: both directions, both overloads.
struct Known {
    Ymd date;
    long number;
};

const Known kKnown[] = {
    {{1582, 10, 15}, 0},         // the first Gregorian day
    {{1582, 10, 14}, -1},        // the reform's ten days are not skipped
    {{1970, 1, 1}, 141427},      //
    {{2000, 1, 1}, 152384},      //
    {{2000, 2, 29}, 152443},     // 2000 divides by 400: leap
    {{2000, 3, 1}, 152444},      //
    {{2000, 12, 31}, 152749},    // last day of a 400-year cycle
    {{1600, 12, 31}, 6652},      // and of the one before
    {{1601, 1, 1}, 6653},        // first day of a cycle
    {{1900, 12, 31}, 116224},    // last day of a common 100-year block
    {{1901, 1, 1}, 116225},      // first day behind it
    {{1996, 2, 29}, 150982},     //
    {{1, 1, 1}, -577735},        //
    {{0, 12, 31}, -577736},      // year 0 exists and is leap
    {{0, 2, 29}, -578042},       //
    {{0, 1, 1}, -578101},        //
    {{-1, 12, 31}, -578102},     //
    {{-400, 2, 29}, -724139},    // -400 is leap
    {{-401, 3, 1}, -724504},     //
    {{32767, 12, 31}, 11390164}, // the ends of the 16-bit years
    {{-32768, 1, 1}, -12546367},
};

TEST(CalendarKnownDates, ConvertBothWays)
{
    for (const Known& k : kKnown) {
        SCOPED_TRACE(testing::Message() << k.date.year << "-" << k.date.month << "-" << k.date.day);
        EXPECT_EQ(YXDate_DateToGregorian(MakeDate(k.date)), k.number);
        EXPECT_EQ(YXDate_DateToGregorian(static_cast<unsigned short>(k.date.year),
                                         static_cast<unsigned short>(k.date.month),
                                         static_cast<unsigned short>(k.date.day)),
                  k.number);
        ExpectDate(DateOf(k.number), k.date);
    }
}

// Out-of-range days are not validated: they run on into the next months, or back.
TEST(CalendarUncheckedInput, DaysRunOnAcrossMonths)
{
    const struct {
        Ymd date;
        Ymd same;
    } cases[] = {
        {{1900, 2, 29}, {1900, 3, 1}},  // 1900 divides by 100, not 400: common
        {{2000, 3, 0}, {2000, 2, 29}},  // day 0 is the last day of the month before
        {{2001, 1, 0}, {2000, 12, 31}}, //
        {{2001, 1, 59}, {2001, 2, 28}}, //
        {{2001, 13, 1}, {2002, 1, 1}},  // months past 12 add one whole year: the next January
        {{2001, 0, 1}, {2001, 1, 1}},   // and month 0 counts as January
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.date.year << "-" << c.date.month << "-" << c.date.day);
        EXPECT_EQ(YXDate_DateToGregorian(MakeDate(c.date)), YXDate_DateToGregorian(MakeDate(c.same)));
    }
    ExpectDate(DateOf(115919), {1900, 3, 1});
}

TEST(CalendarUncheckedInput, OnlyTheLowBytesOfMonthAndDayCount)
{
    EXPECT_EQ(YXDate_DateToGregorian(2000, 0x0102, 0x301D), 152443); // month 2, day 29
    EXPECT_EQ(YXDate_DateToGregorian(0xFFFF, 12, 31), -578102);      // year -1
    DISKDATETIME t = MakeDateTime({2000, 2, 29});
    t.m_wMonth |= 0x0500;
    t.m_wDay |= 0x0100;
    EXPECT_DOUBLE_EQ(YXDate_DateToGregorianTime(t), 152443.0);
}

TEST(CalendarLimits, YearIsCutTo16Bits)
{
    ExpectDate(DateOf(11390164 + 1), {-32768, 1, 1});   // 32768 wraps
    ExpectDate(DateOf(-12546367 - 1), {32767, 12, 31}); // -32769 wraps
    // The ends of the 32-bit day numbers: years 5881193 and -5878028, cut to 16 bits.
    ExpectDate(DateOf(std::numeric_limits<std::int32_t>::max()), {-17047, 4, 24});
    ExpectDate(DateOf(std::numeric_limits<std::int32_t>::min()), {20212, 4, 5});
}

TEST(CalendarLimits, DayNumbersAre32Bits)
{
    if (sizeof(long) == 4) {
        GTEST_SKIP() << "long is 32 bits on this build: no wider day number can be passed";
    }
    const long wide = static_cast<long>((static_cast<unsigned long long>(1) << 32) + 152443);
    ExpectDate(DateOf(wide), {2000, 2, 29});
}

TEST(CalendarDateTime, GregorianToDateKeepsTheTime)
{
    DISKDATETIME t = MakeDateTime({1999, 9, 9}, 13, 14, 15);
    EXPECT_TRUE(YXDate_GregorianToDate(152443, t));
    EXPECT_EQ(t.m_wYear, 2000);
    EXPECT_EQ(t.m_wMonth, 2);
    EXPECT_EQ(t.m_wDay, 29);
    EXPECT_EQ(t.m_wHour, 13);
    EXPECT_EQ(t.m_wMinute, 14);
    EXPECT_EQ(t.m_wSecond, 15);
}

TEST(CalendarDateTime, ValueOfADateTime)
{
    EXPECT_EQ(YXDate_DateToGregorianTime(MakeDateTime({1582, 10, 15}, 12)), 0.5);
    EXPECT_EQ(YXDate_DateToGregorianTime(MakeDateTime({1582, 10, 15}, 0, 0, 1)), 1.1574074074074073e-05);
    EXPECT_EQ(YXDate_DateToGregorianTime(MakeDateTime({1582, 10, 14}, 18)), -0.25);
    EXPECT_NEAR(YXDate_DateToGregorianTime(MakeDateTime({2000, 1, 1}, 6, 30, 30)), 152384.27118, 1e-5);
}

DISKDATETIME TimeOf(double value)
{
    DISKDATETIME t{};
    EXPECT_TRUE(YXDate_GregorianTimeToDate(value, t));
    return t;
}

void ExpectDateTime(const DISKDATETIME& t, Ymd date, int hour, int minute, int second)
{
    EXPECT_EQ(static_cast<short>(t.m_wYear), date.year);
    EXPECT_EQ(t.m_wMonth, date.month);
    EXPECT_EQ(t.m_wDay, date.day);
    EXPECT_EQ(t.m_wHour, hour);
    EXPECT_EQ(t.m_wMinute, minute);
    EXPECT_EQ(t.m_wSecond, second);
}

TEST(CalendarDateTime, FieldsOfAValue)
{
    ExpectDateTime(TimeOf(0.5), {1582, 10, 15}, 12, 0, 0);
    ExpectDateTime(TimeOf(152443.75), {2000, 2, 29}, 18, 0, 0);
    // Truncated, not rounded: 0.9 seconds short of a minute.
    ExpectDateTime(TimeOf(152443.0 + (60.0 - 0.9) / 86400), {2000, 2, 29}, 0, 0, 59);
    // Each field on its own: the minute falls just short, and the seconds make up a whole one.
    ExpectDateTime(TimeOf(YXDate_DateToGregorianTime(MakeDateTime({1582, 10, 15}, 2, 53, 0))), {1582, 10, 15}, 2, 52,
                   60);
}

// Before day 0 the whole part is rounded down, so that a value keeps its date and time.
TEST(CalendarDateTime, ValuesBeforeDayZeroKeepTheirTime)
{
    ExpectDateTime(TimeOf(-0.5), {1582, 10, 14}, 12, 0, 0);
    ExpectDateTime(TimeOf(-577735.75), {0, 12, 31}, 6, 0, 0);
    // So close below a whole number that the fraction rounds to a full day: the last second.
    ExpectDateTime(TimeOf(-1e-20), {1582, 10, 14}, 23, 59, 59);
}

TEST(CalendarDateTime, ValuesBeyondTheDayNumbers)
{
    ExpectDateTime(TimeOf(std::nan("")), {1582, 10, 15}, 0, 0, 0);
    // The nearest 32-bit day number, at midnight.
    const DISKDATE last = DateOf(std::numeric_limits<std::int32_t>::max());
    ExpectDateTime(TimeOf(1e300), {last.m_nYear, last.m_byMonth, last.m_byDay}, 0, 0, 0);
    const DISKDATE first = DateOf(std::numeric_limits<std::int32_t>::min());
    ExpectDateTime(TimeOf(-std::numeric_limits<double>::infinity()), {first.m_nYear, first.m_byMonth, first.m_byDay}, 0,
                   0, 0);
}

// Every second of a day goes to a value and back: the same instant or one second less, never
// another date. Near day 0, where a value holds its fraction to many more places, a whole minute
// can come back as second 60 of the minute before; at the day numbers of the present it cannot.
TEST(CalendarDateTime, RoundTripOfEverySecondLosesAtMostOne)
{
    for (const Ymd day : {Ymd{2024, 1, 1}, Ymd{1970, 1, 1}, Ymd{1582, 10, 15}, Ymd{1066, 10, 14}, Ymd{-100, 3, 1}}) {
        SCOPED_TRACE(testing::Message() << "year " << day.year);
        int shortSeconds = 0;
        int sixties = 0;
        for (int s = 0; s < 86400; ++s) {
            const DISKDATETIME in = MakeDateTime(day, s / 3600, s / 60 % 60, s % 60);
            const DISKDATETIME out = TimeOf(YXDate_DateToGregorianTime(in));
            ASSERT_EQ(out.m_wYear, in.m_wYear);
            ASSERT_EQ(out.m_wMonth, in.m_wMonth);
            ASSERT_EQ(out.m_wDay, in.m_wDay);
            ASSERT_LT(out.m_wHour, 24);
            ASSERT_LT(out.m_wMinute, 60);
            ASSERT_LE(out.m_wSecond, 60);
            sixties += out.m_wSecond == 60 ? 1 : 0;
            const int back = (out.m_wHour * 60 + out.m_wMinute) * 60 + out.m_wSecond;
            ASSERT_TRUE(back == s || back == s - 1) << "second " << s << " came back as " << back;
            shortSeconds += back != s ? 1 : 0;
        }
        if (day.year == 2024) {
            // At the day numbers of the present about half of the seconds come back short.
            EXPECT_GT(shortSeconds, 86400 / 4);
            EXPECT_LT(shortSeconds, 86400 * 3 / 4);
            EXPECT_EQ(sixties, 0);
            ExpectDateTime(TimeOf(YXDate_DateToGregorianTime(MakeDateTime(day))), day, 0, 0, 0);
            ExpectDateTime(TimeOf(YXDate_DateToGregorianTime(MakeDateTime(day, 0, 0, 1))), day, 0, 0, 0);
        }
    }
}

// The comparison's bits for each flag value.
TEST(CalendarCompare, BitsForEachFlagValue)
{
    const DISKDATETIME a = MakeDateTime({2000, 2, 29}, 10, 0, 0);
    const DISKDATETIME sameDateLater = MakeDateTime({2000, 2, 29}, 10, 0, 1);
    const DISKDATETIME laterDateEarlierTime = MakeDateTime({2000, 3, 1}, 9, 0, 0);
    const DISKDATETIME sameTimeEarlierDate = MakeDateTime({-5, 2, 29}, 10, 0, 0);
    const struct {
        const DISKDATETIME& second;
        short byFlags[4];
    } cases[] = {
        {a, {0x24, 0x04, 0x24, 0x04}},
        {sameDateLater, {0x0C, 0x04, 0x0C, 0x04}},
        {laterDateEarlierTime, {0x01, 0x01, 0x14, 0x04}}, // different dates: no time bit
        {sameTimeEarlierDate, {0x02, 0x02, 0x24, 0x04}},
    };
    for (const auto& c : cases) {
        for (unsigned long flags = 0; flags < 4; ++flags) {
            SCOPED_TRACE(testing::Message() << "flags " << flags);
            EXPECT_EQ(YXDate_CompareDateTime(a, &c.second, flags), c.byFlags[flags]);
        }
    }
    // The reverse order gives the mirrored bits; bits above the two flags are ignored.
    EXPECT_EQ(YXDate_CompareDateTime(sameDateLater, &a, 0), 0x14);
    EXPECT_EQ(YXDate_CompareDateTime(laterDateEarlierTime, &a, 0x100), 0x02);
}

TEST(CalendarCompare, ComparesDayNumbersNotFields)
{
    // 29 February 1900 is 1 March 1900; the high byte of the day doesn't count.
    const DISKDATETIME a = MakeDateTime({1900, 2, 29});
    DISKDATETIME b = MakeDateTime({1900, 3, 1});
    b.m_wDay |= 0x0200;
    EXPECT_EQ(YXDate_CompareDateTime(a, &b, 0), 0x24);
    // Negative years compare below positive ones.
    const DISKDATETIME old = MakeDateTime({-1, 12, 31});
    const DISKDATETIME one = MakeDateTime({1, 1, 1});
    EXPECT_EQ(YXDate_CompareDateTime(old, &one, 1), 0x01);
}

// The local time, in UTC here: the same second as the C runtime's clock.
void ExpectNowIs(const DISKDATETIME& now, std::time_t from, std::time_t to)
{
    for (std::time_t t = from; t <= to; ++t) {
        const std::tm* utc = std::gmtime(&t);
        if (now.m_wYear == utc->tm_year + 1900 && now.m_wMonth == utc->tm_mon + 1 && now.m_wDay == utc->tm_mday &&
            now.m_wHour == utc->tm_hour && now.m_wMinute == utc->tm_min && now.m_wSecond == utc->tm_sec) {
            return;
        }
    }
    ADD_FAILURE() << "YXDate_GetDate gave " << now.m_wYear << "-" << now.m_wMonth << "-" << now.m_wDay << " "
                  << now.m_wHour << ":" << now.m_wMinute << ":" << now.m_wSecond;
}

TEST(CalendarNow, GetDateIsTheLocalTime)
{
    const std::time_t from = std::time(nullptr);
    DISKDATETIME now{};
    YXDate_GetDate(now);
    ExpectNowIs(now, from, std::time(nullptr));
}

TEST(CalendarNow, NullSecondIsNow)
{
    DISKDATETIME now{};
    YXDate_GetDate(now);
    DISKDATETIME yesterday = now;
    DISKDATETIME tomorrow = now;
    EXPECT_TRUE(YXDate_GregorianToDate(YXDate_DateToGregorian(now.m_wYear, now.m_wMonth, now.m_wDay) - 1, yesterday));
    EXPECT_TRUE(YXDate_GregorianToDate(YXDate_DateToGregorian(now.m_wYear, now.m_wMonth, now.m_wDay) + 1, tomorrow));
    EXPECT_EQ(YXDate_CompareDateTime(yesterday, nullptr, 1), 0x01);
    EXPECT_EQ(YXDate_CompareDateTime(tomorrow, nullptr, 1), 0x02);
    // A time two hours ahead of now, on any date, is later with times only (unless the clock
    // passes midnight in between, which is two hours away from a time that is not yet 22:00).
    if (now.m_wHour < 22) {
        DISKDATETIME later = MakeDateTime({1, 1, 1}, now.m_wHour + 2, now.m_wMinute, now.m_wSecond);
        EXPECT_EQ(YXDate_CompareDateTime(later, nullptr, 2), 0x14);
    }
}

} // namespace
