#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/process_run.hpp"
#include "support/temporary_directory.hpp"

namespace korvo::testing_support {

// A user's world for korvo in a temporary directory: home, data, configuration, Codex's and
// Claude's folders, and a /sys tree.
class KorvoWorld {
 public:
  explicit KorvoWorld(const std::filesystem::path& sysroot = KORVO_FIXTURES_DIR
                      "/hwmon/coretemp_two_packages")
      : sysroot_(sysroot) {}

  std::map<std::string, std::string> environment() const {
    auto variables = extraEnvironment_;
    variables.merge(
        std::map<std::string, std::string>{{"HOME", home().string()},
                                           {"XDG_DATA_HOME", (home() / "data").string()},
                                           {"XDG_CONFIG_HOME", (home() / "config").string()},
                                           {"CODEX_HOME", codexHome().string()},
                                           {"CLAUDE_CONFIG_DIR", claudeDir().string()},
                                           {"KORVO_SYSROOT", sysroot_.string()},
                                           {"KORVO_BUNDLE_INFO", KORVO_BUILD_DATA_DIR "/Info.json"},
                                           {"LANG", "C.UTF-8"},
                                           {"TZ", "UTC"},
                                           {"PATH", "/usr/bin:/bin"}});
    return variables;
  }
  // A variable korvo runs with from now on, over the world's own.
  void setEnvironment(const std::string& name, const std::string& value) {
    extraEnvironment_[name] = value;
  }

  ProcessResult korvo(const std::vector<std::string>& args, const std::string& input = {}) const {
    return runProgram(KORVO_APP_BINARY, args, environment(), input);
  }

  const std::filesystem::path& home() const { return directory_.path(); }
  std::filesystem::path codexHome() const { return home() / "codex"; }
  std::filesystem::path claudeDir() const { return home() / "claude"; }
  std::filesystem::path settingsFile() const { return home() / "config/korvo/settings.json"; }
  std::filesystem::path claudeSettings() const { return claudeDir() / "settings.json"; }
  std::filesystem::path sharedFile() const {
    return home() / "data/app-groups/group.com.tessmoor.Korvo/usage-snapshot.json";
  }
  std::filesystem::path write(const std::string& relative, std::string_view bytes) const {
    return directory_.write(relative, bytes);
  }
  void setSysroot(const std::filesystem::path& sysroot) { sysroot_ = sysroot; }

 private:
  TemporaryDirectory directory_;
  std::filesystem::path sysroot_;
  std::map<std::string, std::string> extraEnvironment_;
};

}  // namespace korvo::testing_support
