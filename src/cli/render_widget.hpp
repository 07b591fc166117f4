#pragma once

#include <array>
#include <optional>
#include <string>

#include "extension/widget_configuration.hpp"
#include "ui/environment.hpp"
#include "ui/words.hpp"

namespace korvo::cli {

// Which of the provider's three requests supplies the entry that is drawn.
enum class EntryRequest { placeholder, snapshot, timeline };
inline constexpr Words<EntryRequest, 3> entryRequestWords{
    {{"placeholder", EntryRequest::placeholder},
     {"snapshot", EntryRequest::snapshot},
     {"timeline", EntryRequest::timeline}}};

enum class OutputFormat { png, svg, json, tree };
inline constexpr Words<OutputFormat, 4> outputFormatWords{{{"png", OutputFormat::png},
                                                           {"svg", OutputFormat::svg},
                                                           {"json", OutputFormat::json},
                                                           {"tree", OutputFormat::tree}}};

// The entry a widget host would get from `request`; for a timeline, the one on screen now.
AnyEntry requestEntry(const WidgetConfiguration& widget, EntryRequest request,
                      const TimelineContext& context);

// The entry's view laid out in `environment` and written as `format` at `scale` device pixels per
// point; none when the painter fails.
std::optional<std::string> renderEntry(const WidgetConfiguration& widget, const AnyEntry& entry,
                                       const ui::Environment& environment, OutputFormat format,
                                       double scale);

}  // namespace korvo::cli
