korvo_add_fuzzer(claude_status_line_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/claude_status_line_fuzzer.cpp
  LIBRARIES korvo_sources)
