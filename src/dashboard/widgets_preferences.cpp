#include "dashboard/widgets_preferences.hpp"

#include <algorithm>
#include <cstdlib>

#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "desktop/core/placement_edit.hpp"
#include "desktop/core/widget_lookup.hpp"
#include "gtk/glib_bool.hpp"
#include "ui/words.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;
using desktop::Placement;
using desktop::ScreenAnchor;

// The grid's columns, which a change keeps the focus in.
enum Column {
  nameColumn,
  sizeColumn,
  whereColumn,
  monitorColumn,
  upColumn,
  downColumn,
  removeColumn
};

constexpr const char* positionWord = "position";
constexpr const char* primaryWord = "";

WidgetsPreferences& pageOf(gpointer data) {
  return *static_cast<WidgetsPreferences*>(data);
}

std::size_t rowOf(gpointer widget) {
  return static_cast<std::size_t>(GPOINTER_TO_INT(g_object_get_data(G_OBJECT(widget), "row")));
}

const WidgetConfiguration* configurationOf(const std::string& kind) {
  const auto& widgets = desktop::widgets();
  const auto found =
      std::find_if(widgets.begin(), widgets.end(),
                   [&](const WidgetConfiguration& each) { return each.kind == kind; });
  return found != widgets.end() ? &*found : nullptr;
}

std::string nameOf(const std::string& kind) {
  const auto* widget = configurationOf(kind);
  return widget != nullptr ? widget->displayName : kind;
}

std::string cornerTitle(ScreenAnchor anchor) {
  switch (anchor) {
    case ScreenAnchor::topLeft:
      return _("Top left");
    case ScreenAnchor::topRight:
      return _("Top right");
    case ScreenAnchor::bottomLeft:
      return _("Bottom left");
    case ScreenAnchor::bottomRight:
      return _("Bottom right");
  }
  return {};
}

// Names a control for screen readers, which read only an icon otherwise.
void nameFor(GtkWidget* control, const std::string& name) {
  atk_object_set_name(gtk_widget_get_accessible(control), name.c_str());
  gtk_widget_set_tooltip_text(control, name.c_str());
}

GtkWidget* rowButton(WidgetsPreferences& page, std::size_t row, const char* icon,
                     const std::string& name, void (*pressed)(GtkButton*, gpointer)) {
  GtkWidget* button = gtk_button_new_from_icon_name(icon, GTK_ICON_SIZE_BUTTON);
  g_object_set_data(G_OBJECT(button), "row", GINT_TO_POINTER(static_cast<int>(row)));
  nameFor(button, name);
  g_signal_connect(button, "clicked", G_CALLBACK(pressed), &page);
  return button;
}

// The connector names of the monitors GDK knows (X11 gives the RandR output's name as the model).
std::vector<std::string> monitorNames() {
  std::vector<std::string> names;
  GdkDisplay* display = gdk_display_get_default();
  if (display == nullptr) return names;
  for (int index = 0; index < gdk_display_get_n_monitors(display); ++index) {
    const char* model = gdk_monitor_get_model(gdk_display_get_monitor(display, index));
    if (model != nullptr && *model != '\0') names.emplace_back(model);
  }
  return names;
}

// The size a widget is shown at.
GtkWidget* sizeChoice(WidgetsPreferences& page, const Placement& placement,
                      const std::string& name) {
  GtkWidget* size = gtk_combo_box_text_new();
  if (const auto* configuration = configurationOf(placement.kind)) {
    for (const ui::WidgetFamily family : configuration->supportedFamilies) {
      gtk_combo_box_text_append(
          GTK_COMBO_BOX_TEXT(size), std::string(ui::familyWord(family)).c_str(),
          family == ui::WidgetFamily::systemSmall ? _("Small").c_str() : _("Medium").c_str());
    }
  }
  gtk_combo_box_set_active_id(GTK_COMBO_BOX(size),
                              std::string(ui::familyWord(placement.family)).c_str());
  nameFor(size, name + _(": size"));
  g_signal_connect(size, "changed", G_CALLBACK(+[](GtkComboBox* combo, gpointer data) {
                     const char* id = gtk_combo_box_get_active_id(combo);
                     const auto family = id != nullptr ? ui::familyNamed(id) : std::nullopt;
                     if (family) pageOf(data).setFamily(rowOf(combo), *family);
                   }),
                   &page);
  return size;
}

// The corner a widget sits in, or the position it was dragged to.
GtkWidget* placeChoice(WidgetsPreferences& page, const Placement& placement,
                       const std::string& name) {
  GtkWidget* where = gtk_combo_box_text_new();
  for (const ScreenAnchor anchor : {ScreenAnchor::topLeft, ScreenAnchor::topRight,
                                    ScreenAnchor::bottomLeft, ScreenAnchor::bottomRight}) {
    gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(where),
                              std::string(desktop::anchorName(anchor)).c_str(),
                              cornerTitle(anchor).c_str());
  }
  if (placement.position) {
    const std::string at = _("At ") + std::to_string(std::lround(placement.position->x)) + ", " +
                           std::to_string(std::lround(placement.position->y));
    gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(where), positionWord, at.c_str());
    gtk_combo_box_set_active_id(GTK_COMBO_BOX(where), positionWord);
  } else {
    gtk_combo_box_set_active_id(GTK_COMBO_BOX(where),
                                std::string(desktop::anchorName(placement.anchor)).c_str());
  }
  nameFor(where, name + _(": place"));
  g_signal_connect(where, "changed", G_CALLBACK(+[](GtkComboBox* combo, gpointer data) {
                     if (const char* id = gtk_combo_box_get_active_id(combo))
                       pageOf(data).setWhere(rowOf(combo), id);
                   }),
                   &page);
  return where;
}

// The monitor a widget is shown on: the primary one, a connected one or the one it names.
GtkWidget* monitorChoice(WidgetsPreferences& page, const Placement& placement,
                         const std::string& name, std::vector<std::string> outputs) {
  GtkWidget* monitor = gtk_combo_box_text_new();
  gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(monitor), primaryWord, _("Primary monitor").c_str());
  if (placement.output &&
      std::find(outputs.begin(), outputs.end(), *placement.output) == outputs.end()) {
    outputs.push_back(*placement.output);
  }
  for (const auto& output : outputs) {
    gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(monitor), output.c_str(), output.c_str());
  }
  gtk_combo_box_set_active_id(GTK_COMBO_BOX(monitor), placement.output.value_or("").c_str());
  nameFor(monitor, name + _(": monitor"));
  g_signal_connect(monitor, "changed", G_CALLBACK(+[](GtkComboBox* combo, gpointer data) {
                     if (const char* id = gtk_combo_box_get_active_id(combo))
                       pageOf(data).setOutput(rowOf(combo), id);
                   }),
                   &page);
  return monitor;
}

}  // namespace

WidgetsPreferences::WidgetsPreferences()
    : grid_(gtk_grid_new()),
      addBox_(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6)),
      message_(label("", "dim-label")),
      file_(desktop::placementsPath(std::getenv("XDG_CONFIG_HOME"), std::getenv("HOME"))) {
  GtkWidget* content = nullptr;
  page_ = scrolledPage(&content);
  gtk_box_pack_start(GTK_BOX(content), login_.widget(), FALSE, FALSE, 0);

  gtk_box_pack_start(GTK_BOX(content), heading(_("On the desktop")), FALSE, FALSE, 0);
  gtk_grid_set_column_spacing(GTK_GRID(grid_), 6);
  gtk_grid_set_row_spacing(GTK_GRID(grid_), 6);
  gtk_box_pack_start(GTK_BOX(content), grid_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), addBox_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), message_, FALSE, FALSE, 0);
  gtk_widget_set_no_show_all(message_, TRUE);
  if (file_) watch_.emplace(*file_, [this] { fileChanged(); });
  reload();
}

WidgetsPreferences::~WidgetsPreferences() {
  if (later_ != 0) g_source_remove(later_);
}

void WidgetsPreferences::reload() {
  login_.show();
  usable_ = false;
  placements_.clear();
  std::string message;
  const auto lookup = desktop::kindLookup(desktop::widgets());
  if (!file_) {
    message = _("No folder for the placements file: set HOME or XDG_CONFIG_HOME.");
  } else {
    const auto loaded = desktop::loadPlacementsFile(*file_, lookup);
    if (const auto* placements = std::get_if<std::vector<Placement>>(&loaded)) {
      placements_ = *placements;
      usable_ = true;
    } else if (std::holds_alternative<desktop::NoPlacementsFile>(loaded)) {
      placements_ = desktop::defaultPlacements(lookup);
      usable_ = true;
    } else {
      // Left as it is: the user's own file is theirs to mend.
      message = std::get<desktop::PlacementError>(loaded).message;
    }
  }
  gtk_label_set_text(GTK_LABEL(message_), message.c_str());
  gtk_widget_set_visible(message_, gtk::glibBool(!message.empty()));
  show(std::nullopt, nameColumn);
}

void WidgetsPreferences::fileChanged() {
  // The page's own save comes back here too; rebuilding for it would lose the focus.
  if (file_ && written_ && desktop::fileStamp(*file_) == written_) return;
  reload();
}

void WidgetsPreferences::show(std::optional<std::size_t> focusRow, int focusColumn) {
  clear(grid_);
  clear(addBox_);
  GtkWidget* focus = nullptr;
  const auto outputs = monitorNames();
  for (std::size_t row = 0; row < placements_.size(); ++row) {
    const Placement& placement = placements_[row];
    const std::string name = nameOf(placement.kind);
    const int at = static_cast<int>(row);
    GtkWidget* controls[removeColumn + 1] = {};
    controls[nameColumn] = label(name);
    gtk_widget_set_hexpand(controls[nameColumn], TRUE);

    controls[sizeColumn] = sizeChoice(*this, placement, name);
    controls[whereColumn] = placeChoice(*this, placement, name);
    controls[monitorColumn] = monitorChoice(*this, placement, name, outputs);

    controls[upColumn] =
        rowButton(*this, row, "go-up-symbolic", _("Move ") + name + _(" up"),
                  [](GtkButton* button, gpointer data) { pageOf(data).move(rowOf(button), -1); });
    gtk_widget_set_sensitive(controls[upColumn], gtk::glibBool(row > 0));
    controls[downColumn] =
        rowButton(*this, row, "go-down-symbolic", _("Move ") + name + _(" down"),
                  [](GtkButton* button, gpointer data) { pageOf(data).move(rowOf(button), 1); });
    gtk_widget_set_sensitive(controls[downColumn], gtk::glibBool(row + 1 < placements_.size()));
    controls[removeColumn] =
        rowButton(*this, row, "list-remove-symbolic", _("Remove ") + name,
                  [](GtkButton* button, gpointer data) { pageOf(data).remove(rowOf(button)); });
    for (int column = nameColumn; column <= removeColumn; ++column) {
      g_object_set_data(G_OBJECT(controls[column]), "row", GINT_TO_POINTER(at));
      gtk_widget_set_sensitive(
          controls[column],
          gtk::glibBool(usable_ && gtk_widget_get_sensitive(controls[column]) != FALSE));
      gtk_grid_attach(GTK_GRID(grid_), controls[column], column, at, 1, 1);
    }
    if (focusRow && *focusRow == row) focus = controls[focusColumn];
  }

  GtkWidget* addable = gtk_combo_box_text_new();
  for (const auto& widget : desktop::widgets()) {
    const bool shown = std::any_of(placements_.begin(), placements_.end(),
                                   [&](const Placement& each) { return each.kind == widget.kind; });
    if (!shown) {
      gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(addable), widget.kind.c_str(),
                                widget.displayName.c_str());
    }
  }
  gtk_combo_box_set_active(GTK_COMBO_BOX(addable), 0);
  nameFor(addable, _("Widget to add"));
  GtkWidget* add = gtk_button_new_with_mnemonic(_("_Add widget").c_str());
  g_object_set_data(G_OBJECT(add), "choice", addable);
  g_signal_connect(add, "clicked", G_CALLBACK(+[](GtkButton* button, gpointer data) {
                     auto* choice = GTK_COMBO_BOX(g_object_get_data(G_OBJECT(button), "choice"));
                     if (const char* kind = gtk_combo_box_get_active_id(choice))
                       pageOf(data).add(kind);
                   }),
                   this);
  const bool any = gtk_combo_box_get_active_id(GTK_COMBO_BOX(addable)) != nullptr;
  gtk_widget_set_sensitive(addable, gtk::glibBool(usable_ && any));
  gtk_widget_set_sensitive(add, gtk::glibBool(usable_ && any));
  gtk_box_pack_start(GTK_BOX(addBox_), addable, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(addBox_), add, FALSE, FALSE, 0);
  gtk_widget_show_all(grid_);
  gtk_widget_show_all(addBox_);
  // Every widget shown: nothing to add.
  gtk_widget_set_visible(addBox_, gtk::glibBool(any));
  if (focusRow && !focus) focus = placements_.empty() ? add : nullptr;
  if (focus != nullptr) gtk_widget_grab_focus(focus);
}

void WidgetsPreferences::save(std::vector<Placement> placements,
                              std::optional<std::size_t> focusRow, int focusColumn) {
  if (!usable_ || !file_) return;
  if (const auto failure = desktop::savePlacementsFile(*file_, placements)) {
    gtk_label_set_text(GTK_LABEL(message_), failure->c_str());
    gtk_widget_set_visible(message_, TRUE);
    return;
  }
  written_ = desktop::fileStamp(*file_);
  gtk_widget_hide(message_);
  placements_ = std::move(placements);
  // Rebuilt once the control's own signal has returned: it is destroyed with the old rows.
  struct Later {
    WidgetsPreferences* page;
    std::optional<std::size_t> row;
    int column;
  };
  if (later_ != 0) g_source_remove(later_);
  later_ = g_idle_add_full(
      G_PRIORITY_DEFAULT,
      +[](gpointer data) -> gboolean {
        const auto* later = static_cast<Later*>(data);
        later->page->later_ = 0;
        later->page->show(later->row, later->column);
        return G_SOURCE_REMOVE;
      },
      new Later{this, focusRow, focusColumn},
      +[](gpointer data) { delete static_cast<Later*>(data); });
}

void WidgetsPreferences::setFamily(std::size_t row, ui::WidgetFamily family) {
  const auto lookup = desktop::kindLookup(desktop::widgets());
  save(desktop::editPlacements(placements_, row, desktop::SetFamily{family}, lookup), row,
       sizeColumn);
}

void WidgetsPreferences::setWhere(std::size_t row, const char* where) {
  const auto anchor = desktop::anchorFromName(where);
  if (!anchor) return;  // the position it already has
  const auto lookup = desktop::kindLookup(desktop::widgets());
  save(desktop::editPlacements(placements_, row, desktop::MoveToCorner{*anchor}, lookup), row,
       whereColumn);
}

void WidgetsPreferences::setOutput(std::size_t row, const char* output) {
  if (row >= placements_.size()) return;
  auto placements = placements_;
  placements[row].output =
      *output == '\0' ? std::nullopt : std::optional<std::string>(std::string(output));
  save(std::move(placements), row, monitorColumn);
}

void WidgetsPreferences::move(std::size_t row, int by) {
  const auto to = static_cast<std::ptrdiff_t>(row) + by;
  if (row >= placements_.size() || to < 0 || to >= static_cast<std::ptrdiff_t>(placements_.size()))
    return;
  auto placements = placements_;
  std::swap(placements[row], placements[static_cast<std::size_t>(to)]);
  // The focus follows the widget moved, unless it reached the end its button no longer goes to.
  const auto at = static_cast<std::size_t>(to);
  const bool atEnd = at == 0 || at + 1 == placements.size();
  save(std::move(placements), at,
       atEnd ? (by < 0 ? downColumn : upColumn) : (by < 0 ? upColumn : downColumn));
}

void WidgetsPreferences::remove(std::size_t row) {
  const auto lookup = desktop::kindLookup(desktop::widgets());
  auto placements = desktop::editPlacements(placements_, row, desktop::RemoveWidget{}, lookup);
  const std::optional<std::size_t> focus =
      placements.empty() ? std::optional<std::size_t>(0)
                         : std::optional(std::min(row, placements.size() - 1));
  save(std::move(placements), focus, removeColumn);
}

void WidgetsPreferences::add(const char* kind) {
  const auto lookup = desktop::kindLookup(desktop::widgets());
  const auto known = lookup(kind);
  if (!known || known->families.empty()) return;
  auto placements = placements_;
  if (placements.empty()) {
    placements.push_back(Placement{known->kind, known->families.front()});
  } else {
    placements = desktop::editPlacements(placements, placements.size() - 1,
                                         desktop::AddWidget{known->kind}, lookup);
  }
  const std::size_t added = placements.size() - 1;
  save(std::move(placements), added, sizeColumn);
}

}  // namespace korvo
