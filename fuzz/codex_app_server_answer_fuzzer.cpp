#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/display_text.hpp"
#include "shared/usage_json.hpp"
#include "sources/codex_app_server_answer.hpp"

// Any line of the app-server's output is the answer or not, never a crash. An answer holds limits
// that come from the app-server at the moment it answered and encode for the shared file, or an
// error of one short line, never both.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view line(reinterpret_cast<const char*>(data), size);
  const korvo::Date answeredAt = korvo::Date::fromUnixSeconds(1795600000);
  const auto answer =
      korvo::codex_app_server::readAnswer(line, korvo::codex_app_server::rateLimitsId, answeredAt);
  if (!answer) return 0;
  if (answer->limits && answer->error) std::abort();
  if (answer->error) {
    if (answer->error->size() > 210 || answer->error->find('\n') != std::string::npos) std::abort();
    if (!korvo::isUtf8(*answer->error)) std::abort();
  }
  if (answer->limits) {
    const auto& snapshot = answer->limits->snapshot;
    if (snapshot.windows.empty() || snapshot.windows.size() > 2) std::abort();
    if (snapshot.source != "Codex app-server" || !(snapshot.fetchedAt == answeredAt)) std::abort();
    for (const auto& window : snapshot.windows) {
      if (!std::isfinite(window.usedPercent) || window.title.empty()) std::abort();
    }
    if (!korvo::encodeUsageSnapshot(snapshot)) std::abort();
    for (const auto& other : answer->limits->otherLimits) {
      if (!other.limitId || other.snapshot.windows.empty()) std::abort();
    }
  }
  return 0;
}
