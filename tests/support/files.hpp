#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace korvo::testing_support {

// The whole file, byte for byte; empty when it cannot be read.
inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Replaces `path` with `bytes` in one rename, creating folders on the way, so a program watching
// the file never reads half of it.
inline void writeFile(const std::filesystem::path& path, std::string_view bytes) {
  std::filesystem::create_directories(path.parent_path());
  const std::filesystem::path temporary = path.string() + ".tmp";
  std::ofstream(temporary, std::ios::binary | std::ios::trunc) << bytes;
  std::filesystem::rename(temporary, path);
}

}  // namespace korvo::testing_support
