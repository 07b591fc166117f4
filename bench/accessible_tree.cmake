korvo_add_benchmark(accessible_tree_bench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/accessible_tree.cpp
  LIBRARIES korvo_views_memory korvo_views_monitor korvo_render)
