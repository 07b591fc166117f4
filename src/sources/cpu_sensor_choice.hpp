#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "sources/cpu_temperature.hpp"

// The pure half of the temperature reader: what a sysfs text means and which sensor wins.
namespace korvo::cpu_sensor {

// CPU sensor families in the order they are preferred: the first one with a reading wins.
enum class Family { coretemp, amd, cpuThermal, acpi };

// The family of a hwmon chip by its `name` ("coretemp", "k10temp", "zenpower", "cpu_thermal*",
// "acpitz*"); none for every other chip (nvme, amdgpu, iwlwifi, …).
std::optional<Family> familyOfChip(std::string_view name);

// The family of a thermal zone by its `type` ("cpu-thermal", "cpu_thermal", "x86_pkg_temp",
// "acpitz"); none for every other zone.
std::optional<Family> familyOfZone(std::string_view type);

// How much a sensor counts within its family, lower first: coretemp "Package id *" 0, "Core *" 1;
// k10temp and zenpower "Tdie" 0, "Tctl" 1, "Tccd*" 2; any sensor of the other families 0. None for
// a sensor that does not count (an unlabelled coretemp input, a k10temp "Tccd" of another name).
std::optional<int> labelRank(Family family, std::string_view label);

// Degrees Celsius from a `temp*_input` text (millidegrees, one integer, a trailing newline
// allowed); none when it is not a number or lies outside −40…150 °C, the range of a working
// sensor.
std::optional<double> celsiusFromMillidegrees(std::string_view text);

// The first line of a `name`, `type` or `temp*_label` text, without its newline.
std::string_view firstLine(std::string_view text);

struct Candidate {
  Family family = Family::acpi;
  int rank = 0;
  CpuTemperature reading;

  friend bool operator==(const Candidate&, const Candidate&) = default;
};

// The first family present, its best rank present, and of those the hottest reading.
std::optional<CpuTemperature> choose(std::span<const Candidate> candidates);

// Every reading of the first family present, by rank (packages before cores), then in the order
// the system lists them.
std::vector<CpuTemperature> family(std::span<const Candidate> candidates);

}  // namespace korvo::cpu_sensor
