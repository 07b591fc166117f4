#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvo {

// The hottest CPU sensor of the family that counts on this machine.
struct CpuTemperature {
  double celsius = 0;          // degrees Celsius
  std::string chip;            // hwmon `name` ("coretemp") or thermal zone `type` ("acpitz")
  std::string label;           // the sensor's label ("Package id 0", "Tdie"); empty when unlabelled
  std::filesystem::path file;  // the file it came from, as the system names it (under /sys)

  friend bool operator==(const CpuTemperature&, const CpuTemperature&) = default;
};

// Reads every hwmon chip and thermal zone under `root` (/sys/class/hwmon, /sys/class/thermal) and
// picks the reading as the family order says; none when no CPU sensor gives a usable reading.
std::optional<CpuTemperature> readCpuTemperature(const std::filesystem::path& root);

// Every sensor of the family that counts on this machine (each package, then each core), read
// as readCpuTemperature reads them; empty when none gives a usable reading.
std::vector<CpuTemperature> readCpuSensors(const std::filesystem::path& root);

}  // namespace korvo
