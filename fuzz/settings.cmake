korvo_add_fuzzer(settings_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/settings_fuzzer.cpp
  LIBRARIES korvo_app)
