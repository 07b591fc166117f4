korvo_add_benchmark(ui_render_bench
  SOURCES "${CMAKE_CURRENT_LIST_DIR}/ui_render.cpp"
  LIBRARIES korvo_views_common korvo_render PkgConfig::CAIRO)
