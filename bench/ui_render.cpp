#include <benchmark/benchmark.h>
#include <cairo.h>

#include "render/image_output.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/views/common/sample_card.hpp"
#include "ui/widget_layout.hpp"

namespace {

using namespace korvo;

const ui::Environment environment{.family = ui::WidgetFamily::systemMedium,
                                  .now = Date::fromUnixSeconds(1'800'000'000)};

void layoutAndPaint(ui::TextMeasurer& measurer) {
  const ui::View view = testing_support::sampleCard(environment);
  const ui::WidgetLayout widget = ui::layoutWidget("bench", view, environment, measurer, 2);
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 728, 340);
  cairo_t* cr = cairo_create(surface);
  cairo_scale(cr, 2, 2);
  render::paintWidget(cr, widget);
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  benchmark::DoNotOptimize(cairo_image_surface_get_data(surface));
  cairo_surface_destroy(surface);
}

// The first frame of the process: fontconfig, the font files and an empty measurement cache.
void BM_MediumCardColdFirstFrame(benchmark::State& state) {
  for (auto _ : state) {
    render::PangoTextMeasurer measurer;
    layoutAndPaint(measurer);
  }
}
BENCHMARK(BM_MediumCardColdFirstFrame)->Iterations(1)->Unit(benchmark::kMillisecond);

// Every later frame: fonts loaded and measurements cached, as in the desktop host's redraws.
void BM_MediumCardWarm(benchmark::State& state) {
  render::PangoTextMeasurer& measurer = render::PangoTextMeasurer::shared();
  layoutAndPaint(measurer);
  for (auto _ : state) layoutAndPaint(measurer);
}
BENCHMARK(BM_MediumCardWarm)->Unit(benchmark::kMicrosecond);

// Layout alone, warm, for the share layout takes of a frame.
void BM_MediumCardLayoutWarm(benchmark::State& state) {
  render::PangoTextMeasurer& measurer = render::PangoTextMeasurer::shared();
  for (auto _ : state) {
    benchmark::DoNotOptimize(ui::layoutWidget("bench", testing_support::sampleCard(environment),
                                              environment, measurer, 2));
  }
}
BENCHMARK(BM_MediumCardLayoutWarm)->Unit(benchmark::kMicrosecond);

// Passes every request on to the shared measurer, counting them.
class CountingMeasurer final : public ui::TextMeasurer {
 public:
  ui::TextMetrics measure(std::string_view text, const ui::Font& font, double tracking,
                          double maxWidth) override {
    ++calls;
    return render::PangoTextMeasurer::shared().measure(text, font, tracking, maxWidth);
  }
  ui::TextMetrics measureSymbol(std::string_view name, const ui::Font& font) override {
    ++calls;
    return render::PangoTextMeasurer::shared().measureSymbol(name, font);
  }
  long calls = 0;  // requests since construction
};

// How many measurements one layout asks for: each is a cache look-up once warm.
void BM_MediumCardLayoutMeasureCalls(benchmark::State& state) {
  CountingMeasurer measurer;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ui::layoutWidget("bench", testing_support::sampleCard(environment),
                                              environment, measurer, 2));
  }
  state.counters["measures_per_layout"] =
      static_cast<double>(measurer.calls) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_MediumCardLayoutMeasureCalls)->Unit(benchmark::kMicrosecond);

}  // namespace
