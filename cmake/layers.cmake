# korvo_expose_headers(target folder): makes the headers of src/<folder> reachable as
# "<folder>/name.hpp" for `target` and for every target that links it, and for no other. Each
# library gets an include root of its own holding a single link to its folder, so a header of a
# layer that is not linked does not resolve.
function(korvo_expose_headers target folder)
  string(REPLACE "/" "_" slot "${folder}")
  set(root "${CMAKE_BINARY_DIR}/include/${slot}")
  get_filename_component(parent "${root}/${folder}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  if(NOT EXISTS "${root}/${folder}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${folder}" "${root}/${folder}" SYMBOLIC)
  endif()
  target_include_directories(${target} PUBLIC "${root}")
  # The layer table (cmake/layer_table.cmake) reads the folder off the target.
  set_target_properties(${target} PROPERTIES KORVO_LAYER_FOLDER "${folder}")
  set_property(GLOBAL APPEND PROPERTY KORVO_LAYER_TARGETS ${target})
endfunction()
