#include "shared/app_group.hpp"

#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "shared/file_bytes.hpp"
#include "shared/json_reader.hpp"

namespace korvo {
namespace {

// Bundle information is a one-line document; anything bigger is not ours.
constexpr std::size_t maxInfoBytes = std::size_t{64} * 1024;

std::optional<std::filesystem::path> executableDirectory() {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return executable.parent_path();
}

std::optional<std::filesystem::path> absoluteEnvironmentPath(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return std::filesystem::path(value);
}

bool isSafeComponent(std::string_view group) {
  return !group.empty() && group != "." && group != ".." &&
         group.find('/') == std::string_view::npos && group.find('\0') == std::string_view::npos;
}

}  // namespace

std::filesystem::path bundleInfoPath() {
  if (const char* explicitPath = std::getenv("KORVO_BUNDLE_INFO")) return explicitPath;
  if (const auto directory = executableDirectory()) {
    // bin/ programs look one level up, the desktop host in libexec/korvo-widgets/ two.
    for (const auto& prefix : {*directory / "..", *directory / ".." / ".."}) {
      auto installed = prefix / "share" / "korvo-widgets" / "Info.json";
      std::error_code error;
      if (std::filesystem::is_regular_file(installed, error)) return installed.lexically_normal();
    }
  }
  return std::filesystem::path(KORVO_SHARED_BUILD_DATA_DIR) / "Info.json";
}

std::variant<std::string, DecodeFailure> appGroupIdentifier() {
  const auto path = bundleInfoPath();
  const auto missingKey =
      DecodeFailure{std::string("no ") + appGroupInfoKey + " in " + path.string()};
  auto bytes = readRegularFile(path, maxInfoBytes);
  if (const auto* failure = std::get_if<DecodeFailure>(&bytes)) {
    // A missing file is a missing key; anything else there (a FIFO, a directory, a device, a
    // file that cannot be opened) is named for what it is.
    std::error_code error;
    if (!std::filesystem::exists(path, error) && !error) return missingKey;
    return DecodeFailure{"bundle information: " + failure->reason};
  }
  auto document = json_reader::parse(std::get<std::string>(bytes));
  if (const auto* failure = std::get_if<DecodeFailure>(&document)) {
    return DecodeFailure{"bundle information " + path.string() + ": " + failure->reason};
  }
  const auto& root = std::get<nlohmann::json>(document);
  if (!root.is_object()) return missingKey;
  const auto value = root.find(appGroupInfoKey);
  if (value == root.end() || !value->is_string() || value->get_ref<const std::string&>().empty()) {
    return missingKey;
  }
  return value->get<std::string>();
}

std::variant<std::filesystem::path, DecodeFailure> groupContainer(std::string_view group) {
  if (!isSafeComponent(group)) {
    return DecodeFailure{"no location: the app group \"" + std::string(group) +
                         "\" is not a single path component"};
  }
  std::filesystem::path base;
  if (const auto dataHome = absoluteEnvironmentPath("XDG_DATA_HOME")) {
    base = *dataHome;
  } else if (const auto home = absoluteEnvironmentPath("HOME")) {
    base = *home / ".local" / "share";
  } else {
    return DecodeFailure{"no location: neither XDG_DATA_HOME nor HOME is an absolute path"};
  }
  return base / "app-groups" / std::string(group);
}

}  // namespace korvo
