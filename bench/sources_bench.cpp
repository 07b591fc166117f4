#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "base/clock.hpp"
#include "sources/codex_rollouts.hpp"
#include "sources/cpu_temperature.hpp"
#include "support/temporary_directory.hpp"

namespace {

// Where generated inputs go, removed at exit.
const std::filesystem::path& scratch() {
  static const korvo::testing_support::TemporaryDirectory instance;
  return instance.path();
}

void write(const std::filesystem::path& file, const std::string& bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

// A conversation line of about a kilobyte, the bulk of a real rollout.
const std::string chatter =
    R"({"timestamp":"2026-11-15T01:30:02.000Z","type":"response_item","payload":{"type":"message","role":"assistant","content":[{"type":"output_text","text":")" +
    std::string(900, 'x') + R"("}]}})" + "\n";

const std::string event =
    R"({"timestamp":"2026-11-15T01:30:21.500Z","type":"event_msg","payload":{"type":"token_count","info":{"total_token_usage":{"input_tokens":5200,"cached_input_tokens":2048,"output_tokens":14,"reasoning_output_tokens":0,"total_tokens":5214},"model_context_window":272000},"rate_limits":{"limit_id":"codex","limit_name":null,"primary":{"used_percent":28.0,"window_minutes":300,"resets_at":1794721500},"secondary":{"used_percent":42.0,"window_minutes":10080,"resets_at":1795100000},"credits":null,"plan_type":"plus"}}})"
    "\n";

// A Codex home whose one rollout holds `bytes` of conversation with the event at its end (or,
// with `eventFirst`, at its start, so the whole file is read).
std::filesystem::path codexHome(std::size_t bytes, bool eventFirst) {
  static std::map<std::pair<std::size_t, bool>, std::filesystem::path> made;
  auto& home = made[{bytes, eventFirst}];
  if (!home.empty()) return home;
  home = scratch() / ("codex-" + std::to_string(bytes) + (eventFirst ? "-first" : "-last"));
  const auto file = home / "sessions/2026/11/15/rollout-2026-11-15T01-30-00-a.jsonl";
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  if (eventFirst) out << event;
  for (std::size_t written = 0; written < bytes; written += chatter.size()) out << chatter;
  if (!eventFirst) out << event;
  return home;
}

void BM_CodexRollout(benchmark::State& state) {
  const auto home = codexHome(static_cast<std::size_t>(state.range(0)) << 20, state.range(1) != 0);
  for (auto _ : state) {
    auto limits = korvo::readCodexLimits(home, korvo::clock::now());
    if (!std::holds_alternative<korvo::CodexLimits>(limits)) state.SkipWithError("no limits");
    benchmark::DoNotOptimize(limits);
  }
}
// Sizes in MiB; the second argument puts the event at the start, so every byte is read.
BENCHMARK(BM_CodexRollout)
    ->ArgNames({"MiB", "eventFirst"})
    ->Args({1, 0})
    ->Args({200, 0})
    ->Args({1, 1})
    ->Args({200, 1})
    ->Unit(benchmark::kMicrosecond);

// Twelve hwmon chips as a two-socket workstation shows them: two coretemp packages with eight
// cores each, disks, a GPU, Wi-Fi, ACPI and board sensors, plus three thermal zones.
std::filesystem::path hwmonTree() {
  static std::filesystem::path root;
  if (!root.empty()) return root;
  root = scratch() / "sysroot";
  const std::string hwmon = "sys/class/hwmon/hwmon";
  const auto chip = [&](int index, const std::string& name, int sensors, const std::string& label) {
    const auto dir = root / (hwmon + std::to_string(index));
    write(dir / "name", name + "\n");
    for (int sensor = 1; sensor <= sensors; ++sensor) {
      const std::string stem = "temp" + std::to_string(sensor);
      write(dir / (stem + "_input"), std::to_string(40000 + 1000 * sensor + index) + "\n");
      write(dir / (stem + "_label"),
            (sensor == 1 && name == "coretemp" ? "Package id " + std::to_string(index)
                                               : label + " " + std::to_string(sensor)) +
                "\n");
      write(dir / (stem + "_max"), "100000\n");
      write(dir / (stem + "_crit"), "105000\n");
    }
  };
  chip(0, "coretemp", 9, "Core");
  chip(1, "coretemp", 9, "Core");
  chip(2, "nvme", 3, "Sensor");
  chip(3, "nvme", 3, "Sensor");
  chip(4, "amdgpu", 3, "edge");
  chip(5, "iwlwifi_1", 1, "");
  chip(6, "acpitz", 2, "");
  chip(7, "nct6798", 7, "SYSTIN");
  chip(8, "drivetemp", 1, "");
  chip(9, "drivetemp", 1, "");
  chip(10, "pch_cannonlake", 1, "");
  chip(11, "spd5118", 1, "");
  for (const auto& [zone, type] :
       std::map<int, std::string>{{0, "acpitz"}, {1, "x86_pkg_temp"}, {2, "iwlwifi_1"}}) {
    const auto dir = root / ("sys/class/thermal/thermal_zone" + std::to_string(zone));
    write(dir / "type", type + "\n");
    write(dir / "temp", "45000\n");
  }
  return root;
}

void BM_Temperature12Hwmon(benchmark::State& state) {
  const auto root = hwmonTree();
  for (auto _ : state) {
    auto reading = korvo::readCpuTemperature(root);
    if (!reading) state.SkipWithError("no reading");
    benchmark::DoNotOptimize(reading);
  }
}
BENCHMARK(BM_Temperature12Hwmon)->Unit(benchmark::kMicrosecond);

}  // namespace
