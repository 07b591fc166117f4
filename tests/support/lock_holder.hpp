#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "support/desktop_harness.hpp"

namespace korvo::testing_support {

// Another process holding a lock file: `flock FILE sleep 600` in a process group of its own,
// ended with its group when the object goes. The constructor returns once the lock is held.
class LockHolder {
 public:
  explicit LockHolder(const std::filesystem::path& lockFile)
      : lockFile_(lockFile),
        process_({"/usr/bin/flock", lockFile.string(), "sleep", "600"}, {{"PATH", "/usr/bin:/bin"}},
                 "/dev/null", "/dev/null") {
    EXPECT_TRUE(desktop_test::waitFor([&] { return taken(); })) << "flock never took " << lockFile;
  }

  // The holder still runs and the lock is still taken: whoever returned meanwhile did not wait
  // for it to be let go.
  bool holding() { return process_.running() && taken(); }

  // Lets go of the lock by ending the holder.
  void release() { process_.stop(); }

 private:
  // Whether anyone holds the lock, asked without waiting and let go at once.
  bool taken() const {
    const int fd = ::open(lockFile_.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool free = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
    ::close(fd);
    return !free;
  }

  std::filesystem::path lockFile_;
  desktop_test::Process process_;
};

}  // namespace korvo::testing_support
