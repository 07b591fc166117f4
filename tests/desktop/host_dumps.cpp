#include "desktop/host_dumps.hpp"

#include <algorithm>

#include "desktop/desktop_harness.hpp"

namespace korvo::desktop_test {
namespace {

using Json = nlohmann::json;

void collectTexts(const Json& node, std::vector<std::string>& texts) {
  if (node.contains("text")) texts.push_back(node["text"].get<std::string>());
  if (node.contains("children")) {
    for (const auto& child : node["children"]) collectTexts(child, texts);
  }
}

}  // namespace

std::string usageSnapshot(int usedPercent, double temperature, double unixNow, double fetchedAgo) {
  const double now = unixNow - 978307200.0;
  Json window{{"title", "Weekly"}, {"usedPercent", usedPercent}, {"resetsAt", now + 86400}};
  Json codex{{"enabled", true},
             {"snapshot", {{"windows", Json::array({window})}, {"fetchedAt", now - fetchedAgo}}},
             {"isRefreshing", false}};
  Json document{{"date", now},
                {"temperature", temperature},
                {"temperatureDate", now},
                {"temperatureEnabled", true},
                {"codex", codex},
                {"claude", {{"enabled", false}, {"isRefreshing", false}}}};
  return document.dump();
}

std::vector<std::string> dumpedTexts(const std::filesystem::path& file) {
  const auto document = Json::parse(readFile(file), nullptr, false);
  std::vector<std::string> texts;
  if (document.is_object() && document.contains("tree")) collectTexts(document["tree"], texts);
  return texts;
}

bool contains(const std::vector<std::string>& texts, const std::string& wanted) {
  return std::find(texts.begin(), texts.end(), wanted) != texts.end();
}

std::vector<double> requestMoments(const std::string& log, const std::string& kind) {
  std::vector<double> moments;
  const std::string prefix = "timeline request for " + kind + " at ";
  for (auto found = log.find(prefix); found != std::string::npos;
       found = log.find(prefix, found + prefix.size())) {
    moments.push_back(std::stod(log.substr(found + prefix.size())));
  }
  return moments;
}

const Json* findNode(const Json& node, const std::string& kind) {
  if (node.value("kind", "") == kind) return &node;
  if (node.contains("children")) {
    for (const auto& child : node["children"]) {
      if (const auto* found = findNode(child, kind)) return found;
    }
  }
  return nullptr;
}

}  // namespace korvo::desktop_test
