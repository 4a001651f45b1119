// Hex dump of commands and replies for the log.
//
// dump_mem("[CMD]", "\x1bV21", 4) writes
//   DEBUG: [CMD] size=4
//   DEBUG: [CMD] 0000: 1b 56 32 31
// sixteen bytes a line, each line after the first opening with the label and
// the offset of its first byte.  A size of 0 writes an offset line with no
// bytes; a negative size writes the head line alone.  Each line reaches
// stderr in one write.

#ifndef QUILLAROTH_DEBUG_DUMP_MEM_H_
#define QUILLAROTH_DEBUG_DUMP_MEM_H_

// Writes the hex dump of size bytes at data to stderr.
void dump_mem(const char* label, const void* data, int size);

#endif  // QUILLAROTH_DEBUG_DUMP_MEM_H_
