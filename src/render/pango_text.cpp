#include "render/pango_text.hpp"

#include <pango/pangocairo.h>

#include <cmath>
#include <string>

#include "ui/symbols.hpp"

namespace korvo::render::pango_text {

using ui::Font;
using ui::FontDesign;
using ui::numericWeight;
using ui::symbolFontFamily;
using ui::symbolLigature;

namespace {

// Chosen by comparing renders of the rounded families Debian ships: Comfortaa's open, even
// digits read best at the large figure sizes the rounded design is used for.
constexpr const char* roundedFamily = "Comfortaa, Inter";
constexpr const char* systemFamily = "Inter";

}  // namespace

const char* family(FontDesign design) {
  switch (design) {
    case FontDesign::rounded:
      return roundedFamily;
    case FontDesign::monospaced:
      return "DejaVu Sans Mono, monospace";
    case FontDesign::serif:
      return "serif";
    case FontDesign::standard:
      return systemFamily;
  }
  return systemFamily;
}

void configure(PangoLayout* layout, std::string_view text, const Font& font, double tracking,
               double maxWidth) {
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, family(font.design));
  pango_font_description_set_weight(description,
                                    static_cast<PangoWeight>(numericWeight(font.weight)));
  pango_font_description_set_absolute_size(description, font.size * PANGO_SCALE);
  pango_layout_set_font_description(layout, description);
  pango_font_description_free(description);

  PangoAttrList* attributes = pango_attr_list_new();
  if (font.monospacedDigits)
    pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum"));
  if (tracking != 0) {
    pango_attr_list_insert(attributes, pango_attr_letter_spacing_new(
                                           static_cast<int>(std::lround(tracking * PANGO_SCALE))));
  }
  pango_layout_set_attributes(layout, attributes);
  pango_attr_list_unref(attributes);

  pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
  if (std::isfinite(maxWidth)) {
    pango_layout_set_width(layout,
                           static_cast<int>(std::floor(std::max(0.0, maxWidth) * PANGO_SCALE)));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  } else {
    pango_layout_set_width(layout, -1);
  }
}

void configureSymbol(PangoLayout* layout, std::string_view symbolName, const Font& font) {
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, std::string(symbolFontFamily).c_str());
  pango_font_description_set_absolute_size(description, font.size * symbolScale * PANGO_SCALE);
  pango_layout_set_font_description(layout, description);
  pango_font_description_free(description);
  pango_layout_set_attributes(layout, nullptr);
  const std::string_view ligature = symbolLigature(symbolName);
  pango_layout_set_text(layout, ligature.data(), static_cast<int>(ligature.size()));
  pango_layout_set_width(layout, -1);
}

PangoContext* sharedContext() {
  static PangoContext* const context = [] {
    PangoContext* created = pango_font_map_create_context(pango_cairo_font_map_get_default());
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(created, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(created, FALSE);
    return created;
  }();
  return context;
}

}  // namespace korvo::render::pango_text
