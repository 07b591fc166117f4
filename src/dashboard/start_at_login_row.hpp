#pragma once

#include <gtk/gtk.h>

namespace korvo {

// "Start at login": one switch for korvo's service and the desktop widgets, both ways a session
// starts them (the systemd user units and the autostart entries), with a line saying what failed.
class StartAtLoginRow {
 public:
  StartAtLoginRow();
  GtkWidget* widget() const { return row_; }
  // Reads the units' and entries' state again.
  void show();
  void switched(bool on);

 private:
  GtkWidget* row_;
  GtkWidget* switch_;
  GtkWidget* message_;
  bool showing_ = false;  // show() sets the switch: that is no flip by the user
};

}  // namespace korvo
