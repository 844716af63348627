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

TEST(DateTimeValue, DefaultsAndSentinel) {
  EXPECT_EQ(DateTime(), DateTime(0));
  EXPECT_TRUE(DateTime::future().isFuture());
  EXPECT_EQ(DateTime::future().secSince1970(), 9223372036854775807LL);
  EXPECT_EQ(DateTime::future().description(), "DateTime(future)");
  EXPECT_FALSE(DateTime(9223372036854775806LL).isFuture());
  EXPECT_EQ(DateTime(LLONG_MIN).description(), "DateTime(-9223372036854775808)");
}

TEST(DateTimeValue, DifferencesTruncateTowardZeroAndArithmeticWraps) {
  EXPECT_EQ(DateTime(0).daysSince(DateTime(86401)), -1);
  EXPECT_EQ(DateTime(-3599).hoursSince(DateTime(0)), 0);
  EXPECT_EQ(DateTime(119).minutesSince(DateTime(0)), 1);
  EXPECT_EQ(DateTime(10).secondsSince(DateTime(25)), -15);
  EXPECT_EQ(DateTime::future().addSecondsCopy(1), DateTime(LLONG_MIN));
  // 2^62 days are 2^69 * 675 seconds: 0 modulo 2^64.
  EXPECT_EQ(DateTime(0).addDaysCopy(1LL << 62), DateTime(0));
  // LLONG_MIN - 1 wraps to LLONG_MAX, which is 106751991167300 whole days.
  EXPECT_EQ(DateTime(LLONG_MIN).daysSince(DateTime(1)), 106751991167300LL);
  DateTime t(LLONG_MAX);
  t.addHours(1);
  t.addMinuts(-60);
  EXPECT_EQ(t, DateTime::future());
}

TEST(DateTimeValue, LeapYearsAndMonthLengths) {
  for (const int year : {2000, 2004, -4, -400}) EXPECT_TRUE(DateTime::isLeapYear(year)) << year;
  for (const int year : {1900, 2015, -100}) EXPECT_FALSE(DateTime::isLeapYear(year)) << year;
  // Months 0 to 14 of 2015; those outside 1..12 have 30 or 31 days.
  const int kDays2015[] = {30, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 30, 31};
  for (int month = 0; month <= 14; ++month) {
    EXPECT_EQ(DateTime::monthDayCount(2015, month), kDays2015[month]) << month;
  }
}

TEST(DateTimeValue, ClockReadsTheWallClock) {
  // The bounds come from the system clock itself: glibc's time() reads a
  // coarser clock that may lag it by a tick.
  const auto wall_seconds = [] {
    return static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(
                                      std::chrono::system_clock::now().time_since_epoch())
                                      .count());
  };
  const long long before = wall_seconds();
  const long long seconds = tessel::date::now_time_interval();
  const long long millis = tessel::date::milliseconds_interval_since_1970();
  const long long after = wall_seconds();
  EXPECT_TRUE(before <= seconds && seconds <= after) << seconds;
  EXPECT_TRUE(before <= millis / 1000 && millis / 1000 <= after) << millis;
  EXPECT_LE(DateTime::yesterday().secondsSince(DateTime::now()), -86400);
  EXPECT_GE(DateTime::yesterday().secondsSince(DateTime::now()), -86401);
}

TEST(DateTimeComponentsValue, AccessorsTranslateMonthAndYear) {
  ScopedTimeZone utc("UTC");
  // `date -u -d @1425806723`: Sunday 2015-03-08 09:25:23, day 66 of the year.
  DateTimeComponents c = DateTime(1425806723).components();
  EXPECT_EQ(ClockOf(DateTime(1425806723)), (Clock{2015, 3, 8, 9, 25, 23}));

  DateTimeComponents d = c;
  d.setYear(2016);
  d.setMonth(2);
  d.setDay(30);  // normalised to 1 March 2016
  d.setHour(1);
  d.setMinutes(2);
  d.setSecond(3);
  EXPECT_FALSE(d.isSameDay(c));
  EXPECT_EQ(DateTime(d).description(), "2016/03/01 01:02:03");
  EXPECT_EQ(d.day(), 30);  // the caller's components are not normalised

  d.resetTime();
  EXPECT_EQ(DateTime(d).description(), "2016/03/01 00:00:00");
  d.resetMonthDay();
  d.setHour(7);
  d.resetMonthDay();
  EXPECT_EQ(DateTime(d).description(), "2016/02/01 00:00:00");

  DateTimeComponents e = c;
  e.setHour(23);
  EXPECT_TRUE(e.isSameDay(c));
  EXPECT_EQ(DateTime(LLONG_MAX).components().month(), 0);  // every field reads -1
  EXPECT_EQ(DateTime(LLONG_MAX).components().year(), 1899);
}

TEST(DateTimeUtc, DocumentedMonthExample) {
  ScopedTimeZone utc("UTC");
  const DateTime t(86400 * 31 + 3661);
  EXPECT_EQ(t.description(), "1970/02/01 01:01:01");
  EXPECT_EQ(t.monthStart(), DateTime(2678400));
  EXPECT_EQ(t.monthLastDate(), DateTime(2678400 + 27 * 86400));
  EXPECT_EQ(DateTime(0).description(), "1970/01/01 00:00:00");
  // Windows' C runtime converts no time before 1970.
  EXPECT_EQ(DateTime(-1).description(),
            test_support::kOnWindows ? "DateTime(-1)" : "1969/12/31 23:59:59");
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

TEST_P(DateTimeZone, DayWeekAndMonthStarts) {
  // 2015-01-11 and 2015-07-12 are Sundays; no clock change in those weeks.
  for (const int month : {1, 7}) {
    const int sunday = month == 1 ? 11 : 12;
    const DateTime week = Local(2015, month, sunday, 0);
    EXPECT_EQ(Local(2015, month, sunday + 6, 23, 59).weekStart(), week) << "Saturday";
    EXPECT_EQ(Local(2015, month, sunday, 0).weekStart(), week) << "Sunday";
    EXPECT_EQ(Local(2015, month, sunday + 3, 10).dateStart(), Local(2015, month, sunday + 3, 0));
    EXPECT_EQ(Local(2015, month, sunday + 3, 10).monthStart(), Local(2015, month, 1, 0));
    EXPECT_TRUE(Local(2015, month, sunday, 1).isSameWeek(Local(2015, month, sunday + 6, 23)));
    EXPECT_FALSE(Local(2015, month, sunday, 1).isSameWeek(Local(2015, month, sunday - 1, 23)));
    EXPECT_TRUE(Local(2015, month, sunday, 0).isSameDay(Local(2015, month, sunday, 23, 59)));
    EXPECT_FALSE(Local(2015, month, sunday, 0).isSameDay(Local(2015, month, sunday - 1, 23)));
  }
}

TEST_P(DateTimeZone, MonthEndsAndLeapYears) {
  // No clock change in February or December in any of the zones.
  EXPECT_EQ(Local(2016, 2, 10, 8).monthLastDate(), Local(2016, 2, 29, 0));
  EXPECT_EQ(Local(2000, 2, 1, 0).monthLastDate(), Local(2000, 2, 29, 0));
  EXPECT_EQ(Local(2100, 2, 1, 0).monthLastDate(), Local(2100, 2, 28, 0));
  EXPECT_EQ(Local(2015, 12, 31, 23).monthLastDate(), Local(2015, 12, 31, 0));
  EXPECT_EQ(Local(2015, 12, 31, 23).monthStart(), Local(2015, 12, 1, 0));
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

TEST_P(DateTimeZone, TodayYesterdayAndAZeroGmtOffset) {
  EXPECT_EQ(Local(2015, 7, 1, 12).gmtOffset(), 0);
  EXPECT_EQ(Local(2015, 1, 1, 12).gmtOffset(), 0);
  EXPECT_TRUE(DateTime::now().isToday());
  EXPECT_TRUE(DateTime::yesterday().isYesterday());
  EXPECT_FALSE(DateTime::future().isToday());
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

TEST(DaylightSavingNewYork, WeeksAndMonthEndsAcrossTheChange) {
  ScopedTimeZone zone("EST5EDT");
  // 2015-03-08 01:00 EST (before the change) and 2015-03-10 10:00 EDT: the
  // same calendar week, but their week starts differ by the hour of the change.
  const DateTime before(1425790800 + 3600);
  const DateTime after(1425823200 + 2 * 86400);
  EXPECT_FALSE(before.isSameWeek(after));
  EXPECT_EQ(before.weekStart(), DateTime(1425790800));
  // From 5 March 10:00 EST: 1 March 00:00 EST plus 30 days of 86400 s is
  // 31 March 01:00 EDT.
  EXPECT_EQ(ClockOf(DateTime(1425567600).monthLastDate()), (Clock{2015, 3, 31, 1, 0, 0}));
  // From 31 March 10:00 EDT the kept flag reads 1 March 00:00 as daylight
  // time: 28 February 23:00 EST (1 March 00:00 EST is 1425186000).
  EXPECT_EQ(DateTime(1427810400).monthStart(), DateTime(1425186000 - 3600));
}


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
