#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/date.hpp"

namespace korvo::desktop {

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

// Real milliseconds from `now` until the clock shows `due`, rounded up so a timer never fires
// early; 0 when already due; capped at what a GLib timer holds.
std::uint32_t realMillisecondsUntil(Date due, Date now, double rate);

// The first moment after `now` at which one of the live relative texts counting from `dates`
// shows another text; nothing when there are none or none ever changes.
std::optional<Date> nextLiveTextChange(const std::vector<Date>& dates, Date now);

}  // namespace korvo::desktop
