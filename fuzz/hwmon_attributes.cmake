korvo_add_fuzzer(hwmon_attributes_fuzzer
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/hwmon_attributes_fuzzer.cpp
  LIBRARIES korvo_sources)
