#include "desktop/display_choice.hpp"

#include <wayland-client.h>

#include <cstdlib>
#include <cstring>

namespace korvo::desktop {
namespace {

void announce(void* found, wl_registry*, uint32_t, const char* interface, uint32_t) {
  if (std::strcmp(interface, "zwlr_layer_shell_v1") == 0) *static_cast<bool*>(found) = true;
}

void withdraw(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener{announce, withdraw};

bool set(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

DisplayChoice chooseDisplay(const DisplayFacts& facts) {
  if (facts.backendChosen || !facts.waylandLayerShell || *facts.waylandLayerShell) {
    return DisplayChoice::asIs;
  }
  return facts.xDisplay ? DisplayChoice::xwayland : DisplayChoice::ordinaryWindows;
}

std::string displayChoiceNotice(DisplayChoice choice) {
  switch (choice) {
    case DisplayChoice::xwayland:
      return "korvo-widgets: this Wayland compositor offers no layer-shell; the widgets run "
             "through XWayland, which keeps them below other windows, on every workspace and out "
             "of the taskbar";
    case DisplayChoice::ordinaryWindows:
      return "korvo-widgets: this Wayland compositor offers neither layer-shell nor XWayland; "
             "the widgets are ordinary windows, placed and stacked as the compositor decides";
    case DisplayChoice::asIs:
      break;
  }
  return {};
}

std::optional<bool> waylandOffersLayerShell() {
  // The same compositor GDK would pick: WAYLAND_DISPLAY, else wayland-0.
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) return std::nullopt;
  bool found = false;
  wl_registry* registry = wl_display_get_registry(display);
  wl_registry_add_listener(registry, &registryListener, &found);
  const bool answered = wl_display_roundtrip(display) >= 0;
  wl_registry_destroy(registry);
  wl_display_disconnect(display);
  if (!answered) return std::nullopt;
  return found;
}

DisplayFacts currentDisplayFacts() {
  DisplayFacts facts;
  facts.backendChosen = set("GDK_BACKEND");
  facts.xDisplay = set("DISPLAY");
  // GDK tries Wayland first; with a backend chosen, nothing to ask.
  if (!facts.backendChosen) facts.waylandLayerShell = waylandOffersLayerShell();
  return facts;
}

}  // namespace korvo::desktop
