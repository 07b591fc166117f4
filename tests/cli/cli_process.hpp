#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/process_run.hpp"

namespace korvo::testing {

using testing_support::ProcessResult;
using testing_support::readWhole;

// Runs the built korvo-widgets with `args` in an environment of exactly `environment`.
inline ProcessResult runCli(const std::vector<std::string>& args,
                            const std::map<std::string, std::string>& environment) {
  return testing_support::runProgram(KORVO_BINARY, args, environment);
}

// As runCli, its standard output going to `outPath` (a file, /dev/full, a terminal).
inline ProcessResult runCliWritingTo(const std::vector<std::string>& args,
                                     const std::map<std::string, std::string>& environment,
                                     const std::string& outPath) {
  return testing_support::runProgram(KORVO_BINARY, args, environment, {}, outPath);
}

}  // namespace korvo::testing
