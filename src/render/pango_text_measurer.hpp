#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "ui/text_measurer.hpp"

namespace korvo::render {

// Measures with Pango on fontconfig's fonts: Inter for the system design, the rounded family for
// the rounded one, "Material Icons" for symbols. Metrics are unhinted, so they scale with the
// font size and match what the painter draws at any output scale. Results are cached by (text,
// font, tracking, width), keeping the most recently used `capacity` of them, so a long-running
// host whose texts keep changing ("3 days, 4 hr ago") holds a fixed amount of memory.
class PangoTextMeasurer final : public ui::TextMeasurer {
 public:
  // Cached measurements: all four cards of the desktop host take about 95, so 128 keeps every
  // card's while the live texts' new ones push out old ones; at 512 a host holds about 250 kB
  // more after a couple of hours of "… min ago" texts.
  static constexpr std::size_t defaultCapacity = 128;

  explicit PangoTextMeasurer(std::size_t capacity = defaultCapacity);
  ~PangoTextMeasurer() override;
  PangoTextMeasurer(const PangoTextMeasurer&) = delete;
  PangoTextMeasurer& operator=(const PangoTextMeasurer&) = delete;

  ui::TextMetrics measure(std::string_view text, const ui::Font& font, double tracking,
                          double maxWidth) override;
  ui::TextMetrics measureSymbol(std::string_view name, const ui::Font& font) override;

  // Measurements currently cached, never more than the capacity.
  std::size_t cachedCount() const;

  // The process-wide measurer the painter shares, so layout and painting see one font cache.
  static PangoTextMeasurer& shared();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace korvo::render
