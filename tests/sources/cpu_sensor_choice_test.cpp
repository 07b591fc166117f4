#include "sources/cpu_sensor_choice.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace korvo::cpu_sensor {
namespace {

struct MillidegreeCase {
  const char* text;
  std::optional<double> celsius;
};

TEST(CpuSensorChoiceTest, MillidegreeTextsBecomeCelsiusWithinTheWorkingRange) {
  const MillidegreeCase cases[] = {
      {"54000\n", 54.0},
      {"54000", 54.0},
      {"55500\n", 55.5},
      {"-5000\n", -5.0},
      {"-40000\n", -40.0},
      {"150000\n", 150.0},
      {"0\n", 0.0},
      {"", std::nullopt},
      {"\n", std::nullopt},
      {"warm\n", std::nullopt},
      {"54000 \n", std::nullopt},
      {"-45000\n", std::nullopt},
      {"150001\n", std::nullopt},
      {"255000\n", std::nullopt},
      {"54.5\n", std::nullopt},
      {"99999999999999999999\n", std::nullopt},
  };
  for (const auto& [text, celsius] : cases) {
    EXPECT_EQ(celsiusFromMillidegrees(text), celsius) << '"' << text << '"';
  }
}

TEST(CpuSensorChoiceTest, ChipNamesMapToTheirFamilies) {
  const std::pair<const char*, std::optional<Family>> cases[] = {
      {"coretemp", Family::coretemp},
      {"k10temp", Family::amd},
      {"zenpower", Family::amd},
      {"cpu_thermal", Family::cpuThermal},
      {"cpu_thermal0", Family::cpuThermal},
      {"acpitz", Family::acpi},
      {"acpitz-acpi-0", Family::acpi},
      {"nvme", std::nullopt},
      {"amdgpu", std::nullopt},
      {"iwlwifi_1", std::nullopt},
      {"Coretemp", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [name, family] : cases) EXPECT_EQ(familyOfChip(name), family) << name;
}

TEST(CpuSensorChoiceTest, ThermalZoneTypesMapToTheirFamilies) {
  const std::pair<const char*, std::optional<Family>> cases[] = {
      {"cpu-thermal", Family::cpuThermal},  {"cpu_thermal", Family::cpuThermal},
      {"x86_pkg_temp", Family::cpuThermal}, {"acpitz", Family::acpi},
      {"gpu-thermal", std::nullopt},        {"iwlwifi_1", std::nullopt},
      {"INT3400 Thermal", std::nullopt},
  };
  for (const auto& [type, family] : cases) EXPECT_EQ(familyOfZone(type), family) << type;
}

TEST(CpuSensorChoiceTest, LabelsRankWithinTheirFamily) {
  const std::tuple<Family, const char*, std::optional<int>> cases[] = {
      {Family::coretemp, "Package id 0", 0},
      {Family::coretemp, "Core 3", 1},
      {Family::coretemp, "", std::nullopt},
      {Family::coretemp, "Physical id 0", std::nullopt},
      {Family::amd, "Tdie", 0},
      {Family::amd, "Tctl", 1},
      {Family::amd, "Tccd1", 2},
      {Family::amd, "Tccd8", 2},
      {Family::amd, "", std::nullopt},
      {Family::amd, "Tdie2", std::nullopt},
      {Family::cpuThermal, "", 0},
      {Family::acpi, "anything", 0},
  };
  for (const auto& [family, label, rank] : cases) {
    EXPECT_EQ(labelRank(family, label), rank) << label;
  }
}

CpuTemperature reading(double celsius, const char* chip, const char* label) {
  return {celsius, chip, label, "/sys/class/hwmon/hwmon0/temp1_input"};
}

TEST(CpuSensorChoiceTest, FirstFamilyThenBestRankThenHottestWins) {
  const std::vector<Candidate> candidates{
      {Family::acpi, 0, reading(95, "acpitz", "")},
      {Family::coretemp, 1, reading(90, "coretemp", "Core 0")},
      {Family::coretemp, 0, reading(61, "coretemp", "Package id 0")},
      {Family::coretemp, 0, reading(64, "coretemp", "Package id 1")},
  };
  EXPECT_EQ(choose(candidates), reading(64, "coretemp", "Package id 1"));
}

TEST(CpuSensorChoiceTest, NoCandidatesIsNoReading) {
  EXPECT_EQ(choose({}), std::nullopt);
}

TEST(CpuSensorChoiceTest, FirstLineDropsTheNewline) {
  EXPECT_EQ(firstLine("coretemp\n"), "coretemp");
  EXPECT_EQ(firstLine("Package id 0"), "Package id 0");
  EXPECT_EQ(firstLine("a\nb\n"), "a");
}

}  // namespace
}  // namespace korvo::cpu_sensor
