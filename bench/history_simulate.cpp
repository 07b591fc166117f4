// Writes the history a service publishing once a minute would have left after DAYS days ending
// at END (Unix seconds, default now): Codex's and Claude's 5-hour and weekly windows rising
// through each period and resetting, the CPU temperature, memory used and pressure, and CPU load,
// compacted as the publications compact it. Prints the file's size in bytes.
//   history_simulate DAYS [END]      (the history at $XDG_STATE_HOME/korvo/history.sqlite3)
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>

#include "app/history_store.hpp"
#include "base/clock.hpp"

namespace {

using korvo::Date;
using korvo::HistoryRow;

// A window `length` seconds long whose use climbs unevenly through the period: bursts of work
// in the day, nothing at night.
HistoryRow window(const std::string& metric, double length, double pace, double time) {
  const double start = std::floor(time / length) * length;
  const double elapsed = time - start;
  const double hours = elapsed / 3600;
  const double used =
      std::min(100.0, pace * (hours - 0.3 * std::sin(hours * 0.26)) + 2 * std::sin(hours * 1.7));
  return {Date::fromUnixSeconds(time), metric, std::max(0.0, used),
          Date::fromUnixSeconds(start + length)};
}

}  // namespace

int main(int argc, char** argv) {
  double days = 0;
  if (argc < 2 ||
      std::from_chars(argv[1], argv[1] + std::string(argv[1]).size(), days).ec != std::errc()) {
    std::cerr << "usage: history_simulate DAYS [END]\n";
    return 2;
  }
  const double end = argc > 2 ? std::stod(argv[2]) : korvo::clock::now().unixSeconds();
  const auto file = korvo::HistoryStore::location();
  if (!file) {
    std::cerr << "history_simulate: no place for the history (set XDG_STATE_HOME)\n";
    return 1;
  }
  constexpr double minute = 60;
  const double start = end - days * 86400;
  auto store = korvo::HistoryStore::open(*file, std::cerr, Date::fromUnixSeconds(start),
                                         std::chrono::seconds(5));
  if (!store) return 1;
  for (double time = start; time <= end; time += minute) {
    const double hour = std::fmod(time / 3600, 24);
    const double busy = hour > 8 && hour < 19 ? 1 : 0.2;
    const Date at = Date::fromUnixSeconds(time);
    store->record({
        window("codex.5-hour", 5 * 3600, 14, time),
        window("codex.Weekly", 7 * 86400, 0.55, time),
        window("claude.5-hour", 5 * 3600, 11, time),
        window("claude.Weekly", 7 * 86400, 0.45, time),
        {at, "temperature", 45 + 25 * busy + 5 * std::sin(time / 700), {}},
        {at, "memory.used", 40 + 30 * busy + 4 * std::sin(time / 3000), {}},
        {at, "memory.pressure", busy > 0.5 && std::sin(time / 5000) > 0.9 ? 2.0 : 1.0, {}},
        {at, "cpu.load", std::clamp(50 * busy + 30 * std::sin(time / 400), 0.0, 100.0), {}},
    });
    store->compactIfDue(at);
  }
  store.reset();
  std::cout << std::filesystem::file_size(*file) << '\n';
  return 0;
}
