korvo_add_fuzzer(codex_rollout_line_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/codex_rollout_line_fuzzer.cpp
  LIBRARIES korvo_sources)
