#include "app/usage_origin.hpp"

#include "base/date_text.hpp"
#include "base/text.hpp"
#include "sources/claude_status_line.hpp"
#include "sources/codex_app_server_answer.hpp"

namespace korvo::usage_origin {
namespace {

// The sources as the shared file names them, and as a user knows them.
std::string sourceName(const std::string& source) {
  if (source == codex_app_server::sourceName) return _("Codex app-server");
  if (source == codex_rollout::sourceName) return _("Codex CLI session");
  if (source == claude_status_line::sourceName) return _("Claude Code status line");
  return source;
}

}  // namespace

std::string originText(const UsageSnapshot& snapshot, Date now) {
  const std::string age = relativeSpan(snapshot.fetchedAt, now);
  std::string name = sourceName(snapshot.source.value_or(""));
  if (age.empty()) return name;
  return name + " · " + age + " " + _("ago");
}

std::string creditsText(const codex_rollout::Credits& credits) {
  if (credits.unlimited) return _("unlimited");
  if (!credits.hasCredits) return _("none");
  return credits.balance.value_or(_("some"));
}

std::vector<std::string> codexDetails(const codex_state_file::Record& record,
                                      const UsageSnapshot& published) {
  std::vector<std::string> lines;
  const bool live = published.source == codex_app_server::sourceName;
  const std::optional<CodexLimits>& reading =
      live ? (record.live ? record.live->reading : std::nullopt) : record.rollouts;
  if (reading) {
    std::string plan;
    if (reading->planType) plan = _("Plan") + " " + *reading->planType;
    if (reading->credits) {
      plan += (plan.empty() ? "" : " · ") + _("Credits") + " " + creditsText(*reading->credits);
    }
    if (!plan.empty()) lines.push_back(plan);
    for (const auto& other : reading->otherLimits) {
      const std::string name = other.limitName.value_or(other.limitId.value_or(""));
      for (const UsageWindow& window : other.snapshot.windows) {
        lines.push_back(name + " · " + window.remainingSummary());
      }
    }
  }
  if (record.live && record.live->failure) lines.push_back(*record.live->failure);
  return lines;
}

}  // namespace korvo::usage_origin
