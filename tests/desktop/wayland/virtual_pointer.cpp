// Holds a virtual pointer on a headless compositor's seat until it is stopped. Headless sway has
// no input devices, so its seat offers clients no pointer and `swaymsg seat - cursor` clicks would
// reach nobody; with this device present they reach the surface under the cursor.
//
// `virtual_pointer drag DX DY STEPS` instead drags, as a mouse does, from where the cursor is:
// press, STEPS moves making (DX, DY) together, release; then it leaves. Sway hands a surface held
// by a press only the motion of real devices, not `seat - cursor` moves.
#include <wayland-client.h>

#include <cstdio>
#include <cstdlib>
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

// Linux's code for the primary button (linux/input-event-codes.h).
constexpr uint32_t leftButton = 0x110;

// Each event as its own frame, delivered before the next is sent.
void drag(wl_display* display, zwlr_virtual_pointer_v1* pointer, double dx, double dy, int steps) {
  uint32_t time = 0;
  const auto send = [&] {
    zwlr_virtual_pointer_v1_frame(pointer);
    wl_display_roundtrip(display);
    time += 16;
  };
  zwlr_virtual_pointer_v1_button(pointer, time, leftButton, WL_POINTER_BUTTON_STATE_PRESSED);
  send();
  for (int step = 0; step < steps; ++step) {
    zwlr_virtual_pointer_v1_motion(pointer, time, wl_fixed_from_double(dx / steps),
                                   wl_fixed_from_double(dy / steps));
    send();
  }
  zwlr_virtual_pointer_v1_button(pointer, time, leftButton, WL_POINTER_BUTTON_STATE_RELEASED);
  send();
}

int main(int argc, char** argv) {
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
  auto* pointer =
      zwlr_virtual_pointer_manager_v1_create_virtual_pointer(globals.manager, globals.seat);
  wl_display_roundtrip(display);
  if (argc == 5 && std::strcmp(argv[1], "drag") == 0) {
    drag(display, pointer, std::atof(argv[2]), std::atof(argv[3]), std::atoi(argv[4]));
    return 0;
  }
  // The device lives as long as the connection; say it is there, then wait to be stopped.
  std::printf("ready\n");
  std::fflush(stdout);
  while (wl_display_dispatch(display) != -1) {
  }
  return 0;
}
