#pragma once

#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <string>

namespace korvo::testing_support {

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
