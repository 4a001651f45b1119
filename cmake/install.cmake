# Installation into CUPS, in two components:
#
#   filter  the command filter, the PPD lines for a printer's queue and the
#           admin's command quillaroth with its manual page (the Debian
#           package printer-driver-quillaroth)
#   sim     the simulated printer: the test harness quillaroth-sim, the CUPS
#           backend quillarothsim and its PPD (the Debian package
#           quillaroth-sim)
#
# "cmake --install BUILD" installs both; "--component filter" only the
# filter, so that a production server gets no simulated printer in CUPS'
# backend list.  debian/rules installs each component into its package.
#
# CUPS finds filters and backends only in its own server directory
# (cups-config --serverbin, /usr/lib/cups on Debian), so that is where the
# filter goes, whatever the install prefix.  The default prefix is /usr for
# this project: with it the server directory and the PPD directory both lie
# inside the prefix and are installed relative to it, so that
#   cmake --install BUILD --prefix /some/stage   puts them under /some/stage
#   DESTDIR=/some/root cmake --install BUILD    puts them under /some/root/usr
# A server or PPD directory outside the prefix is installed by its absolute
# path (still below DESTDIR).
#
# Modes: the filter is 0755; CUPS runs it as the scheduler's unprivileged
# user.  The simulated printer's backend is 0755 as well, so CUPS runs it as
# that user too: it opens no device and needs no root rights.  (A backend of
# mode 0700 would be run as root.)

if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX /usr CACHE PATH "Install path prefix" FORCE)
endif()

# The server directory is QUILLAROTH_CUPS_SERVERBIN (cmake/cups_dirs.cmake).
set(QUILLAROTH_PPD_DIR /usr/share/ppd/quillaroth CACHE PATH
  "Folder for the PPD files of the queues")
# A relative folder lies below the install prefix.
set(QUILLAROTH_DOC_DIR share/doc/commandtoquillaroth CACHE STRING
  "Folder for the filter's documentation (the PPD lines for existing queues)")

# Sets OUT to PATH relative to the install prefix when PATH lies inside it,
# to PATH itself otherwise.
function(quillaroth_install_dir OUT PATH)
  string(REGEX REPLACE "/+$" "" _prefix "${CMAKE_INSTALL_PREFIX}")
  string(LENGTH "${_prefix}/" _len)
  string(SUBSTRING "${PATH}" 0 ${_len} _head)
  if(_head STREQUAL "${_prefix}/")
    string(SUBSTRING "${PATH}" ${_len} -1 _rest)
    set(${OUT} "${_rest}" PARENT_SCOPE)
  else()
    set(${OUT} "${PATH}" PARENT_SCOPE)
  endif()
endfunction()

quillaroth_install_dir(QUILLAROTH_SERVERBIN_DEST "${QUILLAROTH_CUPS_SERVERBIN}")
quillaroth_install_dir(QUILLAROTH_PPD_DEST "${QUILLAROTH_PPD_DIR}")
quillaroth_install_dir(QUILLAROTH_DOC_DEST "${QUILLAROTH_DOC_DIR}")
include(GNUInstallDirs)
message(STATUS "Filter installs to ${QUILLAROTH_SERVERBIN_DEST}/filter, "
  "PPD to ${QUILLAROTH_PPD_DEST} (relative paths: below the install prefix "
  "${CMAKE_INSTALL_PREFIX})")

set(_quillaroth_program_mode
  OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
set(_quillaroth_data_mode OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# The filter component.
install(TARGETS commandtoquillaroth
  RUNTIME DESTINATION ${QUILLAROTH_SERVERBIN_DEST}/filter
  PERMISSIONS ${_quillaroth_program_mode}
  COMPONENT filter)

# The admin's command, quillaroth, and its manual page.
install(TARGETS quillaroth-admin
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  PERMISSIONS ${_quillaroth_program_mode}
  COMPONENT filter)
install(FILES "${CMAKE_CURRENT_SOURCE_DIR}/admin/quillaroth.1"
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
  PERMISSIONS ${_quillaroth_data_mode}
  COMPONENT filter)

# The lines to paste into the PPD of a real printer's queue.
install(FILES "${CMAKE_CURRENT_SOURCE_DIR}/ppd/quillaroth-command-filter.txt"
  DESTINATION ${QUILLAROTH_DOC_DEST}
  PERMISSIONS ${_quillaroth_data_mode}
  COMPONENT filter)

# The sim component.
install(TARGETS quillaroth-sim
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  PERMISSIONS ${_quillaroth_program_mode}
  COMPONENT sim)

install(TARGETS quillarothsim
  RUNTIME DESTINATION ${QUILLAROTH_SERVERBIN_DEST}/backend
  PERMISSIONS ${_quillaroth_program_mode}
  COMPONENT sim)

install(FILES "${CMAKE_CURRENT_SOURCE_DIR}/ppd/quillaroth-sim.ppd"
  DESTINATION ${QUILLAROTH_PPD_DEST}
  PERMISSIONS ${_quillaroth_data_mode}
  COMPONENT sim)

# The USB emulation (sim/usb/, target quillaroth_usb_printer: a libusb-1.0
# that CUPS' own usb backend loads instead of the real one) belongs to the
# sim component too, in a private folder of its own where no other
# program's library search finds it.
set(QUILLAROTH_SIM_LIBDIR lib/quillaroth-sim)
install(TARGETS quillaroth_usb_printer
  LIBRARY DESTINATION ${QUILLAROTH_SIM_LIBDIR} NAMELINK_SKIP
  COMPONENT sim)

# Checks of the above: staged installs (DESTDIR and --prefix), the PPD under
# cupstestppd (the PPD fragment against the simulator's PPD is checked by
# tests/admin).  The Debian packages are checked by
# scripts/check-packaging.sh.
if(BUILD_TESTING)
  add_test(NAME install.staged_trees
    COMMAND bash "${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/install_test.sh"
      "${CMAKE_BINARY_DIR}" "${CMAKE_INSTALL_PREFIX}"
      "${QUILLAROTH_SERVERBIN_DEST}" "${QUILLAROTH_PPD_DEST}"
      "${QUILLAROTH_DOC_DEST}" "${CMAKE_INSTALL_BINDIR}"
      "${QUILLAROTH_SIM_LIBDIR}" "${CMAKE_INSTALL_MANDIR}")
  set_tests_properties(install.staged_trees
    PROPERTIES LABELS install TIMEOUT 300)
endif()
