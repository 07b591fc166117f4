#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/files.hpp"

namespace korvo::testing_support {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korvo-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
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
    writeFile(file, bytes);
    return file;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace korvo::testing_support
