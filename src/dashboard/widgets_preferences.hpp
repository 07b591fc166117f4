#pragma once

#include <gtk/gtk.h>

#include <filesystem>
#include <optional>
#include <vector>

#include "dashboard/start_at_login_row.hpp"
#include "desktop/core/placement.hpp"
#include "desktop/core/placement_file.hpp"
#include "gtk/file_watch.hpp"

namespace korvo {

// The preferences' Widgets page: "Start at login" for Korvo and its widgets, then the widgets on
// the desktop in their order, each with its size, corner or position and monitor, moved up or
// down or removed, and the ones not shown to add. Every change is saved to the desktop host's
// placements file in one step, which the running host applies at once; a change the host makes
// (a card dragged) shows here as it happens.
class WidgetsPreferences {
 public:
  WidgetsPreferences();
  ~WidgetsPreferences();
  WidgetsPreferences(const WidgetsPreferences&) = delete;
  WidgetsPreferences& operator=(const WidgetsPreferences&) = delete;

  GtkWidget* widget() const { return page_; }
  // Reads the placements file and the login switches again.
  void reload();

  // What the page's controls do; `row` counts the widgets shown from the top.
  void setFamily(std::size_t row, ui::WidgetFamily family);
  void setWhere(std::size_t row, const char* where);
  void setOutput(std::size_t row, const char* output);
  void move(std::size_t row, int by);
  void remove(std::size_t row);
  void add(const char* kind);

 private:
  void save(std::vector<desktop::Placement> placements, std::optional<std::size_t> focusRow,
            int focusColumn);
  void show(std::optional<std::size_t> focusRow, int focusColumn);
  void fileChanged();

  GtkWidget* page_;
  StartAtLoginRow login_;
  GtkWidget* grid_;
  GtkWidget* addBox_;
  GtkWidget* message_;
  std::optional<std::filesystem::path> file_;
  std::optional<desktop::FileStamp> written_;  // the file as this page last wrote it
  std::vector<desktop::Placement> placements_;
  bool usable_ = false;  // the file read (or is missing); a bad one is never overwritten
  unsigned later_ = 0;   // the rebuild after a change, while one is due
  std::optional<gtk::FileWatch> watch_;
};

}  // namespace korvo
