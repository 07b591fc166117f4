#pragma once

#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "support/temporary_directory.hpp"

namespace korvo::testing_support {

// Pins the texts to US English in UTC, whatever the machine's settings.
inline void useEnglishInUtc() {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("en_US"), status);
  icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("UTC"));
}

// Sets (or with nullopt unsets) an environment variable for the lifetime of the object.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, std::optional<std::string> value) : name_(name) {
    if (const char* old = std::getenv(name)) previous_ = old;
    if (value) {
      ::setenv(name, value->c_str(), 1);
    } else {
      ::unsetenv(name);
    }
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment() {
    if (previous_) {
      ::setenv(name_, previous_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> previous_;
};

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out << bytes;
}

inline std::filesystem::path exampleSnapshotPath() {
  return std::filesystem::path(KORVO_SOURCE_DIR) / "data" / "samples" / "usage-snapshot.json";
}

}  // namespace korvo::testing_support
