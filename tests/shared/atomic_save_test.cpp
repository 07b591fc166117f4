#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "shared/widget_snapshot_store.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

// A writer process replaces the file 2,000 times, alternating two snapshots of different sizes,
// while this process reads it 20,000 times: every read that finds a file must decode to one of
// the two whole snapshots.
TEST(AtomicSaveTest, ConcurrentReaderNeverSeesATornFile) {
  testing_support::TemporaryDirectory directory;
  const auto url = Url::file(directory.path() / "group" / "usage-snapshot.json");

  WidgetSnapshot small{Date{1}, std::nullopt, std::nullopt, false, {}, {}};
  WidgetSnapshot large{Date{816399900}, 52.5, Date{816399890}, true, {}, {}};
  large.codex = {true, UsageSnapshot{{}, Date{816399850}, std::string(20000, 's')}, "m", false};
  for (int i = 0; i < 50; ++i) {
    large.codex.snapshot->windows.push_back(
        {"window " + std::to_string(i), i * 1.5, Date{i * 1e5}});
  }

  const pid_t writer = ::fork();
  ASSERT_GE(writer, 0);
  if (writer == 0) {
    bool ok = true;
    for (int i = 0; i < 2000; ++i)
      ok = WidgetSnapshotStore::save(i % 2 == 0 ? small : large, url) && ok;
    ::_exit(ok ? 0 : 1);
  }

  // Reads for as long as the writer replaces the file (in a debug build a read costs more than a
  // save, so a fixed count could outlast the writer by minutes), and a few times after it.
  int found = 0;
  int torn = 0;
  int status = 0;
  bool writing = true;
  for (int read = 0; writing || read < 200; ++read) {
    const auto result = WidgetSnapshotStore::inspect(url);
    if (const auto* snapshot = std::get_if<WidgetSnapshot>(&result)) {
      ++found;
      if (*snapshot != small && *snapshot != large) ++torn;
    } else if (std::get<DecodeFailure>(result).reason.find("missing file") == std::string::npos) {
      ++torn;
    }
    if (writing) {
      const pid_t ended = ::waitpid(writer, &status, WNOHANG);
      ASSERT_NE(ended, -1);
      writing = ended == 0;
    }
  }
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(torn, 0);
  EXPECT_GT(found, 0);
  EXPECT_EQ(WidgetSnapshotStore::load(url), large);
}

}  // namespace
}  // namespace korvo
