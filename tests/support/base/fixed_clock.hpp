#pragma once

#include "base/clock.hpp"
#include "base/date.hpp"

namespace korvo::testing_support {

// Pins the clock at `now` for as long as it lives and lets it run again afterwards; as a member of
// a fixture it holds for each of the fixture's tests.
class FixedClock {
 public:
  explicit FixedClock(Date now) { clock::setFixed(now); }
  ~FixedClock() { clock::reset(); }
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;
};

}  // namespace korvo::testing_support
