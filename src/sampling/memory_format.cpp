#include "sampling/memory_format.hpp"

#include "base/c_format.hpp"
#include "base/text.hpp"

namespace korvo::MemoryFormat {
namespace {

constexpr double bytesPerMegabyte = 1'048'576.0;

double inGigabytes(std::uint64_t bytes) {
  return static_cast<double>(bytes) / static_cast<double>(bytesPerGigabyte);
}

}  // namespace

std::string gigabytes(std::uint64_t bytes) {
  return cFormat(_("%.1f GB").c_str(), inGigabytes(bytes));
}

std::string compactSize(std::uint64_t bytes) {
  if (bytes >> 30 != 0) return gigabytes(bytes);
  return cFormat(_("%.0f MB").c_str(), static_cast<double>(bytes) / bytesPerMegabyte);
}

std::string modeText(const MemorySnapshot& snapshot, DisplayMode mode) {
  switch (mode) {
    case DisplayMode::usedPercent:
      return cFormat(_("%.0f%%").c_str(), snapshot.usedFraction() * 100);
    case DisplayMode::usedGB:
      return gigabytes(snapshot.used());
    case DisplayMode::availablePercent:
      return cFormat(_("%.0f%% free").c_str(), (1 - snapshot.usedFraction()) * 100);
    case DisplayMode::availableGB:
      return gigabytes(snapshot.available()) + _(" free");
    case DisplayMode::usedOfTotal:
      return cFormat(_("%.1f/%.0f GB").c_str(), inGigabytes(snapshot.used()),
                     inGigabytes(snapshot.total));
  }
  return {};
}

}  // namespace korvo::MemoryFormat
