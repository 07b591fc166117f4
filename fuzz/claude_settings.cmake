korvo_add_fuzzer(claude_settings_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/claude_settings_fuzzer.cpp
  LIBRARIES korvo_app)
