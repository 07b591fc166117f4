#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/files.hpp"

namespace korvo::testing_support {

struct ProcessResult {
  int exitCode = -1;
  std::string out;  // standard output, byte for byte
  std::string err;  // standard error
};

// Starts `program` with `args` and an environment of exactly `environment` (plus the sanitizers'
// settings, leak suppressions included); false when it could not be started.
inline bool spawnProgram(pid_t& pid, const std::string& program,
                         const std::vector<std::string>& args,
                         const std::map<std::string, std::string>& environment,
                         const posix_spawn_file_actions_t& actions) {
  std::vector<std::string> argStrings{program};
  argStrings.insert(argStrings.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& arg : argStrings) argv.push_back(arg.data());
  argv.push_back(nullptr);
  std::vector<std::string> envStrings;
  for (const auto& [name, value] : environment) envStrings.push_back(name + "=" + value);
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
    if (const char* value = std::getenv(name))
      envStrings.push_back(std::string(name) + "=" + value);
  }
  std::vector<char*> envp;
  for (auto& entry : envStrings) envp.push_back(entry.data());
  envp.push_back(nullptr);
  return posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), envp.data()) == 0;
}

// Starts `program` without waiting for it, its standard error going to `errorPath` when given;
// the process id, or -1 when it could not be started.
inline pid_t startProgram(const std::string& program, const std::vector<std::string>& args,
                          const std::map<std::string, std::string>& environment,
                          const std::optional<std::filesystem::path>& errorPath = std::nullopt) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (errorPath) {
    posix_spawn_file_actions_addopen(&actions, 2, errorPath->c_str(), O_WRONLY | O_CREAT, 0600);
  }
  pid_t pid = -1;
  if (!spawnProgram(pid, program, args, environment, actions)) pid = -1;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

// Runs `program` with `args`, `input` on its standard input and an environment of exactly
// `environment` (plus the sanitizers' settings). Its errors, and its output unless `outPath` names
// where the output goes instead (a file, /dev/full, a terminal), are caught in memory files; `out`
// holds what a regular `outPath` received.
inline ProcessResult runProgram(const std::string& program, const std::vector<std::string>& args,
                                const std::map<std::string, std::string>& environment,
                                const std::string& input = {},
                                const std::optional<std::string>& outPath = std::nullopt) {
  const int in = ::memfd_create("input", 0);
  const int out = outPath ? -1 : ::memfd_create("stdout", 0);
  const int err = ::memfd_create("stderr", 0);
  if (::write(in, input.data(), input.size()) != static_cast<ssize_t>(input.size())) return {};
  ::lseek(in, 0, SEEK_SET);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, 0);
  if (outPath) {
    posix_spawn_file_actions_addopen(&actions, 1, outPath->c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
  } else {
    posix_spawn_file_actions_adddup2(&actions, out, 1);
  }
  posix_spawn_file_actions_adddup2(&actions, err, 2);

  ProcessResult result;
  pid_t pid = 0;
  if (spawnProgram(pid, program, args, environment, actions)) {
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
  if (outPath) {
    if (std::filesystem::is_regular_file(*outPath)) result.out = readFile(*outPath);
  } else {
    result.out = slurp(out);
  }
  result.err = slurp(err);
  return result;
}

// Runs the built korvo-widgets with `args` in an environment of exactly `environment`, its output
// going to `outPath` when given.
inline ProcessResult runWidgets(const std::vector<std::string>& args,
                                const std::map<std::string, std::string>& environment,
                                const std::optional<std::string>& outPath = std::nullopt) {
  return runProgram(KORVO_BINARY, args, environment, {}, outPath);
}

}  // namespace korvo::testing_support
