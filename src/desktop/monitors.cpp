#include "desktop/monitors.hpp"

#include <gdk/gdkwayland.h>
#include <wayland-client.h>

#include <algorithm>
#include <cstring>

namespace korvo::desktop {
namespace {

// wl_output's name event, which GTK 3 reads but does not pass on.
struct Outputs {
  std::vector<wl_output*> outputs;
  std::vector<std::string> names;
};

void outputGeometry(void*, wl_output*, int32_t, int32_t, int32_t, int32_t, int32_t, const char*,
                    const char*, int32_t) {}
void outputMode(void*, wl_output*, uint32_t, int32_t, int32_t, int32_t) {}
void outputDone(void*, wl_output*) {}
void outputScale(void*, wl_output*, int32_t) {}
void outputDescription(void*, wl_output*, const char*) {}

void outputName(void* data, wl_output* output, const char* name) {
  auto& outputs = *static_cast<Outputs*>(data);
  const auto at = std::find(outputs.outputs.begin(), outputs.outputs.end(), output);
  if (at != outputs.outputs.end()) outputs.names[at - outputs.outputs.begin()] = name;
}

const wl_output_listener outputListener{outputGeometry, outputMode, outputDone,
                                        outputScale,    outputName, outputDescription};

void announce(void* data, wl_registry* registry, uint32_t id, const char* interface,
              uint32_t version) {
  if (std::strcmp(interface, wl_output_interface.name) != 0) return;
  auto& outputs = *static_cast<Outputs*>(data);
  // Names came with version 4; older outputs stay unnamed.
  const uint32_t bound = std::min<uint32_t>(version, WL_OUTPUT_NAME_SINCE_VERSION);
  auto* output =
      static_cast<wl_output*>(wl_registry_bind(registry, id, &wl_output_interface, bound));
  outputs.outputs.push_back(output);
  outputs.names.emplace_back();
  wl_output_add_listener(output, &outputListener, &outputs);
}

void withdraw(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener{announce, withdraw};

// The compositor's outputs in the order it announces them, which is the order GDK adds its
// monitors in. A connection of our own: GDK keeps its wl_output listeners to itself.
std::vector<std::string> waylandOutputNames() {
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) return {};
  Outputs outputs;
  wl_registry* registry = wl_display_get_registry(display);
  wl_registry_add_listener(registry, &registryListener, &outputs);
  wl_display_roundtrip(display);
  wl_display_roundtrip(display);
  for (auto* output : outputs.outputs) {
    if (wl_output_get_version(output) >= WL_OUTPUT_RELEASE_SINCE_VERSION) {
      wl_output_release(output);
    } else {
      wl_output_destroy(output);
    }
  }
  wl_registry_destroy(registry);
  wl_display_disconnect(display);
  return outputs.names;
}

}  // namespace

std::vector<Monitor> displayMonitors(GdkDisplay* display) {
  std::vector<Monitor> monitors;
  const int count = gdk_display_get_n_monitors(display);
  std::vector<std::string> waylandNames;
  if (GDK_IS_WAYLAND_DISPLAY(display)) waylandNames = waylandOutputNames();
  const bool named = static_cast<int>(waylandNames.size()) == count;
  for (int index = 0; index < count; ++index) {
    GdkMonitor* monitor = gdk_display_get_monitor(display, index);
    GdkRectangle area;
    gdk_monitor_get_workarea(monitor, &area);
    Monitor entry;
    entry.monitor = monitor;
    entry.workArea = {static_cast<double>(area.x), static_cast<double>(area.y),
                      static_cast<double>(area.width), static_cast<double>(area.height)};
    if (GDK_IS_WAYLAND_DISPLAY(display)) {
      if (named) entry.name = waylandNames[static_cast<std::size_t>(index)];
    } else if (const char* model = gdk_monitor_get_model(monitor)) {
      // X11 gives the RandR output's name here.
      entry.name = model;
    }
    monitors.push_back(std::move(entry));
  }
  return monitors;
}

std::optional<std::size_t> monitorFor(const std::vector<Monitor>& monitors,
                                      const std::optional<std::string>& output,
                                      std::optional<std::size_t> primary) {
  if (monitors.empty()) return std::nullopt;
  if (output) {
    for (std::size_t index = 0; index < monitors.size(); ++index) {
      if (monitors[index].name == *output) return index;
    }
  }
  if (primary && *primary < monitors.size()) return primary;
  return 0;
}

}  // namespace korvo::desktop
