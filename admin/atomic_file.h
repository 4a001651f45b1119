// Replacing a file so that a reader sees the old bytes or the new ones,
// never a part: the node exporter may read quillaroth.prom at any moment.

#ifndef QUILLAROTH_ADMIN_ATOMIC_FILE_H_
#define QUILLAROTH_ADMIN_ATOMIC_FILE_H_

#include <string>

// Writes text to "<path>.tmp-XXXXXX" in the same folder (a name the
// textfile collector skips, as it reads only *.prom), syncs it to disk,
// gives it mode 0644 and renames it over path.  On failure removes the
// temporary file, leaves path as it was, sets *error to one line saying
// why ("cannot ... <path>: <reason>") and returns false.
bool WriteFileAtomically(const std::string& path, const std::string& text,
                         std::string* error);

#endif  // QUILLAROTH_ADMIN_ATOMIC_FILE_H_
