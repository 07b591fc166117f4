#pragma once

#include <gtk/gtk.h>

#include <functional>

namespace korvo {

// Claude Code's figures come from its status line: "Connect Claude Code" points that at korvo,
// then says when the figures arrive and offers "Disconnect", which puts back what was there.
// The widget is destroyed with its parent; this object must outlive it.
class ClaudeConnection {
 public:
  // `changed` runs after each connection or disconnection.
  explicit ClaudeConnection(std::function<void()> changed = {});
  GtkWidget* widget() const { return box_; }
  // Reads Claude's settings again.
  void show();
  void pressed();
  bool connected() const { return connected_; }

 private:
  GtkWidget* box_;
  GtkWidget* line_;
  GtkWidget* button_;
  std::function<void()> changed_;
  bool connected_ = false;
};

}  // namespace korvo
