# The desktop host: GTK windows for the placed widgets and the `run` subcommand. Kept in its own
# library so the headless commands never load GTK.
add_library(korvo_desktop STATIC
  host_accessibility.cpp
  host_card_shape.cpp
  host_appearance.cpp
  host_desktop.cpp
  host_notification.cpp
  host_placement.cpp
  host_placement_file.cpp
  host_schedule.cpp
  host_session_bus.cpp
  host_url_opener.cpp
  host_window.cpp
  run_command.cpp)
target_link_libraries(korvo_desktop
  PUBLIC korvo_host korvo_extension korvo_ui PkgConfig::GTK PkgConfig::GTK_LAYER_SHELL)
target_link_libraries(korvo-widgets PRIVATE korvo_desktop)
