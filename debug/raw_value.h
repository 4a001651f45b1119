// raw_value(): a CUPS enumeration field read as the plain int it is stored
// as.
//
// Raster headers and side-channel replies come from outside and may hold any
// number in an enumerated field, not only the ones CUPS names.  Loading such
// a value as the enumeration is undefined behaviour (the undefined-behaviour
// checker rejects it); copying its bytes into an int is not.

#ifndef QUILLAROTH_DEBUG_RAW_VALUE_H_
#define QUILLAROTH_DEBUG_RAW_VALUE_H_

#include <cstring>

// The int stored in an enumeration field, whatever number it holds.
template <typename E>
int raw_value(const E& field) {
  static_assert(sizeof(E) == sizeof(int), "CUPS enumerations are ints");
  int raw;
  std::memcpy(&raw, &field, sizeof(raw));
  return raw;
}

#endif  // QUILLAROTH_DEBUG_RAW_VALUE_H_
