#include "desktop/core/host_record.hpp"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <system_error>

#include "shared/file_bytes.hpp"

namespace korvo::HostRecord {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view hostExecutable = "korvo-widgets-desktop";
// A process id and a newline; anything longer is not our record.
constexpr std::size_t maxRecordBytes = 64;

std::optional<pid_t> recordedPid(const fs::path& file) {
  const auto bytes = readRegularFile(file, maxRecordBytes);
  const auto* text = std::get_if<std::string>(&bytes);
  if (text == nullptr) return std::nullopt;
  pid_t pid = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), pid);
  if (error != std::errc{} || pid <= 0) return std::nullopt;
  if (std::string_view(end, text->data() + text->size()) != "\n") return std::nullopt;
  return pid;
}

// The process is alive and runs the desktop host (also after the package replaced its file,
// which the kernel then shows as "… (deleted)").
bool isDesktopHost(pid_t pid) {
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/" + std::to_string(pid) + "/exe", error);
  return !error && executable.filename().string().starts_with(hostExecutable);
}

}  // namespace

std::optional<fs::path> path() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime == nullptr || runtime[0] != '/') return std::nullopt;
  return fs::path(runtime) / "korvo-widgets" / "desktop.pid";
}

std::optional<std::string> write() {
  const auto file = path();
  if (!file) return std::nullopt;
  std::error_code error;
  fs::create_directories(file->parent_path(), error);
  // Written beside and renamed, so `reload` never reads half a number.
  const fs::path partial = file->string() + ".partial";
  {
    std::ofstream out(partial, std::ios::trunc);
    out << ::getpid() << '\n';
    if (!out) return "cannot write " + partial.string();
  }
  fs::rename(partial, *file, error);
  if (error) return "cannot write " + file->string() + ": " + error.message();
  return std::nullopt;
}

void erase() {
  const auto file = path();
  if (!file || recordedPid(*file) != ::getpid()) return;
  std::error_code ignored;
  fs::remove(*file, ignored);
}

std::variant<pid_t, std::string> runningHost() {
  const auto file = path();
  if (!file) return std::string("no desktop host is running (XDG_RUNTIME_DIR is not set)");
  const auto pid = recordedPid(*file);
  if (!pid || !isDesktopHost(*pid)) {
    return "no desktop host is running (none recorded in " + file->string() + ")";
  }
  return *pid;
}

}  // namespace korvo::HostRecord
