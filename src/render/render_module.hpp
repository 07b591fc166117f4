#pragma once

#include <string>

#include "render/image_output.hpp"
#include "ui/text_measurer.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::render {

// The renderer as a module of its own, for programs that draw only on some commands: Pango,
// Cairo, fontconfig and their libraries are loaded when the first card is measured, not by every
// command that prints a few lines.
struct RenderFunctions {
  ui::TextMeasurer& (*measurer)();  // the process-wide Pango measurer
  std::string (*png)(const ui::WidgetLayout& widget, const PaintOptions& options);
  std::string (*svg)(const ui::WidgetLayout& widget, const PaintOptions& options);
};

// The symbol the module exports: a function returning its RenderFunctions.
inline constexpr const char* renderEntryPoint = "korvo_render_functions";
using RenderEntryPoint = const RenderFunctions* (*)();

}  // namespace korvo::render
