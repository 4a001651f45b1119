// UnifiedDiff: the change between two texts as `diff -u` prints it,
// without the timestamps, for `quillaroth enable|disable --dry-run`.

#ifndef QUILLAROTH_ADMIN_UNIFIED_DIFF_H_
#define QUILLAROTH_ADMIN_UNIFIED_DIFF_H_

#include <string>

// "--- OLD_NAME\n+++ NEW_NAME\n" and "@@ -l,n +l,n @@" hunks with three
// lines of context, "\ No newline at end of file" after a last line that
// has none; "" when the texts are the same.
std::string UnifiedDiff(const std::string& old_name, const std::string& new_name,
                        const std::string& old_text, const std::string& new_text);

#endif  // QUILLAROTH_ADMIN_UNIFIED_DIFF_H_
