# Runs inside `cmake --install` (and CPack), where CMAKE_INSTALL_PREFIX is the prefix installed to
# and DESTDIR, when set, the staging root that file(INSTALL) writes under.

if(KORVO_INSTALL_STEP STREQUAL "check-prefix")
  # The nearest folder that exists on the way to the prefix decides whether we can write there.
  set(target "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
  while(NOT EXISTS "${target}")
    get_filename_component(target "${target}" DIRECTORY)
  endwhile()
  execute_process(COMMAND test -d "${target}" -a -w "${target}" RESULT_VARIABLE writable)
  if(NOT writable EQUAL 0)
    # NOTICE prints the line as it is; FATAL_ERROR would wrap it.
    message(NOTICE "korvo-widgets: cannot install into $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}: "
                   "${target} is not a writable folder")
    message(FATAL_ERROR "nothing was installed")
  endif()
  return()
endif()

# session-files
set(prefix "${CMAKE_INSTALL_PREFIX}")
if(prefix STREQUAL "/usr")
  set(autostart_dir "/etc/xdg/autostart")
  set(zsh_dir "${prefix}/share/zsh/vendor-completions")
else()
  set(autostart_dir "${prefix}/etc/xdg/autostart")
  set(zsh_dir "${prefix}/share/zsh/site-functions")
endif()

# Installs to several prefixes may run at once from one build tree (tests, packaging): each
# writes its rewritten files in a stage folder of its own.
string(RANDOM LENGTH 16 stage_name)
set(stage "${KORVO_STAGE}/${stage_name}")

# "Exec…=korvo …" names the program by its installed path.
function(korvo_install_with_paths source destination)
  file(READ "${KORVO_DATA}/${source}" text)
  get_filename_component(name "${source}" NAME)
  string(REGEX REPLACE "\n(Exec[A-Za-z]*=)(korvo)" "\n\\1${prefix}/${KORVO_BINDIR}/\\2" text
         "${text}")
  file(WRITE "${stage}/${name}" "${text}")
  file(INSTALL DESTINATION "${destination}" TYPE FILE FILES "${stage}/${name}")
endfunction()

foreach(unit IN LISTS KORVO_SESSION_UNITS)
  korvo_install_with_paths("${unit}" "${prefix}/lib/systemd/user")
endforeach()
foreach(service IN LISTS KORVO_SESSION_DBUS)
  korvo_install_with_paths("dbus/${service}" "${prefix}/share/dbus-1/services")
endforeach()
file(REMOVE_RECURSE "${stage}")
foreach(entry IN LISTS KORVO_SESSION_AUTOSTART)
  file(INSTALL DESTINATION "${autostart_dir}" TYPE FILE FILES "${KORVO_DATA}/autostart/${entry}")
endforeach()
foreach(completion IN LISTS KORVO_SESSION_ZSH)
  file(INSTALL DESTINATION "${zsh_dir}" TYPE FILE FILES "${KORVO_DATA}/completions/${completion}")
endforeach()
