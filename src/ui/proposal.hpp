#pragma once

#include <optional>

namespace korvo::ui {

// How much room a parent offers a child on one axis.
//   exact        `length` is the slot the child will be placed in. Flexible nodes (spacers,
//                shapes, gradients, meters along their width, frames with an infinite maximum)
//                take all of it; content nodes (texts, symbols, labels) answer as for at-most
//                and are aligned inside the slot by their parent.
//   atMost       up to `length`: content nodes take what they need and no more (texts wrap,
//                shrink, then truncate); flexible nodes take all of it.
//   unspecified  no limit: every node answers with its ideal size (texts on one line each,
//                flexible nodes their minimum: spacers their min length, shapes 10 points).
enum class SizingMode { exact, atMost, unspecified };

struct AxisProposal {
  SizingMode mode = SizingMode::unspecified;
  double length = 0;  // points; ignored when unspecified

  static constexpr AxisProposal exact(double length) { return {SizingMode::exact, length}; }
  static constexpr AxisProposal atMost(double length) { return {SizingMode::atMost, length}; }
  static constexpr AxisProposal unspecified() { return {}; }
  friend bool operator==(const AxisProposal&, const AxisProposal&) = default;
};

struct Proposal {
  AxisProposal width;
  AxisProposal height;
  friend bool operator==(const Proposal&, const Proposal&) = default;
};

}  // namespace korvo::ui
