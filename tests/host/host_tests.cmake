# The desktop host: placements, timers, appearance and accessibility rules as unit tests, and the
# whole host in a real X server (Xvfb, xdotool, ImageMagick) started by the test itself.
if(TARGET korvo_desktop)
  korvo_add_test(host_unit_test
    SOURCES
      host_accessibility_test.cpp
      host_appearance_test.cpp
      host_card_shape_test.cpp
      host_placement_bounds_test.cpp
      host_placement_file_test.cpp
      host_placement_nul_byte_test.cpp
      host_placement_test.cpp
      host_schedule_test.cpp
      host_wake_up_test.cpp
    LIBRARIES korvo_desktop)

  korvo_add_test(host_desktop_test
    SOURCES host_desktop_test.cpp host_desktop_harness.cpp
    LIBRARIES nlohmann_json::nlohmann_json)
  target_compile_definitions(host_desktop_test PRIVATE
    KORVO_HOST_DESKTOP_DIR="${CMAKE_CURRENT_SOURCE_DIR}/desktop"
    KORVO_SOURCE_DATA_DIR="${PROJECT_SOURCE_DIR}/data")
  add_dependencies(host_desktop_test korvo-widgets)
endif()
