#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "support/korvo_process.hpp"
#include "support/unprivileged.hpp"

// What korvo creates is private to its user whatever the umask: folders 0700, files 0600, and
// the shared file 0644 for the widgets.
namespace korvo {
namespace {

using testing_support::KorvoWorld;

const std::string statusInput =
    R"({"rate_limits":{"five_hour":{"used_percentage":28},"seven_day":{"used_percentage":42}}})";

mode_t permissions(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return 07777;
  return status.st_mode & 07777;
}

// The umask of this process for the life of the object; korvo's processes inherit it.
class ScopedUmask {
 public:
  explicit ScopedUmask(mode_t mask) : previous_(::umask(mask)) {}
  ScopedUmask(const ScopedUmask&) = delete;
  ScopedUmask& operator=(const ScopedUmask&) = delete;
  ~ScopedUmask() { ::umask(previous_); }

 private:
  mode_t previous_;
};

// What the user nobody manages to do to the shared file's folder, one word per attempt.
std::string attemptsOfAnotherUser(const std::filesystem::path& folder) {
  const auto outcome = [](bool done) { return done ? std::string("done") : std::strerror(errno); };
  const int lock = ::open((folder / ".usage-snapshot.lock").c_str(), O_RDONLY);
  const std::string locking = outcome(lock >= 0);
  if (lock >= 0) ::close(lock);
  const int planted = ::open((folder / "planted").c_str(), O_WRONLY | O_CREAT, 0644);
  const std::string planting = outcome(planted >= 0);
  if (planted >= 0) ::close(planted);
  const std::string swapping = outcome(
      ::rename((folder / "usage-snapshot.json").c_str(), (folder / "swapped").c_str()) == 0);
  return "lock: " + locking + "; plant: " + planting + "; swap: " + swapping;
}

class PrivateFilesTest : public testing::TestWithParam<mode_t> {};

TEST_P(PrivateFilesTest, FoldersAre0700FilesAre0600AndTheSharedFile0644) {
  KorvoWorld world;
  // Other users may enter the home, as they may enter most homes.
  std::filesystem::permissions(world.home(), std::filesystem::perms::all);
  {
    const ScopedUmask mask(GetParam());
    ASSERT_EQ(world.korvo({"settings", "codex", "false"}).exitCode, 0);
    ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
    ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
    ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  }
  for (const char* folder : {"data", "data/app-groups", "data/app-groups/group.com.tessmoor.Korvo",
                             "config", "config/korvo", "claude"}) {
    EXPECT_EQ(permissions(world.home() / folder), 0700u) << folder;
  }
  EXPECT_EQ(permissions(world.settingsFile()), 0600u);
  EXPECT_EQ(permissions(world.sharedFile().parent_path() / ".usage-snapshot.lock"), 0600u);
  EXPECT_EQ(permissions(world.claudeSettings()), 0600u);
  EXPECT_EQ(permissions(world.sharedFile()), 0644u);

  const auto attempts = testing_support::runUnprivileged(
      [&] { return attemptsOfAnotherUser(world.sharedFile().parent_path()); });
  EXPECT_EQ(attempts, "lock: Permission denied; plant: Permission denied; swap: Permission denied");
}

INSTANTIATE_TEST_SUITE_P(Umasks, PrivateFilesTest, testing::Values(mode_t{0000}, mode_t{0077}),
                         [](const testing::TestParamInfo<mode_t>& info) {
                           return info.param == 0 ? std::string("Umask000")
                                                  : std::string("Umask077");
                         });

}  // namespace
}  // namespace korvo
