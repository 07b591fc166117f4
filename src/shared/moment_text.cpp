#include "shared/moment_text.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <ctime>

#include "base/c_format.hpp"

namespace korvo {
namespace {

// Days from 1970-01-01 to the given proleptic Gregorian date (Howard Hinnant's algorithm).
std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<unsigned>(year - era * 400);
  const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

unsigned daysInMonth(std::int64_t year, unsigned month) {
  static constexpr unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : days[month - 1];
}

// Reads exactly `width` decimal digits at `pos`.
std::optional<unsigned> digits(std::string_view text, std::size_t& pos, std::size_t width) {
  if (pos + width > text.size()) {
    return std::nullopt;
  }
  unsigned value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const char c = text[pos + i];
    if (c < '0' || c > '9') {
      return std::nullopt;
    }
    value = value * 10 + static_cast<unsigned>(c - '0');
  }
  pos += width;
  return value;
}

bool expect(std::string_view text, std::size_t& pos, char c) {
  if (pos < text.size() && text[pos] == c) {
    ++pos;
    return true;
  }
  return false;
}

std::optional<Date> parseUnixSeconds(std::string_view text) {
  double seconds = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || ptr != end || !std::isfinite(seconds)) {
    return std::nullopt;
  }
  return Date::fromUnixSeconds(seconds);
}

}  // namespace

namespace {

// ":SS" with an optional fraction (".250" or ",250") after the minutes; 0 when the seconds are
// left out, none when they are malformed.
std::optional<double> secondsAt(std::string_view text, std::size_t& pos) {
  if (!expect(text, pos, ':')) return 0.0;
  const auto whole = digits(text, pos, 2);
  if (!whole || *whole > 59) return std::nullopt;
  double second = *whole;
  if (expect(text, pos, '.') || expect(text, pos, ',')) {
    double scale = 0.1;
    const std::size_t start = pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
      second += (text[pos] - '0') * scale;
      scale /= 10;
      ++pos;
    }
    if (pos == start) return std::nullopt;
  }
  return second;
}

// The zone as minutes east of UTC: "Z", "+02:00", "-0530". None for anything else, a missing
// zone included: a moment without one would mean something else on every machine.
std::optional<std::int64_t> zoneMinutesAt(std::string_view text, std::size_t& pos) {
  if (expect(text, pos, 'Z') || expect(text, pos, 'z')) return 0;
  if (pos >= text.size() || (text[pos] != '+' && text[pos] != '-')) return std::nullopt;
  const int sign = text[pos] == '-' ? -1 : 1;
  ++pos;
  const auto hours = digits(text, pos, 2);
  if (!hours || *hours > 23) return std::nullopt;
  expect(text, pos, ':');
  const auto minutes = digits(text, pos, 2);
  if (!minutes || *minutes > 59) return std::nullopt;
  return sign * static_cast<std::int64_t>(*hours * 60 + *minutes);
}

}  // namespace

std::optional<Date> parseIsoMoment(std::string_view text) {
  std::size_t pos = 0;
  const auto year = digits(text, pos, 4);
  if (!year || !expect(text, pos, '-')) return std::nullopt;
  const auto month = digits(text, pos, 2);
  if (!month || *month < 1 || *month > 12 || !expect(text, pos, '-')) return std::nullopt;
  const auto day = digits(text, pos, 2);
  if (!day || *day < 1 || *day > daysInMonth(*year, *month)) return std::nullopt;
  if (!expect(text, pos, 'T') && !expect(text, pos, 't') && !expect(text, pos, ' ')) {
    return std::nullopt;
  }
  const auto hour = digits(text, pos, 2);
  if (!hour || *hour > 23 || !expect(text, pos, ':')) return std::nullopt;
  const auto minute = digits(text, pos, 2);
  if (!minute || *minute > 59) return std::nullopt;
  const auto second = secondsAt(text, pos);
  if (!second) return std::nullopt;
  const auto offsetMinutes = zoneMinutesAt(text, pos);
  if (!offsetMinutes || pos != text.size()) return std::nullopt;
  const std::int64_t days = daysFromCivil(*year, *month, *day);
  const std::int64_t wholeSeconds = days * 86'400 + std::int64_t{*hour} * 3'600 +
                                    std::int64_t{*minute} * 60 - *offsetMinutes * 60;
  return Date::fromUnixSeconds(static_cast<double>(wholeSeconds) + *second);
}

std::optional<Date> parseMoment(std::string_view text) {
  if (text.find('-', 1) != std::string_view::npos && text.size() >= 10 && text[4] == '-') {
    return parseIsoMoment(text);
  }
  return parseUnixSeconds(text);
}

std::string isoMoment(Date moment) {
  const double unix = moment.unixSeconds();
  if (!std::isfinite(unix) || std::fabs(unix) > 1e15) {
    return cFormat("%.17g", moment.secondsSinceReferenceDate);
  }
  const auto millis = static_cast<std::int64_t>(std::llround(unix * 1000));
  std::int64_t seconds = millis / 1000;
  std::int64_t fraction = millis % 1000;
  if (fraction < 0) {
    fraction += 1000;
    seconds -= 1;
  }
  const std::time_t time = seconds;
  std::tm parts{};
  gmtime_r(&time, &parts);
  std::string text =
      cFormat("%04d-%02d-%02dT%02d:%02d:%02d", parts.tm_year + 1900, parts.tm_mon + 1,
              parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
  if (fraction != 0) {
    text += cFormat(".%03lld", static_cast<long long>(fraction));
  }
  return text + "Z";
}

}  // namespace korvo
