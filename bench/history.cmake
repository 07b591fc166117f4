# The history a service would have left after N days, for bench/history.sh.
add_executable(history_simulate ${CMAKE_CURRENT_LIST_DIR}/history_simulate.cpp)
target_link_libraries(history_simulate PRIVATE korvo_app)
