#include "cli/render_widget.hpp"

#include "base/clock.hpp"
#include "base/module.hpp"
#include "model/timeline_cursor.hpp"
#include "render/render_module.hpp"
#include "ui/tree_json.hpp"
#include "ui/tree_outline.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::cli {
namespace {

// The renderer, loaded by the first command that draws; none when it cannot be loaded (said on
// standard error).
const render::RenderFunctions* renderer() {
  static const render::RenderFunctions* loaded = [] {
    void* entry = loadModuleEntry(KORVO_RENDER_MODULE_INSTALLED, KORVO_RENDER_MODULE_BUILT,
                                  render::renderEntryPoint);
    return entry == nullptr ? nullptr : reinterpret_cast<render::RenderEntryPoint>(entry)();
  }();
  return loaded;
}

}  // namespace

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
  const render::RenderFunctions* functions = renderer();
  if (functions == nullptr) return std::nullopt;
  const ui::WidgetLayout laidOut = ui::layoutWidget(widget.kind, entry.view(environment),
                                                    environment, functions->measurer(), scale);
  switch (format) {
    case OutputFormat::png: {
      std::string png = functions->png(laidOut, {.scale = scale});
      return png.empty() ? std::nullopt : std::optional(std::move(png));
    }
    case OutputFormat::svg: {
      std::string svg = functions->svg(laidOut, {.scale = scale});
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
