#include "sources/codex_app_server_answer.hpp"

#include <nlohmann/json.hpp>

#include "base/display_text.hpp"
#include "shared/json_reader.hpp"
#include "sources/codex_limit_fields.hpp"

namespace korvo::codex_app_server {
namespace {

using codex_fields::Json;
using codex_fields::member;

constexpr std::size_t maxErrorBytes = 200;

// One limit bucket of the answer (a RateLimitSnapshot), or none without usable windows.
std::optional<codex_rollout::LineLimits> readBucket(const Json& bucket, Date answeredAt) {
  if (!bucket.is_object()) return std::nullopt;
  auto windows = codex_fields::windows(bucket, codex_fields::appServerNames, answeredAt);
  if (windows.empty()) return std::nullopt;
  std::optional<std::string> limitId = codex_fields::machineWord(member(bucket, "limitId"));
  if (limitId && *limitId == "codex") limitId.reset();
  codex_rollout::LineLimits limits{
      std::move(limitId),
      std::nullopt,
      {std::move(windows), answeredAt, std::string(sourceName)},
      codex_fields::machineWord(member(bucket, "planType")),
      codex_fields::credits(member(bucket, "credits"), codex_fields::appServerNames)};
  if (limits.limitId) limits.limitName = codex_fields::label(member(bucket, "limitName"));
  return limits;
}

std::optional<CodexLimits> readResult(const Json& result, Date answeredAt) {
  std::optional<codex_rollout::LineLimits> own;
  std::vector<codex_rollout::LineLimits> others;
  if (const Json* byId = member(result, "rateLimitsByLimitId"); byId && byId->is_object()) {
    for (const auto& [id, bucket] : byId->items()) {
      auto limits = readBucket(bucket, answeredAt);
      if (!limits) continue;
      // The map's key names the bucket when the bucket itself does not.
      if (!limits->limitId && id != "codex") {
        const Json key(id);
        limits->limitId = codex_fields::machineWord(&key);
        if (!limits->limitId) continue;
      }
      if (limits->limitId) {
        others.push_back(std::move(*limits));
      } else if (!own) {
        own = std::move(limits);
      }
    }
  }
  // The single-bucket view, for servers without the map.
  if (!own) {
    if (const Json* single = member(result, "rateLimits")) {
      auto limits = readBucket(*single, answeredAt);
      if (limits && !limits->limitId) own = std::move(limits);
    }
  }
  if (!own) return std::nullopt;
  return CodexLimits{std::move(own->snapshot),
                     {},
                     std::move(own->planType),
                     std::move(own->credits),
                     std::move(others)};
}

}  // namespace

std::string requestLines(std::string_view version) {
  const Json initialize{
      {"jsonrpc", "2.0"},
      {"id", initializeId},
      {"method", "initialize"},
      {"params",
       {{"clientInfo",
         {{"name", "korvo"}, {"title", "Korvo"}, {"version", std::string(version)}}}}}};
  const Json initialized{{"jsonrpc", "2.0"}, {"method", "initialized"}};
  const Json read{{"jsonrpc", "2.0"}, {"id", rateLimitsId}, {"method", "account/rateLimits/read"}};
  return initialize.dump() + '\n' + initialized.dump() + '\n' + read.dump() + '\n';
}

std::optional<Answer> readAnswer(std::string_view line, std::int64_t id, Date answeredAt) {
  auto parsed = json_reader::parse(line);
  const Json* root = std::get_if<Json>(&parsed);
  if (root == nullptr || !root->is_object()) return std::nullopt;
  const Json* answerId = member(*root, "id");
  if (answerId == nullptr || !answerId->is_number_integer() ||
      answerId->get<std::int64_t>() != id) {
    return std::nullopt;
  }
  Answer answer;
  if (const Json* error = member(*root, "error")) {
    const std::string* message =
        error->is_object() ? codex_fields::string(member(*error, "message")) : nullptr;
    std::string text = message ? displayText(*message) : std::string("no message");
    if (text.size() > maxErrorBytes) {
      std::size_t end = maxErrorBytes;
      // Cut between characters, not inside one.
      while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
      text = text.substr(0, end) + "…";
    }
    answer.error = std::move(text);
    return answer;
  }
  if (const Json* result = member(*root, "result")) answer.limits = readResult(*result, answeredAt);
  return answer;
}

}  // namespace korvo::codex_app_server
