# `cmake --build <dir> --target pot` extracts every _("…") literal into po/korvo-widgets.pot.
find_program(XGETTEXT_EXECUTABLE xgettext)
if(XGETTEXT_EXECUTABLE)
  file(GLOB_RECURSE KORVO_TRANSLATABLE_SOURCES CONFIGURE_DEPENDS
       "${CMAKE_SOURCE_DIR}/src/*.cpp" "${CMAKE_SOURCE_DIR}/src/*.hpp")
  add_custom_target(pot
    COMMAND ${CMAKE_COMMAND} -E make_directory "${CMAKE_BINARY_DIR}/po"
    COMMAND ${XGETTEXT_EXECUTABLE} --language=C++ --from-code=UTF-8 --keyword=_
            --package-name=korvo-widgets --package-version=${PROJECT_VERSION}
            --output=${CMAKE_BINARY_DIR}/po/korvo-widgets.pot ${KORVO_TRANSLATABLE_SOURCES}
    WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
    COMMENT "Extracting translatable texts into po/korvo-widgets.pot"
    VERBATIM)
endif()
