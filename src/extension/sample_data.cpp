#include "extension/sample_data.hpp"

#include "shared/usage_window.hpp"

namespace korvo::SampleData {

MemorySnapshot memoryReading(Date now) {
  constexpr std::uint64_t total = 17'179'869'184;
  constexpr std::uint64_t pageSize = 4'096;
  MemorySnapshot reading =
      MemorySnapshot::fromPageCounts(total, pageSize, /*active=*/1'500'000, /*inactive=*/500'000,
                                     /*wired=*/250'000, /*compressed=*/250'000,
                                     /*purgeable=*/100'000, /*external=*/200'000,
                                     /*swap=*/std::nullopt, MemoryPressure::normal);
  // The constructor reads the clock itself; the request's one reading of it wins.
  reading.timestamp = now;
  return reading;
}

WidgetSnapshot widgetSnapshot(Date now) {
  const UsageSnapshot usage{.windows = {{.title = std::string(UsageWindowTitle::fiveHour),
                                         .usedPercent = 28,
                                         .resetsAt = now.addingSeconds(7'200)},
                                        {.title = std::string(UsageWindowTitle::weekly),
                                         .usedPercent = 42,
                                         .resetsAt = now.addingSeconds(172'800)}},
                            .fetchedAt = now,
                            .source = std::nullopt};
  const UsageState state{
      .enabled = true, .snapshot = usage, .message = std::nullopt, .isRefreshing = false};
  return WidgetSnapshot{.date = now,
                        .temperature = 54.0,
                        .temperatureDate = now,
                        .temperatureEnabled = true,
                        .codex = state,
                        .claude = state};
}

}  // namespace korvo::SampleData
