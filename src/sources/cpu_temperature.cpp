#include "sources/cpu_temperature.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "base/display_text.hpp"
#include "shared/file_bytes.hpp"
#include "sources/cpu_sensor_choice.hpp"

namespace korvo {
namespace {

using cpu_sensor::Candidate;

// sysfs reports every attribute as 4096 bytes long; nothing we read is longer.
constexpr std::size_t maxAttributeBytes = 4096;

std::optional<std::string> readAttribute(const std::filesystem::path& file) {
  auto bytes = readRegularFile(file, maxAttributeBytes);
  if (auto* text = std::get_if<std::string>(&bytes)) return std::move(*text);
  return std::nullopt;
}

// The names in `directory` that begin with `prefix`, in sorted order; none when it cannot be
// listed (missing, not a directory, a symlink loop). Every entry is looked at: a listing cut
// short could leave out the hottest sensor, and listing names costs little next to reading them.
std::vector<std::string> namesStartingWith(const std::filesystem::path& directory,
                                           std::string_view prefix) {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entries(directory, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    std::string name = entries->path().filename().string();
    if (name.starts_with(prefix)) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

// "temp3_input" -> "temp3"; none for other names.
std::optional<std::string> sensorStem(std::string_view name) {
  constexpr std::string_view suffix = "_input";
  if (!name.starts_with("temp") || !name.ends_with(suffix)) return std::nullopt;
  return std::string(name.substr(0, name.size() - suffix.size()));
}

// Every counted sensor of one hwmon chip; its attributes sit in the chip's folder or, with some
// older drivers, in its device/ folder.
void addChip(const std::filesystem::path& root, const std::string& hwmon,
             std::vector<Candidate>& candidates) {
  const std::filesystem::path systemDir = std::filesystem::path("/sys/class/hwmon") / hwmon;
  const std::filesystem::path dir = root / systemDir.relative_path();
  auto name = readAttribute(dir / "name");
  if (!name) name = readAttribute(dir / "device" / "name");
  if (!name) return;
  // Names from the kernel are shown as read, escaped where they are not UTF-8.
  const std::string chip = displayText(cpu_sensor::firstLine(*name));
  const auto family = cpu_sensor::familyOfChip(chip);
  if (!family) return;
  std::set<std::string> stemsSeen;
  for (const char* sub : {"", "device"}) {
    for (const std::string& file : namesStartingWith(dir / sub, "temp")) {
      const auto stem = sensorStem(file);
      if (!stem || !stemsSeen.insert(*stem).second) continue;
      const auto input = readAttribute(dir / sub / file);
      const auto celsius = input ? cpu_sensor::celsiusFromMillidegrees(*input) : std::nullopt;
      if (!celsius) continue;
      const auto labelText = readAttribute(dir / sub / (*stem + "_label"));
      std::string label = labelText ? displayText(cpu_sensor::firstLine(*labelText)) : "";
      const auto rank = cpu_sensor::labelRank(*family, label);
      if (!rank) continue;
      auto systemFile = (systemDir / sub / file).lexically_normal();
      candidates.push_back({*family, *rank, {*celsius, chip, std::move(label), systemFile}});
    }
  }
}

void addZone(const std::filesystem::path& root, const std::string& zone,
             std::vector<Candidate>& candidates) {
  const std::filesystem::path systemDir = std::filesystem::path("/sys/class/thermal") / zone;
  const std::filesystem::path dir = root / systemDir.relative_path();
  const auto type = readAttribute(dir / "type");
  if (!type) return;
  const std::string chip = displayText(cpu_sensor::firstLine(*type));
  const auto family = cpu_sensor::familyOfZone(chip);
  if (!family) return;
  const auto input = readAttribute(dir / "temp");
  const auto celsius = input ? cpu_sensor::celsiusFromMillidegrees(*input) : std::nullopt;
  if (!celsius) return;
  candidates.push_back({*family, 0, {*celsius, chip, "", systemDir / "temp"}});
}

}  // namespace

namespace {

std::vector<Candidate> candidatesUnder(const std::filesystem::path& root) {
  std::vector<Candidate> candidates;
  for (const std::string& hwmon : namesStartingWith(root / "sys/class/hwmon", "hwmon")) {
    addChip(root, hwmon, candidates);
  }
  for (const std::string& zone : namesStartingWith(root / "sys/class/thermal", "thermal_zone")) {
    addZone(root, zone, candidates);
  }
  return candidates;
}

}  // namespace

std::optional<CpuTemperature> readCpuTemperature(const std::filesystem::path& root) {
  return cpu_sensor::choose(candidatesUnder(root));
}

std::vector<CpuTemperature> readCpuSensors(const std::filesystem::path& root) {
  return cpu_sensor::family(candidatesUnder(root));
}

}  // namespace korvo
