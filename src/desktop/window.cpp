#include "desktop/window.hpp"

#include <gdk/gdk.h>
#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif
#include <gtk-layer-shell.h>

#include <cstdio>

#include "base/clock.hpp"
#include "base/wake_up.hpp"
#include "desktop/core/arrangement.hpp"
#include "desktop/core/click_hint.hpp"
#include "desktop/heap_trim.hpp"
#include "gtk/accessibility.hpp"
#include "gtk/accessible_card.hpp"
#include "gtk/card_shape.hpp"
#include "gtk/glib_bool.hpp"
#include "gtk/url_opener.hpp"
#include "render/card_shadow.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "ui/hit_test.hpp"
#include "ui/tree_json.hpp"
#include "ui/words.hpp"

namespace korvo::desktop {
namespace {

WidgetWindow& self(gpointer window) {
  return *static_cast<WidgetWindow*>(window);
}

gboolean onDraw(GtkWidget*, cairo_t* cr, gpointer window) {
  return self(window).draw(cr);
}

gboolean onButtonPress(GtkWidget*, GdkEventButton* event, gpointer window) {
  return self(window).buttonPress(event);
}

gboolean onButtonRelease(GtkWidget*, GdkEventButton* event, gpointer window) {
  return self(window).buttonRelease(event);
}

gboolean onMotion(GtkWidget*, GdkEventMotion* event, gpointer window) {
  return self(window).pointerMoved(event);
}

gboolean onLeave(GtkWidget*, GdkEventCrossing*, gpointer window) {
  return self(window).pointerLeft();
}

gboolean onPopupMenu(GtkWidget*, gpointer window) {
  return self(window).menuKey();
}

gboolean onDelete(GtkWidget*, GdkEvent*, gpointer window) {
  return self(window).closeRequested();
}

gboolean onMap(GtkWidget*, GdkEvent*, gpointer window) {
  self(window).mapped();
  return FALSE;
}

gboolean onUnmap(GtkWidget*, GdkEvent*, gpointer window) {
  self(window).unmapped();
  return FALSE;
}

void onStyleUpdated(GtkWidget*, gpointer window) {
  self(window).appearanceChanged();
}

void onScaleFactor(GObject*, GParamSpec*, gpointer window) {
  self(window).appearanceChanged();
}

// A card repaints once a minute at most and never animates, so it does not pace its frames by the
// compositor's: that would cost a round trip to the X server, or the compositor's frame-drawn
// messages, on every repaint.
void onRealize(GtkWidget* widget, gpointer) {
#ifdef GDK_WINDOWING_X11
  GdkWindow* window = gtk_widget_get_window(widget);
  if (GDK_IS_X11_WINDOW(window)) gdk_x11_window_set_frame_sync_enabled(window, FALSE);
#else
  (void)widget;
#endif
}

void onCompositedChanged(GdkScreen*, gpointer window) {
  self(window).applyCardShape();
}

gboolean onTimelineDue(gpointer window) {
  return self(window).timelineDue();
}

gboolean onLiveTextDue(gpointer window) {
  return self(window).liveTextDue();
}

gboolean onMoveCheck(gpointer window) {
  return self(window).moveCheck();
}

// How often a window the window manager is moving asks whether the button is still down: a
// drop settles within this long of the release.
constexpr guint moveCheckMilliseconds = 30;

// Pins a layer-shell surface to `corner` (the top-left one for none), at the offsets `origin`
// gives.
void anchorLayerSurface(GtkWindow* window, std::optional<ScreenAnchor> corner, ui::Point origin,
                        ui::Size size, ui::Rect area) {
  const bool right = corner == ScreenAnchor::topRight || corner == ScreenAnchor::bottomRight;
  const bool bottom = corner == ScreenAnchor::bottomLeft || corner == ScreenAnchor::bottomRight;
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_LEFT, gtk::glibBool(!right));
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_RIGHT, gtk::glibBool(right));
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_TOP, gtk::glibBool(!bottom));
  gtk_layer_set_anchor(window, GTK_LAYER_SHELL_EDGE_BOTTOM, gtk::glibBool(bottom));
  const auto margin = [](double length) { return static_cast<int>(std::lround(length)); };
  if (right) {
    gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_RIGHT,
                         margin(area.maxX() - origin.x - size.width));
  } else {
    gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_LEFT, margin(origin.x - area.x));
  }
  if (bottom) {
    gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_BOTTOM,
                         margin(area.maxY() - origin.y - size.height));
  } else {
    gtk_layer_set_margin(window, GTK_LAYER_SHELL_EDGE_TOP, margin(origin.y - area.y));
  }
}

}  // namespace

WidgetWindow::WidgetWindow(const WidgetConfiguration& widget, Placement placement, int index,
                           const HostOptions& options, const gtk::AppearanceWatch& appearance,
                           const gtk::ThemeProbe& theme, WindowCallbacks callbacks)
    : widget_(widget),
      placement_(std::move(placement)),
      index_(index),
      options_(options),
      appearance_(appearance),
      theme_(theme),
      callbacks_(std::move(callbacks)),
      scale_(options.scale) {
  window_ = gtk::newCardWindow();
  GtkWindow* window = GTK_WINDOW(window_);
  gtk_window_set_title(window, widget_.displayName.c_str());
  gtk_window_set_decorated(window, FALSE);
  gtk_window_set_resizable(window, FALSE);
  // Focus comes with a click, so that the Menu key reaches the card; never when it appears.
  gtk_window_set_focus_on_map(window, FALSE);
  gtk_widget_set_app_paintable(window_, TRUE);
  if (GdkVisual* visual = gdk_screen_get_rgba_visual(gtk_widget_get_screen(window_))) {
    gtk_widget_set_visual(window_, visual);
  }
  layerShell_ = gtk_layer_is_supported() != FALSE;
  inset_ = shadowInset();
  const auto size = windowSize();
  gtk_widget_set_size_request(window_, static_cast<int>(size.width), static_cast<int>(size.height));
  if (layerShell_) {
    gtk_layer_init_for_window(window);
    gtk_layer_set_namespace(window, "korvo-widgets");
    gtk_layer_set_layer(window, GTK_LAYER_SHELL_LAYER_BOTTOM);
    gtk_layer_set_keyboard_mode(window, GTK_LAYER_SHELL_KEYBOARD_MODE_ON_DEMAND);
  } else {
    // On X11 the window manager reads these hints; elsewhere they are harmless.
    gtk_window_set_type_hint(window, GDK_WINDOW_TYPE_HINT_UTILITY);
    gtk_window_set_skip_taskbar_hint(window, TRUE);
    gtk_window_set_skip_pager_hint(window, TRUE);
    gtk_window_set_keep_below(window, TRUE);
    gtk_window_stick(window);
  }
  gtk_widget_add_events(window_, GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK |
                                     GDK_POINTER_MOTION_MASK | GDK_LEAVE_NOTIFY_MASK |
                                     GDK_STRUCTURE_MASK);
  g_signal_connect_after(window_, "realize", G_CALLBACK(onRealize), nullptr);
  g_signal_connect(window_, "draw", G_CALLBACK(onDraw), this);
  g_signal_connect(window_, "button-press-event", G_CALLBACK(onButtonPress), this);
  g_signal_connect(window_, "button-release-event", G_CALLBACK(onButtonRelease), this);
  g_signal_connect(window_, "motion-notify-event", G_CALLBACK(onMotion), this);
  g_signal_connect(window_, "leave-notify-event", G_CALLBACK(onLeave), this);
  g_signal_connect(window_, "popup-menu", G_CALLBACK(onPopupMenu), this);
  g_signal_connect(window_, "delete-event", G_CALLBACK(onDelete), this);
  g_signal_connect(window_, "map-event", G_CALLBACK(onMap), this);
  g_signal_connect(window_, "unmap-event", G_CALLBACK(onUnmap), this);
  g_signal_connect(window_, "style-updated", G_CALLBACK(onStyleUpdated), this);
  g_signal_connect(window_, "notify::scale-factor", G_CALLBACK(onScaleFactor), this);
  g_signal_connect(gtk_widget_get_screen(window_), "composited-changed",
                   G_CALLBACK(onCompositedChanged), this);
  applyCardShape();
  requestTimeline();
}

WidgetWindow::~WidgetWindow() {
  cancel(timelineTimer_);
  cancel(liveTimer_);
  cancel(moveTimer_);
  g_signal_handlers_disconnect_by_data(window_, this);
  g_signal_handlers_disconnect_by_data(gtk_widget_get_screen(window_), this);
  gtk_widget_destroy(window_);
}

ui::Size WidgetWindow::windowSize() const {
  const auto card = logicalSize();
  return {card.width + 2 * inset_, card.height + 2 * inset_};
}

double WidgetWindow::shadowInset() const {
  const bool composited = gdk_screen_is_composited(gtk_widget_get_screen(window_)) != FALSE;
  return layerShell_ || composited ? std::ceil(render::cardShadowExtent) : 0;
}

ui::Size WidgetWindow::logicalSize() const {
  return cardSize(placement_.family, scale_);
}

void WidgetWindow::place(ui::Point origin, ui::Rect workArea, GdkMonitor* monitor, double scale) {
  GtkWindow* window = GTK_WINDOW(window_);
  monitor_ = monitor;
  endDrag();
  if (scale != scale_ || shadowInset() != inset_) {
    scale_ = scale;
    inset_ = shadowInset();
    const auto size = windowSize();
    gtk_widget_set_size_request(window_, static_cast<int>(size.width),
                                static_cast<int>(size.height));
    gtk_window_resize(window, static_cast<int>(size.width), static_cast<int>(size.height));
    applyCardShape();
    layoutStale_ = true;
    redraw();
  }
  // When the work area changes under a shown layer surface whose margins stay the same, sway 1.7
  // was seen to leave the card where the old edge was; shown anew, the surface is laid out on the
  // output as it is now.
  if (layerShell_ && workArea != workArea_ && gtk_widget_get_mapped(window_) != FALSE) {
    gtk_widget_hide(window_);
  }
  origin_ = origin;
  workArea_ = workArea;
  moveTo(origin);
  gtk_widget_show(window_);
}

void WidgetWindow::moveTo(ui::Point origin) {
  GtkWindow* window = GTK_WINDOW(window_);
  // The window reaches past the card by the shadow's room on every side.
  const ui::Point windowOrigin{origin.x - inset_, origin.y - inset_};
  if (layerShell_) {
    // Left to itself the compositor would pick the output with focus.
    gtk_layer_set_monitor(window, monitor_);
    // Kept at the placement's corner, so that a change of work area keeps it there; a card being
    // dragged counts from the top-left.
    const auto corner = placement_.position || dragging_
                            ? std::optional<ScreenAnchor>{}
                            : std::optional<ScreenAnchor>{placement_.anchor};
    anchorLayerSurface(window, corner, windowOrigin, windowSize(), workArea_);
  } else {
    gtk_window_move(window, static_cast<int>(std::lround(windowOrigin.x)),
                    static_cast<int>(std::lround(windowOrigin.y)));
  }
}

ui::Rect WidgetWindow::cardRect() const {
  const auto size = logicalSize();
  return {origin_.x, origin_.y, size.width, size.height};
}

void WidgetWindow::applyCardShape() {
  cairo_region_t* card = gtk::cardRegion(logicalSize(), ui::widgetCornerRadius * scale_);
  const auto inset = static_cast<int>(inset_);
  cairo_region_translate(card, inset, inset);
  gtk_widget_input_shape_combine_region(window_, card);
  // Without a compositor the transparent corners would show black: cut them off instead.
  const bool composited = gdk_screen_is_composited(gtk_widget_get_screen(window_)) != FALSE;
  gtk_widget_shape_combine_region(window_, composited ? nullptr : card);
  cairo_region_destroy(card);
}

void WidgetWindow::appearanceChanged() {
  layoutStale_ = true;
  redraw();
}

double WidgetWindow::deviceScale() const {
  return scale_ * gtk_widget_get_scale_factor(window_);
}

ui::Environment WidgetWindow::environment() const {
  ui::Environment environment;
  environment.family = placement_.family;
  environment.renderingMode = options_.renderingMode;
  environment.colorScheme = appearance_.scheme();
  environment.hostSuppliesContainerBackground = true;
  environment.now = clock::now();
  environment.theme = theme_.theme(environment.colorScheme);
  environment.accentColor = options_.accent;
  return environment;
}

bool WidgetWindow::relayout() {
  layoutStale_ = false;
  if (!cursor_ || cursor_->empty()) {
    const bool had = layout_.has_value();
    layout_.reset();
    return had;
  }
  const auto environment = this->environment();
  auto layout = ui::layoutWidget(widget_.kind, cursor_->current().view(environment), environment,
                                 render::PangoTextMeasurer::shared(), deviceScale());
  if (layout_ == layout) return false;
  layout_ = std::move(layout);
  gtk::describeToAssistiveTechnologies(window_, widget_.displayName, *layout_, {scale_, inset_},
                                       options_.logRequests);
  return true;
}

gboolean WidgetWindow::draw(cairo_t* cr) {
  cairo_save(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_set_source_rgba(cr, 0, 0, 0, 0);
  cairo_paint(cr);
  cairo_restore(cr);
  // Uncovering the window only repaints; the tree is laid out again when what it shows changed.
  if (layoutStale_) relayout();
  if (!layout_) return TRUE;
  const auto card = logicalSize();
  if (inset_ > 0) {
    render::paintCardShadow(cr, {inset_, inset_, card.width, card.height},
                            ui::widgetCornerRadius * scale_);
  }
  cairo_save(cr);
  cairo_translate(cr, inset_, inset_);
  cairo_scale(cr, scale_, scale_);
  render::paintWidget(cr, *layout_);
  cairo_restore(cr);
  trimHeapWhenIdle();
  return TRUE;
}

gboolean WidgetWindow::buttonPress(GdkEventButton* event) {
  pressed_ = event->button == GDK_BUTTON_PRIMARY;
  pressAt_ = {event->x, event->y};
  pressRoot_ = {event->x_root, event->y_root};
  if (gdk_event_triggers_context_menu(reinterpret_cast<GdkEvent*>(event)) != FALSE) {
    callbacks_.menu(*this, reinterpret_cast<GdkEvent*>(event));
  }
  return TRUE;
}

gboolean WidgetWindow::menuKey() {
  callbacks_.menu(*this, nullptr);
  return TRUE;
}

std::string WidgetWindow::url() const {
  return layout_ ? layout_->url : std::string();
}

gboolean WidgetWindow::buttonRelease(GdkEventButton* event) {
  if (dragging_) {
    if (layerShell_) origin_ = dragTarget(event->x, event->y);
    drop();
    return TRUE;
  }
  const bool click = pressed_ && event->button == GDK_BUTTON_PRIMARY;
  pressed_ = false;
  if (!click || !layout_) return TRUE;
  if (const auto url = ui::urlAt(*layout_, cardPoint(event->x, event->y))) gtk::openURL(*url);
  return TRUE;
}

gboolean WidgetWindow::pointerMoved(GdkEventMotion* event) {
  if (dragging_) {
    if (layerShell_) {
      // The margins follow the pointer.
      const ui::Point target = dragTarget(event->x, event->y);
      if (target != origin_) {
        origin_ = target;
        moveTo(origin_);
      }
    }
    return TRUE;
  }
  if (pressed_ && (event->state & GDK_BUTTON1_MASK) != 0 &&
      gtk_drag_check_threshold(window_, static_cast<int>(pressRoot_.x),
                               static_cast<int>(pressRoot_.y), static_cast<int>(event->x_root),
                               static_cast<int>(event->y_root)) != FALSE) {
    startDrag(event);
    return TRUE;
  }
  hover(layout_ ? ui::urlAt(*layout_, cardPoint(event->x, event->y)) : std::nullopt);
  return FALSE;
}

void WidgetWindow::startDrag(GdkEventMotion* event) {
  pressed_ = false;
  dragging_ = true;
  hover(std::nullopt);
  if (layerShell_) {
    dragFrom_ = origin_;
    return;
  }
  // The window manager moves the window, as it moves any. It holds the pointer meanwhile and
  // tells the window nothing when the button goes up, so the window asks the pointer until then.
  gtk_window_begin_move_drag(GTK_WINDOW(window_), GDK_BUTTON_PRIMARY,
                             static_cast<int>(event->x_root), static_cast<int>(event->y_root),
                             event->time);
  cancel(moveTimer_);
  moveTimer_ = g_timeout_add(moveCheckMilliseconds, onMoveCheck, this);
}

gboolean WidgetWindow::moveCheck() {
  GdkWindow* window = gtk_widget_get_window(window_);
  GdkDevice* pointer =
      gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_window_get_display(window)));
  GdkModifierType state{};
  gdk_device_get_state(pointer, window, nullptr, &state);
  if ((state & GDK_BUTTON1_MASK) != 0) return G_SOURCE_CONTINUE;
  moveTimer_ = 0;
  drop();
  return G_SOURCE_REMOVE;
}

void WidgetWindow::drop() {
  dragging_ = false;
  if (!layerShell_) {
    // Asked of the X server: the last configure event may still be on its way.
    gint x = 0;
    gint y = 0;
    gdk_window_get_origin(gtk_widget_get_window(window_), &x, &y);
    origin_ = {x + inset_, y + inset_};
    monitor_ = gdk_display_get_monitor_at_window(gtk_widget_get_display(window_),
                                                 gtk_widget_get_window(window_));
  }
  callbacks_.dropped(*this, origin_, monitor_);
}

ui::Point WidgetWindow::dragTarget(double x, double y) const {
  // The compositor reports the pointer over a pressed surface from where the surface was at the
  // press (sway does, whatever moved since), so the card goes as far as the pointer went.
  return {dragFrom_.x + x - pressAt_.x, dragFrom_.y + y - pressAt_.y};
}

void WidgetWindow::endDrag() {
  cancel(moveTimer_);
  dragging_ = false;
  pressed_ = false;
}

gboolean WidgetWindow::pointerLeft() {
  hover(std::nullopt);
  return FALSE;
}

ui::Point WidgetWindow::cardPoint(double x, double y) const {
  return {(x - inset_) / scale_, (y - inset_) / scale_};
}

void WidgetWindow::hover(std::optional<std::string> url) {
  if (url == hovered_) return;
  hovered_ = std::move(url);
  GdkWindow* window = gtk_widget_get_window(window_);
  if (window == nullptr) return;
  GdkCursor* cursor =
      hovered_ ? gdk_cursor_new_from_name(gdk_window_get_display(window), "pointer") : nullptr;
  gdk_window_set_cursor(window, cursor);
  if (cursor != nullptr) g_object_unref(cursor);
  gtk_widget_set_tooltip_text(window_, hovered_ ? clickHint(*hovered_).c_str() : nullptr);
}

gboolean WidgetWindow::closeRequested() {
  gtk_widget_hide(window_);
  // Only a layer surface is closed for its output's sake; a window manager's close request just
  // brings the widget back.
  callbacks_.lost(layerShell_ ? monitor_ : nullptr);
  return TRUE;
}

void WidgetWindow::mapped() {
  mapped_ = true;
  // Relative texts may have moved on while hidden.
  layoutStale_ = true;
  redraw();
  scheduleLiveTimer();
}

void WidgetWindow::unmapped() {
  mapped_ = false;
  cancel(liveTimer_);
}

void WidgetWindow::redraw() {
  gtk_widget_queue_draw(window_);
}

void WidgetWindow::requestTimeline() {
  if (options_.logRequests) {
    std::fprintf(stderr, "korvo-widgets: timeline request for %s at %.17g\n", widget_.kind.c_str(),
                 clock::now().secondsSinceReferenceDate);
  }
  TimelineContext context;
  context.family = placement_.family;
  widget_.getTimeline(context, [this](AnyTimeline timeline) {
    cursor_.emplace(std::move(timeline), clock::now());
  });
  showCurrentEntry();
}

void WidgetWindow::showCurrentEntry() {
  if (cursor_) cursor_->moveTo(clock::now());
  // A new entry that shows what is on screen already (a file rewritten with the same figures)
  // needs no repaint.
  const bool changed = relayout();
  dump();
  if (changed) redraw();
  scheduleTimelineTimer();
  scheduleLiveTimer();
}

void WidgetWindow::scheduleTimelineTimer() {
  cancel(timelineTimer_);
  if (!cursor_) return;
  const std::optional<Date> due = cursor_->nextChange();
  if (!due) return;
  const auto wait = realMillisecondsUntil(*due, clock::now(), options_.warp.rate);
  if (!wait) return;
  timelineTimer_ = g_timeout_add(*wait, onTimelineDue, this);
}

gboolean WidgetWindow::timelineDue() {
  timelineTimer_ = 0;
  if (cursor_ && cursor_->nextEntryDate()) {
    showCurrentEntry();
  } else {
    requestTimeline();
  }
  return G_SOURCE_REMOVE;
}

void WidgetWindow::scheduleLiveTimer() {
  cancel(liveTimer_);
  if (!mapped_ || !layout_) return;
  const auto now = clock::now();
  const auto next = nextLiveTextWake(ui::liveRelativeDates(*layout_), now);
  if (!next) return;
  const auto wait = realMillisecondsUntil(*next, now, options_.warp.rate);
  if (!wait) return;
  liveTimer_ = g_timeout_add(*wait, onLiveTextDue, this);
}

gboolean WidgetWindow::liveTextDue() {
  liveTimer_ = 0;
  if (relayout()) redraw();
  scheduleLiveTimer();
  return G_SOURCE_REMOVE;
}

void WidgetWindow::dump() {
  if (!options_.dumpDirectory) return;
  if (relayout()) redraw();
  if (!layout_) return;
  const auto file =
      *options_.dumpDirectory / (std::to_string(index_) + "-" + widget_.shortKind() + "-" +
                                 std::string(ui::familyWord(placement_.family)) + ".json");
  const std::string text = ui::widgetJSONText(*layout_);
  GError* error = nullptr;
  if (!g_file_set_contents(file.c_str(), text.data(), static_cast<gssize>(text.size()), &error)) {
    std::fprintf(stderr, "korvo-widgets: cannot write %s: %s\n", file.c_str(), error->message);
    g_clear_error(&error);
  }
}

void WidgetWindow::cancel(guint& source) {
  if (source != 0) g_source_remove(source);
  source = 0;
}

}  // namespace korvo::desktop
