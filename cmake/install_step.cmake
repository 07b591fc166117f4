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
set(destdir "$ENV{DESTDIR}")
# A prefix inside the home folder is one user's own install (`--prefix ~/.local`).
set(home "$ENV{HOME}")
set(home_prefix FALSE)
if(destdir STREQUAL "" AND IS_ABSOLUTE "${home}" AND NOT home STREQUAL "/")
  cmake_path(IS_PREFIX home "${prefix}" NORMALIZE home_prefix)
endif()

# systemd's user manager reads units from lib/systemd/user under /usr (and /usr/local), and from
# share/systemd/user under XDG_DATA_HOME and every XDG_DATA_DIRS entry: the latter is what
# reaches ~/.local and any other prefix whose share/ the session knows.
if(prefix STREQUAL "/usr")
  set(unit_dir "${prefix}/lib/systemd/user")
else()
  set(unit_dir "${prefix}/share/systemd/user")
endif()
# Sessions read autostart entries from /etc/xdg (XDG_CONFIG_DIRS' default), never from under
# /usr or /usr/local; another prefix's etc/xdg counts once XDG_CONFIG_DIRS names it, as its share/
# must be in XDG_DATA_DIRS. A home install leaves them out: the first start offers "Start at
# login" instead.
if(prefix STREQUAL "/usr" OR prefix STREQUAL "/usr/local")
  set(autostart_dir "/etc/xdg/autostart")
elseif(home_prefix)
  set(autostart_dir "")
else()
  set(autostart_dir "${prefix}/etc/xdg/autostart")
endif()
if(prefix STREQUAL "/usr")
  set(zsh_dir "${prefix}/share/zsh/vendor-completions")
else()
  set(zsh_dir "${prefix}/share/zsh/site-functions")
endif()
set(applications_dir "${prefix}/share/applications")

# Installs to several prefixes may run at once from one build tree (tests, packaging): each
# writes its rewritten files in a stage folder of its own.
string(RANDOM LENGTH 16 stage_name)
set(stage "${KORVO_STAGE}/${stage_name}")
file(MAKE_DIRECTORY "${stage}")

# "Exec…=korvo …" names the program by its installed path where PATH may not lead to it: GIO
# and systemd ignore an entry or unit whose program they cannot find. Under /usr the desktop
# entries keep the bare name, as distributions write them.
function(korvo_install_with_paths source destination)
  cmake_parse_arguments(ARG "KEEP_NAME_UNDER_USR" "" "" ${ARGN})
  file(READ "${KORVO_DATA}/${source}" text)
  get_filename_component(name "${source}" NAME)
  if(NOT (ARG_KEEP_NAME_UNDER_USR AND prefix STREQUAL "/usr"))
    string(REGEX REPLACE "\n(Exec[A-Za-z]*=)(korvo)" "\n\\1${prefix}/${KORVO_BINDIR}/\\2" text
           "${text}")
  endif()
  file(WRITE "${stage}/${name}" "${text}")
  file(INSTALL DESTINATION "${destination}" TYPE FILE FILES "${stage}/${name}")
endfunction()

foreach(entry IN LISTS KORVO_SESSION_APPLICATIONS)
  korvo_install_with_paths("${entry}" "${applications_dir}" KEEP_NAME_UNDER_USR)
endforeach()
foreach(unit IN LISTS KORVO_SESSION_UNITS)
  korvo_install_with_paths("${unit}" "${unit_dir}")
endforeach()
foreach(service IN LISTS KORVO_SESSION_DBUS)
  korvo_install_with_paths("dbus/${service}" "${prefix}/share/dbus-1/services")
endforeach()
if(NOT autostart_dir STREQUAL "")
  foreach(entry IN LISTS KORVO_SESSION_AUTOSTART)
    korvo_install_with_paths("autostart/${entry}" "${autostart_dir}" KEEP_NAME_UNDER_USR)
  endforeach()
endif()
# Man pages compressed, as man-db reads them and Debian ships them; -n keeps the bytes the same
# from one build to the next.
foreach(page IN LISTS KORVO_SESSION_MAN)
  execute_process(COMMAND gzip -9 -n -c "${KORVO_DATA}/man/${page}"
                  OUTPUT_FILE "${stage}/${page}.gz" RESULT_VARIABLE zipped)
  if(NOT zipped EQUAL 0)
    message(FATAL_ERROR "korvo-widgets: cannot compress ${KORVO_DATA}/man/${page}")
  endif()
  file(INSTALL DESTINATION "${prefix}/${KORVO_MANDIR}/man1" TYPE FILE FILES "${stage}/${page}.gz")
endforeach()
file(REMOVE_RECURSE "${stage}")
foreach(completion IN LISTS KORVO_SESSION_ZSH)
  file(INSTALL DESTINATION "${zsh_dir}" TYPE FILE FILES "${KORVO_DATA}/completions/${completion}")
endforeach()

# The desktop finds korvo:// handlers through the applications folder's MIME cache. Inside a
# staging root (a package) the cache is the installing system's business: dpkg's trigger
# rebuilds it there.
if(destdir STREQUAL "")
  find_program(update_desktop_database update-desktop-database)
  if(update_desktop_database)
    execute_process(COMMAND "${update_desktop_database}" -q "${applications_dir}"
                    RESULT_VARIABLE updated)
    if(NOT updated EQUAL 0)
      message(NOTICE "korvo-widgets: update-desktop-database ${applications_dir} failed; korvo "
                     "registers its links when it starts")
    endif()
  else()
    message(NOTICE "korvo-widgets: no update-desktop-database to register korvo:// links; korvo "
                   "registers them when it starts")
  endif()
endif()
