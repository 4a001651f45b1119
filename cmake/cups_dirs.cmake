# CUPS' folders on this machine, as cups-config names them, or Debian's when
# it cannot say:
#   QUILLAROTH_CUPS_SERVERBIN  the server folder (/usr/lib/cups): CUPS runs
#                              filters, backends and its helpers only from
#                              its filter/, backend/ and daemon/ folders
#   QUILLAROTH_CUPS_DATADIR    the data folder (/usr/share/cups): mime.types
#                              and the rest of the scheduler's data
# Both are cache entries, for a CUPS that lives elsewhere.

find_program(QUILLAROTH_CUPS_CONFIG cups-config)

# Sets OUT to what "cups-config --OPTION" prints, to DEFAULT when it fails.
function(quillaroth_cups_config OUT OPTION DEFAULT)
  set(_value "${DEFAULT}")
  if(QUILLAROTH_CUPS_CONFIG)
    execute_process(COMMAND "${QUILLAROTH_CUPS_CONFIG}" "--${OPTION}"
      OUTPUT_VARIABLE _out
      RESULT_VARIABLE _rc
      OUTPUT_STRIP_TRAILING_WHITESPACE
      ERROR_QUIET)
    if(_rc EQUAL 0 AND _out)
      set(_value "${_out}")
    endif()
  endif()
  set(${OUT} "${_value}" PARENT_SCOPE)
endfunction()

quillaroth_cups_config(_quillaroth_serverbin serverbin /usr/lib/cups)
quillaroth_cups_config(_quillaroth_datadir datadir /usr/share/cups)
set(QUILLAROTH_CUPS_SERVERBIN "${_quillaroth_serverbin}" CACHE PATH
  "CUPS server directory (its filter/, backend/ and daemon/ folders)")
set(QUILLAROTH_CUPS_DATADIR "${_quillaroth_datadir}" CACHE PATH
  "CUPS data directory (mime.types)")
