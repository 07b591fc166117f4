#pragma once

#include <cstdint>
#include <optional>

#include "base/date.hpp"
#include "sampling/memory_pressure.hpp"

namespace korvo {

// One reading of the machine's memory. Build it member-wise or, as the sampler does, from page
// counts with `fromPageCounts`, which keeps wired + compressed + app + cached within total.
struct MemorySnapshot {
  std::uint64_t total = 0;            // physical memory, bytes
  std::uint64_t app = 0;              // anonymous memory of applications, bytes
  std::uint64_t wired = 0;            // memory the kernel cannot reclaim or page out, bytes
  std::uint64_t compressed = 0;       // memory holding compressed pages (zram, zswap), bytes
  std::uint64_t cached = 0;           // file-backed and reclaimable kernel caches, bytes
  std::optional<std::uint64_t> swap;  // swap in use, bytes; absent when it could not be read
  MemoryPressure pressure = MemoryPressure::unknown;  // pressure level at the reading
  Date timestamp;                                     // when the reading was taken

  // Clamps the byte figures against what is left of `total` in the order wired, compressed, app,
  // cached, so the later categories are cut when the counts overshoot. Timestamp: clock::now().
  static MemorySnapshot fromPageCounts(std::uint64_t total, std::uint64_t pageSize,
                                       std::uint64_t active, std::uint64_t inactive,
                                       std::uint64_t wired, std::uint64_t compressed,
                                       std::uint64_t purgeable, std::uint64_t external,
                                       std::optional<std::uint64_t> swap,
                                       MemoryPressure pressure = MemoryPressure::unknown);

  // app + wired + compressed, bytes; cached memory and swap are not "used".
  std::uint64_t used() const;
  // total - used, bytes; fatal when used exceeds total.
  std::uint64_t available() const;
  // used / total, 0 when total is 0; not clamped.
  double usedFraction() const;

  friend bool operator==(const MemorySnapshot&, const MemorySnapshot&) = default;
};

}  // namespace korvo
