#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "support/temporary_directory.hpp"

extern char** environ;

namespace korvo::testing_support {

struct KorvoResult {
  int exitCode = -1;
  std::string out;  // standard output, byte for byte
  std::string err;  // standard error
};

inline std::string readWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Runs `program` with `args`, `input` on its standard input and an environment of exactly
// `environment`; its output and errors are caught in memory files.
inline KorvoResult runProgram(const std::string& program, const std::vector<std::string>& args,
                              const std::map<std::string, std::string>& environment,
                              const std::string& input = {}) {
  const int in = ::memfd_create("input", 0);
  const int out = ::memfd_create("stdout", 0);
  const int err = ::memfd_create("stderr", 0);
  if (::write(in, input.data(), input.size()) != static_cast<ssize_t>(input.size())) return {};
  ::lseek(in, 0, SEEK_SET);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, 0);
  posix_spawn_file_actions_adddup2(&actions, out, 1);
  posix_spawn_file_actions_adddup2(&actions, err, 2);

  std::vector<std::string> argStrings{program};
  argStrings.insert(argStrings.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& arg : argStrings) argv.push_back(arg.data());
  argv.push_back(nullptr);
  std::vector<std::string> envStrings;
  for (const auto& [name, value] : environment) envStrings.push_back(name + "=" + value);
  // The sanitizer build's settings, leak suppressions included, reach the child.
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
    if (const char* value = ::getenv(name)) envStrings.push_back(std::string(name) + "=" + value);
  }
  std::vector<char*> envp;
  for (auto& entry : envStrings) envp.push_back(entry.data());
  envp.push_back(nullptr);

  KorvoResult result;
  pid_t pid = 0;
  if (posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), envp.data()) == 0) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  const auto slurp = [](int fd) {
    std::string bytes;
    ::lseek(fd, 0, SEEK_SET);
    char buffer[4096];
    for (ssize_t got; (got = ::read(fd, buffer, sizeof buffer)) > 0;) bytes.append(buffer, got);
    ::close(fd);
    return bytes;
  };
  ::close(in);
  result.out = slurp(out);
  result.err = slurp(err);
  return result;
}

// A user's world for korvo in a temporary directory: home, data, configuration, Codex's and
// Claude's folders, and a /sys tree.
class KorvoWorld {
 public:
  explicit KorvoWorld(const std::filesystem::path& sysroot = KORVO_FIXTURES_DIR
                      "/hwmon/coretemp_two_packages")
      : sysroot_(sysroot) {}

  std::map<std::string, std::string> environment() const {
    return {{"HOME", home().string()},
            {"XDG_DATA_HOME", (home() / "data").string()},
            {"XDG_CONFIG_HOME", (home() / "config").string()},
            {"CODEX_HOME", codexHome().string()},
            {"CLAUDE_CONFIG_DIR", claudeDir().string()},
            {"KORVO_SYSROOT", sysroot_.string()},
            {"KORVO_BUNDLE_INFO", KORVO_BUILD_DATA_DIR "/Info.json"},
            {"LANG", "C.UTF-8"},
            {"TZ", "UTC"},
            {"PATH", "/usr/bin:/bin"}};
  }

  KorvoResult korvo(const std::vector<std::string>& args, const std::string& input = {}) const {
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
};

}  // namespace korvo::testing_support
