#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// What a chained status-line command printed.
struct ChainedOutput {
  std::string out;       // its standard output, at most maxOutputBytes
  bool finished = true;  // false when it was stopped for running past the time limit

  friend bool operator==(const ChainedOutput&, const ChainedOutput&) = default;
};

// Runs `command` with /bin/sh, `input` on its standard input and its standard error left to ours,
// and collects what it prints. A command still running after `limit` is killed with what it
// printed so far kept, so a stuck status line cannot hold Claude Code's up for ever. None when it
// cannot be started.
std::optional<ChainedOutput> runChained(const std::string& command, std::string_view input,
                                        std::chrono::milliseconds limit);

// Output beyond this is dropped: a status line is one line.
inline constexpr std::size_t maxOutputBytes = std::size_t{64} * 1024;

}  // namespace korvo
