// Zeroing, setting, copying and moving: entries. The C runtime's block functions are the kernels of all but the settings.
#include <cstring>

#include "core/checks.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

template <class T>
ZppStatus zero(T* dst, int len) {
  if (anyNull(dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  std::memset(dst, 0, static_cast<std::size_t>(len) * sizeof(T));
  return zppStsOk;
}

template <class T>
ZppStatus move(const T* src, T* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(T));
  return zppStsOk;
}

}  // namespace

ZppStatus zppsZero_16s(Zpp16s* dst, int len) { return zero(dst, len); }
ZppStatus zppsZero_32f(Zpp32f* dst, int len) { return zero(dst, len); }
ZppStatus zppsZero_16sc(Zpp16sc* dst, int len) { return zero(dst, len); }

ZppStatus zppsCopy_16s(const Zpp16s* src, Zpp16s* dst, int len) { return move(src, dst, len); }
ZppStatus zppsCopy_32f(const Zpp32f* src, Zpp32f* dst, int len) { return move(src, dst, len); }
ZppStatus zppsMove_16s(const Zpp16s* src, Zpp16s* dst, int len) { return move(src, dst, len); }
ZppStatus zppsMove_32f(const Zpp32f* src, Zpp32f* dst, int len) { return move(src, dst, len); }

ZppStatus zppsSet_16s(Zpp16s value, Zpp16s* dst, int len) {
  if (anyNull(dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSet_16s(value, dst, len);
  return zppStsOk;
}

ZppStatus zppsSet_32s(Zpp32s value, Zpp32s* dst, int len) {
  if (anyNull(dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSet_32s(value, dst, len);
  return zppStsOk;
}
