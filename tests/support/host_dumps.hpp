#pragma once

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// What the desktop host's tests read back: the shared file they feed it, the trees it dumps with
// --dump-dir and the timeline requests it logs with KORVO_HOST_DEBUG.
namespace korvo::desktop_test {

// The shared file as the host application writes it, with the Codex weekly window `usedPercent`
// used and a CPU temperature, all dated `unixNow` (Unix seconds); Codex fetched `fetchedAgo`
// seconds before.
std::string usageSnapshot(int usedPercent, double temperature, double unixNow,
                          double fetchedAgo = 0);

// Every text a dumped widget tree draws; empty when the dump is missing or half written.
std::vector<std::string> dumpedTexts(const std::filesystem::path& file);

bool contains(const std::vector<std::string>& texts, const std::string& wanted);

// The clock moments (seconds since 2001) of the host's timeline requests for `kind`.
std::vector<double> requestMoments(const std::string& log, const std::string& kind);

// The first node of `kind` in a laid-out tree, depth first.
const nlohmann::json* findNode(const nlohmann::json& node, const std::string& kind);

// The reload schedule every host keeps, checked from its dumps and request log: a usage widget
// shows a changed shared file at once and from then on asks every 900 clock seconds, Keep Awake
// asks once. `startHost` starts the host with the given `korvo-widgets run` arguments, logging
// its requests to `hostLog`; the clock runs 300 times as fast.
void expectMonitorReloadsEveryNineHundredSeconds(
    const std::filesystem::path& snapshotFile, const std::filesystem::path& hostLog,
    const std::filesystem::path& dumpDir,
    const std::function<void(std::vector<std::string>)>& startHost);

}  // namespace korvo::desktop_test
