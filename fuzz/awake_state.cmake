korvo_add_fuzzer(awake_state_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/awake_state_fuzzer.cpp
  LIBRARIES korvo_app)
