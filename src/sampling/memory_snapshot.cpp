#include "sampling/memory_snapshot.hpp"

#include <algorithm>

#include "base/clock.hpp"
#include "sampling/checked_arithmetic.hpp"

namespace korvo {

MemorySnapshot MemorySnapshot::fromPageCounts(std::uint64_t total, std::uint64_t pageSize,
                                              std::uint64_t active, std::uint64_t inactive,
                                              std::uint64_t wired, std::uint64_t compressed,
                                              std::uint64_t purgeable, std::uint64_t external,
                                              std::optional<std::uint64_t> swap,
                                              MemoryPressure pressure) {
  // Later categories give way when the counts overshoot total: wired first, cached last.
  const std::uint64_t wiredBytes = std::min(checked::mul(wired, pageSize), total);
  const std::uint64_t afterWired = total - wiredBytes;
  const std::uint64_t compressedBytes = std::min(checked::mul(compressed, pageSize), afterWired);
  const std::uint64_t afterCompressed = afterWired - compressedBytes;

  const std::uint64_t lruPages = checked::add(active, inactive);
  const std::uint64_t cachedPages = checked::add(purgeable, external);
  const std::uint64_t appPages = lruPages < cachedPages ? 0 : lruPages - cachedPages;

  const std::uint64_t appBytes = std::min(checked::mul(appPages, pageSize), afterCompressed);
  const std::uint64_t afterApp = afterCompressed - appBytes;
  const std::uint64_t cachedBytes = std::min(checked::mul(cachedPages, pageSize), afterApp);

  return {total, appBytes, wiredBytes, compressedBytes, cachedBytes, swap, pressure, clock::now()};
}

std::uint64_t MemorySnapshot::used() const {
  return checked::add(checked::add(app, wired), compressed);
}

std::uint64_t MemorySnapshot::available() const {
  return checked::sub(total, used());
}

double MemorySnapshot::usedFraction() const {
  if (total == 0) return 0.0;
  return static_cast<double>(used()) / static_cast<double>(total);
}

}  // namespace korvo
