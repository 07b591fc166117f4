#include "gtk/accessible_element.hpp"

#include <gtk/gtk.h>

#include <cmath>
#include <utility>

#include "gtk/url_opener.hpp"

namespace korvo::gtk {
namespace {

struct ElementState {
  ui::AccessibleElement element;
  CardPixels pixels{};
  AtkObject* card = nullptr;  // not held: the card holds its elements; null once let go
};

// GObject types in GLib's C style: a base element (AtkComponent) and its meter (AtkValue) and
// link (AtkAction) kinds, so each exposes only the interfaces its role has.
struct KorvoAccessibleElement {
  AtkObject parent;
  ElementState* state;
};
struct KorvoAccessibleElementClass {
  AtkObjectClass parent;
};
struct KorvoAccessibleMeter {
  KorvoAccessibleElement parent;
};
struct KorvoAccessibleMeterClass {
  KorvoAccessibleElementClass parent;
};
struct KorvoAccessibleLink {
  KorvoAccessibleElement parent;
};
struct KorvoAccessibleLinkClass {
  KorvoAccessibleElementClass parent;
};

void componentInit(AtkComponentIface* iface);
void valueInit(AtkValueIface* iface);
void actionInit(AtkActionIface* iface);

G_DEFINE_TYPE_WITH_CODE(KorvoAccessibleElement, korvo_accessible_element, ATK_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_COMPONENT, componentInit))
G_DEFINE_TYPE_WITH_CODE(KorvoAccessibleMeter, korvo_accessible_meter,
                        korvo_accessible_element_get_type(),
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_VALUE, valueInit))
G_DEFINE_TYPE_WITH_CODE(KorvoAccessibleLink, korvo_accessible_link,
                        korvo_accessible_element_get_type(),
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_ACTION, actionInit))

ElementState& state(gpointer object) {
  return *reinterpret_cast<KorvoAccessibleElement*>(object)->state;
}

// The widget showing the element (the card's window or drawing area), while it is realized.
GtkWidget* cardWidgetOf(gpointer object) {
  AtkObject* card = state(object).card;
  if (card == nullptr || !GTK_IS_ACCESSIBLE(card)) return nullptr;
  GtkWidget* window = gtk_accessible_get_widget(GTK_ACCESSIBLE(card));
  return window != nullptr && gtk_widget_get_window(window) != nullptr ? window : nullptr;
}

void korvo_accessible_element_init(KorvoAccessibleElement* self) {
  self->state = new ElementState;
}

void finalizeElement(GObject* object) {
  delete &state(object);
  G_OBJECT_CLASS(korvo_accessible_element_parent_class)->finalize(object);
}

AtkObject* parentOf(AtkObject* object) {
  return state(object).card;
}

gint indexInParent(AtkObject* object) {
  AtkObject* card = state(object).card;
  if (card == nullptr) return -1;
  const gint count = atk_object_get_n_accessible_children(card);
  for (gint i = 0; i < count; ++i) {
    AtkObject* child = atk_object_ref_accessible_child(card, i);
    g_object_unref(child);
    if (child == object) return i;
  }
  return -1;
}

AtkStateSet* stateSet(AtkObject* object) {
  AtkStateSet* states =
      ATK_OBJECT_CLASS(korvo_accessible_element_parent_class)->ref_state_set(object);
  GtkWidget* window = cardWidgetOf(object);
  if (window == nullptr) {
    atk_state_set_add_state(states, ATK_STATE_DEFUNCT);
    return states;
  }
  atk_state_set_add_state(states, ATK_STATE_ENABLED);
  atk_state_set_add_state(states, ATK_STATE_SENSITIVE);
  atk_state_set_add_state(states, ATK_STATE_VISIBLE);
  if (gtk_widget_get_mapped(window)) atk_state_set_add_state(states, ATK_STATE_SHOWING);
  return states;
}

void korvo_accessible_element_class_init(KorvoAccessibleElementClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = finalizeElement;
  AtkObjectClass* atk = ATK_OBJECT_CLASS(klass);
  atk->get_parent = parentOf;
  atk->get_index_in_parent = indexInParent;
  atk->ref_state_set = stateSet;
}

// Pixels of the element on screen, relative to the toplevel window, or to the card.
AtkRectangle extents(gpointer object, AtkCoordType coordinates) {
  GtkWidget* window = cardWidgetOf(object);
  if (window == nullptr) return {-1, -1, -1, -1};
  gint originX = 0;
  gint originY = 0;
  if (coordinates == ATK_XY_SCREEN) {
    gdk_window_get_origin(gtk_widget_get_window(window), &originX, &originY);
  } else if (coordinates == ATK_XY_WINDOW) {
    gtk_widget_translate_coordinates(window, gtk_widget_get_toplevel(window), 0, 0, &originX,
                                     &originY);
  }
  const ElementState& element = state(object);
  const ui::Rect& frame = element.element.frame;
  // Rounding both edges keeps neighbours from overlapping or parting by a pixel.
  const auto pixel = [&](double points) {
    return static_cast<gint>(std::lround(points * element.pixels.scale + element.pixels.inset));
  };
  return {originX + pixel(frame.x), originY + pixel(frame.y), pixel(frame.maxX()) - pixel(frame.x),
          pixel(frame.maxY()) - pixel(frame.y)};
}

void getExtents(AtkComponent* component, gint* x, gint* y, gint* width, gint* height,
                AtkCoordType coordinates) {
  const AtkRectangle rectangle = extents(component, coordinates);
  if (x != nullptr) *x = rectangle.x;
  if (y != nullptr) *y = rectangle.y;
  if (width != nullptr) *width = rectangle.width;
  if (height != nullptr) *height = rectangle.height;
}

void componentInit(AtkComponentIface* iface) {
  iface->get_extents = getExtents;
}

void korvo_accessible_meter_init(KorvoAccessibleMeter*) {}
void korvo_accessible_meter_class_init(KorvoAccessibleMeterClass*) {}

// Meters read in percent, as their values are written ("42 percent").
double percent(gpointer object) {
  return state(object).element.level.value_or(0) * 100;
}

void getValueAndText(AtkValue* value, gdouble* current, gchar** text) {
  if (current != nullptr) *current = percent(value);
  if (text != nullptr) {
    const std::string& said = state(value).element.value;
    *text = said.empty() ? nullptr : g_strdup(said.c_str());
  }
}

AtkRange* getRange(AtkValue*) {
  return atk_range_new(0, 100, nullptr);
}

// The interface's first form, which older readers still ask.
void setDouble(GValue* out, double number) {
  g_value_init(out, G_TYPE_DOUBLE);
  g_value_set_double(out, number);
}
void getCurrentValue(AtkValue* value, GValue* out) {
  setDouble(out, percent(value));
}
void getMinimumValue(AtkValue*, GValue* out) {
  setDouble(out, 0);
}
void getMaximumValue(AtkValue*, GValue* out) {
  setDouble(out, 100);
}

void valueInit(AtkValueIface* iface) {
  iface->get_value_and_text = getValueAndText;
  iface->get_range = getRange;
  iface->get_current_value = getCurrentValue;
  iface->get_minimum_value = getMinimumValue;
  iface->get_maximum_value = getMaximumValue;
}

void korvo_accessible_link_init(KorvoAccessibleLink*) {}
void korvo_accessible_link_class_init(KorvoAccessibleLinkClass*) {}

gint actionCount(AtkAction*) {
  return 1;
}

const gchar* actionName(AtkAction*, gint index) {
  return index == 0 ? "click" : nullptr;
}

gboolean doAction(AtkAction* action, gint index) {
  if (index != 0 || cardWidgetOf(action) == nullptr) return FALSE;
  openURLWhenIdle(state(action).element.url);
  return TRUE;
}

void actionInit(AtkActionIface* iface) {
  iface->get_n_actions = actionCount;
  iface->get_name = actionName;
  iface->do_action = doAction;
}

AtkRole atkRole(ui::AccessibleRole role) {
  switch (role) {
    case ui::AccessibleRole::label:
      return ATK_ROLE_LABEL;
    case ui::AccessibleRole::meter:
      return ATK_ROLE_LEVEL_BAR;
    case ui::AccessibleRole::link:
      return ATK_ROLE_LINK;
  }
  return ATK_ROLE_LABEL;
}

GType typeOf(ui::AccessibleRole role) {
  switch (role) {
    case ui::AccessibleRole::label:
      return korvo_accessible_element_get_type();
    case ui::AccessibleRole::meter:
      return korvo_accessible_meter_get_type();
    case ui::AccessibleRole::link:
      return korvo_accessible_link_get_type();
  }
  return korvo_accessible_element_get_type();
}

gboolean openLater(gpointer url) {
  openURL(*static_cast<std::string*>(url));
  return G_SOURCE_REMOVE;
}

void deleteURL(gpointer url) {
  delete static_cast<std::string*>(url);
}

}  // namespace

AtkObject* newAccessibleElement(AtkObject* card, const ui::AccessibleElement& element,
                                CardPixels pixels) {
  auto* object = ATK_OBJECT(g_object_new(typeOf(element.role), nullptr));
  ElementState& held = state(object);
  held.element = element;
  held.pixels = pixels;
  held.card = card;
  atk_object_set_role(object, atkRole(element.role));
  atk_object_set_name(object, element.name.c_str());
  // A label has no value interface: what its value says is its description.
  if (!ATK_IS_VALUE(object) && !element.value.empty()) {
    atk_object_set_description(object, element.value.c_str());
  }
  return object;
}

void placeAccessibleElement(AtkObject* object, CardPixels pixels) {
  state(object).pixels = pixels;
}

void updateAccessibleElement(AtkObject* object, const ui::AccessibleElement& element) {
  ElementState& held = state(object);
  const ui::AccessibleElement old = std::exchange(held.element, element);
  if (element.name != old.name) atk_object_set_name(object, element.name.c_str());
  if (!ATK_IS_VALUE(object) && element.value != old.value) {
    atk_object_set_description(object, element.value.c_str());
  } else if (ATK_IS_VALUE(object) && (element.level != old.level || element.value != old.value)) {
    g_object_notify(G_OBJECT(object), "accessible-value");
    g_signal_emit_by_name(object, "value-changed", percent(object),
                          element.value.empty() ? nullptr : element.value.c_str());
  }
  if (element.frame != old.frame) {
    AtkRectangle bounds = extents(object, ATK_XY_SCREEN);
    g_signal_emit_by_name(object, "bounds-changed", &bounds);
  }
}

void retireAccessibleElement(AtkObject* object) {
  state(object).card = nullptr;
  atk_object_notify_state_change(object, ATK_STATE_DEFUNCT, TRUE);
}

void openURLWhenIdle(const std::string& url) {
  g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, openLater, new std::string(url), deleteURL);
}

}  // namespace korvo::gtk
