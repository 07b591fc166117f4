korvo_add_test(cli_tests
  SOURCES cli_moment_test.cpp cli_test.cpp cli_write_errors_test.cpp
  LIBRARIES korvo_host)
target_compile_definitions(cli_tests PRIVATE KORVO_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
# The command-line tests run the executable, so it must be current.
add_dependencies(cli_tests korvo-widgets)
