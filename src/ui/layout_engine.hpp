#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ui/environment.hpp"
#include "ui/layout_node.hpp"
#include "ui/proposal.hpp"
#include "ui/text_measurer.hpp"
#include "ui/view.hpp"

namespace korvo::ui {

// One layout pass over a view tree. Sizes are memoised per (node, inherited context, proposal)
// because stacks ask each child several times while sharing out their length.
class LayoutEngine {
 public:
  LayoutEngine(const Environment& environment, TextMeasurer& measurer);

  // `view` laid out for `proposal` with its top-leading corner at `origin`.
  LayoutNode layoutRoot(const View& view, Proposal proposal, Point origin);

  // The outermost widget URL.
  const std::optional<std::string>& widgetURL() const { return widgetURL_; }

  // The first container background met, with the context it inherits.
  struct PendingBackground {
    View view;
    int context = 0;
  };
  const std::optional<PendingBackground>& containerBackground() const {
    return containerBackground_;
  }
  LayoutNode layoutInContext(const View& view, int context, Proposal proposal, Point origin);

 private:
  // What texts, symbols and shapes inherit from their ancestors.
  struct Context {
    Font font;
    Color color;
    std::optional<bool> monospacedDigits = std::nullopt;
    std::optional<int> lineLimit = std::nullopt;
    double minimumScaleFactor = 1;
    double tracking = 0;
    StackAxis axis = StackAxis::layered;  // the enclosing stack's, for spacers and dividers
    friend bool operator==(const Context&, const Context&) = default;
  };
  struct Measured {
    Size size;
    double baseline = 0;
  };
  struct CacheEntry {
    int context = 0;
    Proposal proposal;
    Measured measured;
  };
  struct PlacedText {
    int context = 0;
    Proposal proposal;
    LayoutNode node;
  };

  int intern(const Context& context);
  Font resolvedFont(const Context& context) const;
  Measured measure(const View& view, int context, Proposal proposal);
  LayoutNode place(const View& view, int context, Proposal proposal);
  LayoutNode placeUncached(const View& view, int context, Proposal proposal);
  const std::string& relativeText(const Node* node, Date date);
  LayoutNode placeStack(const Stack& stack, int context, Proposal proposal);
  LayoutNode placeFrame(const Frame& frame, int context, Proposal proposal);
  LayoutNode placeText(NodeKind kind, const std::string& content, const Context& context,
                       std::optional<double> width, std::optional<double> height);
  LayoutNode placeLabel(const Label& label, const Context& context, std::optional<double> width,
                        std::optional<double> height);
  LayoutNode placeMeter(const Meter& meter, std::optional<double> width);
  static double labelGap(const Font& font);
  static std::optional<double> textBaseline(const LayoutNode& node);
  static double firstBaseline(const LayoutNode& node);

  const Environment& environment_;
  Palette palette_;
  TextMeasurer& measurer_;
  std::vector<Context> contexts_;
  std::unordered_map<const Node*, std::vector<CacheEntry>> cache_;
  std::unordered_map<const Node*, std::vector<PlacedText>> placedTexts_;
  std::unordered_map<const Node*, std::string> relativeTexts_;  // relative dates' texts at `now`
  std::optional<std::string> widgetURL_;
  std::optional<PendingBackground> containerBackground_;
};

}  // namespace korvo::ui
