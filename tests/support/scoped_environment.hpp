#pragma once

#include <stdlib.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace korvo::testing_support {

// Sets and unsets environment variables for one test and puts the old values back afterwards.
class ScopedEnvironment {
 public:
  ScopedEnvironment() = default;
  // One variable set to `value`, or unset with nullopt.
  ScopedEnvironment(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      set(name, *value);
    } else {
      unset(name);
    }
  }
  ~ScopedEnvironment() {
    for (const auto& [name, value] : saved_) {
      if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
      } else {
        ::unsetenv(name.c_str());
      }
    }
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  void set(const std::string& name, const std::string& value) {
    save(name);
    ::setenv(name.c_str(), value.c_str(), 1);
  }
  void unset(const std::string& name) {
    save(name);
    ::unsetenv(name.c_str());
  }

 private:
  void save(const std::string& name) {
    if (saved_.count(name) == 0) {
      const char* value = ::getenv(name.c_str());
      saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
    }
  }
  std::map<std::string, std::optional<std::string>> saved_;
};

// The group the build tree's Info.json names, and where its shared file lives under `dataHome`.
inline constexpr const char* testGroup = "group.com.tessmoor.Korvo";
inline std::string sharedFileRelative() {
  return std::string("app-groups/") + testGroup + "/usage-snapshot.json";
}

// Points the widgets at a machine of our making: /proc and /sys under `sysroot`, the shared file
// under `dataHome`, the bundle information of the build tree.
inline void useMachine(ScopedEnvironment& environment, const std::filesystem::path& sysroot,
                       const std::filesystem::path& dataHome) {
  environment.set("KORVO_SYSROOT", sysroot.string());
  environment.set("XDG_DATA_HOME", dataHome.string());
  environment.set("HOME", dataHome.string());
  environment.set("KORVO_BUNDLE_INFO", std::string(KORVO_BUILD_DATA_DIR) + "/Info.json");
}

}  // namespace korvo::testing_support
