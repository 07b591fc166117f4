korvo_add_benchmark(sources_bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/sources_bench.cpp LIBRARIES korvo_sources)
