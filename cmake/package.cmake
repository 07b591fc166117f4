# A Debian package of everything cmake/install.cmake installs, built by CPack:
#   cpack -G DEB --config <build>/CPackConfig.cmake      (scripts/package does it all)
# The package installs to /usr; its library dependencies come from dpkg-shlibdeps, the fonts the
# widgets draw with are named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvo-widgets)
set(CPACK_PACKAGE_VENDOR Tessmoor)
set(CPACK_PACKAGE_CONTACT "Tessmoor <korvo@tessmoor.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Memory, Keep Awake, AI Usage and CPU Temperature widgets for the Linux desktop")
# Debian wraps nothing: every line of the long description fits in 80 columns as written.
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Four widgets below the other windows on every workspace: memory in use\n"
    "tinted by the kernel's memory pressure, what is left of the Codex and\n"
    "Claude subscription limits, the hottest CPU sensor, and a shortcut to\n"
    "Keep Awake. korvo-widgets renders them headless and prints status lines\n"
    "for bars such as Waybar; korvo publishes the figures they read.")
# Install to /usr with DESTDIR pointing into the staging root, whatever prefix the build was
# configured for, so that install-time paths (units, D-Bus services) name /usr and the autostart
# entries land in /etc.
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "fonts-inter, fonts-material-design-icons-iconfont, fonts-comfortaa, fontconfig")
# Single instance, notifications and the korvo:// handler go through the session bus.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "dbus-user-session")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "waybar")

# The autostart entries live in /etc, so they are the package's configuration files: kept on
# remove, gone on purge.
set(KORVO_CONFFILES "/etc/xdg/autostart/com.tessmoor.Korvo.Widgets.desktop\n")
if(TARGET korvo)
  string(APPEND KORVO_CONFFILES "/etc/xdg/autostart/com.tessmoor.Korvo.Service.desktop\n")
endif()
file(WRITE "${CMAKE_BINARY_DIR}/package/conffiles" "${KORVO_CONFFILES}")
# The maintainer scripts enable the user units for graphical sessions, as debhelper's would.
list(JOIN KORVO_SESSION_UNITS " " KORVO_PACKAGE_UNITS)
foreach(script postinst postrm)
  configure_file("${KORVO_DATA}/debian/${script}.in" "${CMAKE_BINARY_DIR}/package/${script}" @ONLY)
endforeach()
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/package/conffiles"
    "${CMAKE_BINARY_DIR}/package/postinst" "${CMAKE_BINARY_DIR}/package/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Every package says under which terms it comes and what changed, compressed as Debian keeps it.
configure_file("${KORVO_DATA}/debian/changelog.in" "${CMAKE_BINARY_DIR}/package/changelog" @ONLY)
execute_process(COMMAND gzip -9 -n -c "${CMAKE_BINARY_DIR}/package/changelog"
                OUTPUT_FILE "${CMAKE_BINARY_DIR}/package/changelog.gz" COMMAND_ERROR_IS_FATAL ANY)
install(FILES "${KORVO_DATA}/debian/copyright" "${CMAKE_BINARY_DIR}/package/changelog.gz"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}")

include(CPack)
