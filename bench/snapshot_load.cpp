#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "shared/widget_snapshot_store.hpp"
#include "support/temporary_directory.hpp"

namespace {

// A temporary data home holding the example file in the build tree's group container, with the
// bundle information pointing at it, as a widget finds it at run time.
struct Container {
  Container() {
    ::setenv("XDG_DATA_HOME", root.c_str(), 1);
    ::setenv("KORVO_BUNDLE_INFO", (root / "Info.json").c_str(), 1);
    std::ofstream(root / "Info.json") << R"({"KorvoAppGroup": "group.com.tessmoor.Korvo"})";
    file = root / "app-groups" / "group.com.tessmoor.Korvo" / "usage-snapshot.json";
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::copy_file(
        std::filesystem::path(KORVO_SOURCE_DIR) / "data" / "samples" / "usage-snapshot.json", file);
  }
  korvo::testing_support::TemporaryDirectory directory;
  const std::filesystem::path& root = directory.path();
  std::filesystem::path file;
};

Container& container() {
  static Container instance;
  return instance;
}

void BM_FileUrlAndLoad(benchmark::State& state) {
  container();
  for (auto _ : state) {
    auto snapshot = korvo::WidgetSnapshotStore::load(korvo::WidgetSnapshotStore::fileURL());
    if (!snapshot) state.SkipWithError("the example file did not load");
    benchmark::DoNotOptimize(snapshot);
  }
}
BENCHMARK(BM_FileUrlAndLoad);

void BM_LoadOnly(benchmark::State& state) {
  const auto url = korvo::Url::file(container().file);
  for (auto _ : state) {
    auto snapshot = korvo::WidgetSnapshotStore::load(url);
    benchmark::DoNotOptimize(snapshot);
  }
}
BENCHMARK(BM_LoadOnly);

// The floor: open the same file and read it whole, nothing else.
void BM_BareOpenAndRead(benchmark::State& state) {
  const std::string path = container().file.string();
  char buffer[4096];
  for (auto _ : state) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ssize_t total = 0;
    for (ssize_t got; (got = ::read(fd, buffer, sizeof buffer)) > 0;) total += got;
    ::close(fd);
    benchmark::DoNotOptimize(total);
  }
}
BENCHMARK(BM_BareOpenAndRead);

}  // namespace
