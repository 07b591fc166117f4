#pragma once

#include <string>

#include "base/date.hpp"

namespace korvo {

// Texts of moments and spans in the user's locale and time zone (ICU's defaults, taken from
// LANG / LC_ALL and TZ or /etc/localtime).

// The time of day in the locale's short style: "1:44 AM" in en_US.
std::string shortTime(Date moment);
// The locale's medium date and short time: "Nov 15, 2026, 1:44 AM" in en_US.
std::string abbreviatedDateShortTime(Date moment);
// The time of day alone when `moment` falls on the same day as `now` in the local time zone, else
// the date and time, so an end tomorrow or years away is not taken for one today.
std::string shortTimeOrDateTime(Date moment, Date now);
// The date and time without the year when `moment` falls in the same local year as `now`
// ("Nov 15, 1:44 AM"), else with it ("Jan 3, 2027, 9:00 AM").
std::string dateTimeWithinYear(Date moment, Date now);

// The age of `dataMoment` at `now` as a short measure: "12 sec", "5 min", "2 hr, 5 min", "2 hr",
// "3 days, 4 hr". A negative age is shown by its magnitude; a non-finite one gives "".
std::string relativeSpan(Date dataMoment, Date now);
// The first moment after `now` at which relativeSpan(dataMoment, ·) shows another text, so a host
// repaints only then. A non-finite age never changes (infinitely far date).
Date nextRelativeSpanChange(Date dataMoment, Date now);

// When `moment` falls, as the end of a sentence: "today", "tomorrow", "on Friday" within the
// coming week, else "on Nov 27, 2026, 9:00 AM".
std::string dayText(Date moment, Date now);

}  // namespace korvo
