#include "render/render_module.hpp"

#include "render/pango_text_measurer.hpp"

namespace {

korvo::ui::TextMeasurer& sharedMeasurer() {
  return korvo::render::PangoTextMeasurer::shared();
}

}  // namespace

extern "C" __attribute__((visibility("default"))) const korvo::render::RenderFunctions*
korvo_render_functions() {
  static constexpr korvo::render::RenderFunctions functions{
      sharedMeasurer, korvo::render::renderPNG, korvo::render::renderSVG};
  return &functions;
}
