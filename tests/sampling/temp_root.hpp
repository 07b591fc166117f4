#pragma once

#include "support/temporary_directory.hpp"

namespace korvo::testing {

// A throw-away root directory holding proc and sys files for a sampler.
using TempRoot = testing_support::TemporaryDirectory;

}  // namespace korvo::testing
