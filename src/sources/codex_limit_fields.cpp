#include "sources/codex_limit_fields.hpp"

#include <algorithm>
#include <cmath>

#include "base/c_format.hpp"

namespace korvo::codex_fields {
namespace {

using codex_rollout::Slot;

constexpr double fiveHourMinutes = 300;
constexpr double weekMinutes = 10080;
constexpr std::size_t maxLabelBytes = 64;
constexpr std::size_t maxBalanceBytes = 24;

std::optional<double> finiteNumber(const Json* value) {
  if (value == nullptr || !value->is_number()) return std::nullopt;
  const double number = value->get<double>();
  if (!std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<std::string> balance(const Json* value) {
  if (const auto number = finiteNumber(value)) return cFormat("%.2f", *number);
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > maxBalanceBytes) return std::nullopt;
  std::size_t digits = 0;
  std::size_t points = 0;
  for (std::size_t i = 0; i < text->size(); ++i) {
    const char c = (*text)[i];
    if (c >= '0' && c <= '9') {
      ++digits;
    } else if (c == '.') {
      ++points;
    } else if (c != '-' || i != 0) {
      return std::nullopt;
    }
  }
  return digits > 0 && points <= 1 ? std::optional(*text) : std::nullopt;
}

struct SlotWindow {
  double lengthMinutes;  // for ordering; the slot's usual length when the limit gives none
  UsageWindow window;
};

std::optional<SlotWindow> readWindow(const Json& limits, Slot slot, const FieldNames& names,
                                     Date at) {
  const Json* value = member(limits, slot == Slot::primary ? "primary" : "secondary");
  if (value == nullptr || !value->is_object()) return std::nullopt;
  const auto used = finiteNumber(member(*value, names.usedPercent));
  if (!used) return std::nullopt;
  auto minutes = finiteNumber(member(*value, names.windowMinutes));
  if (minutes && *minutes <= 0) minutes.reset();
  std::optional<Date> resetsAt;
  if (const auto unixSeconds = finiteNumber(member(*value, names.resetsAt))) {
    resetsAt = Date::fromUnixSeconds(*unixSeconds);
  } else if (!names.resetsInSeconds.empty()) {
    if (const auto in = finiteNumber(member(*value, names.resetsInSeconds))) {
      resetsAt = at.addingSeconds(*in);
    }
  }
  const double usual = slot == Slot::primary ? fiveHourMinutes : weekMinutes;
  return SlotWindow{minutes.value_or(usual),
                    {codex_rollout::windowTitle(minutes, slot), *used, resetsAt}};
}

}  // namespace

const Json* member(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

const std::string* string(const Json* value) {
  return value != nullptr && value->is_string() ? &value->get_ref<const std::string&>() : nullptr;
}

std::optional<std::string> machineWord(const Json* value) {
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > maxLabelBytes) return std::nullopt;
  const bool word = std::all_of(text->begin(), text->end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
  });
  return word ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> label(const Json* value) {
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > maxLabelBytes) return std::nullopt;
  const bool printable =
      std::all_of(text->begin(), text->end(), [](char c) { return c >= ' ' && c <= '~'; });
  return printable ? std::optional(*text) : std::nullopt;
}

std::optional<codex_rollout::Credits> credits(const Json* value, const FieldNames& names) {
  if (value == nullptr || !value->is_object()) return std::nullopt;
  const Json* has = member(*value, names.hasCredits);
  const Json* unlimited = member(*value, "unlimited");
  if (has == nullptr || !has->is_boolean()) return std::nullopt;
  return codex_rollout::Credits{
      has->get<bool>(), unlimited != nullptr && unlimited->is_boolean() && unlimited->get<bool>(),
      balance(member(*value, "balance"))};
}

std::vector<UsageWindow> windows(const Json& limits, const FieldNames& names, Date at) {
  std::vector<SlotWindow> found;
  for (const Slot slot : {Slot::primary, Slot::secondary}) {
    if (auto window = readWindow(limits, slot, names, at)) found.push_back(std::move(*window));
  }
  std::stable_sort(found.begin(), found.end(), [](const SlotWindow& a, const SlotWindow& b) {
    return a.lengthMinutes < b.lengthMinutes;
  });
  std::vector<UsageWindow> result;
  result.reserve(found.size());
  for (auto& slotWindow : found) result.push_back(std::move(slotWindow.window));
  return result;
}

}  // namespace korvo::codex_fields
