#!/usr/bin/python3
"""What a screen reader reads of the desktop host, through AT-SPI (Debian's python3-gi and
gir1.2-atspi-2.0; run it with /usr/bin/python3).

    read_accessible.py                   prints the host's windows and their children as JSON
    read_accessible.py WINDOW [CHILD]    does the first action of WINDOW, or of its child named
                                         CHILD, and prints its name

Exit status 1 when the host is not (yet) on the accessibility bus or the object is missing."""
import json
import sys
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

HOST = "korvo-widgets"

# Debian 12's bindings mark the action name getter deprecated without offering its successor.
warnings.filterwarnings("ignore", category=DeprecationWarning)


def host():
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is not None and application.get_name() == HOST:
            return application
    return None


def children(accessible):
    return [accessible.get_child_at_index(i) for i in range(accessible.get_child_count())]


def actions(accessible):
    if "Action" not in accessible.get_interfaces():
        return []
    return [Atspi.Action.get_action_name(accessible, i)
            for i in range(Atspi.Action.get_n_actions(accessible))]


def element(accessible):
    bounds = accessible.get_extents(Atspi.CoordType.SCREEN)
    described = {
        "role": accessible.get_role_name(),
        "name": accessible.get_name(),
        "bounds": {"x": bounds.x, "y": bounds.y, "width": bounds.width, "height": bounds.height},
        "actions": actions(accessible),
    }
    if "Value" in accessible.get_interfaces():
        described["value"] = Atspi.Value.get_current_value(accessible)
        described["valueText"] = Atspi.Value.get_text(accessible) or ""
    return described


def main(arguments):
    application = host()
    if application is None:
        print(f"read_accessible: {HOST} is not on the accessibility bus", file=sys.stderr)
        return 1
    windows = children(application)
    if not arguments:
        document = [dict(element(window), children=[element(c) for c in children(window)])
                    for window in windows]
        print(json.dumps(document, ensure_ascii=False, indent=1))
        return 0
    target = next((w for w in windows if w.get_name() == arguments[0]), None)
    if target is not None and len(arguments) > 1:
        target = next((c for c in children(target) if c.get_name() == arguments[1]), None)
    if target is None or not actions(target):
        print(f"read_accessible: no action on {' / '.join(arguments)}", file=sys.stderr)
        return 1
    Atspi.Action.do_action(target, 0)
    print(target.get_name())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
