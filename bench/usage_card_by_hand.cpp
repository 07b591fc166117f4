#include "usage_card_by_hand.hpp"

#include <pango/pangocairo.h>

#include <cmath>

namespace korvo::bench {
namespace {

struct Rgba {
  double red, green, blue, alpha;
};

constexpr Rgba primary{0, 0, 0, 0xD9 / 255.0};
constexpr Rgba secondary{0, 0, 0, 0x6C / 255.0};
constexpr Rgba teal{0x59 / 255.0, 0xAD / 255.0, 0xC4 / 255.0, 1};
constexpr Rgba orange{1, 0x95 / 255.0, 0, 1};
constexpr Rgba track{0, 0, 0, 0x14 / 255.0};

void setColor(cairo_t* cr, Rgba color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

void roundedRect(cairo_t* cr, double x, double y, double width, double height, double radius) {
  cairo_new_sub_path(cr);
  cairo_arc(cr, x + width - radius, y + radius, radius, -M_PI / 2, 0);
  cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, M_PI / 2);
  cairo_arc(cr, x + radius, y + height - radius, radius, M_PI / 2, M_PI);
  cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
  cairo_close_path(cr);
}

void dot(cairo_t* cr, double x, double y, Rgba color) {
  cairo_new_sub_path(cr);
  cairo_arc(cr, x + 2.5, y + 2.5, 2.5, 0, 2 * M_PI);
  setColor(cr, color);
  cairo_fill(cr);
}

void meter(cairo_t* cr, double y, double fraction) {
  roundedRect(cr, 16, y, 149.5, 6, 3);
  setColor(cr, track);
  cairo_fill(cr);
  roundedRect(cr, 16, y, std::round(149.5 * fraction * 2) / 2, 6, 3);
  setColor(cr, teal);
  cairo_fill(cr);
}

// `text` in Inter at `size` points and `weight`, its top-left corner at (x, y); wrapped at
// `width` points when given.
void text(cairo_t* cr, PangoLayout* layout, const char* content, double size, PangoWeight weight,
          bool tabular, Rgba color, double x, double y, double width = -1) {
  PangoFontDescription* font = pango_font_description_new();
  pango_font_description_set_family_static(font, "Inter");
  pango_font_description_set_weight(font, weight);
  pango_font_description_set_absolute_size(font, size * PANGO_SCALE);
  pango_layout_set_font_description(layout, font);
  pango_font_description_free(font);
  PangoAttrList* attributes = pango_attr_list_new();
  if (tabular) pango_attr_list_insert(attributes, pango_attr_font_features_new("tnum"));
  pango_layout_set_attributes(layout, attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_width(layout, width < 0 ? -1 : static_cast<int>(width * PANGO_SCALE));
  pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  pango_layout_set_text(layout, content, -1);
  setColor(cr, color);
  cairo_move_to(cr, x, y);
  pango_cairo_show_layout(cr, layout);
}

}  // namespace

void useUnhintedText(PangoLayout* layout) {
  PangoContext* context = pango_layout_get_context(layout);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context, FALSE);
  pango_layout_context_changed(layout);
}

void drawUsageCardByHand(cairo_t* cr, PangoLayout* layout) {
  cairo_save(cr);
  roundedRect(cr, 0, 0, 364, 170, 20);
  cairo_clip(cr);
  cairo_set_source_rgb(cr, 0xEC / 255.0, 0xEC / 255.0, 0xEC / 255.0);
  cairo_paint(cr);
  cairo_pattern_t* wash = cairo_pattern_create_linear(0, 0, 364, 170);
  cairo_pattern_add_color_stop_rgba(wash, 0, teal.red, teal.green, teal.blue, 0.18);
  cairo_pattern_add_color_stop_rgba(wash, 0.5, 0, 0x7A / 255.0, 1, 0.04);
  cairo_pattern_add_color_stop_rgba(wash, 1, 0, 0, 0, 0);
  cairo_set_source(cr, wash);
  cairo_paint(cr);
  cairo_pattern_destroy(wash);

  // Codex, on the left.
  dot(cr, 16, 20, teal);
  text(cr, layout, "Codex", 11, PANGO_WEIGHT_SEMIBOLD, false, secondary, 29, 16);
  text(cr, layout, "58", 30, PANGO_WEIGHT_MEDIUM, true, primary, 16, 33.5);
  text(cr, layout, "%", 15, PANGO_WEIGHT_MEDIUM, true, secondary, 57.5, 48);
  text(cr, layout, "Weekly remaining", 10, PANGO_WEIGHT_NORMAL, false, secondary, 16, 73.5);
  meter(cr, 89.5, 0.58);
  text(cr, layout, "5-hour", 10, PANGO_WEIGHT_NORMAL, false, secondary, 16, 102.5);
  text(cr, layout, "72% left", 10, PANGO_WEIGHT_NORMAL, true, secondary, 126, 102.5);
  meter(cr, 119, 0.72);
  text(cr, layout, "Updated", 9, PANGO_WEIGHT_NORMAL, false, secondary, 16, 129);
  text(cr, layout, "50 sec", 9, PANGO_WEIGHT_NORMAL, false, secondary, 56, 129);
  text(cr, layout, "ago", 9, PANGO_WEIGHT_NORMAL, false, secondary, 87.5, 129);

  cairo_rectangle(cr, 181.5, 16, 1, 138);
  cairo_set_source_rgba(cr, 0, 0, 0, 0x1A / 255.0);
  cairo_fill(cr);

  // Claude, on the right.
  dot(cr, 198.5, 20, orange);
  text(cr, layout, "Claude", 11, PANGO_WEIGHT_SEMIBOLD, false, secondary, 211.5, 16);
  text(cr, layout, "Enable in Korvo", 11, PANGO_WEIGHT_NORMAL, false, primary, 198.5, 33.5);
  text(cr, layout, "Enable in Settings to connect your sign-in.", 10, PANGO_WEIGHT_MEDIUM, false,
       secondary, 198.5, 50.5, 149.5);
  cairo_restore(cr);
}

}  // namespace korvo::bench
