#include "sources/cpu_sensor_choice.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <tuple>

namespace korvo::cpu_sensor {
namespace {

constexpr double lowestCelsius = -40;
constexpr double highestCelsius = 150;

bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

}  // namespace

std::optional<Family> familyOfChip(std::string_view name) {
  if (name == "coretemp") return Family::coretemp;
  if (name == "k10temp" || name == "zenpower") return Family::amd;
  if (startsWith(name, "cpu_thermal")) return Family::cpuThermal;
  if (startsWith(name, "acpitz")) return Family::acpi;
  return std::nullopt;
}

std::optional<Family> familyOfZone(std::string_view type) {
  if (type == "cpu-thermal" || type == "cpu_thermal" || type == "x86_pkg_temp") {
    return Family::cpuThermal;
  }
  if (type == "acpitz") return Family::acpi;
  return std::nullopt;
}

std::optional<int> labelRank(Family family, std::string_view label) {
  switch (family) {
    case Family::coretemp:
      if (startsWith(label, "Package id ")) return 0;
      if (startsWith(label, "Core ")) return 1;
      return std::nullopt;
    case Family::amd:
      if (label == "Tdie") return 0;
      if (label == "Tctl") return 1;
      if (startsWith(label, "Tccd")) return 2;
      return std::nullopt;
    case Family::cpuThermal:
    case Family::acpi:
      return 0;
  }
  return std::nullopt;
}

std::optional<double> celsiusFromMillidegrees(std::string_view text) {
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  std::int64_t millidegrees = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, error] = std::from_chars(text.data(), end, millidegrees);
  if (text.empty() || error != std::errc() || ptr != end) return std::nullopt;
  const double celsius = static_cast<double>(millidegrees) / 1000;
  if (celsius < lowestCelsius || celsius > highestCelsius) return std::nullopt;
  return celsius;
}

std::string_view firstLine(std::string_view text) {
  return text.substr(0, text.find('\n'));
}

std::optional<CpuTemperature> choose(std::span<const Candidate> candidates) {
  const Candidate* best = nullptr;
  for (const Candidate& candidate : candidates) {
    const auto key = [](const Candidate& c) {
      // Family and rank ascending, then temperature descending.
      return std::tuple(static_cast<int>(c.family), c.rank, -c.reading.celsius);
    };
    if (best == nullptr || key(candidate) < key(*best)) best = &candidate;
  }
  if (best == nullptr) return std::nullopt;
  return best->reading;
}

std::vector<CpuTemperature> family(std::span<const Candidate> candidates) {
  std::vector<const Candidate*> members;
  for (const Candidate& candidate : candidates) {
    if (!members.empty() && candidate.family > members.front()->family) continue;
    if (!members.empty() && candidate.family < members.front()->family) members.clear();
    members.push_back(&candidate);
  }
  std::stable_sort(
      members.begin(), members.end(),
      [](const Candidate* one, const Candidate* other) { return one->rank < other->rank; });
  std::vector<CpuTemperature> readings;
  readings.reserve(members.size());
  for (const Candidate* member : members) readings.push_back(member->reading);
  return readings;
}

}  // namespace korvo::cpu_sensor
