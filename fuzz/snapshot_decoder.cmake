korvo_add_fuzzer(snapshot_decoder_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/snapshot_decoder_fuzzer.cpp
  LIBRARIES korvo_shared)
