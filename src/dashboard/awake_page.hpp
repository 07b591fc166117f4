#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "service/keep_awake.hpp"

namespace korvo {

// The dashboard's Awake tab: start a session for 15 min, 1 h, 2 h, 4 h or indefinitely, extend
// it by the default length, stop it; a live countdown and the inhibitors held.
class AwakePage {
 public:
  // `defaultMinutes` gives the awakeMinutes setting when Extend is pressed.
  AwakePage(KeepAwake& keepAwake, std::function<int()> defaultMinutes);
  GtkWidget* widget() const { return page_; }
  // The session changed: state, buttons and inhibitors again.
  void refresh();
  // Advances the countdown.
  void tick();

  void act(const KeepAwake::Outcome& outcome);
  KeepAwake& keepAwake() { return keepAwake_; }
  int defaultMinutes() const { return defaultMinutes_(); }

 private:
  KeepAwake& keepAwake_;
  std::function<int()> defaultMinutes_;
  GtkWidget* page_;
  GtkWidget* state_;
  GtkWidget* countdown_;
  GtkWidget* inhibitors_;
  GtkWidget* message_;
  GtkWidget* extend_;
  GtkWidget* stop_;
};

}  // namespace korvo
