#include "base/module.hpp"

#include <dlfcn.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace korvo {
namespace {

std::filesystem::path modulePath(const char* installed, const char* built) {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    const auto directory = executable.parent_path();
    for (const auto& prefix : {directory / "..", directory / ".." / ".."}) {
      const auto path = prefix / installed;
      if (std::filesystem::is_regular_file(path, error)) return path.lexically_normal();
    }
  }
  return built;
}

}  // namespace

void* loadModuleEntry(const char* installed, const char* built, const char* entryPoint) {
  const std::string path = modulePath(installed, built).string();
  void* module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  void* entry = module != nullptr ? dlsym(module, entryPoint) : nullptr;
  if (entry == nullptr) {
    std::fprintf(stderr, "%s: cannot load %s\n", program_invocation_short_name, dlerror());
  }
  return entry;
}

}  // namespace korvo
