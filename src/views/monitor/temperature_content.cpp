#include "views/monitor/temperature_content.hpp"

#include "base/c_format.hpp"
#include "base/text.hpp"
#include "views/monitor/last_updated_footer.hpp"

namespace korvo::TemperatureContent {

using ui::Font;
using ui::FontDesign;
using ui::FontWeight;

State state(const std::optional<WidgetSnapshot>& snapshot) {
  if (!snapshot || !snapshot->temperatureEnabled) return State::disabled;
  return snapshot->temperature ? State::reading : State::unavailable;
}

std::string degreesText(double celsius) {
  return cFormat("%.0f°C", celsius);
}

std::vector<ui::View> items(const MonitorEntry& entry, const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  std::vector<ui::View> items{
      ui::label(_("TEMPERATURE"), "thermometer.medium")
          .font(Font::system(10, FontWeight::semibold))
          .foregroundStyle(palette.secondary),
  };
  const State current = state(entry.snapshot);
  if (current == State::reading) {
    items.push_back(ui::text(degreesText(*entry.snapshot->temperature))
                        .font(Font::system(40, FontWeight::medium, FontDesign::rounded))
                        .monospacedDigit()
                        .foregroundStyle(palette.primary));
    items.push_back(ui::text(_("Hottest CPU sensor"))
                        .font(Font::caption2())
                        .foregroundStyle(palette.secondary));
    if (const std::optional<Date> readAt = entry.snapshot->temperatureDate) {
      items.push_back(LastUpdatedFooter{entry.date, *readAt}.body(environment));
    }
    return items;
  }
  items.push_back(ui::text(current == State::unavailable ? _("Unavailable") : _("Enable in Korvo"))
                      .font(Font::headline()));
  items.push_back(ui::text(_("Settings → Monitors → CPU temperature"))
                      .font(Font::caption2())
                      .foregroundStyle(palette.secondary));
  return items;
}

}  // namespace korvo::TemperatureContent
