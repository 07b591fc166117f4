#include "ui/pango_text_measurer.hpp"

#include <pango/pangocairo.h>

#include <string>
#include <unordered_map>

#include "base/c_format.hpp"
#include "ui/pango_text.hpp"

namespace korvo::ui {

namespace {

TextMetrics metricsOf(PangoLayout* layout) {
  TextMetrics metrics;
  const char* text = pango_layout_get_text(layout);
  for (GSList* item = pango_layout_get_lines_readonly(layout); item != nullptr; item = item->next) {
    auto* line = static_cast<PangoLayoutLine*>(item->data);
    std::string content(text + line->start_index, static_cast<std::size_t>(line->length));
    while (!content.empty() && (content.back() == ' ' || content.back() == '\n'))
      content.pop_back();
    PangoRectangle logical;
    pango_layout_line_get_extents(line, nullptr, &logical);
    metrics.lines.push_back(std::move(content));
    metrics.lineWidths.push_back(static_cast<double>(logical.width) / PANGO_SCALE);
  }
  PangoRectangle logical;
  pango_layout_get_extents(layout, nullptr, &logical);
  for (double width : metrics.lineWidths) metrics.width = std::max(metrics.width, width);
  metrics.height = static_cast<double>(logical.height) / PANGO_SCALE;
  metrics.lineHeight = metrics.lines.empty()
                           ? metrics.height
                           : metrics.height / static_cast<double>(metrics.lines.size());
  metrics.baseline = static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE;
  return metrics;
}

std::string cacheKey(std::string_view text, const Font& font, double tracking, double maxWidth) {
  std::string key =
      cFormat("%a|%d|%d|%d|%a|%a|", font.size, static_cast<int>(font.weight),
              static_cast<int>(font.design), font.monospacedDigits ? 1 : 0, tracking, maxWidth);
  key.append(text);
  return key;
}

}  // namespace

struct PangoTextMeasurer::Impl {
  PangoFontMap* fontMap = pango_cairo_font_map_new();
  PangoContext* context = pango_font_map_create_context(fontMap);
  PangoLayout* layout = nullptr;
  std::unordered_map<std::string, TextMetrics> cache;

  Impl() {
    pango_text::setUnhinted(context);
    layout = pango_layout_new(context);
  }
  ~Impl() {
    g_object_unref(layout);
    g_object_unref(context);
    g_object_unref(fontMap);
  }
};

PangoTextMeasurer::PangoTextMeasurer() : impl_(std::make_unique<Impl>()) {}

PangoTextMeasurer::~PangoTextMeasurer() = default;

TextMetrics PangoTextMeasurer::measure(std::string_view text, const Font& font, double tracking,
                                       double maxWidth) {
  std::string key = cacheKey(text, font, tracking, maxWidth);
  if (auto found = impl_->cache.find(key); found != impl_->cache.end()) return found->second;
  pango_text::configure(impl_->layout, text, font, tracking, maxWidth);
  TextMetrics metrics = metricsOf(impl_->layout);
  impl_->cache.emplace(std::move(key), metrics);
  return metrics;
}

TextMetrics PangoTextMeasurer::measureSymbol(std::string_view name, const Font& font) {
  std::string key = "symbol|" + cacheKey(name, font, 0, 0);
  if (auto found = impl_->cache.find(key); found != impl_->cache.end()) return found->second;
  pango_text::configureSymbol(impl_->layout, name, font);
  TextMetrics metrics = metricsOf(impl_->layout);
  impl_->cache.emplace(std::move(key), metrics);
  return metrics;
}

PangoTextMeasurer& PangoTextMeasurer::shared() {
  static PangoTextMeasurer measurer;
  return measurer;
}

}  // namespace korvo::ui
