#pragma once

#include <cstdint>
#include <string>

#include "sampling/display_mode.hpp"
#include "sampling/memory_snapshot.hpp"

// Memory figures as display text, always with the C locale's decimal point.
namespace korvo::MemoryFormat {

// "GB" means 2^30 bytes throughout.
inline constexpr std::uint64_t bytesPerGigabyte = 1'073'741'824;

// bytes / 2^30 as "%.1f GB", e.g. "7.5 GB".
std::string gigabytes(std::uint64_t bytes);

// "%.1f GB" from 2^30 bytes on, otherwise whole megabytes "%.0f MB".
std::string compactSize(std::uint64_t bytes);

// The snapshot's figure for `mode`: "52%", "9.0 GB", "48% free", "7.0 GB free", "9.0/16 GB".
std::string modeText(const MemorySnapshot& snapshot, DisplayMode mode);

}  // namespace korvo::MemoryFormat
