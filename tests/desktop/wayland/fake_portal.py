#!/usr/bin/env python3
"""The desktop portal's settings, as far as the host reads them: org.freedesktop.appearance
color-scheme, taken from the file given (0 no preference, 1 dark, 2 light). When the file changes,
the portal says so with SettingChanged, as a desktop does when the user switches."""

import sys

from gi.repository import Gio, GLib

INTERFACE = """
<node>
  <interface name="org.freedesktop.portal.Settings">
    <method name="Read">
      <arg type="s" name="namespace" direction="in"/>
      <arg type="s" name="key" direction="in"/>
      <arg type="v" name="value" direction="out"/>
    </method>
    <signal name="SettingChanged">
      <arg type="s" name="namespace"/>
      <arg type="s" name="key"/>
      <arg type="v" name="value"/>
    </signal>
    <property name="version" type="u" access="read"/>
  </interface>
</node>
"""
NAMESPACE = "org.freedesktop.appearance"
KEY = "color-scheme"
PATH = "/org/freedesktop/portal/desktop"


def scheme(file):
    try:
        with open(file, encoding="utf-8") as text:
            return int(text.read().strip() or 0)
    except (OSError, ValueError):
        return 0


def main():
    file = sys.argv[1]
    state = {"scheme": scheme(file)}
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    node = Gio.DBusNodeInfo.new_for_xml(INTERFACE)

    def call(_connection, _sender, _path, _interface, method, parameters, invocation):
        namespace, key = parameters.unpack()
        if method == "Read" and (namespace, key) == (NAMESPACE, KEY):
            value = GLib.Variant("v", GLib.Variant("u", state["scheme"]))
            invocation.return_value(GLib.Variant.new_tuple(value))
        else:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such key")

    def get(*_arguments):
        return GLib.Variant("u", 1)

    bus.register_object(PATH, node.interfaces[0], call, get, None)

    def poll():
        now = scheme(file)
        if now != state["scheme"]:
            state["scheme"] = now
            bus.emit_signal(None, PATH, "org.freedesktop.portal.Settings", "SettingChanged",
                            GLib.Variant("(ssv)", (NAMESPACE, KEY, GLib.Variant("u", now))))
        return True

    def owned(*_arguments):
        print("ready", flush=True)

    Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop",
                                   Gio.BusNameOwnerFlags.NONE, owned, None)
    GLib.timeout_add(100, poll)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
