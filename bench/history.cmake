# The history a service would have left after N days, for bench/history.sh.
add_executable(history_simulate ${CMAKE_CURRENT_LIST_DIR}/history_simulate.cpp)
target_link_libraries(history_simulate PRIVATE korvo_app)
if(TARGET korvo_dashboard)
  korvo_add_benchmark(usage_graph_bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/usage_graph_bench.cpp
                      LIBRARIES korvo_dashboard)
endif()
korvo_add_benchmark(publish_bench SOURCES ${CMAKE_CURRENT_LIST_DIR}/publish_bench.cpp
                    LIBRARIES korvo_app)
