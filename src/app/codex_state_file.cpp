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

Json optionalText(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

Json windowsJson(const UsageSnapshot& snapshot) {
  Json windows = Json::array();
  for (const UsageWindow& window : snapshot.windows) {
    Json entry{{"title", window.title}, {"usedPercent", window.usedPercent}};
    entry["resetsAt"] = window.resetsAt ? Json(isoMoment(*window.resetsAt)) : Json(nullptr);
    windows.push_back(std::move(entry));
  }
  return windows;
}

Json readingJson(const CodexLimits& limits) {
  Json reading{{"source", limits.snapshot.source.value_or("")},
               {"fetchedAt", isoMoment(limits.snapshot.fetchedAt)},
               {"windows", windowsJson(limits.snapshot)},
               {"planType", optionalText(limits.planType)}};
  if (limits.credits) {
    reading["credits"] = {{"hasCredits", limits.credits->hasCredits},
                          {"unlimited", limits.credits->unlimited},
                          {"balance", optionalText(limits.credits->balance)}};
  } else {
    reading["credits"] = nullptr;
  }
  Json others = Json::array();
  for (const auto& other : limits.otherLimits) {
    others.push_back({{"limitId", other.limitId.value_or("")},
                      {"limitName", optionalText(other.limitName)},
                      {"fetchedAt", isoMoment(other.snapshot.fetchedAt)},
                      {"windows", windowsJson(other.snapshot)}});
  }
  reading["otherLimits"] = std::move(others);
  return reading;
}

Json liveJson(const LiveRecord& live) {
  return {{"askedAt", isoMoment(live.askedAt)},
          {"failure", optionalText(live.failure)},
          {"reading", live.reading ? readingJson(*live.reading) : Json(nullptr)}};
}

// Reading back what this file wrote; a part that does not decode counts as absent.
const Json* field(const Json& object, const char* key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() ? nullptr : &*found;
}

std::optional<std::string> textField(const Json& object, const char* key) {
  const Json* value = field(object, key);
  return value && value->is_string() ? std::optional(value->get<std::string>()) : std::nullopt;
}

std::optional<Date> momentField(const Json& object, const char* key) {
  const auto text = textField(object, key);
  return text ? parseIsoMoment(*text) : std::nullopt;
}

std::optional<UsageSnapshot> snapshotFrom(const Json& object, std::optional<std::string> source) {
  const auto fetchedAt = momentField(object, "fetchedAt");
  const Json* windows = field(object, "windows");
  if (!fetchedAt || windows == nullptr || !windows->is_array()) return std::nullopt;
  UsageSnapshot snapshot{{}, *fetchedAt, std::move(source)};
  for (const Json& window : *windows) {
    const auto title = textField(window, "title");
    const Json* used = field(window, "usedPercent");
    if (!title || used == nullptr || !used->is_number()) return std::nullopt;
    snapshot.windows.push_back({*title, used->get<double>(), momentField(window, "resetsAt")});
  }
  return snapshot;
}

std::optional<CodexLimits> readingFrom(const Json& object) {
  auto snapshot = snapshotFrom(object, textField(object, "source"));
  if (!snapshot || snapshot->windows.empty()) return std::nullopt;
  CodexLimits limits{std::move(*snapshot), {}, textField(object, "planType"), std::nullopt, {}};
  if (const Json* credits = field(object, "credits"); credits && credits->is_object()) {
    const Json* has = field(*credits, "hasCredits");
    const Json* unlimited = field(*credits, "unlimited");
    if (has && has->is_boolean() && unlimited && unlimited->is_boolean()) {
      limits.credits = codex_rollout::Credits{has->get<bool>(), unlimited->get<bool>(),
                                              textField(*credits, "balance")};
    }
  }
  if (const Json* others = field(object, "otherLimits"); others && others->is_array()) {
    for (const Json& other : *others) {
      auto otherSnapshot = snapshotFrom(other, limits.snapshot.source);
      if (!otherSnapshot) continue;
      limits.otherLimits.push_back({textField(other, "limitId"), textField(other, "limitName"),
                                    std::move(*otherSnapshot), std::nullopt, std::nullopt});
    }
  }
  return limits;
}

std::optional<LiveRecord> liveFrom(const Json& object) {
  const auto askedAt = momentField(object, "askedAt");
  if (!askedAt) return std::nullopt;
  LiveRecord live{*askedAt, textField(object, "failure"), std::nullopt};
  if (const Json* reading = field(object, "reading")) live.reading = readingFrom(*reading);
  return live;
}

Json parsedObject(const std::string& bytes) {
  // The strict reader first: it refuses nesting deep enough to exhaust the stack.
  if (!std::holds_alternative<nlohmann::json>(json_reader::parse(bytes))) return Json::object();
  Json parsed = Json::parse(bytes, nullptr, false);
  return parsed.is_object() ? parsed : Json::object();
}

std::optional<std::string> currentBytes(const std::filesystem::path& path) {
  auto read = readRegularFile(path, maxBytes);
  if (auto* bytes = std::get_if<std::string>(&read)) return std::move(*bytes);
  return std::nullopt;
}

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "codex.json";
  }
  if (auto home = homeDirectory()) return *home / ".local" / "state" / "korvo" / "codex.json";
  return std::nullopt;
}

std::optional<std::filesystem::path> liveLockLocation() {
  auto file = location();
  if (!file) return std::nullopt;
  return file->parent_path() / ".codex-live.lock";
}

Record read(const std::string& bytes) {
  const Json root = parsedObject(bytes);
  Record record;
  if (const Json* rollouts = field(root, "rollouts")) record.rollouts = readingFrom(*rollouts);
  if (const Json* live = field(root, "live")) record.live = liveFrom(*live);
  return record;
}

Record load() {
  const auto path = location();
  if (!path) return {};
  const auto bytes = currentBytes(*path);
  return bytes ? read(*bytes) : Record{};
}

std::string document(const std::string& current, const Record& changes) {
  Json root = parsedObject(current);
  if (changes.rollouts) root["rollouts"] = readingJson(*changes.rollouts);
  if (changes.live) root["live"] = liveJson(*changes.live);
  return root.dump() + '\n';
}

bool save(const Record& changes) {
  const auto path = location();
  if (!path) return false;
  const auto current = currentBytes(*path);
  const std::string bytes = document(current.value_or(std::string()), changes);
  if (current && *current == bytes) return true;
  return createPrivateDirectories(path->parent_path()) && replaceFileAtomically(*path, bytes, 0600);
}

}  // namespace korvo::codex_state_file
