#include "base/wake_up.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "base/date_text.hpp"

namespace korvo {
namespace {

constexpr double secondsPerMinute = 60;

std::optional<double> finiteNumber(std::string_view text) {
  double value = 0;
  const auto* end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, value);
  if (failure != std::errc{} || stop != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace

TimeWarpResult timeWarpFromEnvironment(const char* offset, const char* rate) {
  TimeWarpResult result;
  if (offset != nullptr && *offset != '\0') {
    const auto value = finiteNumber(offset);
    if (!value) {
      result.error =
          "KORVO_TIME_OFFSET: expected a number of seconds, got \"" + std::string(offset) + "\"";
      return result;
    }
    result.warp.offsetSeconds = *value;
  }
  if (rate != nullptr && *rate != '\0') {
    const auto value = finiteNumber(rate);
    if (!value || *value <= 0) {
      result.error =
          "KORVO_TIME_RATE: expected a number above 0, got \"" + std::string(rate) + "\"";
      return result;
    }
    result.warp.rate = *value;
  }
  return result;
}

std::optional<std::uint32_t> realMillisecondsUntil(Date due, Date now, double rate) {
  if (!std::isfinite(due.secondsSinceReferenceDate) ||
      !std::isfinite(now.secondsSinceReferenceDate) || !(due > now)) {
    return std::nullopt;
  }
  const double milliseconds = std::ceil(due.secondsSince(now) / rate * 1000);
  constexpr double cap = std::numeric_limits<std::uint32_t>::max();
  if (!(milliseconds < cap)) return std::numeric_limits<std::uint32_t>::max();
  return std::max(minimumWakeMilliseconds, static_cast<std::uint32_t>(milliseconds));
}

std::optional<Date> nextLiveTextWake(const std::vector<Date>& dates, Date now) {
  std::optional<Date> next;
  for (const auto date : dates) {
    auto wake = nextRelativeSpanChange(date, now);
    // Far from now the arithmetic rounds the change onto or before now: that text never changes.
    if (!std::isfinite(wake.secondsSinceReferenceDate) || !(wake > now)) continue;
    if (std::abs(now.secondsSince(date)) >= secondsPerMinute) {
      const Date beat{std::ceil(wake.secondsSinceReferenceDate / liveTextBeatSeconds) *
                      liveTextBeatSeconds};
      // Where the beat cannot be told from the change, the change itself.
      if (std::isfinite(beat.secondsSinceReferenceDate) && beat >= wake) wake = beat;
    }
    if (!next || wake < *next) next = wake;
  }
  return next;
}

}  // namespace korvo
