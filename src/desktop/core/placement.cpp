#include "desktop/core/placement.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <utility>

#include "extension/widget_kind.hpp"
#include "ui/words.hpp"

namespace korvo::desktop {
namespace {

using Json = nlohmann::json;

constexpr std::array<std::pair<std::string_view, ScreenAnchor>, 4> anchorNames{{
    {"top-left", ScreenAnchor::topLeft},
    {"top-right", ScreenAnchor::topRight},
    {"bottom-left", ScreenAnchor::bottomLeft},
    {"bottom-right", ScreenAnchor::bottomRight},
}};

PlacementError error(const std::string& key, const std::string& problem) {
  return {key + ": " + problem};
}

// "text" in double quotes. Built by appending: GCC 12 at -O3 misreads `"\"" + std::string(…)`
// as an overlapping copy (-Wrestrict).
std::string quoted(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 2);
  result.append(1, '"').append(text).append(1, '"');
  return result;
}

bool isFiniteNumber(const Json& value) {
  return value.is_number() && std::isfinite(value.get<double>());
}

// Kind and family, shared by the document and `--widget`.
std::variant<Placement, PlacementError> resolve(const std::string& kindKey,
                                                const std::string& familyKey,
                                                std::string_view kindName,
                                                std::optional<std::string_view> familyName,
                                                const KindLookup& lookup) {
  const auto known = lookup(kindName);
  if (!known || known->families.empty()) {
    return error(kindKey,
                 "unknown widget " + quoted(kindName) + " (memory, awake, usage, temperature)");
  }
  Placement placement;
  placement.kind = known->kind;
  placement.family = known->families.front();
  if (familyName) {
    const auto family = ui::familyNamed(*familyName);
    if (!family || std::find(known->families.begin(), known->families.end(), *family) ==
                       known->families.end()) {
      return error(familyKey, quoted(*familyName) + " is not offered by " + std::string(kindName) +
                                  " (" + ui::familyList(known->families) + ")");
    }
    placement.family = *family;
  }
  return placement;
}

std::variant<Placement, PlacementError> placementFromJSON(const Json& item, std::size_t index,
                                                          const KindLookup& lookup) {
  std::string key = "[";
  key.append(std::to_string(index)).append("]");
  if (!item.is_object()) return error(key, "expected an object with a \"kind\"");
  for (const auto& [name, value] : item.items()) {
    if (name != "kind" && name != "family" && name != "position" && name != "anchor" &&
        name != "margin" && name != "output") {
      return error(std::string(key).append(".").append(name),
                   "unknown key (kind, family, position, anchor, margin, output)");
    }
  }
  const auto kind = item.find("kind");
  if (kind == item.end() || !kind->is_string()) {
    return error(key + ".kind", "expected a widget kind string");
  }
  std::optional<std::string> familyName;
  if (const auto family = item.find("family"); family != item.end()) {
    if (!family->is_string()) return error(key + ".family", R"(expected "small" or "medium")");
    familyName = family->get<std::string>();
  }
  auto resolved =
      resolve(key + ".kind", key + ".family", kind->get<std::string>(), familyName, lookup);
  if (auto* failure = std::get_if<PlacementError>(&resolved)) return *failure;
  auto placement = std::get<Placement>(std::move(resolved));

  if (const auto position = item.find("position"); position != item.end()) {
    if (item.contains("anchor")) {
      return error(key + ".position", "give either a position or an anchor, not both");
    }
    if (!position->is_object() || !position->contains("x") || !position->contains("y") ||
        !isFiniteNumber(position->at("x")) || !isFiniteNumber(position->at("y"))) {
      return error(key + ".position", R"(expected {"x": number, "y": number})");
    }
    placement.position =
        ui::Point{position->at("x").get<double>(), position->at("y").get<double>()};
  }
  if (const auto anchor = item.find("anchor"); anchor != item.end()) {
    const auto value = anchor->is_string() ? anchorFromName(anchor->get<std::string>())
                                           : std::optional<ScreenAnchor>{};
    if (!value) {
      return error(key + ".anchor", "expected top-left, top-right, bottom-left or bottom-right");
    }
    placement.anchor = *value;
  }
  if (const auto margin = item.find("margin"); margin != item.end()) {
    if (!isFiniteNumber(*margin) || margin->get<double>() < 0) {
      return error(key + ".margin", "expected a number of pixels, 0 or more");
    }
    placement.margin = margin->get<double>();
  }
  if (const auto output = item.find("output"); output != item.end()) {
    if (!output->is_string() || output->get<std::string>().empty()) {
      return error(key + ".output", "expected a monitor's connector name such as \"DP-1\"");
    }
    placement.output = output->get<std::string>();
  }
  return placement;
}

}  // namespace

std::optional<ScreenAnchor> anchorFromName(std::string_view name) {
  for (const auto& [anchorName, anchor] : anchorNames) {
    if (anchorName == name) return anchor;
  }
  return std::nullopt;
}

std::string_view anchorName(ScreenAnchor anchor) {
  for (const auto& [name, value] : anchorNames) {
    if (value == anchor) return name;
  }
  return {};
}

std::string placementsText(const std::vector<Placement>& placements) {
  // Keys in the order a person reads them, which nlohmann's ordered objects keep.
  auto document = nlohmann::ordered_json::array();
  for (const auto& placement : placements) {
    nlohmann::ordered_json item;
    item["kind"] = placement.kind;
    item["family"] = ui::familyWord(placement.family);
    if (placement.position) {
      item["position"] = {{"x", placement.position->x}, {"y", placement.position->y}};
    } else {
      item["anchor"] = anchorName(placement.anchor);
    }
    if (placement.margin != defaultPlacementMargin) item["margin"] = placement.margin;
    if (placement.output) item["output"] = *placement.output;
    document.push_back(std::move(item));
  }
  return document.dump(2) + "\n";
}

PlacementsResult parsePlacements(std::string_view json, const KindLookup& lookup) {
  // The parser takes a NUL byte for the end of its input; JSON has no place for one anywhere.
  if (const auto nul = json.find('\0'); nul != std::string_view::npos) {
    return PlacementError{"not valid JSON (NUL byte at byte " + std::to_string(nul + 1) + ")"};
  }
  Json document;
  try {
    document = Json::parse(json);
  } catch (const Json::parse_error& failure) {
    return PlacementError{"not valid JSON (byte " + std::to_string(failure.byte) + ")"};
  } catch (const Json::out_of_range&) {
    // 1e400 and the like: the parser throws this one, not a parse error, for a number no
    // double holds; uncaught it would end the host.
    return PlacementError{"not valid JSON (a number out of range)"};
  }
  if (!document.is_array()) {
    return PlacementError{"expected a JSON array of placements"};
  }
  std::vector<Placement> placements;
  for (std::size_t index = 0; index < document.size(); ++index) {
    auto placement = placementFromJSON(document[index], index, lookup);
    if (auto* failure = std::get_if<PlacementError>(&placement)) return *failure;
    placements.push_back(std::get<Placement>(std::move(placement)));
  }
  return placements;
}

PlacementsResult parseWidgetArguments(const std::vector<std::string>& arguments,
                                      const KindLookup& lookup) {
  std::vector<Placement> placements;
  for (const auto& argument : arguments) {
    const auto colon = argument.find(':');
    const std::string_view whole = argument;
    const auto kind = whole.substr(0, colon);
    const auto family =
        colon == std::string::npos ? std::optional<std::string_view>{} : whole.substr(colon + 1);
    const std::string key = "--widget " + argument;
    auto placement = resolve(key, key, kind, family, lookup);
    if (auto* failure = std::get_if<PlacementError>(&placement)) return *failure;
    placements.push_back(std::get<Placement>(std::move(placement)));
  }
  return placements;
}

std::vector<Placement> defaultPlacements(const KindLookup& lookup) {
  const std::array<std::pair<WidgetKind, ui::WidgetFamily>, 4> wanted{{
      {WidgetKind::memory, ui::WidgetFamily::systemSmall},
      {WidgetKind::awake, ui::WidgetFamily::systemSmall},
      {WidgetKind::usage, ui::WidgetFamily::systemMedium},
      {WidgetKind::temperature, ui::WidgetFamily::systemSmall},
  }};
  std::vector<Placement> placements;
  for (const auto& [kind, family] : wanted) {
    const auto known = lookup(kindWord(kind));
    if (!known || known->families.empty()) continue;
    Placement placement;
    placement.kind = known->kind;
    const bool offered =
        std::find(known->families.begin(), known->families.end(), family) != known->families.end();
    placement.family = offered ? family : known->families.front();
    placements.push_back(std::move(placement));
  }
  return placements;
}

}  // namespace korvo::desktop
