#include "views/memory/memory_widget_content.hpp"

#include <string>
#include <vector>

#include "base/c_format.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"
#include "sampling/memory_format.hpp"
#include "shared/deep_link.hpp"
#include "views/common/widget_meter.hpp"

namespace korvo {
namespace {

using ui::Font;
using ui::FontDesign;
using ui::FontWeight;
using ui::HorizontalAlignment;
using ui::VerticalAlignment;

ui::Color pressureTint(MemoryPressure pressure, const ui::Palette& palette) {
  switch (pressure) {
    case MemoryPressure::warning:
      return palette.orange;
    case MemoryPressure::critical:
      return palette.red;
    case MemoryPressure::normal:
    case MemoryPressure::unknown:
      break;
  }
  return palette.teal;
}

std::vector<ui::View> readingLines(const MemorySnapshot& memory,
                                   const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  const double percent = memory.usedFraction() * 100;
  return {
      ui::text(cFormat("%.0f%%", percent))
          .font(Font::system(40, FontWeight::medium, FontDesign::rounded))
          .monospacedDigit()
          .lineLimit(1)
          .minimumScaleFactor(0.7),
      WidgetMeter{memory.usedFraction(), pressureTint(memory.pressure, palette)}
          .body(environment)
          .accessibilityLabel(_("Memory used"))
          .accessibilityValue(cFormat(_("%.0f percent").c_str(), percent)),
      ui::text(MemoryFormat::gigabytes(memory.used()) + _(" of ") +
               MemoryFormat::gigabytes(memory.total))
          .font(Font::caption2())
          .foregroundStyle(palette.secondary)
          .lineLimit(1)
          .minimumScaleFactor(0.7),
  };
}

std::vector<ui::View> unavailableLines(const ui::Palette& palette) {
  return {
      ui::text(_("Unavailable")).font(Font::headline()),
      ui::text(_("Open Korvo to retry")).font(Font::caption()).foregroundStyle(palette.secondary),
  };
}

ui::View primaryColumn(const MemoryEntry& entry, const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  std::vector<ui::View> children{
      ui::label(_("MEMORY"), "memorychip")
          .font(Font::system(10, FontWeight::semibold))
          .tracking(1.0)
          .foregroundStyle(palette.secondary),
  };
  for (ui::View& line :
       entry.memory ? readingLines(*entry.memory, environment) : unavailableLines(palette)) {
    children.push_back(std::move(line));
  }
  children.push_back(ui::spacer());
  children.push_back(ui::hstack(VerticalAlignment::center, 3,
                                {ui::text(_("Updated")), ui::text(shortTime(entry.date))})
                         .font(Font::system(10))
                         .foregroundStyle(palette.secondary));
  return ui::vstack(HorizontalAlignment::leading, 6, std::move(children));
}

ui::View figureRow(std::string title, std::uint64_t bytes) {
  return ui::hstack(
      {ui::text(std::move(title)), ui::spacer(), ui::text(MemoryFormat::gigabytes(bytes))});
}

ui::View detailColumn(const MemoryEntry& entry, const ui::Palette& palette) {
  std::vector<ui::View> children;
  if (entry.memory) {
    const MemorySnapshot& memory = *entry.memory;
    children.push_back(ui::text(MemoryFormat::gigabytes(memory.available()) + _(" available"))
                           .font(Font::subheadline().withWeight(FontWeight::semibold)));
    children.push_back(ui::text(pressureLine(memory.pressure))
                           .font(Font::caption())
                           .foregroundStyle(palette.secondary));
    children.push_back(figureRow(_("Apps"), memory.app));
    children.push_back(figureRow(_("Wired"), memory.wired));
  }
  children.push_back(ui::link(deepLinkURL("awake").string(),
                              ui::label(_("Keep Awake"), "cup.and.saucer.fill")
                                  .font(Font::caption().withWeight(FontWeight::semibold))
                                  .foregroundStyle(palette.teal)));
  return ui::vstack(HorizontalAlignment::leading, 8, std::move(children))
      .font(Font::system(10))
      .foregroundStyle(palette.secondary)
      .frame({.maxWidth = ui::infinity, .alignment = ui::Alignment::leading()});
}

}  // namespace

// The level names are the levels' raw values, spelled out here so the text template carries them.
std::string pressureLine(MemoryPressure pressure) {
  switch (pressure) {
    case MemoryPressure::normal:
      return _("Normal") + _(" pressure");
    case MemoryPressure::warning:
      return _("Elevated") + _(" pressure");
    case MemoryPressure::critical:
      return _("High") + _(" pressure");
    case MemoryPressure::unknown:
      break;
  }
  return _("Pressure unavailable");
}

ui::View MemoryWidgetContent::body(const ui::Environment& environment) const {
  std::vector<ui::View> columns{primaryColumn(entry, environment)};
  if (family == ui::WidgetFamily::systemMedium) {
    columns.push_back(ui::divider());
    columns.push_back(detailColumn(entry, environment.palette()));
  }
  return ui::hstack(VerticalAlignment::center, 20, std::move(columns))
      .widgetURL(deepLinkURL("resources").string());
}

}  // namespace korvo
