// Calendar arithmetic on automation dates (base::Date), proleptic Gregorian, years 100 to 9999.
#pragma once

#include <optional>

#include "base/value.h"

namespace quenta::base {

struct CalendarTime {
  int year = 1899;
  int month = 12;  // 1 to 12
  int day = 30;    // 1 to 31
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool operator==(const CalendarTime&) const = default;
};

// Nothing when the date or the time of day does not exist.
std::optional<Date> MakeDate(const CalendarTime& time);

// Rounded to the nearest second. Error 6 outside the years 100 to 9999.
CalendarTime ToCalendar(Date date);

// Days since 30 December 1899, growing with time also before that day.
double PointInTime(Date date);

// 1 January 1900, which the suite stores and shows as "no date".
Date EmptyDate();

}  // namespace quenta::base
