korvo_add_fuzzer(codex_app_server_answer_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/codex_app_server_answer_fuzzer.cpp
  LIBRARIES korvo_sources)
