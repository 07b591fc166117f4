#include "support/host_dumps.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "support/desktop_harness.hpp"

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

void expectMonitorReloadsEveryNineHundredSeconds(
    const std::filesystem::path& snapshotFile, const std::filesystem::path& hostLog,
    const std::filesystem::path& dumpDir,
    const std::function<void(std::vector<std::string>)>& startHost) {
  const double start = static_cast<double>(std::time(nullptr));
  writeFile(snapshotFile, usageSnapshot(10, 41, start));
  // 300 clock seconds per real second: the 900-second reload comes after three real seconds.
  startHost({"--widget", "usage:medium", "--widget", "awake", "--time-rate", "300", "--dump-dir",
             dumpDir.string()});
  const auto usageDump = dumpDir / "1-usage-medium.json";
  ASSERT_TRUE(waitFor([&] { return contains(dumpedTexts(usageDump), "90"); }))
      << "the first entry never showed 90 % left; host log:\n"
      << readFile(hostLog);

  writeFile(snapshotFile, usageSnapshot(37, 77, start));
  ASSERT_TRUE(waitFor([&] { return contains(dumpedTexts(usageDump), "63"); }))
      << "no reload showed the new file; host log:\n"
      << readFile(hostLog);
  // The change was picked up at once by the file watch; from that request on, the widget asks
  // again every 900 clock seconds. Two more reloads, so keep-awake has had every chance to ask.
  const auto changed = requestMoments(readFile(hostLog), "com.tessmoor.Korvo.usage").size();
  ASSERT_TRUE(waitFor([&] {
    return requestMoments(readFile(hostLog), "com.tessmoor.Korvo.usage").size() >= changed + 2;
  }));

  const auto log = readFile(hostLog);
  const auto usage = requestMoments(log, "com.tessmoor.Korvo.usage");
  for (std::size_t index = changed; index < usage.size(); ++index) {
    EXPECT_GE(usage[index] - usage[index - 1], 900) << "a reload came early";
  }
  EXPECT_EQ(requestMoments(log, "com.tessmoor.Korvo.awake").size(), 1U) << log;
}

}  // namespace korvo::desktop_test
