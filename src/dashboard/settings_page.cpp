#include "dashboard/settings_page.hpp"

#include "app/settings_file.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "gtk/glib_bool.hpp"
#include "sources/user_paths.hpp"

namespace korvo {
namespace {

using namespace dashboard_widgets;

// A row: the title on the left, the control on the right.
GtkWidget* row(GtkWidget* content, const std::string& title, GtkWidget* control) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
  GtkWidget* name = label(title);
  gtk_widget_set_hexpand(name, TRUE);
  // Screen readers name the control by its row's title.
  gtk_label_set_mnemonic_widget(GTK_LABEL(name), control);
  gtk_box_pack_start(GTK_BOX(box), name, TRUE, TRUE, 0);
  gtk_widget_set_valign(control, GTK_ALIGN_CENTER);
  gtk_box_pack_end(GTK_BOX(box), control, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), box, FALSE, FALSE, 0);
  return control;
}

SettingsPage& pageOf(gpointer data) {
  return *static_cast<SettingsPage*>(data);
}

GtkWidget* message(GtkWidget* content) {
  GtkWidget* line = label("", "dim-label");
  gtk_box_pack_start(GTK_BOX(content), line, FALSE, FALSE, 0);
  return line;
}

GtkWidget* toggle(SettingsPage& page, SettingKey key) {
  GtkWidget* control = gtk_switch_new();
  g_object_set_data(G_OBJECT(control), "key", GINT_TO_POINTER(static_cast<int>(key)));
  g_signal_connect(
      control, "notify::active", G_CALLBACK(+[](GObject* control, GParamSpec*, gpointer data) {
        const auto key =
            static_cast<SettingKey>(GPOINTER_TO_INT(g_object_get_data(control, "key")));
        pageOf(data).write(key, gtk_switch_get_active(GTK_SWITCH(control)) == TRUE);
      }),
      &page);
  return control;
}

}  // namespace

SettingsPage::SettingsPage(std::function<void()> claudeChanged)
    : claudeConnection_(std::move(claudeChanged)) {
  GtkWidget* content = nullptr;
  monitors_ = scrolledPage(&content);
  temperature_ = row(content, _("CPU temperature"), toggle(*this, SettingKey::temperature));
  temperatureUnit_ = row(content, _("Temperature unit"), gtk_combo_box_text_new());
  gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(temperatureUnit_), "C", _("Celsius (°C)").c_str());
  gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(temperatureUnit_), "F",
                            _("Fahrenheit (°F)").c_str());
  g_signal_connect(temperatureUnit_, "changed", G_CALLBACK(+[](GtkComboBox* combo, gpointer data) {
                     if (const char* unit = gtk_combo_box_get_active_id(combo)) {
                       pageOf(data).write(SettingKey::temperatureUnit, unit);
                     }
                   }),
                   this);
  temperatureAlert_ = row(content, _("Notify above this many °C (0: never)"),
                          gtk_spin_button_new_with_range(0, 150, 1));
  g_signal_connect(
      temperatureAlert_, "value-changed", G_CALLBACK(+[](GtkSpinButton* spin, gpointer data) {
        pageOf(data).write(SettingKey::temperatureAlert, gtk_spin_button_get_value_as_int(spin));
      }),
      this);
  displayMode_ = row(content, _("Memory figure"), gtk_combo_box_text_new());
  for (const DisplayMode mode : allDisplayModes) {
    gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(displayMode_), std::string(rawValue(mode)).c_str(),
                              label(mode).c_str());
  }
  g_signal_connect(displayMode_, "changed", G_CALLBACK(+[](GtkComboBox* combo, gpointer data) {
                     if (const char* mode = gtk_combo_box_get_active_id(combo)) {
                       pageOf(data).write(SettingKey::memoryDisplayMode, mode);
                     }
                   }),
                   this);
  messages_[0] = message(content);

  ai_ = scrolledPage(&content);
  gtk_box_pack_start(GTK_BOX(content), heading(_("Codex")), FALSE, FALSE, 0);
  codex_ = row(content, _("Show Codex's usage"), toggle(*this, SettingKey::codex));
  codexHome_ = row(content, _("Codex's sessions folder"),
                   gtk_file_chooser_button_new(_("Codex's folder").c_str(),
                                               GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER));
  g_signal_connect(codexHome_, "file-set",
                   G_CALLBACK(+[](GtkFileChooserButton* chooser, gpointer data) {
                     gchar* folder = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
                     if (folder != nullptr) pageOf(data).write(SettingKey::codexHome, folder);
                     g_free(folder);
                   }),
                   this);
  codexLive_ =
      row(content, _("Ask Codex for its current figures"), toggle(*this, SettingKey::codexLive));
  gtk_box_pack_start(GTK_BOX(content), heading(_("Claude")), FALSE, FALSE, 0);
  claude_ = row(content, _("Show Claude's usage"), toggle(*this, SettingKey::claude));
  gtk_box_pack_start(GTK_BOX(content), claudeConnection_.widget(), FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(content), heading(_("Alerts")), FALSE, FALSE, 0);
  alertPercents_ = row(content, _("Notify at these percentages used"), gtk_entry_new());
  gtk_entry_set_placeholder_text(GTK_ENTRY(alertPercents_), _("none").c_str());
  gtk_entry_set_width_chars(GTK_ENTRY(alertPercents_), 10);
  // Written when the user is done with it, not at every key.
  g_signal_connect(alertPercents_, "activate", G_CALLBACK(+[](GtkEntry* entry, gpointer data) {
                     pageOf(data).writeText(SettingKey::alertPercents, gtk_entry_get_text(entry));
                   }),
                   this);
  g_signal_connect(alertPercents_, "focus-out-event",
                   G_CALLBACK(+[](GtkWidget* entry, GdkEvent*, gpointer data) {
                     pageOf(data).writeText(SettingKey::alertPercents,
                                            gtk_entry_get_text(GTK_ENTRY(entry)));
                     return FALSE;
                   }),
                   this);
  messages_[1] = message(content);

  awake_ = scrolledPage(&content);
  awakeMinutes_ =
      row(content, _("Default session (minutes)"), gtk_spin_button_new_with_range(1, 1440, 5));
  g_signal_connect(
      awakeMinutes_, "value-changed", G_CALLBACK(+[](GtkSpinButton* spin, gpointer data) {
        pageOf(data).write(SettingKey::awakeMinutes, gtk_spin_button_get_value_as_int(spin));
      }),
      this);
  agents_ = row(content, _("While Codex or Claude Code works"),
                toggle(*this, SettingKey::awakeWhileAgentsWork));
  agentIdleMinutes_ = row(content, _("Until they are quiet for (minutes)"),
                          gtk_spin_button_new_with_range(1, 240, 1));
  g_signal_connect(
      agentIdleMinutes_, "value-changed", G_CALLBACK(+[](GtkSpinButton* spin, gpointer data) {
        pageOf(data).write(SettingKey::agentIdleMinutes, gtk_spin_button_get_value_as_int(spin));
      }),
      this);
  agentNotices_ = row(content, _("Notify when the agents start and stop"),
                      toggle(*this, SettingKey::agentNotices));
  messages_[2] = message(content);
}

void SettingsPage::show(const Settings& settings) {
  showing_ = true;
  gtk_switch_set_active(GTK_SWITCH(temperature_), gtk::glibBool(settings.temperature));
  gtk_switch_set_active(GTK_SWITCH(codex_), gtk::glibBool(settings.codex));
  gtk_switch_set_active(GTK_SWITCH(claude_), gtk::glibBool(settings.claude));
  const auto codexHome = settings.codexHome
                             ? std::optional(std::filesystem::path(*settings.codexHome))
                             : codexHomeDirectory();
  if (codexHome) gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(codexHome_), codexHome->c_str());
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(awakeMinutes_), settings.awakeMinutes);
  gtk_switch_set_active(GTK_SWITCH(agents_), gtk::glibBool(settings.awakeWhileAgentsWork));
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(agentIdleMinutes_), settings.agentIdleMinutes);
  gtk_switch_set_active(GTK_SWITCH(agentNotices_), gtk::glibBool(settings.agentNotices));
  gtk_combo_box_set_active_id(GTK_COMBO_BOX(displayMode_),
                              std::string(rawValue(settings.memoryDisplayMode)).c_str());
  gtk_switch_set_active(GTK_SWITCH(codexLive_), gtk::glibBool(settings.codexLive));
  gtk_combo_box_set_active_id(
      GTK_COMBO_BOX(temperatureUnit_),
      std::string(wordFor(temperatureUnitWords, settings.temperatureUnit)).c_str());
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(temperatureAlert_), settings.temperatureAlert);
  std::string percents;
  for (const int percent : settings.alertPercents) {
    percents += (percents.empty() ? "" : ", ") + std::to_string(percent);
  }
  gtk_entry_set_text(GTK_ENTRY(alertPercents_), percents.c_str());
  claudeConnection_.show();
  showing_ = false;
}

void SettingsPage::writeText(SettingKey key, std::string_view text) {
  if (showing_) return;
  try {
    write(key, settingValue(settingKeyWord(key), text));
  } catch (const std::exception& error) {
    say(error.what());
  }
}

void SettingsPage::write(SettingKey key, const nlohmann::ordered_json& value) {
  if (showing_) return;
  try {
    settings_file::set(settingKeyWord(key), value);
    say("");
  } catch (const std::exception& error) {
    say(error.what());
  }
}

void SettingsPage::say(const char* text) {
  // Said on every page: the control may be on any of them.
  for (GtkWidget* line : messages_) gtk_label_set_text(GTK_LABEL(line), text);
}

}  // namespace korvo
