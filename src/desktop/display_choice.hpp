#pragma once

#include <optional>
#include <string>

namespace korvo::desktop {

// How the host shows its windows, decided before GTK opens the display.
enum class DisplayChoice {
  asIs,             // X11, or a Wayland compositor with layer-shell: GTK's own choice
  xwayland,         // Wayland without layer-shell: X11 through XWayland, where the hints work
  ordinaryWindows,  // Wayland with neither: plain windows, wherever the compositor puts them
};

struct DisplayFacts {
  bool backendChosen = false;  // GDK_BACKEND set: the user decided
  // Whether a Wayland compositor answered and offers layer-shell; nothing without one.
  std::optional<bool> waylandLayerShell = std::nullopt;
  bool xDisplay = false;  // DISPLAY set (XWayland, when on Wayland)
  friend bool operator==(const DisplayFacts&, const DisplayFacts&) = default;
};

DisplayChoice chooseDisplay(const DisplayFacts& facts);

// The one line saying why the widgets are not where layer-shell would put them; empty for asIs.
std::string displayChoiceNotice(DisplayChoice choice);

// Asks the Wayland compositor GTK would connect to whether it offers layer-shell
// (zwlr_layer_shell_v1); nothing when no compositor answers.
std::optional<bool> waylandOffersLayerShell();

// The facts of this process's environment and compositor.
DisplayFacts currentDisplayFacts();

}  // namespace korvo::desktop
