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

// One layout pass over a view tree. Every node is placed with its frame relative to its parent's
// top-leading corner, so a subtree never moves once placed; `placeAt` makes the frames absolute in
// one walk at the end. Sizes are memoised per (node, inherited context, proposal) because stacks
// ask each child several times while sharing out their length.
class LayoutEngine {
 public:
  LayoutEngine(const Environment& environment, TextMeasurer& measurer);

  // `view` laid out for `proposal`, its frame at (0, 0) and its descendants' relative to their
  // parents'.
  LayoutNode layoutRoot(const View& view, Proposal proposal);

  // Turns the relative frames of a laid-out tree into frames relative to the widget, with the
  // root's top-leading corner at `origin`.
  static void placeAt(LayoutNode& root, Point origin);

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
  // As layoutRoot, for a view that inherits `context`.
  LayoutNode layoutInContext(const View& view, int context, Proposal proposal);

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
  // A node's answer to one proposal in one context.
  struct CacheEntry {
    int context = 0;
    Proposal proposal;
    Size size;
    // Texts and labels keep the whole node: fitting asks the measurer many times and a relative
    // date formats its text, while stacks place each child repeatedly.
    std::optional<LayoutNode> node = std::nullopt;
    // Any proposal at least `size` on each axis gets the same answer (texts fitted whole).
    bool fitsAnyLargerRoom = false;
  };
  // The axis a vertical or horizontal stack shares out, and how proposals and sizes read along it.
  struct StackLine {
    bool horizontal = false;
    AxisProposal cross;
    Proposal along(AxisProposal main) const;
    double length(Size size) const;
  };

  int intern(const Context& context);
  Font resolvedFont(const Context& context) const;
  const CacheEntry* cached(const View& view, int context, Proposal proposal);
  Size measure(const View& view, int context, Proposal proposal);
  LayoutNode place(const View& view, int context, Proposal proposal);
  LayoutNode placeUncached(const View& view, int context, Proposal proposal,
                           bool& fitsAnyLargerRoom);

  // Texts and labels say through `fitsAnyLargerRoom` whether their answer holds in more room.
  LayoutNode placeText(NodeKind kind, std::string content, const Context& context,
                       Proposal proposal, bool& fitsAnyLargerRoom);
  LayoutNode placeRelativeDate(const RelativeDate& date, const Node* key, const Context& context,
                               Proposal proposal, bool& fitsAnyLargerRoom);
  LayoutNode placeLabel(const Label& label, const Context& context, Proposal proposal,
                        bool& fitsAnyLargerRoom);
  LayoutNode placeSymbol(const Symbol& symbol, const Context& context);
  LayoutNode placeSpacer(const Spacer& spacer, const Context& context, Proposal proposal);
  LayoutNode placeDivider(const Context& context, Proposal proposal);
  LayoutNode placeShape(const Shape& shape, const Context& context, Proposal proposal);
  static LayoutNode placeGradient(const LinearGradient& gradient, Proposal proposal);
  static LayoutNode placeMeter(const Meter& meter, Proposal proposal);
  LayoutNode placeLink(const Link& link, int context, Proposal proposal);
  LayoutNode placePadding(const Padding& padding, int context, Proposal proposal);
  LayoutNode placeFrame(const Frame& frame, int context, Proposal proposal);
  LayoutNode placeBackground(const Background& background, int context, Proposal proposal);
  LayoutNode placeStyle(const Style& style, const Context& context, Proposal proposal);
  LayoutNode placeAnnotation(const Annotation& annotation, int context, Proposal proposal);
  LayoutNode placeContainerBackground(const ContainerBackground& container, int context,
                                      Proposal proposal);

  LayoutNode placeStack(const Stack& stack, int context, Proposal proposal);
  LayoutNode placeLayered(const Stack& stack, const std::vector<const View*>& children, int context,
                          Proposal proposal);
  LayoutNode placeLine(const Stack& stack, const std::vector<const View*>& children, int context,
                       Proposal proposal);
  std::vector<std::size_t> rankedByFlexibility(const std::vector<const View*>& children,
                                               std::vector<std::size_t> ranked, int context,
                                               const StackLine& line);
  std::vector<AxisProposal> sharedOut(const std::vector<const View*>& children, int context,
                                      const StackLine& line, double room);
  static void alignAcross(LayoutNode& node, const Stack& stack, const StackLine& line,
                          double breadth);
  static double alignBaselines(LayoutNode& node);

  static double labelGap(const Font& font);
  static std::optional<double> textBaseline(const LayoutNode& node);
  static double firstBaseline(const LayoutNode& node);

  const Environment& environment_;
  Palette palette_;
  TextMeasurer& measurer_;
  std::vector<Context> contexts_;
  std::unordered_map<const Node*, std::vector<CacheEntry>> cache_;
  std::optional<std::string> widgetURL_;
  std::optional<PendingBackground> containerBackground_;
};

}  // namespace korvo::ui
