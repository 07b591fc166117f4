#include "app/status_bar_signal.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

namespace korvo::status_bar {
namespace {

// /proc walked by hand: procps has no library call for "processes of this name and user", and
// running pkill on every publication would cost a process.
bool isOwnWaybar(const std::filesystem::path& process) {
  struct stat info {};
  if (::stat(process.c_str(), &info) != 0 || info.st_uid != ::getuid()) return false;
  std::ifstream comm(process / "comm");
  std::string name;
  std::getline(comm, name);
  return name == "waybar";
}

}  // namespace

int refresh(int offset) {
  if (offset <= 0 || SIGRTMIN + offset > SIGRTMAX) return 0;
  int signalled = 0;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    if (!isOwnWaybar(entry.path())) continue;
    if (::kill(static_cast<pid_t>(std::stol(name)), SIGRTMIN + offset) == 0) ++signalled;
  }
  return signalled;
}

}  // namespace korvo::status_bar
