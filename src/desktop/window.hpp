#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <optional>

#include "desktop/core/options.hpp"
#include "desktop/core/placement.hpp"
#include "extension/widget_configuration.hpp"
#include "gtk/appearance.hpp"
#include "gtk/theme_probe.hpp"
#include "model/timeline_cursor.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::desktop {

class WidgetWindow;

// What a window tells the host.
struct WindowCallbacks {
  // The window was closed from outside: with its monitor when the compositor took its layer
  // surface away (the output went), with none when a window manager asked.
  std::function<void(GdkMonitor*)> lost;
  // A right-click (its event) or the Menu key (no event) asks for the card's menu.
  std::function<void(WidgetWindow&, const GdkEvent*)> menu;
  // The card was dragged and let go with its top-left corner at a point (logical pixels, screen
  // coordinates) on a monitor.
  std::function<void(WidgetWindow&, ui::Point, GdkMonitor*)> dropped;
};

// One placed widget on the desktop: an undecorated, transparent window below the others that
// shows the current entry of its provider's timeline.
//
// Wake-ups: one timer at the next entry's date or the reload date (none for a timeline that never
// reloads) and, while the window is mapped, one at the moment a live relative text would change.
class WidgetWindow {
 public:
  // `index` numbers the window among the placements (from 1) for its dump file's name.
  WidgetWindow(const WidgetConfiguration& widget, Placement placement, int index,
               const HostOptions& options, const gtk::AppearanceWatch& appearance,
               const gtk::ThemeProbe& theme, WindowCallbacks callbacks);
  ~WidgetWindow();
  WidgetWindow(const WidgetWindow&) = delete;
  WidgetWindow& operator=(const WidgetWindow&) = delete;

  const Placement& placement() const { return placement_; }
  // Where the card goes now; its kind and family stay. Takes effect when it is placed.
  void setPlacement(Placement placement) { placement_ = std::move(placement); }
  const WidgetConfiguration& widget() const { return widget_; }
  GtkWidget* gtkWindow() const { return window_; }
  // The card where it was last placed, logical pixels.
  ui::Rect cardRect() const;
  // What a click on the card as a whole opens; empty before the first entry.
  std::string url() const;
  // The card's size in logical pixels: its points times its scale.
  ui::Size logicalSize() const;
  // Moves the window so the card's top-left corner is at `origin` (logical pixels) in the work area
  // of `monitor`, draws the card at `scale` (the host's, or less where the monitor is too small for
  // every card at it) and shows it.
  void place(ui::Point origin, ui::Rect workArea, GdkMonitor* monitor, double scale);
  // The desktop's colours or scheme changed: lay out and paint again.
  void appearanceChanged();
  // Clicks and, without a compositor, the window itself follow the card's rounded corners.
  void applyCardShape();
  // Writes the laid-out tree to the dump directory, when there is one.
  void dump();
  // Asks the provider for a new timeline now and shows its current entry.
  void requestTimeline();

  // GTK signal handlers.
  gboolean draw(cairo_t* cr);
  gboolean buttonPress(GdkEventButton* event);
  gboolean buttonRelease(GdkEventButton* event);
  gboolean pointerMoved(GdkEventMotion* event);
  gboolean moveCheck();
  gboolean menuKey();
  gboolean pointerLeft();
  // The compositor closed the window (layer-shell does so when an output goes): keep it, hidden
  // until it is placed again.
  gboolean closeRequested();
  void mapped();
  void unmapped();
  void redraw();
  gboolean timelineDue();
  gboolean liveTextDue();

 private:
  ui::Environment environment() const;
  // The card and the room for its shadow around it, logical pixels.
  ui::Size windowSize() const;
  // Room for the shadow on each side, logical pixels: none where nothing could show it (an X
  // screen without a compositor cuts the window to the card).
  double shadowInset() const;
  // A point of the window (logical pixels) in the card's points.
  ui::Point cardPoint(double x, double y) const;
  // The pointer is over what opens `url` (nothing: over no link): the hand cursor and a tooltip
  // naming it.
  void hover(std::optional<std::string> url);
  // Moves the window so the card's top-left corner is at `origin`.
  void moveTo(ui::Point origin);
  // A press became a drag: past GTK's drag threshold with the primary button held.
  void startDrag(GdkEventMotion* event);
  // The drag ended: tells the host where the card was let go.
  void drop();
  // Forgets a press or drag under way (the card is being placed anew).
  void endDrag();
  // Where a layer surface being dragged goes for the pointer at (x, y) in it.
  ui::Point dragTarget(double x, double y) const;
  double deviceScale() const;
  // Lays the current entry out again; whether that changed the layout.
  bool relayout();
  void showCurrentEntry();
  void scheduleTimelineTimer();
  void scheduleLiveTimer();
  void cancel(guint& source);

  const WidgetConfiguration& widget_;
  Placement placement_;
  int index_;
  const HostOptions& options_;
  const gtk::AppearanceWatch& appearance_;
  const gtk::ThemeProbe& theme_;
  WindowCallbacks callbacks_;
  double scale_;      // logical pixels per point, as last placed
  double inset_ = 0;  // logical pixels from the window's corner to the card's
  GtkWidget* window_ = nullptr;
  GdkMonitor* monitor_ = nullptr;  // where place() last put the window
  std::optional<TimelineCursor<AnyEntry>> cursor_;
  std::optional<ui::WidgetLayout> layout_;
  bool layoutStale_ = true;  // the entry, appearance, scale or a live text changed since layout_
  bool mapped_ = false;
  bool pressed_ = false;
  bool dragging_ = false;               // moved past the drag threshold since the press
  ui::Point pressAt_{};                 // the press in window coordinates, logical pixels
  ui::Point pressRoot_{};               // the press in root coordinates
  ui::Point origin_{};                  // the card's top-left, as placed or while dragged
  ui::Rect workArea_{};                 // of the monitor the card was placed on
  std::optional<std::string> hovered_;  // what a click where the pointer is would open
  bool layerShell_ = false;
  guint timelineTimer_ = 0;
  guint liveTimer_ = 0;
  guint moveTimer_ = 0;   // while the window manager moves the window
  ui::Point dragFrom_{};  // where a dragged layer surface's card was at the press
};

}  // namespace korvo::desktop
