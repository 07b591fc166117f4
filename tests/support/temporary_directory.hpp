#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace korvo::testing_support {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korvo-test-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }

  const std::filesystem::path& path() const { return path_; }

  // Writes `bytes` to `relative` inside the directory, creating folders on the way.
  std::filesystem::path write(const std::string& relative, std::string_view bytes) const {
    const auto file = path_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace korvo::testing_support
