#include "base/date.h"

#include <cmath>

#include "base/error.h"

namespace quenta::base {
namespace {

constexpr int kSecondsPerDay = 86400;
constexpr long kFirstDay = -657434;  // 1 January 100
constexpr long kLastDay = 2958465;   // 31 December 9999

bool IsLeap(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

// Days since 30 December 1899 of a date in the proleptic Gregorian calendar (years counted from March).
long DayNumber(int year, int month, int day) {
  const int shifted_year = month <= 2 ? year - 1 : year;
  const int shifted_month = month <= 2 ? month + 9 : month - 3;
  const long era_days = 365L * shifted_year + shifted_year / 4 - shifted_year / 100 + shifted_year / 400;
  return era_days + (153 * shifted_month + 2) / 5 + day - 1 - 693899L;
}

void SetCalendarDay(long day_number, CalendarTime& time) {
  const long days = day_number + 693899L;
  const long era = days / 146097;
  const long day_of_era = days % 146097;
  const long year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const long day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const long shifted_month = (5 * day_of_year + 2) / 153;
  time.day = static_cast<int>(day_of_year - (153 * shifted_month + 2) / 5 + 1);
  time.month = static_cast<int>(shifted_month < 10 ? shifted_month + 3 : shifted_month - 9);
  time.year = static_cast<int>(year_of_era + era * 400 + (time.month <= 2 ? 1 : 0));
}

}  // namespace

std::optional<Date> MakeDate(const CalendarTime& time) {
  if (time.year < 100 || time.year > 9999 || time.month < 1 || time.month > 12 || time.day < 1 ||
      time.day > DaysInMonth(time.year, time.month) || time.hour < 0 || time.hour > 23 || time.minute < 0 ||
      time.minute > 59 || time.second < 0 || time.second > 59) {
    return std::nullopt;
  }
  const long day = DayNumber(time.year, time.month, time.day);
  const double fraction = (time.hour * 3600 + time.minute * 60 + time.second) / double{kSecondsPerDay};
  return Date{day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction};
}

CalendarTime ToCalendar(Date date) {
  if (!(date.days > static_cast<double>(kFirstDay) - 1 && date.days < static_cast<double>(kLastDay) + 1)) {
    RaiseOverflow();
  }
  const double whole = std::trunc(date.days);
  auto day = static_cast<long>(whole);
  long seconds = std::lround(std::fabs(date.days - whole) * kSecondsPerDay);
  if (seconds == kSecondsPerDay) {
    seconds = 0;
    ++day;
  }
  if (day > kLastDay) RaiseOverflow();
  CalendarTime time;
  SetCalendarDay(day, time);
  time.hour = static_cast<int>(seconds / 3600);
  time.minute = static_cast<int>(seconds / 60 % 60);
  time.second = static_cast<int>(seconds % 60);
  return time;
}

double PointInTime(Date date) {
  const double day = std::trunc(date.days);
  return day + std::fabs(date.days - day);
}

Date EmptyDate() {
  return Date{2};
}

}  // namespace quenta::base
