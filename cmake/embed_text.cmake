# quillaroth_embed_text(SOURCE SYMBOL OUTPUT): writes OUTPUT, a C++ source
# that defines `extern const char SYMBOL[]` holding the whole text of the
# file SOURCE as one raw string literal, so that a program carries a text
# file of the tree without a second copy of it.  The file is read at
# configure time; a change to it configures again.  Every path is quoted:
# the tree may sit in a folder whose name holds blanks, quotes, brackets,
# "$" or "&".
set(_quillaroth_embed_template "${CMAKE_CURRENT_LIST_DIR}/embedded_text.cc.in")

function(quillaroth_embed_text source symbol output)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
  file(READ "${source}" QUILLAROTH_EMBEDDED_TEXT)
  # The literal ends at the first )embedded"; a text holding it cannot be
  # embedded this way.
  string(FIND "${QUILLAROTH_EMBEDDED_TEXT}" ")embedded\"" _end)
  if(NOT _end EQUAL -1)
    message(FATAL_ERROR "${source} holds )embedded\" and cannot be embedded")
  endif()
  set(QUILLAROTH_EMBEDDED_SYMBOL "${symbol}")
  get_filename_component(QUILLAROTH_EMBEDDED_NAME "${source}" NAME)
  configure_file("${_quillaroth_embed_template}" "${output}" @ONLY)
endfunction()
