#include "gtk/file_watch.hpp"

namespace korvo::gtk {
namespace {

bool namesFile(GFile* file, const std::string& name) {
  if (file == nullptr) return false;
  char* base = g_file_get_basename(file);
  const bool same = base != nullptr && name == base;
  g_free(base);
  return same;
}

void onFolderChanged(GFileMonitor*, GFile* file, GFile* other, GFileMonitorEvent event,
                     gpointer watch) {
  static_cast<FileWatch*>(watch)->folderChanged(file, other, event);
}

}  // namespace

FileWatch::FileWatch(const std::filesystem::path& path, std::function<void()> changed)
    : fileName_(path.filename().string()), changed_(std::move(changed)) {
  const auto folder = path.parent_path();
  if (g_mkdir_with_parents(folder.c_str(), 0700) != 0) return;
  GFile* directory = g_file_new_for_path(folder.c_str());
  monitor_ = g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
  g_object_unref(directory);
  if (monitor_ != nullptr) g_signal_connect(monitor_, "changed", G_CALLBACK(onFolderChanged), this);
}

FileWatch::~FileWatch() {
  if (monitor_ == nullptr) return;
  g_signal_handlers_disconnect_by_data(monitor_, this);
  g_file_monitor_cancel(monitor_);
  g_object_unref(monitor_);
}

void FileWatch::folderChanged(GFile* file, GFile* other, GFileMonitorEvent event) {
  if (!namesFile(file, fileName_) && !namesFile(other, fileName_)) return;
  switch (event) {
    case G_FILE_MONITOR_EVENT_CHANGES_DONE_HINT:
    case G_FILE_MONITOR_EVENT_CREATED:
    case G_FILE_MONITOR_EVENT_DELETED:
    case G_FILE_MONITOR_EVENT_MOVED_IN:
    case G_FILE_MONITOR_EVENT_MOVED_OUT:
    case G_FILE_MONITOR_EVENT_RENAMED:
      changed_();
      break;
    default:
      break;
  }
}

}  // namespace korvo::gtk
