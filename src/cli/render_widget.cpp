#include "cli/render_widget.hpp"

#include "base/clock.hpp"
#include "model/timeline_cursor.hpp"
#include "render/image_output.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
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
      std::optional<TimelineCursor<AnyEntry>> cursor;
      widget.getTimeline(
          context, [&](AnyTimeline answer) { cursor.emplace(std::move(answer), clock::now()); });
      return cursor->current();
    }
  }
  return widget.placeholder(context);
}

std::optional<std::string> renderEntry(const WidgetConfiguration& widget, const AnyEntry& entry,
                                       const ui::Environment& environment, OutputFormat format,
                                       double scale) {
  const ui::WidgetLayout laidOut =
      ui::layoutWidget(widget.kind, entry.view(environment), environment,
                       render::PangoTextMeasurer::shared(), scale);
  switch (format) {
    case OutputFormat::png: {
      std::string png = render::renderPNG(laidOut, {.scale = scale});
      return png.empty() ? std::nullopt : std::optional(std::move(png));
    }
    case OutputFormat::svg: {
      std::string svg = render::renderSVG(laidOut, {.scale = scale});
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
