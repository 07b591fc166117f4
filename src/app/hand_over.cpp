#include "app/hand_over.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "base/display_text.hpp"

namespace korvo::app {
namespace {

// The GTK side is its own executable, so that the file commands never load GTK or GLib.
std::filesystem::path hostExecutable() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw std::runtime_error("cannot find korvo's own path: " + error.message());
  for (const auto& candidate :
       {self.parent_path() / "korvo-service",
        self.parent_path() / ".." / "libexec" / "korvo" / "korvo-service"}) {
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  throw std::runtime_error("korvo-service is missing beside " + displayText(self.string()) +
                           " and in ../libexec/korvo/");
}

}  // namespace

void handOver(int argc, char** argv) {
  const auto host = hostExecutable();
  std::vector<char*> words{const_cast<char*>(host.c_str())};
  for (int i = 1; i < argc; ++i) words.push_back(argv[i]);
  words.push_back(nullptr);
  ::execv(host.c_str(), words.data());
  throw std::runtime_error("cannot start " + displayText(host.string()) + ": " +
                           std::strerror(errno));
}

}  // namespace korvo::app
