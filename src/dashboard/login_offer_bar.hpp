#pragma once

#include <gtk/gtk.h>

#include <functional>

namespace korvo {

// The bar over the dashboard of a home install's first start offering "Start at login" (nothing
// else would start korvo and the widgets at login there), until it is answered either way.
class LoginOfferBar {
 public:
  // `answered` runs after the user chose, with whether starting at login is now on.
  explicit LoginOfferBar(std::function<void(bool)> answered);
  GtkWidget* widget() const { return bar_; }
  // Shows the bar when the offer is due; once a run is enough.
  void offerIfDue();
  bool shown() const;
  void respond(int response);

 private:
  GtkWidget* bar_;
  GtkWidget* text_;
  std::function<void(bool)> answered_;
  bool checked_ = false;
};

}  // namespace korvo
