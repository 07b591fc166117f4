#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "desktop/core/arrangement.hpp"
#include "desktop/core/placement.hpp"

namespace {

// The bundle's four kinds, as the host looks them up; "memory" offers both families.
std::optional<korvo::desktop::KindFamilies> lookUp(std::string_view name) {
  constexpr std::string_view prefix = "com.tessmoor.Korvo.";
  if (name.starts_with(prefix)) name.remove_prefix(prefix.size());
  if (name != "memory" && name != "awake" && name != "usage" && name != "temperature") return {};
  std::vector<korvo::ui::WidgetFamily> families{korvo::ui::WidgetFamily::systemSmall};
  if (name != "awake") families.push_back(korvo::ui::WidgetFamily::systemMedium);
  return korvo::desktop::KindFamilies{std::string(prefix) + std::string(name), families};
}

bool within(double origin, double length, double start, double areaLength) {
  return std::isfinite(origin) && origin >= start && origin + length <= start + areaLength;
}

}  // namespace

// Any document gives placements or a reason naming where; the placements it gives always put
// every widget inside the work area, whatever position or margin they carry.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view document(reinterpret_cast<const char*>(data), size);
  const auto parsed = korvo::desktop::parsePlacements(document, lookUp);
  if (const auto* failure = std::get_if<korvo::desktop::PlacementError>(&parsed)) {
    if (failure->message.empty()) std::abort();
    return 0;
  }
  const auto& placements = std::get<std::vector<korvo::desktop::Placement>>(parsed);
  std::vector<korvo::ui::Size> sizes;
  for (const auto& placement : placements) {
    if (!lookUp(placement.kind)) std::abort();
    if (!std::isfinite(placement.margin) || placement.margin < 0) std::abort();
    const bool medium = placement.family == korvo::ui::WidgetFamily::systemMedium;
    sizes.push_back({medium ? 364.0 : 170.0, 170});
  }
  const korvo::ui::Rect workArea{0, 32, 1600, 868};
  const auto arrangement = korvo::desktop::arrangeWindows(placements, sizes, workArea);
  if (arrangement.origins.size() != placements.size()) std::abort();
  for (std::size_t i = 0; i < placements.size(); ++i) {
    const auto origin = arrangement.origins[i];
    if (!within(origin.x, sizes[i].width, workArea.x, workArea.width) ||
        !within(origin.y, sizes[i].height, workArea.y, workArea.height)) {
      std::abort();
    }
  }
  return 0;
}
