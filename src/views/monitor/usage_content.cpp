#include "views/monitor/usage_content.hpp"

#include <optional>
#include <string>
#include <utility>

#include "base/c_format.hpp"
#include "base/text.hpp"
#include "views/common/widget_meter.hpp"
#include "views/monitor/last_updated_footer.hpp"
#include "views/monitor/usage_windows.hpp"

namespace korvo::UsageContent {
namespace {

using ui::Font;
using ui::FontWeight;
using ui::HorizontalAlignment;
using ui::VerticalAlignment;

ui::View meterFor(const UsageWindow& window, UsageProvider provider,
                  const ui::Environment& environment) {
  return WidgetMeter{UsageWindows::remainingPercent(window) / 100,
                     UsageWindows::tint(provider, environment.palette())}
      .body(environment);
}

ui::View smallRow(const MonitorEntry& entry, UsageProvider provider,
                  const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  const UsageState providerState = state(entry, provider);
  const std::optional<UsageWindow> weekly = UsageWindows::weekly(providerState);
  const std::string figure = weekly ? UsageWindows::remainingText(*weekly) : _("—");
  ui::View head = ui::hstack({
      ui::text(shortName(provider)).font(Font::caption().withWeight(FontWeight::semibold)),
      ui::spacer(3),
      ui::text(figure).font(Font::system(15, FontWeight::semibold)).monospacedDigit(),
  });
  ui::View detail = weekly ? meterFor(*weekly, provider, environment)
                           : ui::text(providerState.enabled ? _("Weekly quota unavailable")
                                                            : _("Enable in Korvo"))
                                 .font(Font::system(9))
                                 .foregroundStyle(palette.secondary);
  return ui::vstack(HorizontalAlignment::leading, 4, {std::move(head), std::move(detail)});
}

ui::View cardHead(UsageProvider provider, const ui::Palette& palette) {
  return ui::hstack({
      ui::circle(UsageWindows::tint(provider, palette))
          .frame({.width = 5, .height = 5})
          .accentable(),
      ui::text(shortName(provider))
          .font(Font::system(11, FontWeight::semibold))
          .foregroundStyle(palette.secondary),
  });
}

std::vector<ui::View> weeklyFigure(const UsageWindow& weekly, UsageProvider provider,
                                   const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  return {
      ui::hstack(VerticalAlignment::firstTextBaseline, 2,
                 {
                     ui::text(cFormat("%.0f", UsageWindows::remainingPercent(weekly)))
                         .font(Font::system(30, FontWeight::medium)),
                     ui::text(_("%"))
                         .font(Font::system(15, FontWeight::medium))
                         .foregroundStyle(palette.secondary),
                 })
          .monospacedDigit()
          .accentable(),
      ui::text(_("Weekly remaining")).font(Font::system(10)).foregroundStyle(palette.secondary),
      meterFor(weekly, provider, environment),
  };
}

std::vector<ui::View> fiveHourSection(const UsageWindow& window, UsageProvider provider,
                                      const ui::Environment& environment) {
  return {
      ui::hstack(
          {
              ui::text(_("5-hour")),
              ui::spacer(2),
              ui::text(cFormat(_("%.0f%% left").c_str(), UsageWindows::remainingPercent(window)))
                  .monospacedDigit(),
          })
          .font(Font::system(10))
          .foregroundStyle(environment.palette().secondary)
          .padding({.top = 3}),
      meterFor(window, provider, environment),
  };
}

ui::View card(const MonitorEntry& entry, UsageProvider provider,
              const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  const UsageState providerState = state(entry, provider);
  std::vector<ui::View> items{cardHead(provider, palette)};
  const auto append = [&items](std::vector<ui::View> more) {
    for (ui::View& view : more) items.push_back(std::move(view));
  };
  if (!providerState.enabled || !providerState.snapshot) {
    items.push_back(ui::text(providerState.enabled ? _("Usage unavailable") : _("Enable in Korvo"))
                        .font(Font::subheadline()));
    items.push_back(ui::text(providerState.statusText())
                        .font(Font::caption2())
                        .foregroundStyle(palette.secondary));
  } else {
    const UsageSnapshot& usage = *providerState.snapshot;
    if (const std::optional<UsageWindow> weekly = UsageWindows::weekly(providerState)) {
      append(weeklyFigure(*weekly, provider, environment));
    } else {
      items.push_back(ui::text(_("Weekly unavailable"))
                          .font(Font::caption())
                          .foregroundStyle(palette.secondary));
    }
    if (const std::optional<UsageWindow> fiveHour = UsageWindows::fiveHour(usage)) {
      append(fiveHourSection(*fiveHour, provider, environment));
    }
    items.push_back(LastUpdatedFooter{entry.date, usage.fetchedAt}.body(environment));
  }
  return ui::vstack(HorizontalAlignment::leading, 4, std::move(items))
      .frame({.maxWidth = ui::infinity,
              .maxHeight = ui::infinity,
              .alignment = ui::Alignment::topLeading()});
}

}  // namespace

UsageState state(const MonitorEntry& entry, UsageProvider provider) {
  if (!entry.snapshot) return UsageState{};
  return provider == UsageProvider::codex ? entry.snapshot->codex : entry.snapshot->claude;
}

std::vector<ui::View> smallLayout(const MonitorEntry& entry, const ui::Environment& environment) {
  const ui::Palette palette = environment.palette();
  return {
      ui::label(_("AI USAGE"), "sparkles")
          .font(Font::system(10, FontWeight::semibold))
          .foregroundStyle(palette.secondary),
      smallRow(entry, UsageProvider::codex, environment),
      smallRow(entry, UsageProvider::claude, environment),
      ui::text(_("Weekly remaining · tap for details"))
          .font(Font::system(10))
          .foregroundStyle(palette.secondary),
  };
}

std::vector<ui::View> mediumLayout(const MonitorEntry& entry, const ui::Environment& environment) {
  return {
      card(entry, UsageProvider::codex, environment),
      ui::divider(),
      card(entry, UsageProvider::claude, environment),
  };
}

}  // namespace korvo::UsageContent
