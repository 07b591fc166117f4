#pragma once

#include <cairo.h>

#include "app/graph_model.hpp"
#include "ui/environment.hpp"

// Draws a graph with Cairo in the card's colours: a rounded card, faint rules at a quarter of
// the values, each line in its tone (shaded beneath when filled, dashed when a forecast), the
// graph's rules in red and a mark at now when the span reaches past it. Rules fall on the pixel
// grid at any whole scale.
namespace korvo::graph_painter {

void paint(cairo_t* cr, const graphs::Graph& graph, double width, double height,
           const ui::Palette& palette, double now);

}  // namespace korvo::graph_painter
