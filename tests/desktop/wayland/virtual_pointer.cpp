// Holds a virtual pointer on a headless compositor's seat until it is stopped. Headless sway has
// no input devices, so its seat offers clients no pointer and `swaymsg seat - cursor` clicks would
// reach nobody; with this device present they reach the surface under the cursor.
#include <wayland-client.h>

#include <cstdio>
#include <cstring>

#include "virtual-pointer-client-protocol.h"

namespace {

struct Globals {
  zwlr_virtual_pointer_manager_v1* manager = nullptr;
  wl_seat* seat = nullptr;
};

void announce(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t) {
  auto& globals = *static_cast<Globals*>(data);
  if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0) {
    globals.manager = static_cast<zwlr_virtual_pointer_manager_v1*>(
        wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1));
  } else if (std::strcmp(interface, wl_seat_interface.name) == 0 && globals.seat == nullptr) {
    globals.seat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
  }
}

void withdraw(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener{announce, withdraw};

}  // namespace

int main() {
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "virtual_pointer: cannot connect to the Wayland display\n");
    return 1;
  }
  Globals globals;
  wl_registry* registry = wl_display_get_registry(display);
  wl_registry_add_listener(registry, &registryListener, &globals);
  wl_display_roundtrip(display);
  if (globals.manager == nullptr) {
    std::fprintf(stderr, "virtual_pointer: the compositor offers no virtual pointers\n");
    return 1;
  }
  zwlr_virtual_pointer_manager_v1_create_virtual_pointer(globals.manager, globals.seat);
  wl_display_roundtrip(display);
  // The device lives as long as the connection; say it is there, then wait to be stopped.
  std::printf("ready\n");
  std::fflush(stdout);
  while (wl_display_dispatch(display) != -1) {
  }
  return 0;
}
