#pragma once

#include <nlohmann/json.hpp>

#include "sampling/memory_snapshot.hpp"

namespace korvo {

// The reading as tools see it: total, app, wired, compressed, cached, swap (null when absent),
// pressure (its raw value), timestamp (seconds since 2001-01-01 UTC), then used, available and
// usedFraction, in that order. Integral doubles are written without a fraction.
nlohmann::ordered_json toJson(const MemorySnapshot& snapshot);

}  // namespace korvo
