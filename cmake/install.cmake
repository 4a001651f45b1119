# Installation into CUPS and the Debian package.
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

# Asks cups-config for the server directory; /usr/lib/cups when it cannot.
set(_quillaroth_serverbin /usr/lib/cups)
find_program(QUILLAROTH_CUPS_CONFIG cups-config)
if(QUILLAROTH_CUPS_CONFIG)
  execute_process(COMMAND ${QUILLAROTH_CUPS_CONFIG} --serverbin
    OUTPUT_VARIABLE _quillaroth_out
    RESULT_VARIABLE _quillaroth_rc
    OUTPUT_STRIP_TRAILING_WHITESPACE
    ERROR_QUIET)
  if(_quillaroth_rc EQUAL 0 AND _quillaroth_out)
    set(_quillaroth_serverbin ${_quillaroth_out})
  endif()
endif()
set(QUILLAROTH_CUPS_SERVERBIN ${_quillaroth_serverbin} CACHE PATH
  "CUPS server directory (its filter/ and backend/ folders)")
set(QUILLAROTH_PPD_DIR /usr/share/ppd/quillaroth CACHE PATH
  "Folder for the PPD files of the queues")

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
set(QUILLAROTH_DOC_DEST share/doc/commandtoquillaroth)
message(STATUS "Filter installs to ${QUILLAROTH_SERVERBIN_DEST}/filter, "
  "PPD to ${QUILLAROTH_PPD_DEST} (relative paths: below the install prefix "
  "${CMAKE_INSTALL_PREFIX})")

set(_quillaroth_program_mode
  OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)

install(TARGETS commandtoquillaroth
  RUNTIME DESTINATION ${QUILLAROTH_SERVERBIN_DEST}/filter
  PERMISSIONS ${_quillaroth_program_mode})

if(TARGET quillarothsim)
  install(TARGETS quillarothsim
    RUNTIME DESTINATION ${QUILLAROTH_SERVERBIN_DEST}/backend
    PERMISSIONS ${_quillaroth_program_mode})
endif()

install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/ppd/quillaroth-sim.ppd
  DESTINATION ${QUILLAROTH_PPD_DEST}
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# The lines to paste into the PPD of a real printer's queue.
install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/ppd/quillaroth-command-filter.txt
  DESTINATION ${QUILLAROTH_DOC_DEST}
  PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# Debian package: cpack -G DEB in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME commandtoquillaroth)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Quillaroth filter developers")
set(CPACK_PACKAGE_CONTACT "Quillaroth filter developers <root@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "CUPS command filter for Quillaroth dye-sublimation photo printers")
set(CPACK_PACKAGE_DESCRIPTION
  "commandtoquillaroth answers the ReportLevels and ReportStatus command jobs of a CUPS queue: it queries the printer through the backend and reports the printer's state reasons and its ink-ribbon level to the scheduler.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The run-time libraries the programs really link (libcups2 and the C and
# C++ run-time), worked out by dpkg-shlibdeps.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS cups-daemon)
include(CPack)

# Checks of the above: staged installs (DESTDIR and --prefix), the PPD under
# cupstestppd, the PPD fragment, and the Debian package.
if(BUILD_TESTING)
  set(_quillaroth_have_backend 0)
  if(TARGET quillarothsim)
    set(_quillaroth_have_backend 1)
  endif()
  add_test(NAME install.staged_trees
    COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/install_test.sh
      ${CMAKE_BINARY_DIR} ${CMAKE_INSTALL_PREFIX}
      ${QUILLAROTH_SERVERBIN_DEST} ${QUILLAROTH_PPD_DEST}
      ${QUILLAROTH_DOC_DEST} ${_quillaroth_have_backend})
  add_test(NAME install.ppd_fragment
    COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/ppd_fragment_test.sh
      ${CMAKE_CURRENT_SOURCE_DIR})
  set_tests_properties(install.staged_trees install.ppd_fragment
    PROPERTIES LABELS install TIMEOUT 300)
  # A sanitizer build is never packaged (its programs would depend on the
  # sanitizer run-times), so the package is checked in plain builds only.
  if(NOT QUILLAROTH_SANITIZE)
    add_test(NAME install.debian_package
      COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/tests/e2e/package_test.sh
        ${CMAKE_BINARY_DIR} ${PROJECT_VERSION}
        ${QUILLAROTH_CUPS_SERVERBIN} ${QUILLAROTH_PPD_DIR}
        ${CMAKE_INSTALL_PREFIX}/${QUILLAROTH_DOC_DEST} ${_quillaroth_have_backend})
    # Both install the whole build; the package build also runs the build's
    # preinstall step, so they do not run beside each other.
    set_tests_properties(install.debian_package PROPERTIES
      LABELS install TIMEOUT 300 RESOURCE_LOCK quillaroth_install)
    set_tests_properties(install.staged_trees PROPERTIES
      RESOURCE_LOCK quillaroth_install)
  endif()
endif()
