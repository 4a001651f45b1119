#include <cstdio>

#include "admin/commands.h"

void Complain(const std::string& line) {
  fprintf(stderr, "quillaroth: %s\n", line.c_str());
}
