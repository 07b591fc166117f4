// The service's publication in its own process, one after another as the service runs them,
// with the places the environment names (bench/history.sh runs it with 90 days of history and
// with none): the shared file written, Codex's rollouts read, the history recorded.
#include <benchmark/benchmark.h>

#include <sstream>

#include "app/publisher.hpp"

namespace korvo {
namespace {

void BM_ServicePublication(benchmark::State& state) {
  Settings settings;
  settings.codexLive = false;
  for (auto _ : state) {
    std::ostringstream notes;
    benchmark::DoNotOptimize(publisher::publish(settings, notes));
  }
}
BENCHMARK(BM_ServicePublication)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvo
