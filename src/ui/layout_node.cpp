#include "ui/layout_node.hpp"

namespace korvo::ui {

std::string_view nodeKindName(NodeKind kind) {
  switch (kind) {
    case NodeKind::vstack:
      return "vstack";
    case NodeKind::hstack:
      return "hstack";
    case NodeKind::zstack:
      return "zstack";
    case NodeKind::text:
      return "text";
    case NodeKind::label:
      return "label";
    case NodeKind::symbol:
      return "symbol";
    case NodeKind::spacer:
      return "spacer";
    case NodeKind::divider:
      return "divider";
    case NodeKind::shape:
      return "shape";
    case NodeKind::gradient:
      return "gradient";
    case NodeKind::link:
      return "link";
    case NodeKind::relativeDate:
      return "relativeDate";
    case NodeKind::meter:
      return "meter";
    case NodeKind::padding:
      return "padding";
    case NodeKind::frame:
      return "frame";
    case NodeKind::background:
      return "background";
    case NodeKind::container:
      return "container";
    case NodeKind::empty:
      return "empty";
  }
  return "empty";
}

}  // namespace korvo::ui
