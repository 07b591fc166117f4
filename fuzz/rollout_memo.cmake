korvo_add_fuzzer(rollout_memo_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/rollout_memo_fuzzer.cpp
  LIBRARIES korvo_sources)
