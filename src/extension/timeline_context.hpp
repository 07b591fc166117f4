#pragma once

#include <filesystem>
#include <optional>

#include "shared/url.hpp"
#include "ui/environment.hpp"

namespace korvo {

// What the widget host tells a provider about a request.
struct TimelineContext {
  // The widget is shown in the widget gallery; snapshot requests answer with sample data.
  bool isPreview = false;
  // The family of the widget the request is for.
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  // Read the shared snapshot from this file instead of the group container's (tools, tests).
  std::optional<Url> snapshotFile = std::nullopt;
  // Read /proc and /sys under this directory instead of $KORVO_SYSROOT or "/" (tools, tests).
  std::optional<std::filesystem::path> systemRoot = std::nullopt;

  friend bool operator==(const TimelineContext&, const TimelineContext&) = default;
};

}  // namespace korvo
