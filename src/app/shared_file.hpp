#pragma once

#include <filesystem>

namespace korvo::shared_file {

// The local path of the shared file, found as the widgets find it. Throws std::runtime_error
// with a one-line message when there is none.
std::filesystem::path path();

}  // namespace korvo::shared_file
