#include "app/codex_state_file.hpp"

#include <nlohmann/json.hpp>

#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "shared/json_reader.hpp"
#include "shared/moment_text.hpp"
#include "sources/user_paths.hpp"

namespace korvo::codex_state_file {
namespace {

using Json = nlohmann::ordered_json;

// The file holds a few small objects; anything larger is not korvo's and is started anew.
constexpr std::size_t maxBytes = std::size_t{256} * 1024;

Json windowsJson(const UsageSnapshot& snapshot) {
  Json windows = Json::array();
  for (const UsageWindow& window : snapshot.windows) {
    Json entry{{"title", window.title}, {"usedPercent", window.usedPercent}};
    entry["resetsAt"] = window.resetsAt ? Json(isoMoment(*window.resetsAt)) : Json(nullptr);
    windows.push_back(std::move(entry));
  }
  return windows;
}

Json rolloutsJson(const CodexLimits& limits) {
  Json reading{{"source", limits.snapshot.source.value_or("")},
               {"fetchedAt", isoMoment(limits.snapshot.fetchedAt)}};
  reading["planType"] = limits.planType ? Json(*limits.planType) : Json(nullptr);
  if (limits.credits) {
    reading["credits"] = {{"hasCredits", limits.credits->hasCredits},
                          {"unlimited", limits.credits->unlimited}};
    reading["credits"]["balance"] =
        limits.credits->balance ? Json(*limits.credits->balance) : Json(nullptr);
  } else {
    reading["credits"] = nullptr;
  }
  Json others = Json::array();
  for (const auto& other : limits.otherLimits) {
    Json entry{{"limitId", other.limitId.value_or("")}};
    entry["limitName"] = other.limitName ? Json(*other.limitName) : Json(nullptr);
    entry["fetchedAt"] = isoMoment(other.snapshot.fetchedAt);
    entry["windows"] = windowsJson(other.snapshot);
    others.push_back(std::move(entry));
  }
  reading["otherLimits"] = std::move(others);
  return reading;
}

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "codex.json";
  }
  if (auto home = homeDirectory()) return *home / ".local" / "state" / "korvo" / "codex.json";
  return std::nullopt;
}

std::string document(const std::string& current, const CodexLimits& limits) {
  Json root = Json::object();
  // The strict reader first: it refuses nesting deep enough to exhaust the stack.
  if (std::holds_alternative<nlohmann::json>(json_reader::parse(current))) {
    Json kept = Json::parse(current, nullptr, false);
    if (kept.is_object()) root = std::move(kept);
  }
  root["rollouts"] = rolloutsJson(limits);
  return root.dump() + '\n';
}

bool save(const CodexLimits& limits) {
  const auto path = location();
  if (!path) return false;
  const auto read = readRegularFile(*path, maxBytes);
  const std::string* current = std::get_if<std::string>(&read);
  const std::string bytes = document(current ? *current : std::string(), limits);
  if (current && *current == bytes) return true;
  return createPrivateDirectories(path->parent_path()) && replaceFileAtomically(*path, bytes, 0600);
}

}  // namespace korvo::codex_state_file
