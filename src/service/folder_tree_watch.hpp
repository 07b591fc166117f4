#pragma once

#include <gio/gio.h>

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace korvo {

// Tells when a file whose name ends in `suffix` is written anywhere under `root`, at any depth,
// with GIO file monitors (inotify): one per folder, added as folders appear. While `root` is
// missing it watches the nearest folder above it that exists, for the way down: GIO would poll a
// missing folder every few seconds, and an idle service must not wake. Only names, types and
// modification times are looked at, never contents.
class FolderTreeWatch {
 public:
  // `wrote` gets the moment of the write in Unix seconds (the file's modification time for files
  // found by looking through a folder). A file written again and again is told of at most once
  // every `changesEvery` milliseconds (a new file at once).
  FolderTreeWatch(std::filesystem::path root, std::string suffix, int changesEvery,
                  std::function<void(double)> wrote);
  ~FolderTreeWatch();
  FolderTreeWatch(const FolderTreeWatch&) = delete;
  FolderTreeWatch& operator=(const FolderTreeWatch&) = delete;

  // The newest modification time (Unix seconds) among the files found when the watch began.
  std::optional<double> newestAtStart() const { return newestAtStart_; }
  // How many folders are watched (the tree's, or the one folder above a missing root).
  std::size_t foldersWatched() const { return monitors_.size(); }

  // Called by GIO for every event in a watched folder.
  void changed(GFile* file, GFile* other, GFileMonitorEvent event);

 private:
  // Watches `root` when it exists, else the nearest folder above it.
  void approach();
  // Watches `folder` and every folder under it; files found go to `found`.
  void watchTree(const std::filesystem::path& folder, const std::function<void(double)>& found);
  void watchFolder(const std::filesystem::path& folder);
  void forget(const std::filesystem::path& folder);
  void forgetAll();
  bool matches(const std::string& name) const;

  std::filesystem::path root_;
  std::string suffix_;
  int changesEvery_;
  std::function<void(double)> wrote_;
  std::optional<double> newestAtStart_;
  bool looked_ = false;       // the tree has been looked through once
  bool approaching_ = false;  // the one folder watched is above the missing root
  std::map<std::filesystem::path, GFileMonitor*> monitors_;
};

}  // namespace korvo
