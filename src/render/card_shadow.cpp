#include "render/card_shadow.hpp"

#include <cmath>

#include "render/rounded_path.hpp"

namespace korvo::render {
namespace {

// Darkest where the shadow meets the card; it fades to nothing at cardShadowExtent.
constexpr double edgeAlpha = 0.16;
// Rings per unit of extent: enough that no step shows at a scale of 2.
constexpr int ringsPerUnit = 2;

}  // namespace

void paintCardShadow(cairo_t* cr, const ui::Rect& card, double radius) {
  cairo_save(cr);
  // Outside the card only: the whole surface less the card's shape.
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  cairo_clip_extents(cr, &left, &top, &right, &bottom);
  cairo_rectangle(cr, left, top, right - left, bottom - top);
  roundedRectPath(cr, card, radius);
  cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_clip(cr);
  // Rings from the edge outwards, each fainter: an eased fade with no blur filter to run.
  const int rings = static_cast<int>(std::ceil(cardShadowExtent * ringsPerUnit));
  for (int ring = 0; ring < rings; ++ring) {
    const double inner = static_cast<double>(ring) / ringsPerUnit;
    const double outer = static_cast<double>(ring + 1) / ringsPerUnit;
    const double fade = 1 - (inner + outer) / 2 / cardShadowExtent;
    roundedRectPath(
        cr, {card.x - outer, card.y - outer, card.width + 2 * outer, card.height + 2 * outer},
        radius + outer);
    roundedRectPath(
        cr, {card.x - inner, card.y - inner, card.width + 2 * inner, card.height + 2 * inner},
        radius + inner);
    cairo_set_source_rgba(cr, 0, 0, 0, edgeAlpha * fade * fade);
    cairo_fill(cr);
  }
  cairo_restore(cr);
}

}  // namespace korvo::render
