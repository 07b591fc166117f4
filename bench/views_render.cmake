korvo_add_benchmark(views_render_benchmark
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/views_render.cpp
  LIBRARIES korvo_views_memory korvo_views_monitor korvo_views_awake korvo_render PkgConfig::CAIRO)
