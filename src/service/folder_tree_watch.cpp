#include "service/folder_tree_watch.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace korvo {
namespace {

void onChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event, gpointer watch) {
  static_cast<FolderTreeWatch*>(watch)->changed(file, other, event);
}

std::filesystem::path pathOf(GFile* file) {
  if (file == nullptr) return {};
  char* path = g_file_get_path(file);
  std::filesystem::path result = path != nullptr ? path : "";
  g_free(path);
  return result;
}

bool isFolder(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_directory(std::filesystem::symlink_status(path, error));
}

// Whether `path` is `root` or a folder on the way down to it.
bool leadsTo(const std::filesystem::path& path, const std::filesystem::path& root) {
  auto step = root.begin();
  for (const auto& part : path) {
    if (step == root.end() || *step != part) return false;
    ++step;
  }
  return true;
}

double unixNow() {
  return static_cast<double>(g_get_real_time()) / G_USEC_PER_SEC;
}

// When the file at `path` was last written, in Unix seconds; now when it cannot be told.
double modifiedAt(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return unixNow();
  return static_cast<double>(status.st_mtim.tv_sec) +
         static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
}

}  // namespace

FolderTreeWatch::FolderTreeWatch(std::filesystem::path root, std::string suffix, int changesEvery,
                                 std::function<void(double)> wrote)
    : root_(std::move(root)),
      suffix_(std::move(suffix)),
      changesEvery_(changesEvery),
      wrote_(std::move(wrote)) {
  approach();
}

FolderTreeWatch::~FolderTreeWatch() {
  forgetAll();
}

void FolderTreeWatch::approach() {
  forgetAll();
  approaching_ = false;
  const bool first = !looked_;
  looked_ = true;
  if (isFolder(root_)) {
    // The first look records what is there; files in a tree that appears later were just written.
    const std::function<void(double)> recordNewest = [this](double modified) {
      newestAtStart_ = std::max(newestAtStart_.value_or(modified), modified);
    };
    watchTree(root_, first ? recordNewest : wrote_);
    return;
  }
  std::filesystem::path above = root_.parent_path();
  while (!isFolder(above) && above != above.parent_path()) above = above.parent_path();
  if (!isFolder(above)) return;
  watchFolder(above);
  approaching_ = true;
  // A folder on the way made between the look and the watch sends the watch no event: look again.
  const auto step = root_.lexically_relative(above);
  if (!step.empty() && isFolder(above / *step.begin())) approach();
}

void FolderTreeWatch::watchTree(const std::filesystem::path& folder,
                                const std::function<void(double)>& found) {
  // The folder is watched before it is looked through, so a file made in between is not missed.
  watchFolder(folder);
  GFile* directory = g_file_new_for_path(folder.c_str());
  GFileEnumerator* entries =
      g_file_enumerate_children(directory,
                                G_FILE_ATTRIBUTE_STANDARD_NAME "," G_FILE_ATTRIBUTE_STANDARD_TYPE
                                                               "," G_FILE_ATTRIBUTE_TIME_MODIFIED,
                                G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, nullptr);
  g_object_unref(directory);
  if (entries == nullptr) return;
  std::vector<std::filesystem::path> folders;
  while (GFileInfo* info = g_file_enumerator_next_file(entries, nullptr, nullptr)) {
    const char* name = g_file_info_get_name(info);
    const GFileType type = g_file_info_get_file_type(info);
    if (type == G_FILE_TYPE_DIRECTORY) {
      folders.push_back(folder / name);
    } else if (type == G_FILE_TYPE_REGULAR && matches(name)) {
      found(static_cast<double>(
          g_file_info_get_attribute_uint64(info, G_FILE_ATTRIBUTE_TIME_MODIFIED)));
    }
    g_object_unref(info);
  }
  g_object_unref(entries);
  for (const auto& child : folders) watchTree(child, found);
}

void FolderTreeWatch::watchFolder(const std::filesystem::path& folder) {
  if (monitors_.contains(folder)) return;
  GFile* directory = g_file_new_for_path(folder.c_str());
  GFileMonitor* monitor =
      g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
  g_object_unref(directory);
  if (monitor == nullptr) return;
  g_file_monitor_set_rate_limit(monitor, changesEvery_);
  g_signal_connect(monitor, "changed", G_CALLBACK(onChanged), this);
  monitors_.emplace(folder, monitor);
}

void FolderTreeWatch::forget(const std::filesystem::path& folder) {
  for (auto at = monitors_.begin(); at != monitors_.end();) {
    if (leadsTo(folder, at->first)) {  // the folder itself or one under it
      g_signal_handlers_disconnect_by_data(at->second, this);
      g_file_monitor_cancel(at->second);
      g_object_unref(at->second);
      at = monitors_.erase(at);
    } else {
      ++at;
    }
  }
}

void FolderTreeWatch::forgetAll() {
  for (auto& [folder, monitor] : monitors_) {
    g_signal_handlers_disconnect_by_data(monitor, this);
    g_file_monitor_cancel(monitor);
    g_object_unref(monitor);
  }
  monitors_.clear();
}

bool FolderTreeWatch::matches(const std::string& name) const {
  return name.size() > suffix_.size() && name.ends_with(suffix_);
}

void FolderTreeWatch::changed(GFile* file, GFile* other, GFileMonitorEvent event) {
  // A rename names the old path in `file` and the new one in `other`.
  const bool renamed = event == G_FILE_MONITOR_EVENT_RENAMED;
  const auto arrived = pathOf(renamed ? other : file);
  const auto left = pathOf(file);
  const bool arriving =
      renamed || event == G_FILE_MONITOR_EVENT_CREATED || event == G_FILE_MONITOR_EVENT_MOVED_IN;
  const bool leaving =
      renamed || event == G_FILE_MONITOR_EVENT_DELETED || event == G_FILE_MONITOR_EVENT_MOVED_OUT;
  if (approaching_) {
    if (arriving && leadsTo(arrived, root_)) approach();
    return;
  }
  if (leaving && leadsTo(left, root_)) {
    approach();  // the tree itself went away: wait for it above
    return;
  }
  if (leaving) forget(left);
  if (arriving && isFolder(arrived)) {
    watchTree(arrived, wrote_);
    return;
  }
  if (!matches(arrived.filename().string())) return;
  if (event == G_FILE_MONITOR_EVENT_CREATED || event == G_FILE_MONITOR_EVENT_CHANGED ||
      event == G_FILE_MONITOR_EVENT_CHANGES_DONE_HINT) {
    wrote_(unixNow());
  } else if (arriving) {
    wrote_(modifiedAt(arrived));  // moved in: written whenever it was, perhaps long ago
  }
}

}  // namespace korvo
