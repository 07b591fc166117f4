# What `cmake --install` puts where, for korvo-widgets, its desktop host and, when it is built,
# korvo. Programs find their data relative to their own place (bin/../share/korvo-widgets), so an
# installed tree works from any prefix without environment variables.
include(GNUInstallDirs)

set(KORVO_DATA "${PROJECT_SOURCE_DIR}/data")
set(KORVO_DATADIR "${CMAKE_INSTALL_DATADIR}")

# First of all: an unwritable prefix is one clear line, not a trail of failed copies.
install(CODE "set(KORVO_INSTALL_STEP check-prefix)
  include(\"${PROJECT_SOURCE_DIR}/cmake/install_step.cmake\")")

install(TARGETS korvo-widgets RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
# Every program loads its date texts from here (src/base/date_text.cpp), and the command line its
# renderer (src/cli/render_widget.cpp).
install(TARGETS korvo_date_text korvo_render_module
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/korvo-widgets")
if(TARGET korvo-widgets-desktop)
  # `korvo-widgets run` looks for the host here (src/cli/desktop_launch.cpp).
  install(TARGETS korvo-widgets-desktop
          RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/korvo-widgets")
endif()
install(FILES "${KORVO_DATA}/Info.json" DESTINATION "${KORVO_DATADIR}/korvo-widgets")

# korvo_install_program_data(NAME APPLICATION_ID): the files each program brings along; its
# desktop entry and man page follow in the session-files step below.
function(korvo_install_program_data name application_id)
  install(FILES "${KORVO_DATA}/icons/${application_id}.svg"
          DESTINATION "${KORVO_DATADIR}/icons/hicolor/scalable/apps")
  install(FILES "${KORVO_DATA}/completions/${name}.bash"
          DESTINATION "${KORVO_DATADIR}/bash-completion/completions" RENAME "${name}")
  install(FILES "${KORVO_DATA}/completions/${name}.fish"
          DESTINATION "${KORVO_DATADIR}/fish/vendor_completions.d")
endfunction()

korvo_install_program_data(korvo-widgets com.tessmoor.Korvo.Widgets)
install(FILES "${KORVO_DATA}/com.tessmoor.Korvo.Widgets.metainfo.xml"
        DESTINATION "${KORVO_DATADIR}/metainfo")

# Files whose place or content follows the prefix installed to (known only at install time, and
# different for a package, which installs to /usr): see cmake/install_step.cmake.
set(KORVO_SESSION_APPLICATIONS com.tessmoor.Korvo.Widgets.desktop)
set(KORVO_SESSION_MAN korvo-widgets.1)
set(KORVO_SESSION_UNITS korvo-widgets.service)
set(KORVO_SESSION_DBUS com.tessmoor.Korvo.Widgets.service)
set(KORVO_SESSION_AUTOSTART com.tessmoor.Korvo.Widgets.desktop)
set(KORVO_SESSION_ZSH _korvo-widgets)

if(TARGET korvo)
  install(TARGETS korvo RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  # `korvo service` looks for its GLib side here (src/app/hand_over.cpp).
  install(TARGETS korvo-service RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/korvo")
  korvo_install_program_data(korvo com.tessmoor.Korvo)
  # The status icon while Keep Awake holds the machine awake.
  install(FILES "${KORVO_DATA}/icons/com.tessmoor.Korvo-awake.svg"
          DESTINATION "${KORVO_DATADIR}/icons/hicolor/scalable/status")
  list(APPEND KORVO_SESSION_APPLICATIONS com.tessmoor.Korvo.desktop)
  list(APPEND KORVO_SESSION_MAN korvo.1)
  list(APPEND KORVO_SESSION_UNITS korvo.service)
  list(APPEND KORVO_SESSION_DBUS com.tessmoor.Korvo.service)
  list(APPEND KORVO_SESSION_AUTOSTART com.tessmoor.Korvo.Service.desktop)
  list(APPEND KORVO_SESSION_ZSH _korvo)
endif()

install(CODE "set(KORVO_INSTALL_STEP session-files)
  set(KORVO_DATA \"${KORVO_DATA}\")
  set(KORVO_STAGE \"${CMAKE_BINARY_DIR}/install-stage\")
  set(KORVO_BINDIR \"${CMAKE_INSTALL_BINDIR}\")
  set(KORVO_MANDIR \"${CMAKE_INSTALL_MANDIR}\")
  set(KORVO_SESSION_APPLICATIONS \"${KORVO_SESSION_APPLICATIONS}\")
  set(KORVO_SESSION_MAN \"${KORVO_SESSION_MAN}\")
  set(KORVO_SESSION_UNITS \"${KORVO_SESSION_UNITS}\")
  set(KORVO_SESSION_DBUS \"${KORVO_SESSION_DBUS}\")
  set(KORVO_SESSION_AUTOSTART \"${KORVO_SESSION_AUTOSTART}\")
  set(KORVO_SESSION_ZSH \"${KORVO_SESSION_ZSH}\")
  include(\"${PROJECT_SOURCE_DIR}/cmake/install_step.cmake\")")
