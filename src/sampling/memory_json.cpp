#include "sampling/memory_json.hpp"

#include <cmath>

namespace korvo {
namespace {

// Integral doubles below 2^53 read back exactly as integers, and tools compare them as such.
nlohmann::ordered_json number(double value) {
  constexpr double exactIntegers = 9007199254740992.0;
  if (std::trunc(value) == value && std::fabs(value) < exactIntegers) {
    return static_cast<std::int64_t>(value);
  }
  return value;
}

}  // namespace

nlohmann::ordered_json toJson(const MemorySnapshot& snapshot) {
  nlohmann::ordered_json json;
  json["total"] = snapshot.total;
  json["app"] = snapshot.app;
  json["wired"] = snapshot.wired;
  json["compressed"] = snapshot.compressed;
  json["cached"] = snapshot.cached;
  json["swap"] = snapshot.swap ? nlohmann::ordered_json(*snapshot.swap) : nullptr;
  json["pressure"] = rawValue(snapshot.pressure);
  json["timestamp"] = number(snapshot.timestamp.secondsSinceReferenceDate);
  json["used"] = snapshot.used();
  json["available"] = snapshot.available();
  json["usedFraction"] = number(snapshot.usedFraction());
  return json;
}

}  // namespace korvo
