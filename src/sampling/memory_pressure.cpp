#include "sampling/memory_pressure.hpp"

#include <array>

namespace korvo {
namespace {

constexpr std::array<std::string_view, 4> rawValues{"Normal", "Elevated", "High", "Unavailable"};

}  // namespace

std::string_view rawValue(MemoryPressure pressure) {
  return rawValues[static_cast<std::size_t>(pressure)];
}

std::optional<MemoryPressure> memoryPressureFromRaw(std::string_view raw) {
  for (std::size_t i = 0; i < rawValues.size(); ++i) {
    if (rawValues[i] == raw) return static_cast<MemoryPressure>(i);
  }
  return std::nullopt;
}

MemoryPressure pressureFromKernelLevel(std::int32_t level) {
  switch (static_cast<std::uint32_t>(level)) {
    case 1:
      return MemoryPressure::normal;
    case 2:
      return MemoryPressure::warning;
    case 4:
      return MemoryPressure::critical;
    default:
      return MemoryPressure::unknown;
  }
}

}  // namespace korvo
