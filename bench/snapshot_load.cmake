korvo_add_benchmark(snapshot_load_bench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/snapshot_load.cpp
  LIBRARIES korvo_shared)
