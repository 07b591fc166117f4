#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

extern char** environ;

namespace korvo::testing {

struct CliResult {
  int exitCode = -1;
  std::string out;  // standard output, byte for byte
  std::string err;  // standard error
};

inline std::string slurp(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Runs `program` with `args` in an environment of exactly `environment`, its standard output
// going to `outPath` (a file, /dev/full, a terminal) and its errors caught in a file under
// `scratch`; `out` holds what a regular `outPath` received.
inline CliResult runProgramWritingTo(const std::string& program,
                                     const std::vector<std::string>& args,
                                     const std::map<std::string, std::string>& environment,
                                     const std::filesystem::path& scratch,
                                     const std::string& outPath) {
  const std::string errPath = (scratch / "stderr").string();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);

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

  CliResult result;
  pid_t pid = 0;
  if (posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), envp.data()) == 0) {
    int status = 0;
    waitpid(pid, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  if (std::filesystem::is_regular_file(outPath)) result.out = slurp(outPath);
  result.err = slurp(errPath);
  return result;
}

// As above, its output caught in a file under `scratch`.
inline CliResult runProgram(const std::string& program, const std::vector<std::string>& args,
                            const std::map<std::string, std::string>& environment,
                            const std::filesystem::path& scratch) {
  return runProgramWritingTo(program, args, environment, scratch, (scratch / "stdout").string());
}

// Runs the built korvo-widgets, as runProgramWritingTo does.
inline CliResult runCliWritingTo(const std::vector<std::string>& args,
                                 const std::map<std::string, std::string>& environment,
                                 const std::filesystem::path& scratch, const std::string& outPath) {
  return runProgramWritingTo(KORVO_BINARY, args, environment, scratch, outPath);
}

// Runs the built korvo-widgets, its output caught in a file under `scratch`.
inline CliResult runCli(const std::vector<std::string>& args,
                        const std::map<std::string, std::string>& environment,
                        const std::filesystem::path& scratch) {
  return runProgram(KORVO_BINARY, args, environment, scratch);
}

}  // namespace korvo::testing
