#pragma once

#include <compare>

namespace korvo {

// An absolute moment, counted as the shared file counts it: seconds since 2001-01-01T00:00:00 UTC.
struct Date {
  // Seconds between 1970-01-01 and 2001-01-01, both UTC.
  static constexpr double unixOffset = 978307200.0;

  double secondsSinceReferenceDate = 0;  // seconds since 2001-01-01T00:00:00 UTC

  static constexpr Date fromUnixSeconds(double unixSeconds) { return {unixSeconds - unixOffset}; }
  constexpr double unixSeconds() const { return secondsSinceReferenceDate + unixOffset; }

  // Seconds from `earlier` to this moment (negative when `earlier` is later).
  constexpr double secondsSince(Date earlier) const {
    return secondsSinceReferenceDate - earlier.secondsSinceReferenceDate;
  }
  constexpr Date addingSeconds(double seconds) const {
    return {secondsSinceReferenceDate + seconds};
  }

  friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace korvo
