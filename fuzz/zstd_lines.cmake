korvo_add_fuzzer(zstd_lines_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/zstd_lines_fuzzer.cpp
  LIBRARIES korvo_sources)
