#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace korvo::testing {

// A throw-away root directory holding proc and sys files for a sampler.
class TempRoot {
 public:
  TempRoot() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korvo-root-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~TempRoot() { std::filesystem::remove_all(path_); }
  TempRoot(const TempRoot&) = delete;
  TempRoot& operator=(const TempRoot&) = delete;

  const std::filesystem::path& path() const { return path_; }

  void write(const std::string& relative, std::string_view text) const {
    const auto file = path_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace korvo::testing
