// STUB until the monitor branch is merged.
#ifndef QUILLAROTH_ADMIN_ATOMIC_FILE_H_
#define QUILLAROTH_ADMIN_ATOMIC_FILE_H_
#include <string>
bool WriteFileAtomically(const std::string& path, const std::string& text,
                         std::string* error);
#endif
