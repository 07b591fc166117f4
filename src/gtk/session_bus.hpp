#pragma once

// GIO's connection type, declared so that users of this header need not include GIO.
using GDBusConnection = struct _GDBusConnection;

namespace korvo::gtk {

// The desktop session's message bus, connected on first use and kept; nullptr when the session
// has none. Never starts a bus of its own (GIO would autolaunch one when no address is known).
GDBusConnection* sessionBus();

}  // namespace korvo::gtk
