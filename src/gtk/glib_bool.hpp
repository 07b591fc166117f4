#pragma once

#include <glib.h>

namespace korvo::gtk {

// GLib's booleans are ints: a C++ bool goes to GLib and GTK through this, and comes back as
// `value != FALSE`.
constexpr gboolean glibBool(bool value) {
  return value ? TRUE : FALSE;
}

}  // namespace korvo::gtk
