#pragma once

#include <optional>

#include "base/date.hpp"

namespace korvo::clock {

// The one wall clock of the system. Everything that asks "what time is it" (entries' dates,
// staleness, status lines, a reading's timestamp, sample data) asks here, so that `--now` and tests
// can stand in for the real time.
Date now();

// Pins the clock to `moment` until reset; `std::nullopt` returns to the real time.
void setFixed(std::optional<Date> moment);

// Shifts the real time by `seconds` and runs it `rate` times as fast from the moment of the call,
// so a desktop host can be driven through long reload intervals in a short test.
void setWarp(double offsetSeconds, double rate);

// Restores the real, unshifted time.
void reset();

}  // namespace korvo::clock
