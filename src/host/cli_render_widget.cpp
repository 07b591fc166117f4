#include "host/cli_render_widget.hpp"

#include "ui/painter.hpp"
#include "ui/pango_text_measurer.hpp"
#include "ui/tree_json.hpp"
#include "ui/tree_outline.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::cli {

AnyEntry requestEntry(const WidgetConfiguration& widget, EntryRequest request,
                      const TimelineContext& context) {
  switch (request) {
    case EntryRequest::placeholder:
      return widget.placeholder(context);
    case EntryRequest::snapshot: {
      std::optional<AnyEntry> entry;
      widget.getSnapshot(context, [&](AnyEntry answer) { entry = std::move(answer); });
      return std::move(*entry);
    }
    case EntryRequest::timeline: {
      std::optional<AnyTimeline> timeline;
      widget.getTimeline(context, [&](AnyTimeline answer) { timeline = std::move(answer); });
      return std::move(timeline->entries.front());
    }
  }
  return widget.placeholder(context);
}

std::optional<std::string> renderEntry(const WidgetConfiguration& widget, const AnyEntry& entry,
                                       const ui::Environment& environment, OutputFormat format,
                                       double scale) {
  const ui::WidgetLayout laidOut = ui::layoutWidget(
      widget.kind, entry.view(environment), environment, ui::PangoTextMeasurer::shared(), scale);
  switch (format) {
    case OutputFormat::png: {
      std::string png = ui::renderPNG(laidOut, {.scale = scale});
      return png.empty() ? std::nullopt : std::optional(std::move(png));
    }
    case OutputFormat::svg: {
      std::string svg = ui::renderSVG(laidOut, {.scale = scale});
      return svg.empty() ? std::nullopt : std::optional(std::move(svg));
    }
    case OutputFormat::json:
      return ui::widgetJSONText(laidOut);
    case OutputFormat::tree:
      return ui::treeOutline(laidOut);
  }
  return std::nullopt;
}

}  // namespace korvo::cli
