// DateTime is a moment held as whole seconds since 1970-01-01 00:00:00 UTC,
// with calendar arithmetic (start of day, week and month, month steps, same
// day and week) done in the process's local time zone through the platform's
// local-time conversions. DateTimeComponents is its broken-down local form.
// Both are plain values: every operation may run on any thread at once; the
// only shared state is the process's time-zone setting.
#ifndef TESSEL_COMMON_DATE_TIME_H_
#define TESSEL_COMMON_DATE_TIME_H_

#include <string>

#include "common/tessel_export.h"

namespace tessel {

// Lengths in seconds.
TESSEL_API extern const long long kMinuteInSec;  // 60
TESSEL_API extern const long long kHourInSec;    // 3600
TESSEL_API extern const long long kDayInSec;     // 86400
TESSEL_API extern const long long kWeekInSec;    // 604800

// Broken-down local time: nine ints with the meaning and order of the C
// library's struct tm (second, minute, hour, day of month, month 0-11, years
// since 1900, weekday 0 = Sunday, day of year 0-365, daylight-saving flag).
// Obtained from DateTime::components(); a field that the conversion could not
// fill reads -1. Setters store without validating and do not update weekday,
// day of year or the flag; DateTime(components) normalises. The month and
// year offsets wrap at the ends of int rather than overflow, so setYear(y)
// then year() gives y back for every int.
class TESSEL_API DateTimeComponents {
 public:
  int second() const;
  int minute() const;
  int hour() const;
  int day() const;    // day of the month, 1-31
  int month() const;  // 1-12
  int year() const;   // the full year, e.g. 2015
  int weekDay() const;  // 0 = Sunday to 6 = Saturday
  int yearDay() const;  // 0 = 1 January
  bool isDayLightSavingTime() const;  // the flag is positive

  void setSecond(int second);
  void setMinutes(int minute);
  void setHour(int hour);
  void setDay(int day);
  void setMonth(int month);  // 1-12, stored as month - 1
  void setYear(int year);    // the full year, stored as year - 1900

  // Sets second, minute and hour to 0.
  void resetTime();
  // Sets the day of the month to 1 and second, minute and hour to 0.
  void resetMonthDay();
  // True when year, month and day of the month are equal.
  bool isSameDay(const DateTimeComponents& other) const;

 private:
  friend class DateTime;
  enum Field { kSecond, kMinute, kHour, kDay, kMonth, kYear, kWeekDay, kYearDay, kDaylightSaving };

  // In struct tm order; month 0-11, year counted from 1900.
  int fields_[9];
};

// Copyable value. Arithmetic on the count wraps as two's complement on
// overflow (adding to future() gives a large negative count). Operations that
// go through local time treat a count that the platform cannot convert as
// broken-down fields of -1; a conversion back that fails gives the count -1.
// A moment whose full year does not fit an int (after 2147483647-12-31
// local) is one the platform cannot convert, both ways.
class TESSEL_API DateTime {
 public:
  // The count 0 (1970-01-01 00:00:00 UTC), not the current time.
  DateTime();
  DateTime(long long seconds);  // NOLINT(runtime/explicit)
  // The local time in `components` converted to a count, with normalisation
  // (day 32 rolls into the next month); `components` is not changed.
  DateTime(const DateTimeComponents& components);  // NOLINT(runtime/explicit)
  DateTime(const DateTime& other);
  DateTime& operator=(const DateTime& other);

  bool operator==(const DateTime& other) const;
  bool operator!=(const DateTime& other) const;
  bool operator<(const DateTime& other) const;
  bool operator<=(const DateTime& other) const;
  bool operator>(const DateTime& other) const;
  bool operator>=(const DateTime& other) const;

  void addDays(long long days);
  void addHours(long long hours);
  void addMinuts(long long minutes);
  void addSeconds(long long seconds);
  // Adds `months` to the local month and nothing else: the day is not
  // clamped (31 January + 1 gives 3 March), the clock fields and the
  // daylight-saving flag stay, so a step across a daylight-saving change
  // shifts the clock by the change (10:00 January + 5 gives 11:00 June).
  void addMonths(int months);
  DateTime addDaysCopy(long long days) const;
  DateTime addMonthsCopy(int months) const;
  DateTime addSecondsCopy(long long seconds);

  DateTimeComponents components() const;
  // 00:00:00 local of the same date, converted back with the daylight-saving
  // flag of the moment itself: on the day clocks go forward at 02:00, the
  // start of 10:00 is 23:00 of the day before.
  DateTime dateStart() const;
  // dateStart() minus its weekday in whole days: the Sunday opening the week.
  DateTime weekStart() const;
  // 00:00:00 local of the first day of the month, flag kept as dateStart().
  DateTime monthStart() const;
  // monthStart() plus (days in month - 1) whole days of 86400 s; a
  // daylight-saving change inside the month moves it an hour off midnight.
  DateTime monthLastDate() const;
  // Same local calendar date.
  bool isSameDay(const DateTime& other) const;
  // Same exact count for the start of the week (computed as weekStart()).
  bool isSameWeek(const DateTime& other) const;
  bool isToday() const;
  bool isYesterday() const;
  // True exactly for the future sentinel; no comparison with the clock.
  bool isFuture() const;

  // (this - other) divided by the unit, truncating toward zero.
  long long daysSince(const DateTime& other) const;
  long long hoursSince(const DateTime& other) const;
  long long minutesSince(const DateTime& other) const;
  long long secondsSince(const DateTime& other) const;
  long long secSince1970() const;

  // "DateTime(future)" for the sentinel; "%Y/%m/%d %H:%M:%S" in local time
  // ("2015/03/07 09:05:00"); "DateTime(<count>)" for a count that the
  // platform cannot convert.
  std::string description() const;
  // Always 0.
  long gmtOffset() const;

  // Gregorian rule with truncating remainders (-4 and -400 are leap years).
  static bool isLeapYear(int year);
  // Days in `month` (1-12) of `year`; months outside 1-12 are not rejected:
  // 0 and 13 give 30, 14 gives 31.
  static int monthDayCount(int year, int month);
  // The wall clock, truncated to whole seconds.
  static DateTime now();
  static DateTime yesterday();  // now() minus 86400 s
  // The sentinel for an open end: the count 9223372036854775807.
  static DateTime future();

 private:
  long long seconds_;
};

namespace date {

// The wall clock in whole milliseconds / seconds since 1970-01-01 00:00:00
// UTC, truncated.
TESSEL_API long long milliseconds_interval_since_1970();
TESSEL_API long long now_time_interval();

}  // namespace date

}  // namespace tessel

#endif  // TESSEL_COMMON_DATE_TIME_H_
