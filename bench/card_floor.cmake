# The hand-drawn medium AI Usage card: the one-shot floor of `render --format png` and the warm
# frame the widget's own frame is measured against.
add_library(korvo_usage_card_by_hand STATIC "${CMAKE_CURRENT_LIST_DIR}/usage_card_by_hand.cpp")
target_link_libraries(korvo_usage_card_by_hand PUBLIC PkgConfig::PANGO PkgConfig::CAIRO)
target_include_directories(korvo_usage_card_by_hand PUBLIC "${CMAKE_CURRENT_LIST_DIR}")

add_executable(card_floor "${CMAKE_CURRENT_LIST_DIR}/card_floor.cpp")
target_link_libraries(card_floor PRIVATE korvo_usage_card_by_hand)

korvo_add_benchmark(card_warm_bench
  SOURCES "${CMAKE_CURRENT_LIST_DIR}/card_warm.cpp"
  LIBRARIES korvo_views_monitor korvo_render korvo_usage_card_by_hand)
