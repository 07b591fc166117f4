#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "shared/widget_snapshot_json.hpp"

// Any bytes decode to a snapshot or to a reason, never to a crash; and whatever decodes encodes
// to bytes that decode to the same snapshot.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto decoded = korvo::decodeWidgetSnapshot(bytes);
  if (const auto* snapshot = std::get_if<korvo::WidgetSnapshot>(&decoded)) {
    const auto encoded = korvo::encodeWidgetSnapshot(*snapshot);
    if (!encoded) std::abort();
    const auto again = korvo::decodeWidgetSnapshot(*encoded);
    const auto* second = std::get_if<korvo::WidgetSnapshot>(&again);
    if (second == nullptr || !(*second == *snapshot)) std::abort();
    if (korvo::encodeWidgetSnapshot(*second) != encoded) std::abort();
  } else if (std::get<korvo::DecodeFailure>(decoded).reason.empty()) {
    std::abort();
  }
  return 0;
}
