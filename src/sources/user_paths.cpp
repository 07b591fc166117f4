#include "sources/user_paths.hpp"

#include <cstdlib>

namespace korvo {
namespace {

std::optional<std::filesystem::path> fromEnvironmentOrHome(const char* name, const char* inHome) {
  if (auto explicitPath = absolutePathFromEnvironment(name)) return explicitPath;
  if (auto home = homeDirectory()) return *home / inHome;
  return std::nullopt;
}

}  // namespace

std::filesystem::path systemRoot() {
  const char* root = std::getenv("KORVO_SYSROOT");
  if (root == nullptr || root[0] == '\0') return "/";
  return root;
}

std::optional<std::filesystem::path> absolutePathFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return std::filesystem::path(value);
}

std::optional<std::filesystem::path> homeDirectory() {
  return absolutePathFromEnvironment("HOME");
}

std::optional<std::filesystem::path> codexHomeDirectory() {
  return fromEnvironmentOrHome("CODEX_HOME", ".codex");
}

std::optional<std::filesystem::path> claudeConfigDirectory() {
  return fromEnvironmentOrHome("CLAUDE_CONFIG_DIR", ".claude");
}

}  // namespace korvo
