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
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Four widgets below the other windows on every workspace: memory in use tinted by the "
    "kernel's memory pressure, what is left of the Codex and Claude subscription limits, the "
    "hottest CPU sensor, and a shortcut to Keep Awake. korvo-widgets renders them headless and "
    "prints status lines for bars such as Waybar; korvo publishes the figures they read.")
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
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/package/conffiles")

include(CPack)
