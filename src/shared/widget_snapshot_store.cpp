#include "shared/widget_snapshot_store.hpp"

#include "shared/app_group.hpp"
#include "shared/atomic_file.hpp"
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

WidgetSnapshotParts loadParts(const std::optional<Url>& url) {
  if (!url) return {};
  const auto path = localPath(*url);
  if (!path) return {};
  auto bytes = readRegularFile(*path, static_cast<std::size_t>(maxFileBytes));
  if (auto* text = std::get_if<std::string>(&bytes)) return decodeWidgetSnapshotParts(*text);
  return {};
}

bool save(const WidgetSnapshot& snapshot, const std::optional<Url>& url) {
  if (!url) return false;
  const auto path = localPath(*url);
  if (!path || !path->has_filename()) return false;
  if (!createPrivateDirectories(path->parent_path())) return false;
  const auto bytes = encodeWidgetSnapshot(snapshot);
  if (!bytes) return false;
  return replaceFileAtomically(*path, *bytes);
}

}  // namespace korvo::WidgetSnapshotStore
