#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvo {

// The kernel's memory-pressure level reduced to four cases; the declaration order is the ordinal
// used wherever the level is stored in one byte.
enum class MemoryPressure : std::uint8_t { normal, warning, critical, unknown };

// "Normal", "Elevated", "High", "Unavailable": the serialised form and the label shown.
std::string_view rawValue(MemoryPressure pressure);

// Exact, case-sensitive match of the four raw values; anything else is no value.
std::optional<MemoryPressure> memoryPressureFromRaw(std::string_view raw);

// Kernel level to case: 1 normal, 2 warning, 4 critical; every other level (0, 3, above 4 and
// negative ones, which compare as large unsigned numbers) is unknown.
MemoryPressure pressureFromKernelLevel(std::int32_t level);

}  // namespace korvo
