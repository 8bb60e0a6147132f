// Argument checks of the entries. Every entry reads the same way: pointers, lengths, enumerated values, scales and shifts,
// ranges of coded parameters, each a line that returns its status; then one call of a kernel.
#pragma once

#include "zppsc.h"

namespace zpp {

template <class... Pointer>
constexpr bool anyNull(Pointer... pointers) {
  return (... || (pointers == nullptr));
}

template <class Value>
constexpr bool outside(Value value, Value lowest, Value highest) {
  return value < lowest || value > highest;
}

// What every state-size query does
inline ZppStatus reportSize(Zpp32s* size, Zpp32s bytes) {
  if (anyNull(size)) return zppStsNullPointer;
  *size = bytes;
  return zppStsOk;
}

}  // namespace zpp
