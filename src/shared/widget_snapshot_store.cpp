#include "shared/widget_snapshot_store.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "shared/app_group.hpp"
#include "shared/file_bytes.hpp"
#include "shared/widget_snapshot_json.hpp"

namespace korvo::WidgetSnapshotStore {
namespace {

std::optional<std::filesystem::path> localPath(const Url& url) {
  if (url.scheme != "file" || !url.host.empty() || url.path.empty() || url.path.front() != '/') {
    return std::nullopt;
  }
  return std::filesystem::path(url.path);
}

bool writeAll(int fd, const std::string& bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t done = ::write(fd, bytes.data() + written, bytes.size() - written);
    if (done < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    written += static_cast<std::size_t>(done);
  }
  return true;
}

// The new content goes to a temporary file in the target's own directory (so the rename stays on
// one file system), reaches the disk, and only then replaces the target in one step: a reader
// sees the old file or the new one, never a part.
bool replaceAtomically(const std::filesystem::path& target, const std::string& bytes) {
  std::string name = ".";
  name += target.filename().string();
  name += ".XXXXXX";
  std::string pattern = target.parent_path() / name;
  const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (fd < 0) return false;
  const bool written = ::fchmod(fd, 0644) == 0 && writeAll(fd, bytes) && ::fsync(fd) == 0;
  const bool closed = ::close(fd) == 0;
  if (!written || !closed || ::rename(pattern.c_str(), target.c_str()) != 0) {
    ::unlink(pattern.c_str());
    return false;
  }
  return true;
}

}  // namespace

std::variant<Url, DecodeFailure> locate() {
  auto group = appGroupIdentifier();
  if (auto* failure = std::get_if<DecodeFailure>(&group)) {
    return DecodeFailure{"no location: " + failure->reason};
  }
  auto container = groupContainer(std::get<std::string>(group));
  if (auto* failure = std::get_if<DecodeFailure>(&container)) return *failure;
  auto url = Url::file(std::get<std::filesystem::path>(container) / fileName);
  if (!url) return DecodeFailure{"no location: the container is not an absolute path"};
  return *url;
}

std::optional<Url> fileURL() {
  auto location = locate();
  if (auto* url = std::get_if<Url>(&location)) return std::move(*url);
  return std::nullopt;
}

Decoded<WidgetSnapshot> inspect(const std::optional<Url>& url) {
  if (!url) return DecodeFailure{"no location for the shared file"};
  const auto path = localPath(*url);
  if (!path) return DecodeFailure{"not a local file URL: " + url->string()};
  auto bytes = readRegularFile(*path, static_cast<std::size_t>(maxFileBytes));
  if (auto* failure = std::get_if<DecodeFailure>(&bytes)) return *failure;
  return decodeWidgetSnapshot(std::get<std::string>(bytes));
}

std::optional<WidgetSnapshot> load(const std::optional<Url>& url) {
  auto result = inspect(url);
  if (auto* snapshot = std::get_if<WidgetSnapshot>(&result)) return std::move(*snapshot);
  return std::nullopt;
}

bool save(const WidgetSnapshot& snapshot, const std::optional<Url>& url) {
  if (!url) return false;
  const auto path = localPath(*url);
  if (!path || !path->has_filename()) return false;
  std::error_code error;
  std::filesystem::create_directories(path->parent_path(), error);
  if (error) return false;
  const auto bytes = encodeWidgetSnapshot(snapshot);
  if (!bytes) return false;
  return replaceAtomically(*path, *bytes);
}

}  // namespace korvo::WidgetSnapshotStore
