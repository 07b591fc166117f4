#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/wake_up.hpp"
#include "ui/color.hpp"
#include "ui/environment.hpp"

namespace korvo::desktop {

// How `korvo-widgets run` was asked to show the widgets.
struct HostOptions {
  // `--widget KIND[:FAMILY]`, in order; empty = the placements file or the defaults.
  std::vector<std::string> widgets{};
  // The placements file to read and watch instead of the user's.
  std::optional<std::filesystem::path> placementsFile = std::nullopt;
  // Fixed light or dark instead of following the desktop.
  std::optional<ui::ColorScheme> appearance = std::nullopt;
  ui::RenderingMode renderingMode = ui::RenderingMode::fullColor;
  ui::Color accent = ui::Color::white();  // the accent group's colour in accented rendering
  double scale = 1;                       // logical pixels per point, on top of the desktop's
  TimeWarp warp{};                        // the test-controllable clock
  // Where each window writes its laid-out tree as JSON, on every new entry and on SIGUSR1.
  std::optional<std::filesystem::path> dumpDirectory = std::nullopt;
  // Log every timeline request on standard error (KORVO_HOST_DEBUG).
  bool logRequests = false;
  // Take over from the session's running host instead of leaving it be.
  bool replace = false;
};

}  // namespace korvo::desktop
