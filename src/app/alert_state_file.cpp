#include "app/alert_state_file.hpp"

#include <nlohmann/json.hpp>
#include <ostream>
#include <system_error>

#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "shared/json_reader.hpp"
#include "sources/user_paths.hpp"

namespace korvo::alert_state_file {
namespace {

// A few notices per window: anything larger is not korvo's.
constexpr std::size_t maxBytes = std::size_t{256} * 1024;

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "alerts.json";
  }
  if (auto home = homeDirectory()) return *home / ".local" / "state" / "korvo" / "alerts.json";
  return std::nullopt;
}

std::string document(const usage_alerts::Memory& memory) {
  nlohmann::ordered_json given = nlohmann::ordered_json::array();
  for (const auto& entry : memory.given) {
    given.push_back(
        {{"metric", entry.metric},
         {"resetsAt", entry.resetsAt ? nlohmann::ordered_json(entry.resetsAt->unixSeconds())
                                     : nlohmann::ordered_json(nullptr)},
         {"percent", entry.percent}});
  }
  return nlohmann::ordered_json{{"given", given}, {"hot", memory.hot}}.dump() + '\n';
}

Decoded<usage_alerts::Memory> parse(std::string_view json) {
  auto parsed = json_reader::parse(json);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) return *failure;
  const auto& root = std::get<nlohmann::json>(parsed);
  try {
    json_reader::expectObject(root, "");
    usage_alerts::Memory memory;
    if (const auto* hot = json_reader::optional(root, "hot")) {
      memory.hot = json_reader::readBoolean(*hot, "hot");
    }
    const auto* given = json_reader::optional(root, "given");
    if (given == nullptr) return memory;
    json_reader::expectArray(*given, "given");
    for (const auto& entry : *given) {
      json_reader::expectObject(entry, "given");
      usage_alerts::Given item;
      item.metric =
          json_reader::readString(json_reader::required(entry, "given", "metric"), "given.metric");
      const auto* reset = json_reader::optional(entry, "resetsAt");
      if (reset != nullptr) {
        item.resetsAt = Date::fromUnixSeconds(json_reader::readNumber(*reset, "given.resetsAt"));
      }
      const double percent = json_reader::readNumber(
          json_reader::required(entry, "given", "percent"), "given.percent");
      if (percent < 0 || percent > 100) throw json_reader::Failure{"given.percent must be 0–100"};
      item.percent = static_cast<int>(percent);
      memory.given.push_back(std::move(item));
    }
    return memory;
  } catch (const json_reader::Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

usage_alerts::Memory load(std::ostream& warnings) {
  const auto path = location();
  std::error_code error;
  if (!path || !std::filesystem::exists(std::filesystem::symlink_status(*path, error))) return {};
  auto bytes = readRegularFile(*path, maxBytes);
  auto memory = std::holds_alternative<DecodeFailure>(bytes)
                    ? Decoded<usage_alerts::Memory>(std::get<DecodeFailure>(bytes))
                    : parse(std::get<std::string>(bytes));
  if (auto* failure = std::get_if<DecodeFailure>(&memory)) {
    warnings << "korvo: alerts state " << displayText(path->string()) << ": " << failure->reason
             << "; notices may be given again\n";
    return {};
  }
  return std::get<usage_alerts::Memory>(memory);
}

bool save(const usage_alerts::Memory& memory) {
  const auto path = location();
  return path && createPrivateDirectories(path->parent_path()) &&
         replaceFileAtomically(*path, document(memory), 0600);
}

}  // namespace korvo::alert_state_file
