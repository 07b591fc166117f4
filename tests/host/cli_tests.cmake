korvo_add_test(cli_tests
  SOURCES cli_moment_test.cpp cli_test.cpp cli_write_errors_test.cpp cli_messages_test.cpp
    cli_render_terminal_test.cpp cli_snapshot_file_test.cpp
  LIBRARIES korvo_host)
target_compile_definitions(cli_tests PRIVATE KORVO_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
  KORVO_VERSION="${PROJECT_VERSION}")
# The command-line tests run the executable, so it must be current.
add_dependencies(cli_tests korvo-widgets)
