#pragma once

#include <gio/gio.h>

#include <filesystem>
#include <functional>
#include <string>

namespace korvo::gtk {

// Calls `changed` whenever the file at `path` appears, is rewritten, replaced by a rename or
// removed. It watches the file's folder (created if need be): writers replace files by renaming
// over them, which a watch on the file itself would lose, and GIO polls a folder that is missing.
class FileWatch {
 public:
  FileWatch(const std::filesystem::path& path, std::function<void()> changed);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  // Called by GIO for every event in the folder.
  void folderChanged(GFile* file, GFile* other, GFileMonitorEvent event);

 private:
  std::string fileName_;
  std::function<void()> changed_;
  GFileMonitor* monitor_ = nullptr;
};

}  // namespace korvo::gtk
