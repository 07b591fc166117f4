korvo_add_benchmark(memory_read_bench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/memory_read_bench.cpp
  LIBRARIES korvo_sampling)
