#include "gtk/accessible_card.hpp"

#include <gtk/gtk-a11y.h>
#include <gtk/gtk.h>

#include "gtk/accessible_element.hpp"

namespace korvo::gtk {
namespace {

struct CardState {
  std::vector<ui::AccessibleElement> elements;
  std::vector<AtkObject*> children;  // one reference each, in the order of `elements`
  std::string url;
};

// The accessible objects of the two widgets that show a card: GTK's own for a window (a frame)
// and for a drawing area inside a window (the dashboard's), each with the card's elements as
// children instead of child widgets (the card has none) and the tap as an action.
struct KorvoCardAccessible {
  GtkWindowAccessible parent;
  CardState* state;
};
struct KorvoCardAccessibleClass {
  GtkWindowAccessibleClass parent;
};
struct KorvoCardAreaAccessible {
  GtkWidgetAccessible parent;
  CardState* state;
};
struct KorvoCardAreaAccessibleClass {
  GtkWidgetAccessibleClass parent;
};

// A GtkWindow and a GtkDrawingArea that only differ in their accessible object's type.
struct KorvoCardWindow {
  GtkWindow parent;
};
struct KorvoCardWindowClass {
  GtkWindowClass parent;
};
struct KorvoCardArea {
  GtkDrawingArea parent;
};
struct KorvoCardAreaClass {
  GtkDrawingAreaClass parent;
};

void actionInit(AtkActionIface* iface);

G_DEFINE_TYPE_WITH_CODE(KorvoCardAccessible, korvo_card_accessible, GTK_TYPE_WINDOW_ACCESSIBLE,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_ACTION, actionInit))
G_DEFINE_TYPE_WITH_CODE(KorvoCardAreaAccessible, korvo_card_area_accessible,
                        GTK_TYPE_WIDGET_ACCESSIBLE,
                        G_IMPLEMENT_INTERFACE(ATK_TYPE_ACTION, actionInit))
G_DEFINE_TYPE(KorvoCardWindow, korvo_card_window, GTK_TYPE_WINDOW)
G_DEFINE_TYPE(KorvoCardArea, korvo_card_area, GTK_TYPE_DRAWING_AREA)

// The card's state, or null for any other accessible object.
CardState* stateOf(gpointer card) {
  if (G_TYPE_CHECK_INSTANCE_TYPE(card, korvo_card_accessible_get_type())) {
    return reinterpret_cast<KorvoCardAccessible*>(card)->state;
  }
  if (G_TYPE_CHECK_INSTANCE_TYPE(card, korvo_card_area_accessible_get_type())) {
    return reinterpret_cast<KorvoCardAreaAccessible*>(card)->state;
  }
  return nullptr;
}

CardState& state(gpointer card) {
  return *stateOf(card);
}

void releaseChildren(GObject* card) {
  for (AtkObject* child : state(card).children) {
    retireAccessibleElement(child);
    g_object_unref(child);
  }
  delete &state(card);
}

void korvo_card_accessible_init(KorvoCardAccessible* self) {
  self->state = new CardState;
}

void korvo_card_area_accessible_init(KorvoCardAreaAccessible* self) {
  self->state = new CardState;
}

void finalizeCard(GObject* object) {
  releaseChildren(object);
  G_OBJECT_CLASS(korvo_card_accessible_parent_class)->finalize(object);
}

void finalizeCardArea(GObject* object) {
  releaseChildren(object);
  G_OBJECT_CLASS(korvo_card_area_accessible_parent_class)->finalize(object);
}

gint childCount(AtkObject* card) {
  return static_cast<gint>(state(card).children.size());
}

AtkObject* refChild(AtkObject* card, gint index) {
  const auto& children = state(card).children;
  if (index < 0 || static_cast<std::size_t>(index) >= children.size()) return nullptr;
  return ATK_OBJECT(g_object_ref(children[static_cast<std::size_t>(index)]));
}

void korvo_card_accessible_class_init(KorvoCardAccessibleClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = finalizeCard;
  ATK_OBJECT_CLASS(klass)->get_n_children = childCount;
  ATK_OBJECT_CLASS(klass)->ref_child = refChild;
}

void korvo_card_area_accessible_class_init(KorvoCardAreaAccessibleClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = finalizeCardArea;
  ATK_OBJECT_CLASS(klass)->get_n_children = childCount;
  ATK_OBJECT_CLASS(klass)->ref_child = refChild;
}

gint actionCount(AtkAction* card) {
  return state(card).url.empty() ? 0 : 1;
}

const gchar* actionName(AtkAction* card, gint index) {
  return index == 0 && !state(card).url.empty() ? "click" : nullptr;
}

gboolean doAction(AtkAction* card, gint index) {
  if (index != 0 || state(card).url.empty()) return FALSE;
  openURLWhenIdle(state(card).url);
  return TRUE;
}

void actionInit(AtkActionIface* iface) {
  iface->get_n_actions = actionCount;
  iface->get_name = actionName;
  iface->do_action = doAction;
}

void korvo_card_window_init(KorvoCardWindow*) {}

void korvo_card_window_class_init(KorvoCardWindowClass* klass) {
  gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass), korvo_card_accessible_get_type());
}

void korvo_card_area_init(KorvoCardArea*) {}

void korvo_card_area_class_init(KorvoCardAreaClass* klass) {
  gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass),
                                       korvo_card_area_accessible_get_type());
  // Named after its widget, it reads as the group of the card's texts and meters.
  gtk_widget_class_set_accessible_role(GTK_WIDGET_CLASS(klass), ATK_ROLE_PANEL);
}

}  // namespace

GtkWidget* newCardWindow() {
  return GTK_WIDGET(
      g_object_new(korvo_card_window_get_type(), "type", GTK_WINDOW_TOPLEVEL, nullptr));
}

GtkWidget* newCardArea() {
  return GTK_WIDGET(g_object_new(korvo_card_area_get_type(), nullptr));
}

std::size_t showAccessibleElements(GtkWidget* cardWidget, const std::string& url,
                                   const std::vector<ui::AccessibleElement>& elements,
                                   CardPixels pixels) {
  AtkObject* card = gtk_widget_get_accessible(cardWidget);
  if (stateOf(card) == nullptr) return 0;
  CardState& held = state(card);
  held.url = url;
  auto& children = held.children;
  const auto edits = ui::accessibleEdits(held.elements, elements);
  for (const ui::AccessibleEdit& edit : edits) {
    const auto at = children.begin() + static_cast<std::ptrdiff_t>(edit.index);
    const auto index = static_cast<guint>(edit.index);
    switch (edit.kind) {
      case ui::AccessibleEdit::Kind::remove: {
        AtkObject* child = *at;
        children.erase(at);
        g_signal_emit_by_name(card, "children-changed::remove", index, child);
        retireAccessibleElement(child);
        g_object_unref(child);
        break;
      }
      case ui::AccessibleEdit::Kind::insert: {
        AtkObject* child = newAccessibleElement(card, elements[edit.index], pixels);
        children.insert(at, child);
        g_signal_emit_by_name(card, "children-changed::add", index, child);
        break;
      }
      case ui::AccessibleEdit::Kind::update:
        updateAccessibleElement(*at, elements[edit.index]);
        break;
    }
  }
  held.elements = elements;
  for (AtkObject* child : children) placeAccessibleElement(child, pixels);
  return edits.size();
}

}  // namespace korvo::gtk
