// DateTime under several time zones, set through TZ and tzset() inside the
// test. Expected counts come from GNU date (`TZ=<zone> date -d '<time>' +%s`)
// or from the C library's own localtime_r/mktime/strftime; calendar facts
// (weekdays, month lengths) are checked on dates whose weekday is known.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <future>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/date_time.h"
#include "common/string_utils.h"
#include "support/scoped_time_zone.h"

namespace {

using tessel::DateTime;
using tessel::DateTimeComponents;

using test_support::ScopedTimeZone;

// The local clock time y-m-d h:mi, as the C library reads it.
DateTime Local(int year, int month, int day, int hour, int minute = 0) {
  std::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_isdst = -1;
  return DateTime(static_cast<long long>(mktime(&fields)));
}

using Clock = std::array<int, 6>;

// Year, month, day, hour, minute, second of t's components.
Clock ClockOf(const DateTime& t) {
  const DateTimeComponents c = t.components();
  return {c.year(), c.month(), c.day(), c.hour(), c.minute(), c.second()};
}

std::string ZoneTestName(std::string zone) {
  for (char& c : zone) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return zone;
}

// 67767976233532799 is 2147483647-12-31 23:59:59 UTC (Hinnant's days from
// civil, checked with glibc's gmtime_r, which takes the next second too and
// gives it a tm_year whose full year is beyond INT_MAX).
TEST(DateTimeUtc, YearsBeyondIntAreNotConvertible) {
  TESSEL_SKIP_ON_WINDOWS("Windows' C runtime converts no time after the year 3000");
  ScopedTimeZone utc("UTC");
  const DateTime last(67767976233532799LL);
  EXPECT_EQ(last.description(), "2147483647/12/31 23:59:59");
  EXPECT_EQ(DateTime(67767976233532800LL).description(), "DateTime(67767976233532800)");
  EXPECT_EQ(DateTime(67767976233532800LL).components().year(), 1899);  // fields of -1
  EXPECT_EQ(last.addMonthsCopy(1), DateTime(-1));
  DateTimeComponents c = last.components();
  EXPECT_EQ(c.year(), INT_MAX);
  c.setSecond(60);  // normalises into the year after INT_MAX
  EXPECT_EQ(DateTime(c), DateTime(-1));
  EXPECT_EQ(last.addMonthsCopy(INT_MAX), DateTime(-1));
  // The sentinel cannot be converted: its fields read -1, and stepping them
  // lands before 1900 without failing.
  EXPECT_LT(DateTime::future().addMonthsCopy(1).secSince1970(), 0);
  c.setYear(INT_MIN);
  c.setMonth(INT_MIN);
  EXPECT_EQ(c.year(), INT_MIN);
  EXPECT_EQ(c.month(), INT_MIN);
  EXPECT_EQ(DateTime(c), DateTime(-1));
}

// In double precision seconds × 10^7 is inexact far in the future; the
// printed second must still be the one given, as the C library prints it.
TEST(DateTimeUtc, OuputDateFrom1979KeepsFarFutureSecondsExact) {
  TESSEL_SKIP_ON_WINDOWS("Windows' C runtime converts no time after the year 3000");
  ScopedTimeZone utc("UTC");
  const long long kLast = LLONG_MAX / 10000000;  // the last second whose ticks fit
  for (long long value = kLast; value > 115000000000LL; value -= 6287462339LL) {
    const time_t t = static_cast<time_t>(value);
    char expected[64];
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", std::gmtime(&t));
    std::ostringstream out;
    tessel::StringUtils::OuputDateFrom1979(out, value, "%Y-%m-%d %H:%M:%S");
    EXPECT_EQ(out.str(), expected) << value;
  }
  std::ostringstream out;
  tessel::StringUtils::OuputDateFrom1979(out, kLast + 1, "%Y");
  EXPECT_EQ(out.str(), "");
}

// The documented examples, in UTC where a clock time is involved.
TEST(DateTimeUtc, ArithmeticAndCalendarFacts) {
  ScopedTimeZone utc("UTC");
  EXPECT_TRUE(DateTime() == DateTime(0) && !DateTime().isFuture());
  EXPECT_TRUE(DateTime::future().isFuture());
  EXPECT_FALSE(DateTime(LLONG_MAX - 1).isFuture());
  EXPECT_EQ(DateTime::future().description(), "DateTime(future)");
  const DateTime zero(0);
  EXPECT_EQ(DateTime(-1).daysSince(zero), 0);  // truncated toward zero
  EXPECT_EQ(DateTime(-86401).daysSince(zero), -1);
  EXPECT_EQ(DateTime(86399).daysSince(zero), 0);
  EXPECT_EQ(DateTime(-7199).hoursSince(zero), -1);
  EXPECT_EQ(DateTime(119).minutesSince(zero), 1);
  EXPECT_EQ(zero.secondsSince(DateTime(5)), -5);
  const int kDays[][3] = {{2000, 2, 29}, {1900, 2, 28}, {2004, 2, 29}, {2100, 2, 28},
                          {2015, 8, 31}, {2015, 9, 30}, {2015, 0, 30}, {2015, 13, 30},
                          {2015, 14, 31}, {-400, 2, 29}, {-100, 2, 28}, {-4, 2, 29}};
  for (const auto& [year, month, days] : kDays) {
    EXPECT_EQ(DateTime::monthDayCount(year, month), days) << year << "-" << month;
  }
  const DateTime feb(86400 * 31 + 3661);
  EXPECT_EQ(feb.description(), "1970/02/01 01:01:01");
  EXPECT_EQ(feb.monthStart(), DateTime(2678400));
  EXPECT_EQ(feb.monthLastDate(), DateTime(2678400 + 27 * 86400));
  EXPECT_EQ(DateTime(1425729600).weekStart(), DateTime(1425168000));  // Saturday -> Sunday
  EXPECT_EQ(DateTime(1425168000 + 7200).weekStart(), DateTime(1425168000));
  DateTime t(1000);
  EXPECT_TRUE(t.addSecondsCopy(5) == DateTime(1005) && t.addDaysCopy(1) == DateTime(87400));
  t.addDays(1);
  t.addHours(-2);
  t.addMinuts(3);
  t.addSeconds(-4);
  EXPECT_EQ(t, DateTime(1000 + 86400 - 7200 + 180 - 4));
  EXPECT_EQ(t.gmtOffset(), 0);
  DateTimeComponents c = feb.components();
  c.setMonth(1), c.setYear(2015), c.setDay(9), c.setHour(8), c.setMinutes(7), c.setSecond(6);
  EXPECT_EQ(DateTime(c).description(), "2015/01/09 08:07:06");
  c.resetTime();
  EXPECT_TRUE(c.isSameDay(DateTime(c).components()));
  EXPECT_EQ(DateTime(c).description(), "2015/01/09 00:00:00");
  c.resetMonthDay();
  EXPECT_EQ(DateTime(c).description(), "2015/01/01 00:00:00");
}

// ---- Properties that hold in every zone --------------------------------------

class DateTimeZone : public ::testing::TestWithParam<const char*> {
  ScopedTimeZone zone_{GetParam()};
};

TEST_P(DateTimeZone, DescriptionAndComponentsMatchTheCLibrary) {
  std::mt19937_64 random(9);
  for (int i = 0; i < 5000; ++i) {
    const long long seconds = static_cast<long long>(random() % 20000000000ULL) - 10000000000LL;
    if (test_support::kOnWindows && seconds < 0) continue;  // its C runtime starts at 1970
    const time_t value = static_cast<time_t>(seconds);
    const std::tm* converted = std::localtime(&value);  // no other thread converts
    ASSERT_NE(converted, nullptr);
    const std::tm expected = *converted;
    char text[64];
    std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", &expected);
    const DateTime t(seconds);
    ASSERT_EQ(t.description(), text);
    const DateTimeComponents c = t.components();
    ASSERT_EQ(c.weekDay(), expected.tm_wday);
    ASSERT_EQ(c.yearDay(), expected.tm_yday);
    ASSERT_EQ(c.isDayLightSavingTime(), expected.tm_isdst > 0);
    ASSERT_EQ(DateTime(c), t) << text;  // from-local inverts to-local
  }
}

TEST_P(DateTimeZone, CalendarStepsAgreeWithTheCLibrary) {
  const auto local = [](const DateTime& t) {
    const time_t value = static_cast<time_t>(t.secSince1970());
    return *std::localtime(&value);
  };
  // Midnight of t's local date, or of day `day` of its month, with t's flag.
  const auto midnight = [&local](const DateTime& t, int day) {
    std::tm fields = local(t);
    fields.tm_hour = fields.tm_min = fields.tm_sec = 0;
    if (day > 0) fields.tm_mday = day;
    const long long count = mktime(&fields);
    return std::make_pair(count, fields);
  };
  std::mt19937_64 random(11);
  for (int i = 0; i < 2000; ++i) {
    DateTime t(static_cast<long long>(random() % 4000000000ULL));
    const DateTime other = t.addSecondsCopy(static_cast<long long>(random() % 1000000) - 500000);
    const auto [day, day_fields] = midnight(t, 0);
    const long long week = day - day_fields.tm_wday * 86400LL;
    ASSERT_EQ(t.weekStart(), DateTime(week)) << t.description();
    ASSERT_EQ(t.isSameWeek(other), other.weekStart() == DateTime(week)) << t.description();
    const std::tm a = local(t), b = local(other);
    ASSERT_EQ(t.isSameDay(other), a.tm_year == b.tm_year && a.tm_yday == b.tm_yday);
    // The month's length is the one of the month the start landed in, which
    // a kept daylight flag may move back into the month before.
    auto [month, last_fields] = midnight(t, 1);
    ASSERT_EQ(t.monthStart(), DateTime(month)) << t.description();
    ++last_fields.tm_mon;
    last_fields.tm_mday = 0;  // the day before the next month's first
    last_fields.tm_hour = 12;
    mktime(&last_fields);
    ASSERT_EQ(t.monthLastDate(), DateTime(month + (last_fields.tm_mday - 1) * 86400LL))
        << t.description();
  }
  EXPECT_TRUE(DateTime::now().isToday() || DateTime::now().isYesterday());  // midnight passed
  EXPECT_TRUE(DateTime::yesterday().isYesterday() || DateTime::yesterday().isToday());
  EXPECT_FALSE(DateTime::now().addDaysCopy(2).isToday());
  EXPECT_LE(DateTime::now().secSince1970() - tessel::date::now_time_interval(), 1);
}

TEST_P(DateTimeZone, AddMonthsRollsOverflowingDaysForward) {
  const auto at10 = [](int year, int month, int day) { return Clock{year, month, day, 10, 0, 0}; };
  EXPECT_EQ(ClockOf(Local(2015, 1, 31, 10).addMonthsCopy(1)), at10(2015, 3, 3));
  EXPECT_EQ(ClockOf(Local(2016, 1, 31, 10).addMonthsCopy(1)), at10(2016, 3, 2));
  EXPECT_EQ(ClockOf(Local(2016, 2, 29, 10).addMonthsCopy(12)), at10(2017, 3, 1));
  EXPECT_EQ(ClockOf(Local(2015, 12, 15, 10).addMonthsCopy(-24 - 11)), at10(2013, 1, 15));
  EXPECT_EQ(ClockOf(Local(2015, 11, 15, 10).addMonthsCopy(2)), at10(2016, 1, 15));
  // 31 March minus one month is 3 March (the clock may move with the flag).
  const DateTimeComponents back = Local(2015, 3, 31, 10).addMonthsCopy(-1).components();
  EXPECT_EQ(back.month(), 3);
  EXPECT_EQ(back.day(), 3);
  DateTime t = Local(2015, 1, 31, 10);
  t.addMonths(0);
  EXPECT_EQ(t, Local(2015, 1, 31, 10));
}

// Zone names where the C runtime reads them; rule forms everywhere (Windows'
// runtime gives every rule form US daylight-saving dates, as glibc does for a
// rule form without dates, so both systems agree on them).
INSTANTIATE_TEST_SUITE_P(
    Zones, DateTimeZone,
    ::testing::ValuesIn(test_support::ReadableZones(
        std::vector<const char*>{"UTC", "EST5EDT", "CET-1CEST", "LHS-10:30", "America/New_York",
                                 "Europe/Berlin", "Australia/Lord_Howe"},
        [](const char* zone) { return zone; })),
    [](const auto& info) { return ZoneTestName(info.param); });

// ---- Daylight-saving changes, counts from GNU date ---------------------------

struct DstCase {
  const char* zone;
  long long forward_day_10am;      // 10:00 on the day the clocks go forward
  long long forward_expected;      // its dateStart(): midnight read as daylight time
  long long back_day_10am;         // 10:00 on the day the clocks go back
  long long back_expected;         // its dateStart(): midnight read as standard time
  long long january_15_10am;       // plus five months...
  long long june_15_expected;      // ...keeps the January flag
};

class DaylightSaving : public ::testing::TestWithParam<DstCase> {};

TEST_P(DaylightSaving, DateStartKeepsTheFlagOfTheMoment) {
  const DstCase& c = GetParam();
  ScopedTimeZone zone(c.zone);
  EXPECT_EQ(DateTime(c.forward_day_10am).dateStart(), DateTime(c.forward_expected))
      << DateTime(c.forward_day_10am).dateStart().description();
  EXPECT_EQ(DateTime(c.back_day_10am).dateStart(), DateTime(c.back_expected))
      << DateTime(c.back_day_10am).dateStart().description();
  EXPECT_EQ(DateTime(c.january_15_10am).addMonthsCopy(5), DateTime(c.june_15_expected))
      << DateTime(c.january_15_10am).addMonthsCopy(5).description();
}

INSTANTIATE_TEST_SUITE_P(
    Zones, DaylightSaving,
    ::testing::ValuesIn(test_support::ReadableZones(std::vector<DstCase>{
        // 2015-03-08 10:00 EDT -> 2015-03-07 23:00 EST; 2015-11-01 10:00 EST ->
        // 01:00 EDT; 2015-01-15 10:00 EST + 5 months -> 2015-06-15 11:00 EDT.
        DstCase{"America/New_York", 1425823200, 1425787200, 1446390000, 1446354000,
                1421334000, 1434380400},
        DstCase{"EST5EDT", 1425823200, 1425787200, 1446390000, 1446354000,
                1421334000, 1434380400},
        // 2015-03-29 10:00 CEST -> 03-28 23:00 CET; 2015-10-25 10:00 CET ->
        // 01:00 CEST; 2015-01-15 10:00 CET + 5 -> 2015-06-15 11:00 CEST.
        DstCase{"Europe/Berlin", 1427616000, 1427580000, 1445763600, 1445727600,
                1421312400, 1434358800},
        // Half-hour shift: 2015-10-04 10:00 +11 -> 10-03 23:30 (00:00 standard,
        // 1443879000, less 30 minutes); 2015-04-05 10:00 +10:30 -> 00:30 daylight
        // (00:00 daylight, 1428152400, plus 30 minutes); 2015-01-15 10:00 +11 + 5
        // months -> 2015-06-15 09:30 +10:30.
        DstCase{"Australia/Lord_Howe", 1443913200, 1443879000 - 1800, 1428190200,
                1428152400 + 1800, 1421276400, 1434322800},
        // No clock changes: 2015-03-08 and 2015-11-01, 2015-06-15 10:00.
        DstCase{"UTC", 1425808800, 1425772800, 1446372000, 1446336000, 1421316000,
                1434362400}}, [](const DstCase& c) { return c.zone; })),
    [](const auto& info) { return ZoneTestName(info.param.zone); });


TEST(DateTimeThreads, ConcurrentCallsAgreeWithSerialOnes) {
  ScopedTimeZone zone("Europe/Berlin");
  const auto summary = [](long long i) {
    const DateTime t(1420070400 + i * 86399);
    return t.description() + "|" + t.dateStart().description() + "|" +
           t.addMonthsCopy(1).description() + "|" + std::to_string(t.weekStart().secSince1970());
  };
  std::vector<std::string> expected;
  for (long long i = 0; i < 400; ++i) expected.push_back(summary(i));
  auto work = [&expected, &summary] {
    for (long long i = 0; i < 400; ++i) {
      if (summary(i) != expected[static_cast<size_t>(i)]) return false;
    }
    return true;
  };
  std::vector<std::future<bool>> runs;
  for (int i = 0; i < 4; ++i) runs.push_back(std::async(std::launch::async, work));
  for (auto& run : runs) {
    ASSERT_EQ(run.wait_for(std::chrono::seconds(120)), std::future_status::ready);
    EXPECT_TRUE(run.get());
  }
}

}  // namespace
