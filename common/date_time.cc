// DateTime, DateTimeComponents and the wall clock. All calendar questions go
// through the platform's local-time conversions; the count's arithmetic is
// done in unsigned 64-bit so that overflow wraps instead of being undefined.
#include "common/date_time.h"

#include <chrono>
#include <ctime>
#include <limits>
#include <ratio>

#include "platform/local_time.h"

namespace tessel {

const long long kMinuteInSec = 60;
const long long kHourInSec = 3600;
const long long kDayInSec = 86400;
const long long kWeekInSec = 604800;

namespace {

constexpr long long kFutureSentinel = std::numeric_limits<long long>::max();

// The nine fields of DateTimeComponents, in order.
constexpr int std::tm::*kTmFields[] = {&std::tm::tm_sec,  &std::tm::tm_min,  &std::tm::tm_hour,
                                       &std::tm::tm_mday, &std::tm::tm_mon,  &std::tm::tm_year,
                                       &std::tm::tm_wday, &std::tm::tm_yday, &std::tm::tm_isdst};
constexpr size_t kTmFieldCount = sizeof kTmFields / sizeof kTmFields[0];

long long WrappingAdd(long long a, long long b) {
  return static_cast<long long>(static_cast<unsigned long long>(a) +
                                static_cast<unsigned long long>(b));
}

long long WrappingSub(long long a, long long b) {
  return static_cast<long long>(static_cast<unsigned long long>(a) -
                                static_cast<unsigned long long>(b));
}

long long WrappingMul(long long a, long long b) {
  return static_cast<long long>(static_cast<unsigned long long>(a) *
                                static_cast<unsigned long long>(b));
}

// The stored month and year are offsets of the ones callers see; a value
// near the ends of int wraps instead of overflowing, so each setter and its
// accessor still give back what was set. A year that wraps is beyond what
// the local-time conversions take, so nothing converts it.
int WrappingOffset(int value, int offset) {
  return static_cast<int>(static_cast<unsigned>(value) + static_cast<unsigned>(offset));
}

constexpr int kYearBase = 1900;

std::tm LocalFields(long long seconds) {
  std::tm fields{};
  tessel_platform::ToLocalTime(seconds, &fields);
  return fields;
}

// Midnight of the date in *fields, read with the flag *fields already holds.
long long StartOfDay(std::tm* fields) {
  fields->tm_sec = fields->tm_min = fields->tm_hour = 0;
  return tessel_platform::FromLocalTime(fields);
}

long long StartOfWeek(long long seconds) {
  std::tm fields = LocalFields(seconds);
  const long long midnight = StartOfDay(&fields);
  return WrappingSub(midnight, WrappingMul(fields.tm_wday, kDayInSec));
}

long long StartOfMonth(std::tm* fields) {
  fields->tm_mday = 1;
  return StartOfDay(fields);
}

bool SameDate(const std::tm& a, const std::tm& b) {
  return a.tm_year == b.tm_year && a.tm_mon == b.tm_mon && a.tm_mday == b.tm_mday;
}

// Adds `months` to the month field, carrying whole years into the year field
// as the conversion's normalisation would. False when the full year leaves
// int.
bool AddToMonth(std::tm* fields, int months) {
  const long long month = static_cast<long long>(fields->tm_mon) + months;
  long long years = month / 12;
  long long month_in_year = month % 12;
  if (month_in_year < 0) {
    month_in_year += 12;
    --years;
  }
  const long long year = fields->tm_year + years;
  if (year < std::numeric_limits<int>::min() || year > tessel_platform::kMaxTmYear) {
    return false;
  }
  fields->tm_year = static_cast<int>(year);
  fields->tm_mon = static_cast<int>(month_in_year);
  return true;
}

// The wall clock in the 100 ns ticks the day and millisecond counts come from.
long long TicksSince1970() {
  using Ticks = std::chrono::duration<long long, std::ratio<1, 10000000>>;
  return std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

// ---- DateTimeComponents ------------------------------------------------------

int DateTimeComponents::second() const { return fields_[kSecond]; }
int DateTimeComponents::minute() const { return fields_[kMinute]; }
int DateTimeComponents::hour() const { return fields_[kHour]; }
int DateTimeComponents::day() const { return fields_[kDay]; }
int DateTimeComponents::month() const { return WrappingOffset(fields_[kMonth], 1); }
int DateTimeComponents::year() const { return WrappingOffset(fields_[kYear], kYearBase); }
int DateTimeComponents::weekDay() const { return fields_[kWeekDay]; }
int DateTimeComponents::yearDay() const { return fields_[kYearDay]; }
bool DateTimeComponents::isDayLightSavingTime() const { return fields_[kDaylightSaving] > 0; }

void DateTimeComponents::setSecond(int second) { fields_[kSecond] = second; }
void DateTimeComponents::setMinutes(int minute) { fields_[kMinute] = minute; }
void DateTimeComponents::setHour(int hour) { fields_[kHour] = hour; }
void DateTimeComponents::setDay(int day) { fields_[kDay] = day; }
void DateTimeComponents::setMonth(int month) { fields_[kMonth] = WrappingOffset(month, -1); }
void DateTimeComponents::setYear(int year) { fields_[kYear] = WrappingOffset(year, -kYearBase); }

void DateTimeComponents::resetTime() {
  fields_[kSecond] = fields_[kMinute] = fields_[kHour] = 0;
}

void DateTimeComponents::resetMonthDay() {
  fields_[kDay] = 1;
  resetTime();
}

bool DateTimeComponents::isSameDay(const DateTimeComponents& other) const {
  return fields_[kYear] == other.fields_[kYear] && fields_[kMonth] == other.fields_[kMonth] &&
         fields_[kDay] == other.fields_[kDay];
}

// ---- DateTime ----------------------------------------------------------------

DateTime::DateTime() : seconds_(0) {}
DateTime::DateTime(long long seconds) : seconds_(seconds) {}

DateTime::DateTime(const DateTimeComponents& components) {
  std::tm fields{};
  for (size_t i = 0; i < kTmFieldCount; ++i) fields.*kTmFields[i] = components.fields_[i];
  seconds_ = tessel_platform::FromLocalTime(&fields);
}

DateTime::DateTime(const DateTime& other) = default;
DateTime& DateTime::operator=(const DateTime& other) = default;

bool DateTime::operator==(const DateTime& other) const { return seconds_ == other.seconds_; }
bool DateTime::operator!=(const DateTime& other) const { return seconds_ != other.seconds_; }
bool DateTime::operator<(const DateTime& other) const { return seconds_ < other.seconds_; }
bool DateTime::operator<=(const DateTime& other) const { return seconds_ <= other.seconds_; }
bool DateTime::operator>(const DateTime& other) const { return seconds_ > other.seconds_; }
bool DateTime::operator>=(const DateTime& other) const { return seconds_ >= other.seconds_; }

void DateTime::addDays(long long days) { addSeconds(WrappingMul(days, kDayInSec)); }
void DateTime::addHours(long long hours) { addSeconds(WrappingMul(hours, kHourInSec)); }
void DateTime::addMinuts(long long minutes) { addSeconds(WrappingMul(minutes, kMinuteInSec)); }
void DateTime::addSeconds(long long seconds) { seconds_ = WrappingAdd(seconds_, seconds); }

void DateTime::addMonths(int months) {
  std::tm fields = LocalFields(seconds_);
  seconds_ = AddToMonth(&fields, months) ? tessel_platform::FromLocalTime(&fields) : -1;
}

DateTime DateTime::addDaysCopy(long long days) const {
  DateTime copy(*this);
  copy.addDays(days);
  return copy;
}

DateTime DateTime::addMonthsCopy(int months) const {
  DateTime copy(*this);
  copy.addMonths(months);
  return copy;
}

DateTime DateTime::addSecondsCopy(long long seconds) {
  DateTime copy(*this);
  copy.addSeconds(seconds);
  return copy;
}

DateTimeComponents DateTime::components() const {
  const std::tm fields = LocalFields(seconds_);
  DateTimeComponents components;
  for (size_t i = 0; i < kTmFieldCount; ++i) components.fields_[i] = fields.*kTmFields[i];
  return components;
}

DateTime DateTime::dateStart() const {
  std::tm fields = LocalFields(seconds_);
  return DateTime(StartOfDay(&fields));
}

DateTime DateTime::weekStart() const { return DateTime(StartOfWeek(seconds_)); }

DateTime DateTime::monthStart() const {
  std::tm fields = LocalFields(seconds_);
  return DateTime(StartOfMonth(&fields));
}

DateTime DateTime::monthLastDate() const {
  std::tm fields = LocalFields(seconds_);
  const long long first = StartOfMonth(&fields);
  const long long days =
      monthDayCount(WrappingOffset(fields.tm_year, kYearBase), WrappingOffset(fields.tm_mon, 1));
  return DateTime(WrappingAdd(first, WrappingMul(days - 1, kDayInSec)));
}

bool DateTime::isSameDay(const DateTime& other) const {
  return SameDate(LocalFields(seconds_), LocalFields(other.seconds_));
}

bool DateTime::isSameWeek(const DateTime& other) const {
  return StartOfWeek(seconds_) == StartOfWeek(other.seconds_);
}

bool DateTime::isToday() const {
  return SameDate(LocalFields(seconds_), LocalFields(now().seconds_));
}

bool DateTime::isYesterday() const {
  return SameDate(LocalFields(seconds_), LocalFields(yesterday().seconds_));
}

bool DateTime::isFuture() const { return seconds_ == kFutureSentinel; }

long long DateTime::daysSince(const DateTime& other) const {
  return secondsSince(other) / kDayInSec;
}

long long DateTime::hoursSince(const DateTime& other) const {
  return secondsSince(other) / kHourInSec;
}

long long DateTime::minutesSince(const DateTime& other) const {
  return secondsSince(other) / kMinuteInSec;
}

long long DateTime::secondsSince(const DateTime& other) const {
  return WrappingSub(seconds_, other.seconds_);
}

long long DateTime::secSince1970() const { return seconds_; }

std::string DateTime::description() const {
  if (isFuture()) return "DateTime(future)";
  std::tm fields{};
  if (!tessel_platform::ToLocalTime(seconds_, &fields)) {
    return "DateTime(" + std::to_string(seconds_) + ")";
  }
  char text[255];
  const size_t length = std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", &fields);
  return std::string(text, length);
}

long DateTime::gmtOffset() const { return 0; }

bool DateTime::isLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DateTime::monthDayCount(int year, int month) {
  if (month == 2) return isLeapYear(year) ? 29 : 28;
  const int x = month <= 7 ? month : ~month;
  return 30 + (x & 1);
}

DateTime DateTime::now() { return DateTime(date::now_time_interval()); }

DateTime DateTime::yesterday() { return now().addSecondsCopy(-kDayInSec); }

DateTime DateTime::future() { return DateTime(kFutureSentinel); }

namespace date {

long long milliseconds_interval_since_1970() { return TicksSince1970() / 10000; }

long long now_time_interval() { return TicksSince1970() / 10000000; }

}  // namespace date

}  // namespace tessel
