#!/usr/bin/env python3
"""A plain surface for the Wayland tests: a solid colour filling an output, either an ordinary
window (which must cover the widgets) or a background-layer surface (which the widgets cover), and
a log of the clicks it receives, one "x y" line each."""

import argparse
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
gi.require_version("GtkLayerShell", "0.1")
from gi.repository import Gdk, Gtk, GtkLayerShell  # noqa: E402


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--layer", choices=["background", "window"], required=True)
    parser.add_argument("--color", required=True, help="#RRGGBB")
    parser.add_argument("--title", default="korvo-test-surface")
    parser.add_argument("--clicks", help="file that receives one line per click")
    options = parser.parse_args()

    window = Gtk.Window(title=options.title)
    style = Gtk.CssProvider()
    style.load_from_data(f"window {{ background: {options.color}; }}".encode())
    Gtk.StyleContext.add_provider_for_screen(
        Gdk.Screen.get_default(), style, Gtk.STYLE_PROVIDER_PRIORITY_USER
    )

    def pressed(_widget, event):
        if options.clicks:
            with open(options.clicks, "a", encoding="utf-8") as log:
                log.write(f"{int(event.x)} {int(event.y)}\n")
        return True

    window.connect("button-press-event", pressed)
    window.connect("destroy", Gtk.main_quit)
    window.add_events(Gdk.EventMask.BUTTON_PRESS_MASK)
    if options.layer == "background":
        if not GtkLayerShell.is_supported():
            print("surface.py: the compositor offers no layer-shell", file=sys.stderr)
            return 1
        GtkLayerShell.init_for_window(window)
        GtkLayerShell.set_layer(window, GtkLayerShell.Layer.BACKGROUND)
        for edge in (GtkLayerShell.Edge.LEFT, GtkLayerShell.Edge.RIGHT, GtkLayerShell.Edge.TOP,
                     GtkLayerShell.Edge.BOTTOM):
            GtkLayerShell.set_anchor(window, edge, True)
        GtkLayerShell.set_exclusive_zone(window, -1)
    window.show_all()
    Gtk.main()
    return 0


if __name__ == "__main__":
    sys.exit(main())
