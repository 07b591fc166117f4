korvo_add_fuzzer(placements_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/placements_fuzzer.cpp
  LIBRARIES korvo_desktop_core)
