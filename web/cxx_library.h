// What the C++ library of older emscripten packages lacks of C++20 and the codecs use. Included before every source file.
#pragma once

#include <algorithm>
#include <bit>
#include <functional>
#include <iterator>
#include <version>

namespace std {

#ifndef __cpp_lib_bit_cast
template <class To, class From>
constexpr To bit_cast(const From& from) noexcept {
  return __builtin_bit_cast(To, from);
}
#endif

#ifndef __cpp_lib_ranges
namespace ranges {

template <class Range, class T>
constexpr void fill(Range&& range, const T& value) {
  std::fill(std::begin(range), std::end(range), value);
}

template <class Range, class Out>
constexpr void copy(Range&& range, Out out) {
  std::copy(std::begin(range), std::end(range), out);
}

template <class Range, class Out, class Operation>
constexpr void transform(Range&& range, Out out, Operation operation) {
  for (auto&& element : range) *out++ = std::invoke(operation, element);
}

template <class Range, class T>
constexpr auto find(Range&& range, const T& value) {
  return std::find(std::begin(range), std::end(range), value);
}

template <class Range, class Predicate>
constexpr auto find_if(Range&& range, Predicate predicate) {
  return std::find_if(std::begin(range), std::end(range), predicate);
}

template <class Range, class Predicate>
constexpr bool all_of(Range&& range, Predicate predicate) {
  return std::all_of(std::begin(range), std::end(range), predicate);
}

template <class A, class B>
constexpr bool equal(A&& a, B&& b) {
  return std::equal(std::begin(a), std::end(a), std::begin(b), std::end(b));
}

template <class Range>
constexpr auto min_element(Range&& range) {
  return std::min_element(std::begin(range), std::end(range));
}

// The first of the smallest, by a projection
template <class Range, class Projection>
constexpr auto min(Range&& range, std::ranges::less, Projection projection) {
  return *std::min_element(std::begin(range), std::end(range), [&](const auto& a, const auto& b) {
    return std::invoke(projection, a) < std::invoke(projection, b);
  });
}

}  // namespace ranges
#endif

}  // namespace std
