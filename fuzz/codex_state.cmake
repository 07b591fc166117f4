korvo_add_fuzzer(codex_state_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/codex_state_fuzzer.cpp
  LIBRARIES korvo_app)
