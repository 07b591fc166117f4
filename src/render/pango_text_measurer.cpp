#include "render/pango_text_measurer.hpp"

#include <pango/pangocairo.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <unordered_map>

#include "render/pango_text.hpp"

namespace korvo::render {

using ui::Font;
using ui::TextMetrics;

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

// What a measurement depends on. `text` views either the caller's text (look-ups) or the
// string its cache entry owns.
struct Key {
  std::string_view text;
  double size = 0;  // points
  int weight = 0;   // FontWeight
  int design = 0;   // FontDesign
  bool monospacedDigits = false;
  bool symbol = false;  // a symbol name rather than text
  double tracking = 0;  // points
  double maxWidth = 0;  // points, infinite for none
};

// Doubles compare by their bits (with -0 as +0), so even a NaN key finds itself and is evicted.
std::uint64_t bits(double value) {
  return std::bit_cast<std::uint64_t>(value + 0.0);
}

struct KeyEqual {
  bool operator()(const Key& a, const Key& b) const {
    return a.text == b.text && bits(a.size) == bits(b.size) && a.weight == b.weight &&
           a.design == b.design && a.monospacedDigits == b.monospacedDigits &&
           a.symbol == b.symbol && bits(a.tracking) == bits(b.tracking) &&
           bits(a.maxWidth) == bits(b.maxWidth);
  }
};

Key keyOf(std::string_view text, const Font& font, double tracking, double maxWidth, bool symbol) {
  return {text,
          font.size,
          static_cast<int>(font.weight),
          static_cast<int>(font.design),
          font.monospacedDigits,
          symbol,
          tracking,
          maxWidth};
}

struct KeyHash {
  static std::size_t mix(std::size_t seed, std::uint64_t value) {
    return seed ^ (value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2));
  }
  std::size_t operator()(const Key& key) const {
    std::size_t seed = std::hash<std::string_view>{}(key.text);
    seed = mix(seed, bits(key.size));
    seed = mix(seed, static_cast<std::uint64_t>(key.weight) << 8 |
                         static_cast<std::uint64_t>(key.design) << 2 |
                         (key.monospacedDigits ? 2U : 0U) | (key.symbol ? 1U : 0U));
    seed = mix(seed, bits(key.tracking));
    return mix(seed, bits(key.maxWidth));
  }
};

}  // namespace

// A least-recently-used cache: a list ordered by last use owns the entries, and a map from the
// key (viewing the entry's own text) finds them. Look-ups allocate nothing; once full, the
// oldest entry's node is reused for the newcomer.
struct PangoTextMeasurer::Impl {
  struct Entry {
    std::string text;
    Key key;  // its text views `text` above, whose buffer never moves while cached
    TextMetrics metrics;
  };

  std::size_t capacity;
  PangoLayout* layout = pango_layout_new(pango_text::sharedContext());
  std::list<Entry> recent;  // most recently used first
  std::unordered_map<Key, std::list<Entry>::iterator, KeyHash, KeyEqual> index;

  explicit Impl(std::size_t capacity) : capacity(std::max<std::size_t>(1, capacity)) {
    index.reserve(this->capacity);
  }
  ~Impl() { g_object_unref(layout); }

  const TextMetrics* find(const Key& key) {
    const auto found = index.find(key);
    if (found == index.end()) return nullptr;
    recent.splice(recent.begin(), recent, found->second);
    return &found->second->metrics;
  }

  void insert(const Key& key, TextMetrics metrics) {
    if (recent.size() >= capacity) {
      index.erase(recent.back().key);
      recent.splice(recent.begin(), recent, std::prev(recent.end()));
    } else {
      recent.emplace_front();
    }
    Entry& entry = recent.front();
    // Assigned into a cleared string so its buffer is reused; the key is rebuilt after any growth.
    entry.text.assign(key.text);
    entry.key = key;
    entry.key.text = entry.text;
    entry.metrics = std::move(metrics);
    index.emplace(entry.key, recent.begin());
  }
};

PangoTextMeasurer::PangoTextMeasurer(std::size_t capacity)
    : impl_(std::make_unique<Impl>(capacity)) {}

PangoTextMeasurer::~PangoTextMeasurer() = default;

TextMetrics PangoTextMeasurer::measure(std::string_view text, const Font& font, double tracking,
                                       double maxWidth) {
  const Key key = keyOf(text, font, tracking, maxWidth, false);
  if (const TextMetrics* cached = impl_->find(key)) return *cached;
  pango_text::configure(impl_->layout, text, font, tracking, maxWidth);
  TextMetrics metrics = metricsOf(impl_->layout);
  impl_->insert(key, metrics);
  return metrics;
}

TextMetrics PangoTextMeasurer::measureSymbol(std::string_view name, const Font& font) {
  const Key key = keyOf(name, font, 0, 0, true);
  if (const TextMetrics* cached = impl_->find(key)) return *cached;
  pango_text::configureSymbol(impl_->layout, name, font);
  TextMetrics metrics = metricsOf(impl_->layout);
  impl_->insert(key, metrics);
  return metrics;
}

std::size_t PangoTextMeasurer::cachedCount() const {
  return impl_->recent.size();
}

PangoTextMeasurer& PangoTextMeasurer::shared() {
  static PangoTextMeasurer measurer;
  return measurer;
}

}  // namespace korvo::render
