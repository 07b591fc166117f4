#!/usr/bin/python3
"""What a screen reader reads of the desktop host, through AT-SPI (Debian's python3-gi and
gir1.2-atspi-2.0; run it with /usr/bin/python3).

    read_accessible.py                   prints the host's windows and their children as JSON
    read_accessible.py WINDOW [CHILD]    does the first action of WINDOW, or of its child named
                                         CHILD, and prints its name
    read_accessible.py --card NAME       prints the card named NAME found anywhere in the
                                         application (a panel inside a window) with its children
    read_accessible.py --card NAME CHILD does the first action of that card's child CHILD

    read_accessible.py --role ROLE       prints the names of every object with that role, in the
                                         order a screen reader walks them, as a JSON list
    read_accessible.py --named NAME      prints the first object named NAME (with its role)
    read_accessible.py --named NAME --act  does that object's first action

--application NAME reads another application than the desktop host (korvo's dashboard).
Exit status 1 when the application is not (yet) on the accessibility bus or the object is
missing."""
import argparse
import json
import sys
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402


# Debian 12's bindings mark the action name getter deprecated without offering its successor.
warnings.filterwarnings("ignore", category=DeprecationWarning)


def find_application(name):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application is not None and application.get_name() == name:
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
    description = accessible.get_description()
    if description:
        described["description"] = description
    if "Value" in accessible.get_interfaces():
        described["value"] = Atspi.Value.get_current_value(accessible)
        described["valueText"] = Atspi.Value.get_text(accessible) or ""
    return described


def with_children(accessible):
    return dict(element(accessible), children=[element(c) for c in children(accessible)])


def find_card(accessible, name):
    """The first panel or frame named `name` under `accessible`, depth first."""
    for child in children(accessible):
        if child is None:
            continue
        if child.get_name() == name and child.get_role_name() in ("panel", "frame"):
            return child
        found = find_card(child, name)
        if found is not None:
            return found
    return None


def walk(accessible):
    """Every object under `accessible`, depth first, showing ones only."""
    for child in children(accessible):
        if child is None:
            continue
        states = child.get_state_set()
        if not states.contains(Atspi.StateType.SHOWING):
            continue
        yield child
        yield from walk(child)


def main(arguments):
    parser = argparse.ArgumentParser(description="What a screen reader reads, through AT-SPI.")
    parser.add_argument("--application", default="korvo-widgets")
    parser.add_argument("--card")
    parser.add_argument("--role")
    parser.add_argument("--named")
    parser.add_argument("--act", action="store_true")
    parser.add_argument("path", nargs="*", help="WINDOW [CHILD] whose first action to do")
    options = parser.parse_args(arguments)
    application = find_application(options.application)
    if application is None:
        print(f"read_accessible: {options.application} is not on the accessibility bus",
              file=sys.stderr)
        return 1
    if options.role:
        names = [o.get_name() for o in walk(application) if o.get_role_name() == options.role]
        print(json.dumps(names, ensure_ascii=False))
        return 0
    if options.named:
        found = next((o for o in walk(application) if o.get_name() == options.named), None)
        if found is None:
            print(f"read_accessible: nothing named {options.named}", file=sys.stderr)
            return 1
        # Read before acting: the action may take the object away.
        described = element(found)
        if options.act:
            if not described["actions"]:
                print(f"read_accessible: no action on {options.named}", file=sys.stderr)
                return 1
            if not Atspi.Action.do_action(found, 0):
                print(f"read_accessible: {options.named} did not act", file=sys.stderr)
                return 1
        print(json.dumps(described, ensure_ascii=False))
        return 0
    if options.card:
        card = find_card(application, options.card)
        if card is None:
            print(f"read_accessible: no card named {options.card}", file=sys.stderr)
            return 1
        if not options.path:
            print(json.dumps(with_children(card), ensure_ascii=False, indent=1))
            return 0
        path = [card] + options.path
    else:
        windows = children(application)
        if not options.path:
            document = [with_children(window) for window in windows]
            print(json.dumps(document, ensure_ascii=False, indent=1))
            return 0
        path = [next((w for w in windows if w.get_name() == options.path[0]), None)]
        path += options.path[1:]
    target = path[0]
    for name in path[1:]:
        if target is None:
            break
        target = next((c for c in children(target) if c.get_name() == name), None)
    if target is None or not actions(target):
        print(f"read_accessible: no action on {' / '.join(options.path)}", file=sys.stderr)
        return 1
    Atspi.Action.do_action(target, 0)
    print(target.get_name())
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
