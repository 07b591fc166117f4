#pragma once

#include "ui/environment.hpp"
#include "ui/layout_node.hpp"
#include "ui/proposal.hpp"
#include "ui/text_measurer.hpp"
#include "ui/view.hpp"

namespace korvo::ui {

// Lays `view` out for `proposal` and places it with its top-leading corner at `origin`. The
// environment supplies the default foreground colour (palette primary), the separator colour and
// "now" for relative dates. Frames are in unsnapped points.
LayoutNode layout(const View& view, Proposal proposal, Point origin, const Environment& environment,
                  TextMeasurer& measurer);

}  // namespace korvo::ui
