#include "base/date_text.hpp"

#include <cmath>
#include <ctime>
#include <limits>
#include <optional>
#include <tuple>

#include "base/date_text_module.hpp"
#include "base/module.hpp"
#include "base/text.hpp"

namespace korvo {
namespace {

constexpr double secondsPerMinute = 60;
constexpr double secondsPerHour = 3600;
constexpr double secondsPerDay = 86400;

// The granularity the span text shows at a given age: seconds under a minute, minutes under a day,
// hours beyond.
double granularity(double age) {
  if (age < secondsPerMinute) return 1;
  if (age < secondsPerDay) return secondsPerMinute;
  return secondsPerHour;
}

std::string noText(Date) {
  return {};
}

std::string noSpan(Date, Date) {
  return {};
}

// The module's functions, loaded once; when it cannot be loaded (said on standard error) every
// date text is empty rather than the program failing.
const DateTextFunctions& functions() {
  static const DateTextFunctions* loaded = [] {
    static constexpr DateTextFunctions none{noText, noText, noSpan, noText, noText};
    void* entry = loadModuleEntry(KORVO_DATE_TEXT_MODULE_INSTALLED, KORVO_DATE_TEXT_MODULE_BUILT,
                                  dateTextEntryPoint);
    return entry == nullptr ? &none : reinterpret_cast<DateTextEntryPoint>(entry)();
  }();
  return *loaded;
}

// The local calendar day of `moment`; none when the system cannot place it (far outside time_t or
// the years a calendar holds).
std::optional<std::tuple<int, int, int>> localDay(Date moment) {
  const double seconds = std::floor(moment.unixSeconds());
  if (!(std::fabs(seconds) < 1e15)) return std::nullopt;
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) return std::nullopt;
  return std::tuple{local.tm_year, local.tm_mon, local.tm_mday};
}

}  // namespace

std::string shortTime(Date moment) {
  return functions().shortTime(moment);
}

std::string abbreviatedDateShortTime(Date moment) {
  return functions().abbreviatedDateShortTime(moment);
}

std::string relativeSpan(Date dataMoment, Date now) {
  return functions().relativeSpan(dataMoment, now);
}

Date nextRelativeSpanChange(Date dataMoment, Date now) {
  const double age = now.secondsSince(dataMoment);
  if (!std::isfinite(age)) return {std::numeric_limits<double>::infinity()};
  if (age >= 0) {
    const double step = granularity(age);
    return dataMoment.addingSeconds((std::floor(age / step) + 1) * step);
  }
  // A moment in the future: the magnitude shrinks, and the text changes just after it passes the
  // current whole step.
  const double magnitude = -age;
  const double step = granularity(magnitude);
  const double boundary = std::floor(magnitude / step) * step;
  constexpr double justAfter = 0.001;
  return dataMoment.addingSeconds(-boundary + justAfter);
}

std::string shortTimeOrDateTime(Date moment, Date now) {
  const auto day = localDay(moment);
  return day && day == localDay(now) ? shortTime(moment) : abbreviatedDateShortTime(moment);
}

std::string dateTimeWithinYear(Date moment, Date now) {
  const auto day = localDay(moment);
  const auto today = localDay(now);
  const bool sameYear = day && today && std::get<0>(*day) == std::get<0>(*today);
  return sameYear ? functions().monthDayShortTime(moment) : abbreviatedDateShortTime(moment);
}

std::string dayText(Date moment, Date now) {
  const auto day = localDay(moment);
  if (day && day == localDay(now)) return _("today");
  if (day && day == localDay(now.addingSeconds(secondsPerDay))) return _("tomorrow");
  const double ahead = moment.secondsSince(now);
  if (ahead > 0 && ahead < 6 * secondsPerDay) return _("on ") + functions().weekday(moment);
  return _("on ") + abbreviatedDateShortTime(moment);
}

}  // namespace korvo
