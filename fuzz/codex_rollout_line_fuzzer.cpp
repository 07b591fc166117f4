#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "shared/usage_json.hpp"
#include "sources/codex_rollout_line.hpp"

// Any line gives limits or nothing, never a crash; limits always have one or two windows, come
// from Codex, and encode for the shared file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  const auto limits = korvo::codex_rollout::parseLine(line);
  if (!limits) return 0;
  const auto* snapshot = &limits->snapshot;
  if (snapshot->windows.empty() || snapshot->windows.size() > 2) std::abort();
  if (snapshot->source != "Codex CLI") std::abort();
  for (const auto& window : snapshot->windows) {
    if (!std::isfinite(window.usedPercent) || window.title.empty()) std::abort();
  }
  if (!korvo::encodeUsageSnapshot(*snapshot)) std::abort();
  return 0;
}
