#include <nlohmann/json.hpp>

#include "app/cli_commands.hpp"
#include "app/forecast.hpp"
#include "app/history_store.hpp"
#include "app/shared_file.hpp"
#include "app/window_forecast.hpp"
#include "base/c_format.hpp"
#include "base/clock.hpp"
#include "base/command_line_words.hpp"
#include "base/date_text.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "shared/moment_text.hpp"
#include "shared/url.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo::app {
namespace {

using Json = nlohmann::ordered_json;

Date momentOption(const std::string& name, const std::string& text) {
  const auto moment = parseMoment(text);
  if (!moment) {
    throw UsageError(name + ": not a moment: \"" + displayText(text) +
                     "\"; valid: ISO 8601 with a zone or Unix seconds");
  }
  return *moment;
}

std::optional<HistoryStore> existingHistory(Date now) {
  return HistoryStore::openExisting(std::cerr, now, std::chrono::seconds(2));
}

std::string csvText(const std::vector<HistoryRow>& rows) {
  std::string text = "time,metric,value\n";
  for (const HistoryRow& row : rows) {
    text += isoMoment(row.time) + ',' + row.metric + ',' + cFormat("%.6g", row.value) + '\n';
  }
  return text;
}

std::string jsonText(const std::vector<HistoryRow>& rows) {
  Json document = Json::array();
  for (const HistoryRow& row : rows) {
    document.push_back(
        {{"time", isoMoment(row.time)}, {"metric", row.metric}, {"value", row.value}});
  }
  return document.dump() + '\n';
}

std::string plainText(const std::vector<HistoryRow>& rows) {
  std::string text;
  for (const HistoryRow& row : rows) {
    text += isoMoment(row.time) + "  " + row.metric + "  " + cFormat("%.6g", row.value) + '\n';
  }
  return text;
}

struct ProviderFigures {
  const char* name;
  const char* metric;
  const UsageState* state;
};

Json forecastJson(const std::optional<forecast::Forecast>& found) {
  if (!found) return nullptr;
  if (found->exhaustsAt) return {{"exhaustsAt", isoMoment(*found->exhaustsAt)}};
  return {{"usedAtReset", *found->usedAtReset}};
}

std::string forecastPart(const std::optional<forecast::Forecast>& found, Date now) {
  return found ? " · " + forecastText(*found, now) : std::string();
}

void printUsage(const WidgetSnapshot& snapshot, const std::optional<HistoryStore>& history,
                Date now, bool json) {
  const ProviderFigures providers[] = {{"Codex", "codex.", &snapshot.codex},
                                       {"Claude", "claude.", &snapshot.claude}};
  Json document{{"providers", Json::array()}};
  std::string text;
  for (const auto& provider : providers) {
    const auto& figures = provider.state->snapshot;
    if (!provider.state->enabled || !figures) continue;
    Json entry{{"name", provider.name},
               {"source", figures->source.value_or("")},
               {"fetchedAt", isoMoment(figures->fetchedAt)},
               {"windows", Json::array()}};
    for (const UsageWindow& window : figures->windows) {
      std::optional<forecast::Forecast> found;
      if (history) {
        found = recentForecast(*history, provider.metric + window.title, window, now);
      }
      Json windowEntry{{"title", window.title}, {"usedPercent", window.usedPercent}};
      windowEntry["resetsAt"] = window.resetsAt ? Json(isoMoment(*window.resetsAt)) : Json(nullptr);
      windowEntry["forecast"] = forecastJson(found);
      entry["windows"].push_back(std::move(windowEntry));
      text += std::string(provider.name) + " · " + window.remainingSummary() + " · " +
              window.resetText() + forecastPart(found, now) + '\n';
    }
    document["providers"].push_back(std::move(entry));
  }
  print(json ? document.dump() + '\n' : text);
}

}  // namespace

void addHistoryCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand("history", "The recorded figures, oldest first");
  struct Options {
    std::optional<std::string> since;
    std::optional<std::string> until;
    bool csv = false;
    bool json = false;
  };
  auto options = std::make_shared<Options>();
  addTextOption(command, "--since", options->since, "From this moment: ISO 8601 or Unix seconds");
  addTextOption(command, "--until", options->until, "To this moment: ISO 8601 or Unix seconds");
  auto* csv = command->add_flag("--csv", options->csv, "CSV: time,metric,value");
  command->add_flag("--json", options->json, "JSON: [{time, metric, value}]")->excludes(csv);
  command->callback([options, &exitCode] {
    const std::optional<Date> since =
        options->since ? std::optional(momentOption("--since", *options->since)) : std::nullopt;
    const std::optional<Date> until =
        options->until ? std::optional(momentOption("--until", *options->until)) : std::nullopt;
    const auto history = existingHistory(clock::now());
    const auto rows = history ? history->rows(since, until) : std::vector<HistoryRow>{};
    print(options->csv ? csvText(rows) : options->json ? jsonText(rows) : plainText(rows));
    exitCode = exitSuccess;
  });
}

void addUsageCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "usage", "Every provider's windows: remaining, reset, forecast, source and age");
  struct Options {
    bool json = false;
    std::optional<std::string> now;
  };
  auto options = std::make_shared<Options>();
  command->add_flag("--json", options->json,
                    "JSON: {providers: [{name, source, fetchedAt, windows: [{title, usedPercent, "
                    "resetsAt, forecast}]}]}");
  addTextOption(command, "--now", options->now,
                "The moment to forecast from: ISO 8601 with a zone, or Unix seconds");
  command->callback([options, &exitCode] {
    if (options->now) clock::setFixed(momentOption("--now", *options->now));
    const Date now = clock::now();
    const auto snapshot = WidgetSnapshotStore::load(Url::file(shared_file::path()));
    if (!snapshot) {
      std::cerr << "korvo: no figures yet in " << displayText(shared_file::path().string())
                << " (run korvo publish, or the service)\n";
      exitCode = exitFailure;
      return;
    }
    printUsage(*snapshot, existingHistory(now), now, options->json);
    exitCode = exitSuccess;
  });
}

}  // namespace korvo::app
