#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace korvo::testing_support {

// Root reads and writes anything, so a test about permissions runs its body as the unprivileged
// user `nobody`. As root, the body runs in a child process that has given up root, working in
// `directory`, which is handed over to that user first; the parent waits and fails when the
// body failed there. As any other user the body simply runs. Use it as the first statement:
//
//   TEST_F(Store, SaveIntoAnUnwritableDirectoryFails) {
//     KORVO_AS_UNPRIVILEGED_USER(directory.path());
//     …
//   }
class UnprivilegedRun {
 public:
  explicit UnprivilegedRun(const std::filesystem::path& directory) {
    if (::geteuid() != 0) return;
    const passwd* nobody = ::getpwnam("nobody");
    if (nobody == nullptr) {
      ADD_FAILURE() << "no user \"nobody\" to run the test as";
      ranElsewhere_ = true;
      return;
    }
    const uid_t user = nobody->pw_uid;
    const gid_t group = nobody->pw_gid;
    ranElsewhere_ = true;  // unless this process turns out to be the child
    if (!handOver(directory, user, group)) return;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
      if (::setgroups(0, nullptr) != 0 || ::setgid(group) != 0 || ::setuid(user) != 0) ::_exit(3);
      inChild_ = true;
      ranElsewhere_ = false;
      return;
    }
    if (child < 0) {
      ADD_FAILURE() << "cannot fork to run the test as the user nobody";
      return;
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
        << "the test failed as the user nobody (its output is above)";
  }
  UnprivilegedRun(const UnprivilegedRun&) = delete;
  UnprivilegedRun& operator=(const UnprivilegedRun&) = delete;
  // The child ends with the body, before the fixture (owned by the parent) is torn down.
  ~UnprivilegedRun() {
    if (!inChild_) return;
    std::fflush(nullptr);
    ::_exit(::testing::Test::HasFailure() ? 1 : 0);
  }

  // True in the parent whose child has run the body.
  bool ranElsewhere() const { return ranElsewhere_; }

 private:
  static bool handOver(const std::filesystem::path& directory, uid_t user, gid_t group) {
    bool handed = ::chown(directory.c_str(), user, group) == 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
      handed = handed && ::lchown(entry.path().c_str(), user, group) == 0;
    }
    if (!handed) ADD_FAILURE() << "cannot hand " << directory << " over to the user nobody";
    return handed;
  }

  bool inChild_ = false;
  bool ranElsewhere_ = false;
};

// Runs `work` as the unprivileged user "nobody" and returns what it returned: in a child process
// that drops root when the tests run as root (as CI does), in this process otherwise. None when
// the child could not become nobody or did not finish.
inline std::optional<std::string> runUnprivileged(const std::function<std::string()>& work) {
  if (::geteuid() != 0) return work();
  const passwd* nobody = ::getpwnam("nobody");
  if (nobody == nullptr) return std::nullopt;
  int ends[2];
  if (::pipe(ends) != 0) return std::nullopt;
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(ends[0]);
    if (::setgroups(0, nullptr) != 0 || ::setgid(nobody->pw_gid) != 0 ||
        ::setuid(nobody->pw_uid) != 0) {
      ::_exit(2);
    }
    const std::string result = work();
    const bool written =
        ::write(ends[1], result.data(), result.size()) == static_cast<ssize_t>(result.size());
    ::_exit(written ? 0 : 3);
  }
  ::close(ends[1]);
  std::string result;
  char buffer[4096];
  for (ssize_t got; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;) result.append(buffer, got);
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
  return result;
}

}  // namespace korvo::testing_support

#define KORVO_AS_UNPRIVILEGED_USER(directory)                                      \
  const ::korvo::testing_support::UnprivilegedRun korvoUnprivilegedRun(directory); \
  if (korvoUnprivilegedRun.ranElsewhere()) return
