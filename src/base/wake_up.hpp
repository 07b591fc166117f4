#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/date.hpp"

namespace korvo {

// How the host's clock relates to real time: `clock::now()` runs `rate` times as fast and
// `offsetSeconds` ahead, so a test can pass a 900-second reload in a few real seconds.
struct TimeWarp {
  double offsetSeconds = 0;  // seconds added to the real time
  double rate = 1;           // clock seconds per real second, > 0
  friend bool operator==(const TimeWarp&, const TimeWarp&) = default;
};

// Reads KORVO_TIME_OFFSET and KORVO_TIME_RATE as given (nullptr = unset); a one-line error for
// a value that is not a finite number (rate: not above 0).
struct TimeWarpResult {
  TimeWarp warp{};
  std::optional<std::string> error = std::nullopt;
};
TimeWarpResult timeWarpFromEnvironment(const char* offset, const char* rate);

// The shortest real wait the host asks a timer for: however fast the clock runs, a widget wakes
// at most ten times a second.
inline constexpr std::uint32_t minimumWakeMilliseconds = 100;

// Real milliseconds from `now` until the clock shows `due`, rounded up so a timer never fires
// early, at least minimumWakeMilliseconds and at most what a GLib timer holds. Nothing when `due`
// is not after `now` (already due, or so far out that adding to the clock's moment cannot reach
// it) or either is not finite: such a wake-up would fire at once, again and again.
std::optional<std::uint32_t> realMillisecondsUntil(Date due, Date now, double rate);

// Live texts that count minutes or hours advance on a beat every this many clock seconds, shared
// by every card of the host: their changes fall on at most two wake-ups a minute, whatever the
// moments they count from, and are at most this late, unseen in a text that changes once a minute.
inline constexpr double liveTextBeatSeconds = 30;

// The moment after `now` at which to show the live relative texts counting from `dates` again:
// the first change of a text counting seconds, else the first beat at or after the first change
// of one counting minutes or hours. Nothing when there are none or none ever changes (also when
// the dates are so far from `now` that the change cannot be told from `now` itself).
std::optional<Date> nextLiveTextWake(const std::vector<Date>& dates, Date now);

}  // namespace korvo
